// GArray<T>: a growable array.
//
// Ownership: the array owns its elements and its buffer; copies are deep. Only the elements below count live, the rest
// of the buffer is raw memory.
// Lifetime: pointers and references to elements hold until an operation needs a larger buffer, or moves the elements
// (Insert, Remove). Arguments may be elements of the array itself.
// Cost: elements move by copying, one at a time, so an array of strings reallocates with deep copies. Added one at a
// time, capacity runs 0, 1, 2, 4, 8 and on; Reserve and Resize take the number exactly. Only Clear gives memory back.
// Bad input: an index out of range fails a check.
//
// Huge arrays of empty elements: where all bytes zero are a valid T that owns nothing (GZeroIsEmpty<T>), Resize beyond
// the capacity takes memory that the system hands out as zeros and does not write to it, so that 8,000,000 empty lists
// cost neither time nor resident memory until they are used. Clear and the destructor still visit every element. An
// owner that has emptied all elements it ever used calls FreeEmpty instead, which visits none.
#pragma once

#include "foundation/GCheck.h"
#include "foundation/Types.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

// True if an object of type T whose bytes are all zero is a valid value that owns nothing, the same as T().
template <class T>
inline constexpr bool GZeroIsEmpty = false;

template <class T>
class GArray {
public:
    GArray() = default;
    GArray(const GArray& Other);
    ~GArray() { Clear(); }
    GArray& operator=(const GArray& Other);

    // Makes room for Wanted elements in all.
    void Reserve(UINT32 Wanted);

    // Puts Value before the element At; At == count appends.
    void Insert(UINT32 At, const T& Value);
    void Add(const T& Value);

    T& operator[](UINT32 At);
    const T& operator[](UINT32 At) const;

    // Takes out the elements From to To, both included.
    void Remove(UINT32 From, UINT32 To);

    // Cuts elements off the end, or adds T() there.
    void Resize(UINT32 NewCount);

    // Destroys all elements and frees the buffer.
    void Clear();

    // Clear without visiting the elements. The caller promises that every element is empty, that is, owns nothing.
    void FreeEmpty();

    UINT32 Size() const { return count; }

    T* begin() { return Data; }
    T* end() { return Data + count; }
    const T* begin() const { return Data; }
    const T* end() const { return Data + count; }

    T* Data = nullptr;
    UINT32 Capacity = 0;
    UINT32 count = 0;

private:
    static T* Allocate(UINT32 Elements);
    static void Free(T* Buffer);
    void CopyToEnd(const T* First, UINT32 Elements);
    void ReplaceBuffer(T* Buffer, UINT32 NewCapacity);
    void InsertGrowing(UINT32 At, const T& Value);
};

template <class T>
T* GArray<T>::Allocate(UINT32 Elements) {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "the buffer has the alignment of operator new[]");
    if constexpr (GZeroIsEmpty<T>) {
        // The one allocation that promises zeros without writing them: large ones come as fresh pages.
        void* Zeros = std::calloc(Elements, sizeof(T));
        if (!Zeros && Elements > 0) {
            std::abort();
        }
        return static_cast<T*>(Zeros);
    } else {
        return static_cast<T*>(::operator new[](Elements * sizeof(T)));
    }
}

template <class T>
void GArray<T>::Free(T* Buffer) {
    if constexpr (GZeroIsEmpty<T>) {
        std::free(Buffer);
    } else {
        ::operator delete[](Buffer);
    }
}

template <class T>
GArray<T>::GArray(const GArray& Other) {
    Reserve(Other.count);
    CopyToEnd(Other.Data, Other.count);
}

template <class T>
GArray<T>& GArray<T>::operator=(const GArray& Other) {
    if (this == &Other) {
        return *this;
    }
    if (Capacity < Other.count) {
        // Filled before the old elements go: Other may belong to one of them.
        T* Buffer = Allocate(Other.count);
        const UINT32 NewCount = Other.count;
        std::uninitialized_copy_n(Other.Data, NewCount, Buffer);
        ReplaceBuffer(Buffer, NewCount);
        count = NewCount;
        return *this;
    }
    const UINT32 Shared = count < Other.count ? count : Other.count;
    std::copy_n(Other.Data, Shared, Data);
    if (count > Shared) {
        std::destroy_n(Data + Shared, count - Shared);
        count = Shared;
    }
    CopyToEnd(Other.Data + Shared, Other.count - Shared);
    return *this;
}

