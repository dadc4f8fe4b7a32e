#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <random>

namespace {

using GListTest = CountedTest;

TEST_F(GListTest, RandomOperationsMatchAStandardList) {
    std::mt19937 Random(4);
    GList<SCounted> List;
    std::list<int> Expected;
    for (int Step = 0; Step < 3000; ++Step) {
        const UINT32 Choice = Random() % 64;
        if (Choice < 36) {
            const bool IsOwn = Choice < 9 && List.first;
            EXPECT_EQ(IsOwn ? List.Append(List.first->obj) : List.Append(Step), List.last);
            Expected.push_back(IsOwn ? Expected.front() : Step);
        } else if (Choice < 60 && List.count > 0) {
            auto* Node = List.first;
            auto Wanted = Expected.begin();
            for (UINT32 i = Random() % List.count; i > 0; --i, ++Wanted) {
                Node = Node->next;
            }
            List.Unlink(Node);
            Expected.erase(Wanted);
        } else if (Choice < 63) {
            GList<SCounted> Copy(List);
            List.Append(-1);
            List = Copy;
            List = static_cast<const GList<SCounted>&>(List);
        } else if (Step % 8 == 0) {
            List.Clear();
            Expected.clear();
        }
        // Both directions, since each has links of its own.
        std::list<int> Forwards, Backwards;
        for (const auto* Node = List.first; Node; Node = Node->next) {
            Forwards.push_back(Node->obj.Value);
        }
        for (const auto* Node = List.last; Node; Node = Node->prev) {
            Backwards.push_front(Node->obj.Value);
        }
        ASSERT_EQ(Forwards, Expected);
        ASSERT_EQ(Backwards, Expected);
        ASSERT_EQ(List.count, Expected.size());
        ASSERT_EQ(SCounted::Alive, static_cast<int>(Expected.size()));
    }
}

TEST_F(GListTest, StackIsLastInFirstOut) {
    GStack<SCounted> Stack;
    for (int i = 0; i < 3; ++i) {
        Stack.Push(i);
    }
    Stack.Push(Stack.Top());
    for (const int Wanted : {2, 2, 1, 0}) {
        EXPECT_EQ(Stack.Top().Value, Wanted);
        Stack.Pop();
    }
    EXPECT_TRUE(Stack.Empty());
    EXPECT_DEATH(Stack.Top(), "Assertion failed: last, file GTemplate");
    EXPECT_DEATH(Stack.Pop(), "Assertion failed: last, file GTemplate");
}

} // namespace
