#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

template <class K, class V, class SK, class SV>
void ExpectEqual(const GMap<K, V>& Map, const std::map<SK, SV>& Expected) {
    Map.CheckTree();
    auto Wanted = Expected.begin();
    for (typename GMap<K, V>::Iterator It(Map); It.Valid(); It.Next(), ++Wanted) {
        ASSERT_NE(Wanted, Expected.end());
        ASSERT_TRUE(It.Key() == K(Wanted->first));
        ASSERT_TRUE(It.Value() == V(Wanted->second));
    }
    ASSERT_EQ(Wanted, Expected.end());
}

template <class K, class V>
UINT32 Height(const typename GMap<K, V>::Node* Top) {
    return Top ? 1 + std::max(Height<K, V>(Top->child[0]), Height<K, V>(Top->child[1])) : 0;
}

TEST(GMapTest, RandomOperationsMatchAStandardMap) {
    SCounted::Alive = SCounted::Misused = 0;
    {
        std::mt19937 Random(5);
        GMap<SCounted, SCounted> Map;
        std::map<int, int> Expected;
        for (int Step = 0; Step < 20000; ++Step) {
            const int Range = Step / 5000 % 2 ? 20 : 200;
            const int Key = static_cast<int>(Random() % Range);
            const int Value = static_cast<int>(Random());
            if (Random() % 2) {
                const auto* Node = Map.Insert(Key, Value);
                Expected.emplace(Key, Value);
                ASSERT_EQ(Node->value.Value, Expected[Key]);
            } else {
                ASSERT_EQ(Map.Remove(Key), Expected.erase(Key));
            }
            const auto* Found = Map.Find(Key);
            ASSERT_EQ(Found != nullptr, Expected.count(Key) == 1);
            ASSERT_TRUE(!Found || Found->value.Value == Expected[Key]);
            ExpectEqual(Map, Expected);
            ASSERT_EQ(SCounted::Alive, 2 * static_cast<int>(Expected.size()));
        }
    }
    EXPECT_EQ(SCounted::Alive, 0);
    EXPECT_EQ(SCounted::Misused, 0);
}

TEST(GMapTest, TextKeysMatchAStandardMap) {
    std::mt19937 Random(6);
    GMap<GString, int> Map;
    std::map<std::string, int> Expected;
    for (int Step = 0; Step < 5000; ++Step) {
        const std::string Key = std::string(Random() % 12, 'k') + std::to_string(Random() % 30);
        if (Random() % 3) {
            Map.Insert(Key.c_str(), Step);
            Expected.emplace(Key, Step);
        } else {
            ASSERT_EQ(Map.Remove(Key.c_str()), Expected.erase(Key));
        }
        ASSERT_EQ(Map.Find(Key.c_str()) != nullptr, Expected.count(Key) == 1);
        Map.CheckTree();
    }
    auto Wanted = Expected.begin();
    for (GMap<GString, int>::Iterator It(Map); It.Valid(); It.Next(), ++Wanted) {
        EXPECT_EQ(It.Key(), Wanted->first.c_str());
        EXPECT_EQ(It.Value(), Wanted->second);
    }
    EXPECT_EQ(Wanted, Expected.end());
}

// Top-down insertion by the book: rising keys, for which the shape can be followed by hand.
TEST(GMapTest, RisingKeysGiveTheKnownShape) {
    GMap<int, int> Map;
    for (int Key = 1; Key <= 6; ++Key) {
        Map.Insert(Key, 0);
    }
    ASSERT_EQ(Map.root->key, 2);
    EXPECT_EQ(Map.root->child[0]->key, 1);
    EXPECT_EQ(Map.root->child[1]->key, 4);
    EXPECT_EQ(Map.root->child[1]->colour, 1u);
    EXPECT_EQ(Map.root->child[1]->child[0]->key, 3);
    EXPECT_EQ(Map.root->child[1]->child[1]->key, 5);
    EXPECT_EQ(Map.root->child[1]->child[1]->child[1]->key, 6);
    EXPECT_EQ(Map.root->child[1]->child[1]->child[1]->colour, 1u);
}

