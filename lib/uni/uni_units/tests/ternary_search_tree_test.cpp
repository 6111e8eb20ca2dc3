#include <uni_units/ternary_search_tree.h>

#include <gtest/gtest.h>

#include <string>

using units::simple::TernarySearchTree;

namespace {

TernarySearchTree<int> sampleTree()
{
    TernarySearchTree<int> tree;
    for (const char* key : {"kV", "k", "kVA", "V", "mV", "MV", "Hz"})
        tree.insert(key, static_cast<int>(std::string(key).size()) * 10 + key[0]);
    return tree;
}

} // namespace

TEST(TernarySearchTree, FindsEveryWholeKey)
{
    const auto tree = sampleTree();
    EXPECT_EQ(tree.size(), 7u);
    for (const char* key : {"kV", "k", "kVA", "V", "mV", "MV", "Hz"}) {
        const int* value = tree.find(key);
        ASSERT_NE(value, nullptr) << key;
        EXPECT_EQ(*value, static_cast<int>(std::string(key).size()) * 10 + key[0]) << key;
    }
}

TEST(TernarySearchTree, APrefixOfAKeyOrAKeyPlusMoreFindsNothing)
{
    const auto tree = sampleTree();
    EXPECT_EQ(tree.find("kVV"), nullptr); // "kV" matches as far as it goes
    EXPECT_EQ(tree.find("kVAx"), nullptr);
    EXPECT_EQ(tree.find("H"), nullptr); // inner node without a value
    EXPECT_EQ(tree.find(""), nullptr);
    EXPECT_EQ(tree.find("mv"), nullptr); // case matters
}

TEST(TernarySearchTree, FirstValueStaysAndEmptyKeyIsRefused)
{
    TernarySearchTree<int> tree;
    EXPECT_TRUE(tree.insert("ab", 1));
    EXPECT_FALSE(tree.insert("ab", 2));
    EXPECT_FALSE(tree.insert("", 3));
    EXPECT_TRUE(tree.insert("a", 4)); // a key on the path of another one
    EXPECT_EQ(*tree.find("ab"), 1);
    EXPECT_EQ(*tree.find("a"), 4);
    EXPECT_EQ(tree.size(), 2u);
    EXPECT_EQ(tree.find(""), nullptr);
}

TEST(TernarySearchTree, KeysWithHighBytesAndEmbeddedNul)
{
    TernarySearchTree<int> tree;
    EXPECT_TRUE(tree.insert("\xce\xa9", 1)); // UTF-8 of U+03A9
    EXPECT_TRUE(tree.insert(std::string("a\0b", 3), 2));
    EXPECT_EQ(*tree.find("\xce\xa9"), 1);
    EXPECT_EQ(tree.find("\xce"), nullptr);
    EXPECT_EQ(*tree.find(std::string("a\0b", 3)), 2);
    EXPECT_EQ(tree.find("a"), nullptr);
}
