// The exceptions of the text readers never leave the library; their messages are
// still what a developer sees in a debugger, so they are pinned here.
#include "config_item_exception.h"
#include "text_readers.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace config_items;

template <typename Exception, typename Call>
std::string messageOf(Call call)
{
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    } catch (...) {
        return "<other exception>";
    }
    return "<no exception>";
}

TEST(TextReaderErrors, ListsNameTheTextAndTheType)
{
    EXPECT_EQ(messageOf<ConfigItemException>([] { detail::readStringList("\"open"); }),
              "Cannot convert '\"open' to StringList.");
    EXPECT_EQ(messageOf<ConfigItemException>([] { detail::readPointList("(1,2"); }),
              "Cannot convert '(1,2' to PointList.");
}

TEST(TextReaderErrors, RationalFormsAndTheirRefusals)
{
    EXPECT_EQ(messageOf<std::domain_error>([] { detail::readRationalScalar("1.5 m", false); }),
              "Conversion of floating point to rational values is disabled.");
    EXPECT_EQ(messageOf<std::domain_error>([] { detail::readRationalScalar("3", false); }),
              "Conversion of floating point to rational values is disabled.");
    EXPECT_EQ(messageOf<std::runtime_error>([] { detail::readRationalScalar("1,5", true); }),
              "Unable to initialize RationalScalarConfigItem with 1,5");
    EXPECT_EQ(
        messageOf<boost::bad_rational>([] { detail::readRationalScalar("99999999999999999999", true); }),
        "bad rational: non-zero singular denominator");
    EXPECT_EQ(detail::readRationalScalar("2/6 s", false).toString(), "1/3 s");
}

TEST(TextReaders, NumbersRefuseTrailingExponentOrSign)
{
    EXPECT_FALSE(detail::readDouble("1e").has_value());
    EXPECT_FALSE(detail::readDouble("1.5-").has_value());
    EXPECT_EQ(detail::readDouble(" 1e-3 "), 1e-3);
    EXPECT_EQ(detail::readInt32("-2147483648"), -2147483647 - 1);
    EXPECT_FALSE(detail::readUInt32("-1").has_value());
}

} // namespace