TEST(GMapTest, StaysBalanced) {
    GMap<UINT32, int> Map;
    constexpr UINT32 COUNT = 10000;
    for (UINT32 Key = 0; Key < COUNT; ++Key) {
        Map.Insert(Key, 0);
    }
    EXPECT_LE((Height<UINT32, int>(Map.root)), 2 * std::log2(COUNT + 1));
    for (UINT32 Key = 0; Key < COUNT; Key += 2) {
        EXPECT_EQ(Map.Remove(Key), 1u);
    }
    Map.CheckTree();
    EXPECT_LE((Height<UINT32, int>(Map.root)), 2 * std::log2(COUNT / 2 + 1) + 2);
}

TEST(GMapTest, InsertOfAnExistingKeyKeepsItsValue) {
    GMap<GString, int> Map;
    auto* First = Map.Insert("tree00", 1);
    EXPECT_EQ(Map.Insert("tree00", 2), First);
    EXPECT_EQ(First->value, 1);
}

TEST(GMapTest, IndexingAMissingKeyAddsIt) {
    GMap<GString, int> Map;
    EXPECT_EQ(Map["a"], 0);
    Map["a"] = 4;
    EXPECT_EQ(Map["a"], 4);
    EXPECT_NE(Map.Find("a"), nullptr);
    EXPECT_EQ(Map.Find("b"), nullptr);
}

TEST(GMapTest, RemovesByAKeyThatLiesInTheMap) {
    GMap<GString, int> Map;
    for (const char* Key : {"d", "b", "f", "a", "c", "e", "g"}) {
        Map.Insert(Key, 1);
    }
    while (Map.root) {
        const GString Gone = Map.root->key;
        EXPECT_EQ(Map.Remove(Map.root->key), 1u);
        EXPECT_EQ(Map.Find(Gone), nullptr);
        Map.CheckTree();
    }
    EXPECT_EQ(Map.Remove("a"), 0u);
}

TEST(GMapTest, CopiesAreDeep) {
    GMap<int, GString> Map;
    std::map<int, const char*> Expected = {{1, "one"}, {2, "two"}, {3, "three"}};
    for (const auto& [Key, Value] : Expected) {
        Map.Insert(Key, Value);
    }
    GMap<int, GString> Copy(Map);
    GMap<int, GString> Assigned;
    Assigned.Insert(9, "nine");
    Assigned = Map;
    Map.Find(1)->value = "changed";
    const GMap<int, GString>& Same = Copy;
    Copy = Same;
    Map.Clear();
    EXPECT_EQ(Map.root, nullptr);
    ExpectEqual(Copy, Expected);
    ExpectEqual(Assigned, Expected);
}

TEST(GMapTest, FloatKeysAreOrderedByNumber) {
    GMap<float, int> Map;
    std::map<float, int> Expected;
    for (const float Key : {3.5f, -1.0f, 0.0f, 1e30f, -2e10f, 0.25f}) {
        Map.Insert(Key, static_cast<int>(Expected.size()));
        Expected.emplace(Key, static_cast<int>(Expected.size()));
    }
    ExpectEqual(Map, Expected);
    EXPECT_EQ(Map.Find(-0.0f)->key, 0.0f);
}

TEST(GMapTest, PointerKeysAreOrderedByAddress) {
    int Places[8] = {};
    GMap<int*, int> Map;
    for (const int At : {5, 2, 7, 0, 1, 6, 3, 4}) {
        Map.Insert(&Places[At], At);
    }
    int Next = 0;
    for (GMap<int*, int>::Iterator It(Map); It.Valid(); It.Next()) {
        EXPECT_EQ(It.Value(), Next++);
    }
    EXPECT_EQ(Next, 8);
}

TEST(GMapTest, AnEmptyMapHasNothingToWalk) {
    GMap<int, int> Map;
    EXPECT_FALSE((GMap<int, int>::Iterator(Map).Valid()));
    EXPECT_EQ(Map.Find(1), nullptr);
    EXPECT_EQ(Map.Remove(1), 0u);
}

TEST(GMapDeathTest, IndexingFindsRedBelowRed) {
    GMap<int, int> Map;
    for (int Key = 1; Key <= 6; ++Key) {
        Map.Insert(Key, 0);
    }
    Map.root->child[1]->child[1]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Red violation\", file GTemplate");
}

TEST(GMapDeathTest, IndexingFindsUnevenBlackHeights) {
    GMap<int, int> Map;
    for (int Key = 1; Key <= 4; ++Key) {
        Map.Insert(Key, 0);
    }
    Map.root->child[0]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Black violation\", file GTemplate");
}

} // namespace
