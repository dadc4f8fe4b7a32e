// GString: text that lies inside the object up to 31 characters and on the heap beyond.
//
// Ownership: a string owns its characters; assignment always copies. Once on the heap it stays there, however short it
// becomes, until Clear or the destructor.
// Lifetime: CStr holds until the string changes. Arguments may be the string itself or pointers into its text.
// Cost: no allocation for up to 31 characters, the length of most names; longer texts double their buffer as they grow.
// Text is bytes, always with a zero behind it. A zero may also stand inside (InsertChar, Append): it counts in Length,
// but the comparisons, which are those of strcmp, and the constructors from const char* end there.
// Bad input: an index or range outside of the text fails a check; a null const char* is an empty text.
#pragma once

#include "foundation/GCheck.h"
#include "foundation/Types.h"

#include <bit>
#include <compare>
#include <cstring>
#include <functional>
#include <string_view>

class GString {
public:
    // Bytes inside the object, the terminating zero included.
    static constexpr UINT32 INLINE_SIZE = 32;

    GString() { Inline[0] = 0; }
    GString(const char* Text) { Construct(Text, TextLength(Text)); }
    GString(const GString& Other) { Construct(Other.Cur, Other.count); }
    ~GString() { delete[] Data; }
    GString& operator=(const GString& Other);
    GString& operator=(const char* Text);

    const char* CStr() const { return Cur; }
    char* CStr() { return Cur; }
    UINT32 Length() const { return count; }
    UINT32 Size() const { return count; }
    bool Empty() const { return count == 0; }

    // A heap buffer of at least Bytes bytes, the terminating zero included. Grows at least by doubling.
    void Reserve(UINT32 Bytes);

    // Formats as printf does and cuts the result at MaxLength characters.
    void Format(UINT32 MaxLength, const char* Format, ...) __attribute__((format(printf, 3, 4)));

    GString& operator+=(const GString& Other);
    GString& operator+=(const char* Text);

    // Appends Bytes characters, zeros among them too.
    void Append(const char* Text, UINT32 Bytes);

    // Cuts the text to its first Characters characters.
    void Left(UINT32 Characters);

    // Becomes the Characters characters of Other from Offset.
    void Assign(const GString& Other, UINT32 Offset, UINT32 Characters);

    // Puts Character before the one at At; At == count appends.
    void InsertChar(UINT32 At, char Character);

    char& operator[](UINT32 At);
    const char& operator[](UINT32 At) const;

    void Clear();

    // Below 0, 0 or above 0, as strcmp. Made for walks through many texts, such as those of GMap.
    int Compare(const GString& Other) const;

    friend bool operator==(const GString& A, const GString& B) { return std::strcmp(A.Cur, B.Cur) == 0; }
    friend bool operator==(const GString& A, const char* B) { return std::strcmp(A.Cur, B) == 0; }
    friend std::strong_ordering operator<=>(const GString& A, const GString& B) {
        return std::strcmp(A.Cur, B.Cur) <=> 0;
    }
    friend std::strong_ordering operator<=>(const GString& A, const char* B) { return std::strcmp(A.Cur, B) <=> 0; }

    char* Data = nullptr;
    UINT32 Capacity = 0;
    UINT32 count = 0;
    char Inline[INLINE_SIZE];
    char* Cur = Inline;

private:
    static UINT32 TextLength(const char* Text) { return Text ? static_cast<UINT32>(std::strlen(Text)) : 0; }
    UINT32 Room() const { return Data ? Capacity : INLINE_SIZE; }
    void Construct(const char* Text, UINT32 Bytes);
    void AssignBytes(const char* Text, UINT32 Bytes);
    void AssignGrowing(const char* Text, UINT32 Bytes);
    void AppendGrowing(const char* Text, UINT32 Bytes);
    char* Enlarge(UINT32 Wanted);
    static UINT64 LoadWord(const char* Bytes);
    static UINT64 LowestBit(UINT64 Bits);
    void MakeRoom(UINT32 Characters);
    void CheckRange(UINT32 Offset, UINT32 Characters) const;
};

