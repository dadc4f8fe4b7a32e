// The containers against the standard ones at the same operations. Both sides of a pair run one template, so that they
// differ by the container alone; the small overloads below even out the names of the operations.
#include "foundation/GTemplate.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <list>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

// Small enough for the first cache of any processor, so that the luck of where memory lies plays no part.
constexpr int ARRAY_SIZE = 4000;
constexpr int LIST_SIZE = 1000;

// The tables of the system hold tens to hundreds of entries.
constexpr int MAP_SIZE = 500;

// ---- arrays

template <class T>
void Append(GArray<T>& Array, const T& Value) {
    Array.Add(Value);
}
template <class T>
void Append(std::vector<T>& Array, const T& Value) {
    Array.push_back(Value);
}
template <class T>
UINT32 SizeOf(const GArray<T>& Array) {
    return Array.Size();
}
template <class T>
UINT32 SizeOf(const std::vector<T>& Array) {
    return static_cast<UINT32>(Array.size());
}

template <class A>
A NumberedArray() {
    A Array;
    for (int i = 0; i < ARRAY_SIZE; ++i) {
        Append(Array, i);
    }
    return Array;
}

template <class A>
void ArrayAdd(benchmark::State& State) {
    for (auto _ : State) {
        A Array = NumberedArray<A>();
        benchmark::DoNotOptimize(Array);
    }
}

template <class A>
void ArrayIndexInOrder(benchmark::State& State) {
    A Array = NumberedArray<A>();
    for (auto _ : State) {
        benchmark::DoNotOptimize(Array);
        int Sum = 0;
        for (UINT32 i = 0; i < SizeOf(Array); ++i) {
            Sum += Array[i];
        }
        benchmark::DoNotOptimize(Sum);
    }
}

std::vector<UINT32> ShuffledNumbers(UINT32 Count) {
    std::vector<UINT32> Numbers(Count);
    std::iota(Numbers.begin(), Numbers.end(), 0);
    std::shuffle(Numbers.begin(), Numbers.end(), std::mt19937(1));
    return Numbers;
}

// Here no compiler can see that the index is in range. The array checks it in every build, so the vector does as well.
int& Checked(GArray<int>& Array, UINT32 At) {
    return Array[At];
}
int& Checked(std::vector<int>& Array, UINT32 At) {
    return Array.at(At);
}

template <class A>
void ArrayIndexAtRandom(benchmark::State& State) {
    A Array = NumberedArray<A>();
    const std::vector<UINT32> Order = ShuffledNumbers(ARRAY_SIZE);
    for (auto _ : State) {
        benchmark::DoNotOptimize(Array);
        int Sum = 0;
        for (const UINT32 At : Order) {
            Sum += Checked(Array, At);
        }
        benchmark::DoNotOptimize(Sum);
    }
}

template <class A>
void ArrayCopy(benchmark::State& State) {
    const A Array = NumberedArray<A>();
    for (auto _ : State) {
        A Copy(Array);
        benchmark::DoNotOptimize(Copy);
    }
}

BENCHMARK(ArrayAdd<GArray<int>>)->Name("array_add");
BENCHMARK(ArrayAdd<std::vector<int>>)->Name("std_array_add");
BENCHMARK(ArrayIndexInOrder<GArray<int>>)->Name("array_index");
BENCHMARK(ArrayIndexInOrder<std::vector<int>>)->Name("std_array_index");
BENCHMARK(ArrayIndexAtRandom<GArray<int>>)->Name("array_index_random");
BENCHMARK(ArrayIndexAtRandom<std::vector<int>>)->Name("std_array_index_random");
BENCHMARK(ArrayCopy<GArray<int>>)->Name("array_copy");
BENCHMARK(ArrayCopy<std::vector<int>>)->Name("std_array_copy");

// ---- strings

const char* const SHORT_TEXT = "Data/Models/Rider.mdd";
const char* const LONG_TEXT = "Data/Textures/Environment/Slopes/SnowGroundWithTracks.png";

