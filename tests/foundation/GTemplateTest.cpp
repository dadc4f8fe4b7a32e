// Containers and strings against the standard library's under random operations.
#include "foundation/GTemplate.h"
#include "support/Common.h"
#include "support/Counted.h"

#include <list>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using GArrayTest = CountedTest;
using GListTest = CountedTest;
using GMapTest = CountedTest;

bool IsInline(const GString& Text) {
    return Text.Cur == Text.Inline;
}

// Arguments may be parts of the string itself. OnHeap: a string that was once too long stays there until cleared.
TEST(GStringTest, RandomOperationsMatchAStandardString) {
    std::mt19937 Random(3);
    GString Text;
    std::string Expected;
    bool OnHeap = false;
    for (int Step = 0; Step < 20000; ++Step) {
        const std::string Other(Random() % (Random() % 2 ? 7 : 60), static_cast<char>('a' + Step % 26));
        const UINT32 At = Random() % (Text.Length() + 1);
        const UINT32 Size = Random() % (Text.Length() - At + 1);
        const UINT32 Operation = Random() % 9;
        if (Operation == 0) {
            Step % 2 ? Text += Other.c_str() : Text += GString(Other.c_str());
            Expected += Other;
        } else if (Operation == 1) {
            Text = Other.c_str();
            Expected = Other;
        } else if (Operation == 2) {
            Text.InsertChar(At, 'X');
            Expected.insert(At, 1, 'X');
        } else if (Operation == 3) {
            Text.Left(At);
            Expected.resize(At);
        } else if (Operation == 4) {
            Step % 2 ? Text.Assign(Text, At, Size) : (Text = Text.CStr() + At, Text.Left(Size));
            Expected = Expected.substr(At, Size);
        } else if (Operation == 5 && Text.Length() < 300) {
            const UINT32 From = Step % 2 ? At : 0;
            From ? Text += Text.CStr() + From : Text += Text;
            Expected += Expected.substr(From);
        } else if (Operation == 6) {
            const UINT32 Cut = Random() % (Step % 2 ? 32 : 400);
            Text.Format(Cut, "<%s-%d", Text.CStr(), 12);
            Expected = ("<" + Expected + "-12").substr(0, Cut);
            OnHeap |= Cut >= GString::INLINE_SIZE;
        } else if (Operation == 7) {
            const GString Copy = Text;
            ASSERT_EQ(IsInline(Copy), Expected.size() < GString::INLINE_SIZE);
            Text = GString("other");
            Text = Copy;
        } else if (Operation == 8 && Step % 4 == 0) {
            Text.Clear();
            Expected.clear();
            OnHeap = false;
        }
        OnHeap |= Expected.size() >= GString::INLINE_SIZE;
        ASSERT_EQ(std::string(Text.CStr(), Text.Length()), Expected);
        ASSERT_EQ(Text.CStr()[Text.count], 0);
        ASSERT_EQ(Text.Cur, OnHeap ? Text.Data : Text.Inline);
        ASSERT_TRUE(OnHeap ? Text.Capacity > Text.count : Text.Capacity == 0);
    }
}

TEST(GStringTest, ReserveDoublesOrTakesMoreAndKeepsTheText) {
    GString Text("slope");
    for (const auto& [Wanted, Capacity] : {std::pair{40u, 40u}, {41u, 80u}, {2u, 80u}, {200u, 200u}}) {
        Text.Reserve(Wanted);
        EXPECT_TRUE(Text.Capacity == Capacity && Text == "slope") << Wanted;
    }
}

// Texts of few characters, alike at the start, with zeros, which end a comparison, and bytes above 127 among them.
TEST(GStringTest, CompareMatchesStrcmp) {
    std::mt19937 Random(11);
    constexpr char LETTERS[] = {'a', 'b', '\x80', '\xFF', 1, 0};
    const auto Sign = [](int Value) { return (Value > 0) - (Value < 0); };
    for (int Step = 0; Step < 50000; ++Step) {
        const std::string Start(Random() % 40, 'p');
        GString Texts[2] = {Start.c_str(), Start.c_str()};
        for (GString& Text : Texts) {
            for (UINT32 Length = Random() % 20; Length > 0; --Length) {
                Text.InsertChar(Text.Length(), LETTERS[Random() % (Random() % 8 ? 5 : 6)]);
            }
        }
        const auto& [A, B] = Texts;
        const int Order = Sign(std::strcmp(A.CStr(), B.CStr()));
        ASSERT_EQ(Sign(A.Compare(B)), Order);
        ASSERT_TRUE((A < B) == (Order < 0) && (A > B.CStr()) == (Order > 0));
        ASSERT_TRUE((A == B) == (Order == 0) && (A != B.CStr()) == (Order != 0));
        ASSERT_TRUE(Order != 0 || std::hash<GString>()(A) == std::hash<GString>()(B));
        ASSERT_EQ(GString(A).Length(), A.Length()) << "copies go beyond zeros";
    }
}