// The text as key of a standard hash map. Ends at the first zero, as the comparison does.
template <>
struct std::hash<GString> {
    std::size_t operator()(const GString& Text) const noexcept {
        return std::hash<std::string_view>()(std::string_view(Text.CStr()));
    }
};

inline void GString::Construct(const char* Text, UINT32 Bytes) {
    if (Bytes >= INLINE_SIZE) {
        Capacity = Bytes + 1;
        Data = Cur = new char[Capacity];
    }
    if (Bytes > 0) {
        std::memcpy(Cur, Text, Bytes);
    }
    Cur[Bytes] = 0;
    count = Bytes;
}

// Text may lie in this string's own buffer: it is then no longer than the buffer, so nothing is reallocated.
inline void GString::AssignBytes(const char* Text, UINT32 Bytes) {
    if (Bytes >= Room()) {
        AssignGrowing(Text, Bytes);
        return;
    }
    if (Bytes > 0) {
        std::memmove(Cur, Text, Bytes);
    }
    Cur[Bytes] = 0;
    count = Bytes;
}

inline void GString::Append(const char* Text, UINT32 Bytes) {
    if (count + Bytes >= Room()) {
        AppendGrowing(Text, Bytes);
        return;
    }
    if (Bytes > 0) {
        std::memcpy(Cur + count, Text, Bytes);
    }
    count += Bytes;
    Cur[count] = 0;
}

inline GString& GString::operator=(const GString& Other) {
    AssignBytes(Other.Cur, Other.count);
    return *this;
}

inline GString& GString::operator=(const char* Text) {
    if (Text != Cur) {
        AssignBytes(Text, TextLength(Text));
    }
    return *this;
}

inline GString& GString::operator+=(const GString& Other) {
    Append(Other.Cur, Other.count);
    return *this;
}

inline GString& GString::operator+=(const char* Text) {
    Append(Text, TextLength(Text));
    return *this;
}

inline char& GString::operator[](UINT32 At) {
    GCHECK(At < count, "at < count");
    return Cur[At];
}

inline const char& GString::operator[](UINT32 At) const {
    GCHECK(At < count, "at < count");
    return Cur[At];
}

// Eight bytes, the first of them as the lowest.
inline UINT64 GString::LoadWord(const char* Bytes) {
    UINT64 Word;
    std::memcpy(&Word, Bytes, sizeof(Word));
    return std::endian::native == std::endian::little ? Word : __builtin_bswap64(Word);
}

inline UINT64 GString::LowestBit(UINT64 Bits) {
    return Bits & (0 - Bits);
}

// What strcmp gives, by words, since both lengths are known. Keys of a map are mostly alike for their first words and
// lie all over the memory, where the library's function takes about three times as long.
inline int GString::Compare(const GString& Other) const {
    constexpr UINT64 LOW_BITS = 0x0101010101010101;
    constexpr UINT64 HIGH_BITS = 0x8080808080808080;
    constexpr UINT32 WORD = sizeof(UINT64);
    const UINT32 Bytes = (count < Other.count ? count : Other.count) + 1;
    if (Bytes < WORD) {
        return std::strcmp(Cur, Other.Cur);
    }
    // The last word may overlap the one before, so that no byte behind the text is read.
    const UINT32 LastAt = Bytes - WORD;
    UINT64 ZerosBefore = 0;
    UINT32 At = 0;
    UINT64 A = LoadWord(Cur);
    UINT64 B = LoadWord(Other.Cur);
    while (A == B) {
        if (At == LastAt) {
            return 0;
        }
        ZerosBefore |= (A - LOW_BITS) & ~A & HIGH_BITS;
        At = At + WORD < LastAt ? At + WORD : LastAt;
        A = LoadWord(Cur + At);
        B = LoadWord(Other.Cur + At);
    }
    // Texts that are alike up to a zero inside of both are equal, whatever follows it.
    const UINT64 Zeros = (A - LOW_BITS) & ~A & HIGH_BITS;
    if (ZerosBefore || (Zeros && LowestBit(Zeros) < LowestBit(A ^ B))) {
        return 0;
    }
    return __builtin_bswap64(A) < __builtin_bswap64(B) ? -1 : 1;
}
