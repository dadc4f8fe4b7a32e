// GCombSort: sorts a range of a GArray in place.
//
// The order comes from the caller: OutOfOrder(Lower, Upper) is true if two elements in this order must be swapped. It
// must be false for equal elements. The sort is not stable: equal elements may change their order among themselves.
// Lifetime: a GArrayIterator is an array and an index, so it survives reallocation; the array must outlive it.
// Cost: about n log n comparisons, no memory. Elements are swapped by copying.
// Bad input: comparing iterators of two arrays, or reading outside of the array, fails a check.
#pragma once

#include "foundation/GArray.h"
#include "foundation/GCheck.h"
#include "foundation/Types.h"

#include <utility>

template <class T>
class GArrayIterator {
public:
    GArrayIterator(GArray<T>& Array, UINT32 Index) : cnt(&Array), at(Index) {}

    T& operator*() const { return (*cnt)[at]; }
    GArrayIterator& operator++() {
        ++at;
        return *this;
    }
    GArrayIterator operator+(UINT32 Steps) const { return GArrayIterator(*cnt, at + Steps); }
    UINT32 operator-(const GArrayIterator& Other) const {
        CheckSameArray(Other);
        return at - Other.at;
    }
    bool operator==(const GArrayIterator& Other) const {
        CheckSameArray(Other);
        return at == Other.at;
    }

    GArray<T>* cnt;
    UINT32 at;

private:
    void CheckSameArray(const GArrayIterator& Other) const { GCHECK(cnt == Other.cnt, "cnt == other.cnt"); }
};

// The gap shrinks by this factor from pass to pass. Which factor decides the order of equal elements.
constexpr double COMB_SHRINK = 1.247330950103979;

template <class T, class FOutOfOrder>
void GCombSort(GArrayIterator<T> First, GArrayIterator<T> Last, FOutOfOrder OutOfOrder) {
    UINT32 Gap = Last - First;
    for (bool Swapped = true; Gap > 1 || Swapped;) {
        if (Gap > 1) {
            Gap = static_cast<UINT32>(Gap / COMB_SHRINK);
        }
        Swapped = false;
        GArrayIterator<T> Lower = First;
        for (GArrayIterator<T> Upper = First + Gap; Upper != Last; ++Upper, ++Lower) {
            if (OutOfOrder(std::as_const(*Lower), std::as_const(*Upper))) {
                std::swap(*Lower, *Upper);
                Swapped = true;
            }
        }
    }
}

// Sorts the whole array.
template <class T, class FOutOfOrder>
void GCombSort(GArray<T>& Array, FOutOfOrder OutOfOrder) {
    GCombSort(GArrayIterator<T>(Array, 0), GArrayIterator<T>(Array, Array.Size()), OutOfOrder);
}