TEST(GStringTest, NullCountsAsEmpty) {
    const char* Nothing = nullptr;
    GString Text = "full";
    Text += Nothing;
    EXPECT_EQ(Text, "full");
    Text = Nothing;
    EXPECT_TRUE(Text.Empty() && GString(Nothing).Empty());
}

// Values may be elements of the array itself. Room follows the rules of the capacity.
TEST_F(GArrayTest, RandomOperationsMatchAVector) {
    std::mt19937 Random(7);
    GArray<SCounted> Array;
    std::vector<int> Expected;
    UINT32 Room = 0;
    for (int Step = 0; Step < 8000; ++Step) {
        const UINT32 Size = Array.Size();
        const UINT32 At = Random() % (Size + 1);
        const UINT32 Wanted = Random() % 50;
        const SCounted Fresh(static_cast<int>(Random()));
        const SCounted& Value = Size > 0 && Random() % 2 ? Array[Random() % Size] : Fresh;
        const int Number = Value.Value;
        const SCounted* Buffer = Array.Data;
        const UINT32 OldRoom = Room;
        const UINT32 Operation = Random() % 64;
        if (Operation < 32) {
            Room = Size < Room ? Room : Room ? Room * 2 : 1;
            Operation < 16 ? Array.Insert(At, Value) : Array.Add(Value);
            Expected.insert(Operation < 16 ? Expected.begin() + At : Expected.end(), Number);
        } else if (Operation < 42 && At < Size) {
            const UINT32 To = At + Random() % (Size - At);
            Array.Remove(At, To);
            Expected.erase(Expected.begin() + At, Expected.begin() + To + 1);
        } else if (Operation < 54) {
            Operation < 48 ? Array.Resize(Wanted) : Array.Reserve(Wanted);
            Expected.resize(Operation < 48 ? Wanted : Size);
            Room = std::max(Room, Wanted);
        } else if (Operation < 62) {
            GArray<SCounted> Other = Array;
            Other.Resize(Wanted);
            Array = Operation < 60 ? Other : Array;
            Expected.resize(Operation < 60 ? Wanted : Size);
            Room = std::max(Room, Array.Size());
        } else {
            Array.Clear();
            Expected.clear();
            Room = 0;
        }
        ASSERT_EQ(Array.Capacity, Room);
        ASSERT_EQ(Array.Data == Buffer, Room == OldRoom);
        ASSERT_TRUE(std::equal(Array.begin(), Array.end(), Expected.begin(), Expected.end())) << Operation;
        ASSERT_EQ(SCounted::Alive, 1 + static_cast<int>(Array.Size())) << "unused capacity holds no objects";
    }
}

TEST_F(GArrayTest, TakesTheChildrenOfOneOfItsElements) {
    struct STree {
        GArray<STree> Children;
        SCounted Number;
    };
    STree Root;
    Root.Children.Resize(1);
    Root.Children[0].Children.Resize(3);
    Root.Children[0].Children[2].Number.Value = 9;
    Root.Children = Root.Children[0].Children;
    ASSERT_EQ(Root.Children.Size(), 3u);
    EXPECT_EQ(Root.Children[2].Number.Value, 9);
}

TEST_F(GArrayTest, HugeArrayOfListsReadsAsEmptyWithoutBeingWritten) {
    GArray<GList<int>> Lists;
    Lists.Resize(8000000);
    const auto Page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t First = reinterpret_cast<std::uintptr_t>(Lists.begin()) / Page * Page;
    FBytes Pages((reinterpret_cast<std::uintptr_t>(Lists.end()) - First + Page - 1) / Page);
    ASSERT_EQ(mincore(reinterpret_cast<void*>(First), Pages.size() * Page, Pages.data()), 0);
    const auto Resident = std::count_if(Pages.begin(), Pages.end(), [](UINT8 Flags) { return Flags & 1; });
    EXPECT_LT(static_cast<std::uintptr_t>(Resident) * Page, 20000000u);
    for (UINT32 At = 0; At < Lists.Size(); At += 99991) {
        EXPECT_TRUE(!Lists[At].first && !Lists[At].last && Lists[At].count == 0);
    }
    Lists[7999999].Append(3);
    EXPECT_EQ(Lists[7999999].first->obj, 3);
    Lists[7999999].Clear();
    Lists.FreeEmpty();
    EXPECT_TRUE(!Lists.Data && Lists.Size() == 0);
}

TEST_F(GArrayTest, ListsThatGrowIntoUsedRoomAreEmpty) {
    GArray<GList<SCounted>> Lists;
    Lists.Resize(4);
    Lists[3].Append(1);
    Lists.Resize(2);
    EXPECT_EQ(SCounted::Alive, 0);
    Lists.Resize(4);
    EXPECT_EQ(Lists[3].first, nullptr);
    Lists[1].Append(2);
    Lists.Resize(9);
    EXPECT_TRUE(Lists[1].first->obj.Value == 2 && Lists[8].count == 0);
}

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
        ASSERT_TRUE(Forwards == Expected && Backwards == Expected);
        ASSERT_EQ(List.count, Expected.size());
        ASSERT_EQ(SCounted::Alive, static_cast<int>(Expected.size()));
    }
}

