#include <lum_utils/spreadsheet_text_buffer.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

using lum_utils::SpreadsheetTextBuffer;

TEST(SpreadsheetTextBuffer, StartsEmptyAndNullTerminatedInsideTheObject)
{
    SpreadsheetTextBuffer buffer;
    EXPECT_EQ(buffer.size(), 0u);
    EXPECT_STREQ(buffer.data(), "");
    EXPECT_EQ(buffer.capacity(), SpreadsheetTextBuffer::INLINE_CAPACITY);
    const char* object_begin = reinterpret_cast<const char*>(&buffer);
    EXPECT_TRUE(buffer.data() >= object_begin && buffer.data() < object_begin + sizeof(buffer));
}

TEST(SpreadsheetTextBuffer, CapacityDoublesWhenFull)
{
    SpreadsheetTextBuffer buffer;
    const std::string fits(49, 'a');
    buffer.append(fits);
    EXPECT_EQ(buffer.capacity(), 50u) << "49 bytes and the null fit the first block";
    const char* object_begin = reinterpret_cast<const char*>(&buffer);
    EXPECT_TRUE(buffer.data() >= object_begin && buffer.data() < object_begin + sizeof(buffer))
        << "still inline";
    buffer.appendFormat("%s", "");
    EXPECT_FALSE(buffer.truncated()) << "nothing written is no error";
    buffer.append("b", 1);
    EXPECT_EQ(buffer.capacity(), 100u);
    buffer.append(std::string(150, 'c'));
    EXPECT_EQ(buffer.capacity(), 400u);
    EXPECT_EQ(std::string(buffer.data()), fits + "b" + std::string(150, 'c'));
    EXPECT_EQ(buffer.size(), 200u);
    EXPECT_FALSE(buffer.truncated());
}

TEST(SpreadsheetTextBuffer, FormattedOutputAndSpacesGrowTheBufferWhenTheyDoNotFit)
{
    SpreadsheetTextBuffer buffer;
    buffer.append(std::string(45, 'x'));
    buffer.appendFormat("[%d|%s|%.3f]", 12345, "a longer piece of text", 2.5);
    EXPECT_EQ(std::string(buffer.data()), std::string(45, 'x') + "[12345|a longer piece of text|2.500]");
    EXPECT_EQ(buffer.size(), std::strlen(buffer.data()));
    buffer.appendSpaces(60);
    buffer.append("b", 1);
    EXPECT_EQ(buffer.size(), 45 + 36 + 60 + 1u);
    EXPECT_EQ(std::string(buffer.data()).substr(81), std::string(60, ' ') + "b");
}

TEST(SpreadsheetTextBuffer, FailedGrowthKeepsTheBufferAndCutsTheTextShort)
{
    SpreadsheetTextBuffer buffer;
    buffer.setCapacityLimit(100);
    buffer.append(std::string(60, 'a'));
    ASSERT_EQ(buffer.capacity(), 100u);
    buffer.append(std::string(100, 'b'));
    EXPECT_EQ(buffer.capacity(), 100u);
    EXPECT_TRUE(buffer.truncated());
    EXPECT_EQ(std::string(buffer.data()), std::string(60, 'a') + std::string(39, 'b'));
    EXPECT_EQ(buffer.size(), 99u);
    // Once full, later text is cut too; the text stays a prefix of what was written.
    buffer.appendFormat("%d", 7);
    buffer.appendSpaces(3);
    EXPECT_EQ(buffer.size(), 99u);
    EXPECT_EQ(buffer.data()[99], '\0');

    SpreadsheetTextBuffer huge;
    huge.appendSpaces(std::numeric_limits<std::size_t>::max() - 10); // no size can double to it
    EXPECT_TRUE(huge.truncated());
    EXPECT_EQ(huge.size(), 49u);

    SpreadsheetTextBuffer formatted;
    formatted.setCapacityLimit(50);
    formatted.append(std::string(40, 'a'));
    formatted.appendFormat("%s", "0123456789abcdef");
    EXPECT_TRUE(formatted.truncated());
    EXPECT_EQ(std::string(formatted.data()), std::string(40, 'a') + "012345678");
}
