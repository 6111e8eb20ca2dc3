#include <xpugixml/xpugixml.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

pugi::xml_document parse(const char* text)
{
    pugi::xml_document doc;
    EXPECT_TRUE(doc.load_string(text)) << text;
    return doc;
}

TEST(XpugiAttributes, MissingAndEmptyReadAlikeOnlyHasAttributeTells)
{
    auto doc = parse(R"(<a empty="" full="v"/>)");
    const pugi::xml_node a = doc.child("a");
    EXPECT_EQ(xpugi::getAttribute(a, "missing"), "");
    EXPECT_EQ(xpugi::getAttribute(a, "empty"), "");
    EXPECT_EQ(xpugi::getAttribute(a, "full"), "v");
    EXPECT_FALSE(xpugi::hasAttribute(a, "missing"));
    EXPECT_TRUE(xpugi::hasAttribute(a, "empty"));
}

TEST(XpugiAttributes, SetReplacesOrAppendsAddAlwaysAppends)
{
    auto doc = parse(R"(<a x="1"/>)");
    pugi::xml_node a = doc.child("a");
    xpugi::setAttribute(a, "x", "2");
    xpugi::setAttribute(a, "y", "3");
    EXPECT_EQ(xpugi::toString(a, false), R"(<a x="2" y="3"/>)");
    xpugi::addAttribute(a, "x", "4");
    EXPECT_EQ(xpugi::toString(a, false), R"(<a x="2" y="3" x="4"/>)");
}

TEST(XpugiAttributes, AddOnNodeThatTakesNoAttributesAsserts)
{
    uni_testing::AssertCapture asserts;
    pugi::xml_node none; // an empty handle cannot hold attributes
    xpugi::addAttribute(none, "x", "1");
    EXPECT_TRUE(asserts.fired("attribute"));
    EXPECT_EQ(asserts.size(), 1u) << "no set is tried without a handle";
}

TEST(XpugiText, GetTextPrefersCdataUntrimmedElsePcdataTrimmed)
{
    auto doc = parse("<r><a>  x  </a><b><![CDATA[  x  ]]></b><c>  p  <![CDATA[ q ]]></c><d/></r>");
    const pugi::xml_node r = doc.child("r");
    EXPECT_EQ(xpugi::getText(r.child("a")), "x");
    EXPECT_EQ(xpugi::getText(r.child("b")), "  x  ");
    EXPECT_EQ(xpugi::getText(r.child("c")), " q ");
    EXPECT_EQ(xpugi::getText(r.child("d")), "");
}

TEST(XpugiText, GetTrimmedTextOfAnElementIsItsFirstTextChildTrimmed)
{
    auto doc = parse("<r><a>  x  </a><b><![CDATA[ y ]]></b><c>  p  <![CDATA[ q ]]></c><d/></r>");
    const pugi::xml_node r = doc.child("r");
    struct Row
    {
        const char* what;
        pugi::xml_node node;
        const char* expected;
    };
    const Row rows[] = {
        {"element with text", r.child("a"), "x"},   {"text node itself", r.child("a").first_child(), "x"},
        {"element with CDATA", r.child("b"), "y"},  {"first text child wins", r.child("c"), "p"},
        {"element without text", r.child("d"), ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(xpugi::getTrimmedText(row.node), row.expected) << row.what;
}

TEST(XpugiText, CollectTextWalksSubtreeInDocumentOrder)
{
    auto doc = parse("<r>a<x>b<!--c--><y><![CDATA[d]]></y></x>e<?pi f?></r>");
    std::string out = "start:";
    xpugi::collectText(doc.child("r"), out);
    EXPECT_EQ(out, "start:abde");
}

TEST(XpugiText, SetTextReplacesChildrenOrValueAndIgnoresEmpty)
{
    auto doc = parse("<r><a>old<b/>more</a></r>");
    pugi::xml_node a = doc.child("r").child("a");
    xpugi::setText(a, "");
    EXPECT_EQ(xpugi::toString(a, false), "<a>old<b/>more</a>") << "empty text leaves the children alone";
    xpugi::setText(a, "new");
    EXPECT_EQ(xpugi::toString(a, false), "<a>new</a>");
    pugi::xml_node text = a.first_child();
    xpugi::setText(text, "value");
    EXPECT_EQ(xpugi::getText(a), "value");
}

TEST(XpugiText, RemoveChildrenRemovesEveryChild)
{
    auto doc = parse("<r><a/><b/>t<c><d/></c></r>");
    pugi::xml_node r = doc.child("r");
    xpugi::removeChildren(r);
    EXPECT_FALSE(r.first_child());
    EXPECT_EQ(xpugi::toString(r, false), "<r/>");
}

TEST(XpugiOutput, RawIsOneLineFormattedIsTabIndented)
{
    auto doc = parse("<r><a x=\"1\"><b/></a></r>");
    const std::string raw = xpugi::toString(doc, false);
    EXPECT_EQ(raw, "<?xml version=\"1.0\"?><r><a x=\"1\"><b/></a></r>");
    EXPECT_EQ(raw.find('\n'), std::string::npos);
    EXPECT_EQ(xpugi::toString(doc, true),
              "<?xml version=\"1.0\"?>\n<r>\n\t<a x=\"1\">\n\t\t<b />\n\t</a>\n</r>\n");
}

TEST(XpugiFile, SaveWritesWhatLoadReadsAndReportsFailure)
{
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("xpugi_test_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const std::string path = (dir / "setup.xml").string();

    auto doc = parse("<r><a>text</a></r>");
    ASSERT_TRUE(xpugi::saveFile(doc, path, false));
    pugi::xml_document back;
    ASSERT_TRUE(back.load_file(xpugi::pathToUtf8(path).c_str(), pugi::parse_default, pugi::encoding_auto));
    EXPECT_EQ(xpugi::toString(back, false), xpugi::toString(doc, false));

    EXPECT_FALSE(xpugi::saveFile(doc, (dir / "no" / "such" / "dir.xml").string(), true));
    EXPECT_FALSE(xpugi::saveFile(doc, "/dev/full", true)) << "a short write must not pass as saved";
    fs::remove_all(dir);
}

TEST(XpugiException, CarriesItsMessage)
{
    try {
        throw xpugi::xml_element_exception("missing element View");
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "missing element View");
    }
}

} // namespace
