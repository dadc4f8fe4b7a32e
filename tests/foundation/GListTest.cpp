#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <random>

namespace {

class GListTest : public testing::Test {
protected:
    void SetUp() override { SCounted::Alive = SCounted::Misused = 0; }
    void TearDown() override {
        EXPECT_EQ(SCounted::Alive, 0);
        EXPECT_EQ(SCounted::Misused, 0);
    }

    // Both directions, since each has links of its own.
    static void ExpectEqual(const GList<SCounted>& List, const std::list<int>& Expected) {
        ASSERT_EQ(List.count, Expected.size());
        const auto* Node = List.first;
        for (const int Value : Expected) {
            ASSERT_NE(Node, nullptr);
            ASSERT_EQ(Node->obj.Value, Value);
            Node = Node->next;
        }
        ASSERT_EQ(Node, nullptr);
        Node = List.last;
        for (auto It = Expected.rbegin(); It != Expected.rend(); ++It) {
            ASSERT_NE(Node, nullptr);
            ASSERT_EQ(Node->obj.Value, *It);
            Node = Node->prev;
        }
        ASSERT_EQ(Node, nullptr);
    }
};

TEST_F(GListTest, RandomOperationsMatchAStandardList) {
    std::mt19937 Random(4);
    GList<SCounted> List;
    std::list<int> Expected;
    for (int Step = 0; Step < 3000; ++Step) {
        const UINT32 Choice = Random() % 16;
        if (Choice < 9) {
            const int Value = static_cast<int>(Random());
            EXPECT_EQ(List.Append(Value), List.last);
            Expected.push_back(Value);
        } else if (Choice < 15 && List.count > 0) {
            auto* Node = List.first;
            auto Wanted = Expected.begin();
            for (UINT32 i = Random() % List.count; i > 0; --i, ++Wanted) {
                Node = Node->next;
            }
            List.Unlink(Node);
            Expected.erase(Wanted);
        } else if (Random() % 20 == 0) {
            List.Clear();
            Expected.clear();
        }
        ExpectEqual(List, Expected);
        ASSERT_EQ(SCounted::Alive, static_cast<int>(Expected.size()));
    }
}

TEST_F(GListTest, CopiesAreDeep) {
    GList<SCounted> List;
    List.Append(1);
    List.Append(List.first->obj);
    GList<SCounted> Copy(List);
    GList<SCounted> Assigned;
    Assigned.Append(9);
    Assigned = List;
    const GList<SCounted>& Same = List;
    List = Same;
    List.first->obj.Value = 5;
    ExpectEqual(List, {5, 1});
    ExpectEqual(Copy, {1, 1});
    ExpectEqual(Assigned, {1, 1});
}

TEST_F(GListTest, StackIsLastInFirstOut) {
    GStack<SCounted> Stack;
    EXPECT_TRUE(Stack.Empty());
    for (int i = 0; i < 3; ++i) {
        Stack.Push(i);
        EXPECT_EQ(Stack.Top().Value, i);
    }
    Stack.Push(Stack.Top());
    for (const int Wanted : {2, 2, 1, 0}) {
        EXPECT_EQ(Stack.Top().Value, Wanted);
        Stack.Pop();
    }
    EXPECT_TRUE(Stack.Empty());
}

TEST(GStackDeathTest, ChecksForEmptiness) {
    GStack<int> Stack;
    EXPECT_DEATH(Stack.Top(), "Assertion failed: last, file GTemplate");
    EXPECT_DEATH(Stack.Pop(), "Assertion failed: last, file GTemplate");
}

} // namespace