template <class S, const char* const& TEXT>
void StringBuild(benchmark::State& State) {
    const char* Text = TEXT;
    for (auto _ : State) {
        benchmark::DoNotOptimize(Text);
        S String(Text);
        benchmark::DoNotOptimize(String);
    }
}

template <class S, const char* const& TEXT>
void StringCopy(benchmark::State& State) {
    const S String(TEXT);
    for (auto _ : State) {
        S Copy(String);
        benchmark::DoNotOptimize(Copy);
    }
}

template <class S>
void StringAppend(benchmark::State& State) {
    for (auto _ : State) {
        S String;
        for (int i = 0; i < 100; ++i) {
            String += SHORT_TEXT;
        }
        benchmark::DoNotOptimize(String);
    }
}

// Names of one folder: alike at the start, as paths are, and of different lengths.
template <class S>
std::vector<S> Names(int Count) {
    std::vector<S> Result;
    for (const UINT32 Number : ShuffledNumbers(static_cast<UINT32>(Count))) {
        Result.emplace_back(("Data/Models/Part" + std::to_string(Number * 7)).c_str());
    }
    return Result;
}

template <class S>
void StringEqual(benchmark::State& State) {
    const std::vector<S> All = Names<S>(100);
    const std::vector<S> Same = All;
    for (auto _ : State) {
        int Equal = 0;
        for (std::size_t i = 0; i < All.size(); ++i) {
            Equal += All[i] == Same[i];
            Equal += All[i] == Same[(i + 1) % Same.size()];
        }
        benchmark::DoNotOptimize(Equal);
    }
}

template <class S>
void StringOrder(benchmark::State& State) {
    const std::vector<S> All = Names<S>(100);
    for (auto _ : State) {
        int Less = 0;
        for (std::size_t i = 1; i < All.size(); ++i) {
            Less += All[i - 1] < All[i];
        }
        benchmark::DoNotOptimize(Less);
    }
}

BENCHMARK(StringBuild<GString, SHORT_TEXT>)->Name("string_build_short");
BENCHMARK(StringBuild<std::string, SHORT_TEXT>)->Name("std_string_build_short");
BENCHMARK(StringBuild<GString, LONG_TEXT>)->Name("string_build_long");
BENCHMARK(StringBuild<std::string, LONG_TEXT>)->Name("std_string_build_long");
BENCHMARK(StringCopy<GString, SHORT_TEXT>)->Name("string_copy_short");
BENCHMARK(StringCopy<std::string, SHORT_TEXT>)->Name("std_string_copy_short");
BENCHMARK(StringCopy<GString, LONG_TEXT>)->Name("string_copy_long");
BENCHMARK(StringCopy<std::string, LONG_TEXT>)->Name("std_string_copy_long");
BENCHMARK(StringAppend<GString>)->Name("string_append");
BENCHMARK(StringAppend<std::string>)->Name("std_string_append");
BENCHMARK(StringEqual<GString>)->Name("string_equal");
BENCHMARK(StringEqual<std::string>)->Name("std_string_equal");
BENCHMARK(StringOrder<GString>)->Name("string_order");
BENCHMARK(StringOrder<std::string>)->Name("std_string_order");

// ---- maps

template <class K, class V>
void Put(GMap<K, V>& Map, const K& Key, const V& Value) {
    Map.Insert(Key, Value);
}
template <class K, class V>
void Put(std::map<K, V>& Map, const K& Key, const V& Value) {
    Map.emplace(Key, Value);
}
template <class K, class V>
const V& Get(const GMap<K, V>& Map, const K& Key) {
    return Map.Find(Key)->value;
}
template <class K, class V>
const V& Get(const std::map<K, V>& Map, const K& Key) {
    return Map.find(Key)->second;
}
template <class K, class V>
bool Has(const GMap<K, V>& Map, const K& Key) {
    return Map.Find(Key) != nullptr;
}
template <class K, class V>
bool Has(const std::map<K, V>& Map, const K& Key) {
    return Map.find(Key) != Map.end();
}
template <class K, class V>
void TakeOut(GMap<K, V>& Map, const K& Key) {
    Map.Remove(Key);
}
template <class K, class V>
void TakeOut(std::map<K, V>& Map, const K& Key) {
    Map.erase(Key);
}
template <class K, class V>
V SumOf(const GMap<K, V>& Map) {
    V Sum = 0;
    for (typename GMap<K, V>::Iterator It(Map); It.Valid(); It.Next()) {
        Sum += It.Value();
    }
    return Sum;
}
template <class K, class V>
V SumOf(const std::map<K, V>& Map) {
    V Sum = 0;
    for (const auto& [Key, Value] : Map) {
        Sum += Value;
    }
    return Sum;
}

