#include "foundation/GString.h"

#include <cstdarg>
#include <cstdio>
#include <memory>

// Moves the text to a heap buffer of at least Wanted bytes. The result is the old heap buffer or null; the caller frees
// it when it is done with arguments that may point into it.
char* GString::Enlarge(UINT32 Wanted) {
    const UINT32 NewCapacity = Wanted > Capacity * 2 ? Wanted : Capacity * 2;
    char* Buffer = new char[NewCapacity];
    std::memcpy(Buffer, Cur, count);
    Buffer[count] = 0;
    char* Old = Data;
    Data = Cur = Buffer;
    Capacity = NewCapacity;
    return Old;
}

void GString::Reserve(UINT32 Bytes) {
    if (Capacity < Bytes) {
        delete[] Enlarge(Bytes > count ? Bytes : count + 1);
    }
}

void GString::MakeRoom(UINT32 Characters) {
    if (Characters >= Room()) {
        Reserve(Characters + 1);
    }
}

void GString::AssignGrowing(const char* Text, UINT32 Bytes) {
    count = 0;
    char* Old = Enlarge(Bytes + 1);
    std::memcpy(Data, Text, Bytes);
    Data[Bytes] = 0;
    count = Bytes;
    delete[] Old;
}

void GString::AppendGrowing(const char* Text, UINT32 Bytes) {
    char* Old = Enlarge(count + Bytes + 1);
    std::memcpy(Data + count, Text, Bytes);
    count += Bytes;
    Data[count] = 0;
    delete[] Old;
}

void GString::Format(UINT32 MaxLength, const char* Format, ...) {
    // Formatted beside the buffer first, since the arguments may point into it.
    constexpr UINT32 STACK_SIZE = 1024;
    char Stack[STACK_SIZE];
    std::unique_ptr<char[]> Heap;
    char* Text = Stack;
    if (MaxLength >= STACK_SIZE) {
        Heap.reset(new char[MaxLength + 1]);
        Text = Heap.get();
    }
    va_list Arguments;
    va_start(Arguments, Format);
    const int Result = std::vsnprintf(Text, MaxLength + 1, Format, Arguments);
    va_end(Arguments);
    MakeRoom(MaxLength);
    AssignBytes(Text, Result < 0 ? 0 : TextLength(Text));
    Cur[MaxLength] = 0;
}

void GString::CheckRange(UINT32 Offset, UINT32 Characters) const {
    GCHECK(Offset < count + 1 && Characters < count + 1 && Offset + Characters < count + 1,
           "off < count + 1 && size < count + 1 && off + size < count + 1");
}

void GString::Left(UINT32 Characters) {
    CheckRange(0, Characters);
    count = Characters;
    Cur[count] = 0;
}

void GString::Assign(const GString& Other, UINT32 Offset, UINT32 Characters) {
    Other.CheckRange(Offset, Characters);
    AssignBytes(Other.Cur + Offset, Characters);
}

void GString::InsertChar(UINT32 At, char Character) {
    GCHECK(At <= count, "af <= count");
    MakeRoom(count + 1);
    std::memmove(Cur + At + 1, Cur + At, count - At + 1);
    Cur[At] = Character;
    ++count;
}

void GString::Clear() {
    delete[] Data;
    Data = nullptr;
    Capacity = 0;
    count = 0;
    Cur = Inline;
    Inline[0] = 0;
}