template <class Node>
UINT32 Height(const Node* Top) {
    return Top ? 1 + std::max(Height(Top->child[0]), Height(Top->child[1])) : 0;
}

// The map's keys are made of numbers by KeyOf, which keeps their order.
template <class FKeyOf>
void CheckRandomOperations(FKeyOf KeyOf) {
    using K = decltype(KeyOf(0u));
    std::mt19937 Random(5);
    GMap<K, SCounted> Map;
    std::map<UINT32, int> Expected;
    for (int Step = 0; Step < 8000; ++Step) {
        Map.CheckTree();
        ASSERT_LE(Height(Map.root), 2 * std::log2(Expected.size() + 1));
        auto Wanted = Expected.begin();
        for (typename GMap<K, SCounted>::Iterator It(Map); It.Valid(); It.Next(), ++Wanted) {
            ASSERT_NE(Wanted, Expected.end());
            ASSERT_TRUE(It.Key() == KeyOf(Wanted->first) && It.Value().Value == Wanted->second);
        }
        ASSERT_EQ(Wanted, Expected.end());
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

TEST(GTemplateDeathTest, WrongCallsAndBrokenTreesFailTheirAssertion) {
    GString Text("abc");
    EXPECT_DEATH(Text[3], "Assertion failed: at < count, file GTemplate");
    EXPECT_DEATH(Text.InsertChar(4, 'x'), "Assertion failed: af <= count, file GTemplate");
    const char* Range =
        "Assertion failed: off < count \\+ 1 && size < count \\+ 1 && off \\+ size < count \\+ 1, file GTemplate";
    EXPECT_DEATH(Text.Left(4), Range);
    for (const auto& [Offset, Size] : {std::pair{4u, 0u}, {2u, 2u}, {2u, 0xFFFFFFFFu}}) {
        EXPECT_DEATH(GString().Assign(Text, Offset, Size), Range);
    }
    GArray<int> Array, Other;
    Array.Resize(3);
    EXPECT_DEATH(Array[3], "Assertion failed: at < count, file GTemplate, line");
    EXPECT_DEATH(std::as_const(Array)[3], "Assertion failed: at < count, file GTemplate");
    for (const auto& [From, To] : {std::pair{3u, 3u}, {0u, 3u}, {2u, 1u}}) {
        EXPECT_DEATH(Array.Remove(From, To), "from < count && to < count && from <= to, file GTemplate");
    }
    const GArrayIterator<int> First(Array, 0), Last(Other, 0);
    EXPECT_DEATH(GCombSort(First, Last, std::greater<int>()), "Assertion failed: cnt == other.cnt, file GTemplate");
    GStack<int> Stack;
    EXPECT_DEATH(Stack.Top(), "Assertion failed: last, file GTemplate");
    EXPECT_DEATH(Stack.Pop(), "Assertion failed: last, file GTemplate");
    GMap<int, int> Map = RisingKeys(6);
    Map.root->child[1]->child[1]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Red violation\", file GTemplate");
    Map = RisingKeys(4);
    Map.root->child[0]->colour = 1;
    EXPECT_DEATH(Map[1], "Assertion failed: !\"Black violation\", file GTemplate");
}

TEST(GCombSortTest, SortsRangesOfAnySize) {
    std::mt19937 Random(8);
    for (UINT32 Count = 0; Count < 300; ++Count) {
        GArray<int> Array;
        for (UINT32 i = 0; i < Count; ++i) {
            Array.Add(static_cast<int>(Random() % (Count % 3 ? 1000 : 4)));
        }
        std::vector<int> Expected(Array.begin(), Array.end());
        const UINT32 From = Random() % (Count + 1);
        const UINT32 To = From + Random() % (Count - From + 1);
        GCombSort(GArrayIterator<int>(Array, From), GArrayIterator<int>(Array, To), std::greater<int>());
        std::sort(Expected.begin() + From, Expected.begin() + To);
        ASSERT_EQ(std::vector<int>(Array.begin(), Array.end()), Expected);
    }
}

// The distances of the elements compared decide where equal elements end up. Nothing moves in a sorted array.
TEST(GCombSortTest, GapShrinksByItsFactor) {
    GArray<int> Array;
    for (int i = 0; i < 100; ++i) {
        Array.Add(i);
    }
    std::set<int, std::greater<int>> Gaps;
    GCombSort(Array, [&Gaps](int Lower, int Upper) { return Gaps.insert(Upper - Lower), false; });
    EXPECT_EQ(std::vector<int>(Gaps.begin(), Gaps.end()),
              (std::vector<int>{80, 64, 51, 40, 32, 25, 20, 16, 12, 9, 7, 5, 4, 3, 2, 1}));
}

} // namespace