template <class K>
std::vector<K> Keys() {
    return Names<K>(MAP_SIZE);
}
template <>
std::vector<UINT32> Keys<UINT32>() {
    return ShuffledNumbers(MAP_SIZE);
}

template <class M, class K>
M FilledMap(const std::vector<K>& All) {
    M Map;
    for (const K& Key : All) {
        Put(Map, Key, 1);
    }
    return Map;
}

// Filling and emptying are timed apart. One map is too short for stopping the clock, so a batch of them is taken.
constexpr int MAP_BATCH = 32;

template <class M, class K>
void MapInsert(benchmark::State& State) {
    const std::vector<K> All = Keys<K>();
    std::vector<M> Maps(MAP_BATCH);
    for (auto _ : State) {
        for (M& Map : Maps) {
            for (const K& Key : All) {
                Put(Map, Key, 1);
            }
        }
        State.PauseTiming();
        for (M& Map : Maps) {
            Map = M();
        }
        State.ResumeTiming();
    }
}

template <class M, class K>
void MapRemove(benchmark::State& State) {
    const std::vector<K> All = Keys<K>();
    std::vector<M> Maps(MAP_BATCH);
    for (auto _ : State) {
        State.PauseTiming();
        for (M& Map : Maps) {
            Map = FilledMap<M>(All);
        }
        State.ResumeTiming();
        for (M& Map : Maps) {
            for (const K& Key : All) {
                TakeOut(Map, Key);
            }
        }
    }
}

template <class M, class K>
void MapFind(benchmark::State& State) {
    const std::vector<K> All = Keys<K>();
    const M Map = FilledMap<M>(All);
    for (auto _ : State) {
        int Sum = 0;
        for (const K& Key : All) {
            Sum += Get(Map, Key);
        }
        benchmark::DoNotOptimize(Sum);
    }
}

// Half of the keys looked for are not there.
template <class M, class K>
void MapFindAbsent(benchmark::State& State) {
    const std::vector<K> All = Keys<K>();
    const M Map = FilledMap<M>(std::vector<K>(All.begin(), All.begin() + MAP_SIZE / 2));
    for (auto _ : State) {
        int Found = 0;
        for (const K& Key : All) {
            Found += Has(Map, Key);
        }
        benchmark::DoNotOptimize(Found);
    }
}

template <class M, class K>
void MapIterate(benchmark::State& State) {
    const M Map = FilledMap<M>(Keys<K>());
    for (auto _ : State) {
        benchmark::DoNotOptimize(SumOf(Map));
    }
}

template <class M, class K>
void MapCopy(benchmark::State& State) {
    const M Map = FilledMap<M>(Keys<K>());
    for (auto _ : State) {
        M Copy(Map);
        benchmark::DoNotOptimize(Copy);
    }
}

// What operator[] adds to a Find: no standard container checks itself, so the reference is a walk over all entries.
void MapCheckTree(benchmark::State& State) {
    const auto Map = FilledMap<GMap<UINT32, int>>(Keys<UINT32>());
    for (auto _ : State) {
        Map.CheckTree();
        benchmark::ClobberMemory();
    }
}

