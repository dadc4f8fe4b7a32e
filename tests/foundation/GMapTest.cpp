#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>

namespace {

using GMapTest = CountedTest;

template <class Node>
UINT32 Height(const Node* Top) {
    return Top ? 1 + std::max(Height(Top->child[0]), Height(Top->child[1])) : 0;
}

// The map's keys are made of numbers by KeyOf, which keeps their order.
template <class K, class FKeyOf>
void ExpectEqual(const GMap<K, SCounted>& Map, const std::map<UINT32, int>& Expected, FKeyOf KeyOf) {
    Map.CheckTree();
    ASSERT_LE(Height(Map.root), 2 * std::log2(Expected.size() + 1));
    auto Wanted = Expected.begin();
    for (typename GMap<K, SCounted>::Iterator It(Map); It.Valid(); It.Next(), ++Wanted) {
        ASSERT_NE(Wanted, Expected.end());
        ASSERT_TRUE(It.Key() == KeyOf(Wanted->first));
        ASSERT_EQ(It.Value().Value, Wanted->second);
    }
    ASSERT_EQ(Wanted, Expected.end());
}

template <class FKeyOf>
void CheckRandomOperations(FKeyOf KeyOf) {
    using K = decltype(KeyOf(0u));
    std::mt19937 Random(5);
    GMap<K, SCounted> Map;
    std::map<UINT32, int> Expected;
    for (int Step = 0; Step < 8000; ++Step) {
        ASSERT_NO_FATAL_FAILURE(ExpectEqual(Map, Expected, KeyOf));
        const UINT32 Number = Random() % (Step / 2000 % 2 ? 20 : 200);
        const K Key = KeyOf(Number);
        const auto* Found = Map.Find(Key);
        ASSERT_EQ(Found != nullptr, Expected.count(Number) == 1);
        const UINT32 Operation = Random() % 16;
        if (Operation < 6) {
            const auto* Node = Map.Insert(Key, Step);
            ASSERT_TRUE(!Found || Found == Node);
            ASSERT_EQ(Node->value.Value, Expected.emplace(Number, Step).first->second);
        } else if (Operation < 8) {
            ASSERT_EQ(Map[Key].Value, Expected[Number]);
        } else if (Operation < 15) {
            ASSERT_EQ(Map.Remove(Found ? Found->key : Key), Expected.erase(Number));
        } else {
            GMap<K, SCounted> Copy(Map);
            Map.Clear();
            ASSERT_EQ(Map.root, nullptr);
            Map.Insert(Key, -1);
            Map = Copy;
            Map = static_cast<const GMap<K, SCounted>&>(Map);
        }
        const std::size_t PerEntry = std::is_same_v<K, SCounted> ? 2 : 1;
        ASSERT_EQ(SCounted::Alive - (PerEntry == 2), static_cast<int>(PerEntry * Expected.size()));
    }
}

TEST_F(GMapTest, RandomOperationsMatchAStandardMapForEveryKindOfKey) {
    static int Places[200];
    CheckRandomOperations([](UINT32 Number) { return SCounted(static_cast<int>(Number)); });
    CheckRandomOperations([](UINT32 Number) { return (static_cast<float>(Number) - 100) * 0.25f; });
    CheckRandomOperations([](UINT32 Number) { return &Places[Number]; });
    CheckRandomOperations(
        [](UINT32 Number) { return GString((std::string(Number / 3, 'k') + std::to_string(Number % 3)).c_str()); });
}

GMap<int, int> RisingKeys(int Count) {
    GMap<int, int> Map;
    for (int Key = 1; Key <= Count; ++Key) {
        Map.Insert(Key, 0);
    }
    return Map;
}

// Top-down insertion by the book: rising keys, for which the shape can be followed by hand.
TEST(GMapShapeTest, RisingKeysGiveTheKnownShape) {
    const GMap<int, int> Map = RisingKeys(6);
    ASSERT_EQ(Map.root->key, 2);
    EXPECT_EQ(Map.root->child[0]->key, 1);
    const auto* Right = Map.root->child[1];
    EXPECT_EQ(Right->key, 4);
    EXPECT_EQ(Right->colour, 1u);
    EXPECT_EQ(Right->child[0]->key, 3);
    EXPECT_EQ(Right->child[1]->key, 5);
    EXPECT_EQ(Right->child[1]->child[1]->key, 6);
    EXPECT_EQ(Right->child[1]->child[1]->colour, 1u);
}

TEST(GMapDeathTest, IndexingFindsBrokenTrees) {
    GMap<int, int> Map = RisingKeys(6);
    Map.root->child[1]->child[1]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Red violation\", file GTemplate");
    Map = RisingKeys(4);
    Map.root->child[0]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Black violation\", file GTemplate");
}

} // namespace