template <class T>
void GArray<T>::CopyToEnd(const T* First, UINT32 Elements) {
    std::uninitialized_copy_n(First, Elements, Data + count);
    count += Elements;
}

// Destroys the elements with their buffer and goes on with Buffer.
template <class T>
void GArray<T>::ReplaceBuffer(T* Buffer, UINT32 NewCapacity) {
    std::destroy_n(Data, count);
    Free(Data);
    Data = Buffer;
    Capacity = NewCapacity;
}

template <class T>
void GArray<T>::Reserve(UINT32 Wanted) {
    if (Capacity >= Wanted) {
        return;
    }
    T* Buffer = Allocate(Wanted);
    std::uninitialized_copy_n(Data, count, Buffer);
    ReplaceBuffer(Buffer, Wanted);
}

// Insert where the buffer is full. The value is copied before the old buffer goes, since it may lie in there.
template <class T>
void GArray<T>::InsertGrowing(UINT32 At, const T& Value) {
    const UINT32 NewCapacity = Data ? Capacity * 2 : 1;
    const UINT32 Tail = count - At;
    T* Buffer = Allocate(NewCapacity);
    ::new (static_cast<void*>(Buffer + At)) T(Value);
    std::uninitialized_copy_n(Data, At, Buffer);
    std::uninitialized_copy_n(Data + At, Tail, Buffer + At + 1);
    ReplaceBuffer(Buffer, NewCapacity);
    ++count;
}

template <class T>
void GArray<T>::Insert(UINT32 At, const T& Value) {
    GCHECK(At <= count, "at <= count");
    if (count == Capacity) {
        InsertGrowing(At, Value);
        return;
    }
    if (At == count) {
        ::new (static_cast<void*>(Data + count)) T(Value);
        ++count;
        return;
    }
    const T Copy(Value);
    ::new (static_cast<void*>(Data + count)) T(Data[count - 1]);
    std::copy_backward(Data + At, Data + count - 1, Data + count);
    Data[At] = Copy;
    ++count;
}

template <class T>
void GArray<T>::Add(const T& Value) {
    // The count is read once and written last: else the compiler must read it again, as the new element may lie over
    // it.
    const UINT32 End = count;
    if (End == Capacity) {
        InsertGrowing(End, Value);
        return;
    }
    ::new (static_cast<void*>(Data + End)) T(Value);
    count = End + 1;
}

template <class T>
T& GArray<T>::operator[](UINT32 At) {
    GCHECK(At < count, "at < count");
    return Data[At];
}

template <class T>
const T& GArray<T>::operator[](UINT32 At) const {
    GCHECK(At < count, "at < count");
    return Data[At];
}

template <class T>
void GArray<T>::Remove(UINT32 From, UINT32 To) {
    GCHECK(From < count && To < count && From <= To, "from < count && to < count && from <= to");
    const UINT32 Gone = To - From + 1;
    std::copy(Data + To + 1, Data + count, Data + From);
    std::destroy_n(Data + count - Gone, Gone);
    count -= Gone;
}

template <class T>
void GArray<T>::Resize(UINT32 NewCount) {
    if (NewCount <= count) {
        std::destroy_n(Data + NewCount, count - NewCount);
    } else {
        const bool FreshBuffer = Capacity < NewCount;
        Reserve(NewCount);
        if (!GZeroIsEmpty<T> || !FreshBuffer) {
            std::uninitialized_value_construct_n(Data + count, NewCount - count);
        }
    }
    count = NewCount;
}

template <class T>
void GArray<T>::Clear() {
    std::destroy_n(Data, count);
    Free(Data);
    Data = nullptr;
    Capacity = 0;
    count = 0;
}

template <class T>
void GArray<T>::FreeEmpty() {
    static_assert(GZeroIsEmpty<T>, "only elements that own nothing while empty can be dropped unseen");
    Free(Data);
    Data = nullptr;
    Capacity = 0;
    count = 0;
}