BENCHMARK(MapInsert<GMap<UINT32, int>, UINT32>)->Name("map_insert");
BENCHMARK(MapInsert<std::map<UINT32, int>, UINT32>)->Name("std_map_insert");
BENCHMARK(MapRemove<GMap<UINT32, int>, UINT32>)->Name("map_remove");
BENCHMARK(MapRemove<std::map<UINT32, int>, UINT32>)->Name("std_map_remove");
BENCHMARK(MapFind<GMap<UINT32, int>, UINT32>)->Name("map_find");
BENCHMARK(MapFind<std::map<UINT32, int>, UINT32>)->Name("std_map_find");
BENCHMARK(MapFindAbsent<GMap<UINT32, int>, UINT32>)->Name("map_find_absent");
BENCHMARK(MapFindAbsent<std::map<UINT32, int>, UINT32>)->Name("std_map_find_absent");
BENCHMARK(MapIterate<GMap<UINT32, int>, UINT32>)->Name("map_iterate");
BENCHMARK(MapIterate<std::map<UINT32, int>, UINT32>)->Name("std_map_iterate");
BENCHMARK(MapCopy<GMap<UINT32, int>, UINT32>)->Name("map_copy");
BENCHMARK(MapCopy<std::map<UINT32, int>, UINT32>)->Name("std_map_copy");
BENCHMARK(MapInsert<GMap<GString, int>, GString>)->Name("text_map_insert");
BENCHMARK(MapInsert<std::map<std::string, int>, std::string>)->Name("std_text_map_insert");
BENCHMARK(MapRemove<GMap<GString, int>, GString>)->Name("text_map_remove");
BENCHMARK(MapRemove<std::map<std::string, int>, std::string>)->Name("std_text_map_remove");
BENCHMARK(MapFind<GMap<GString, int>, GString>)->Name("text_map_find");
BENCHMARK(MapFind<std::map<std::string, int>, std::string>)->Name("std_text_map_find");
BENCHMARK(MapCheckTree)->Name("map_check");

// ---- lists

template <class T>
void Append(GList<T>& List, const T& Value) {
    List.Append(Value);
}
template <class T>
void Append(std::list<T>& List, const T& Value) {
    List.push_back(Value);
}
template <class T>
auto FirstOf(GList<T>& List) {
    return List.first;
}
template <class T>
auto FirstOf(std::list<T>& List) {
    return List.begin();
}
template <class T>
void TakeOut(GList<T>& List, typename GList<T>::Node* Node) {
    List.Unlink(Node);
}
template <class T>
void TakeOut(std::list<T>& List, typename std::list<T>::iterator Node) {
    List.erase(Node);
}
int SumOf(const GList<int>& List) {
    int Sum = 0;
    for (const auto* Node = List.first; Node; Node = Node->next) {
        Sum += Node->obj;
    }
    return Sum;
}
int SumOf(const std::list<int>& List) {
    return std::accumulate(List.begin(), List.end(), 0);
}

template <class L>
L NumberedList() {
    L List;
    for (int i = 0; i < LIST_SIZE; ++i) {
        Append(List, i);
    }
    return List;
}

template <class L>
void ListAppend(benchmark::State& State) {
    for (auto _ : State) {
        L List = NumberedList<L>();
        benchmark::DoNotOptimize(List);
    }
}

// A list that stays short while nodes come and go, as the cells of the spatial grid do.
template <class L>
void ListUnlink(benchmark::State& State) {
    L List;
    for (int i = 0; i < 4; ++i) {
        Append(List, i);
    }
    for (auto _ : State) {
        Append(List, 1);
        TakeOut(List, FirstOf(List));
        benchmark::DoNotOptimize(List);
    }
}

template <class L>
void ListWalk(benchmark::State& State) {
    const L List = NumberedList<L>();
    for (auto _ : State) {
        benchmark::DoNotOptimize(SumOf(List));
    }
}

BENCHMARK(ListAppend<GList<int>>)->Name("list_append");
BENCHMARK(ListAppend<std::list<int>>)->Name("std_list_append");
BENCHMARK(ListUnlink<GList<int>>)->Name("list_unlink");
BENCHMARK(ListUnlink<std::list<int>>)->Name("std_list_unlink");
BENCHMARK(ListWalk<GList<int>>)->Name("list_walk");
BENCHMARK(ListWalk<std::list<int>>)->Name("std_list_walk");

} // namespace
