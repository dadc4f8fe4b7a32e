// The scanners on any bytes. Up to the first line feed the input says which calls to make, one letter each (see Step);
// the rest is the text that they read.
#include "foundation/Scan.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t MAX_CALLS = 64;

void Require(bool Promise) {
    if (!Promise) {
        __builtin_trap();
    }
}

void Call(char Letter, INT32& Pos, const GString& Text) {
    switch (Letter) {
    case 'f':
    case 'F':
        Require(F_ReadFloat(Pos, Text, Letter == 'F') == F_BAD_FLOAT || !F_Error);
        return;
    case 'i':
        Require(F_ReadInteger(Pos, Text) == F_BAD_INTEGER || !F_Error);
        return;
    case 'a':
    case 'n':
    case 'p':
        Require(F_ReadString(Pos, Text,
                             Letter == 'a'   ? F_IsAlpha
                             : Letter == 'n' ? F_IsName
                                             : F_IsPrintable)
                    .Empty() == F_Error);
        return;
    case 'v':
        F_ReadVec4(Pos, Text);
        return;
    case 'b':
        F_SkipBlanks(Pos, Text);
        return;
    case 'l':
        Require(!F_SkipLine(Pos, Text) || Text[static_cast<UINT32>(Pos) - 1] == '\n');
        return;
    case 'e':
        F_RestOfLineEmpty(Pos, Text);
        return;
    default:
        Require(F_CheckChar(Pos, Text, Letter) != static_cast<int>(F_Error));
    }
}

// Every scanner but F_PrevLine goes forward, and none from inside of the text to behind it.
void Step(char Letter, INT32& Pos, const GString& Text) {
    const INT32 Before = Pos;
    if (Letter == 'u') {
        Require(F_PrevLine(Pos, Text) ? Text[static_cast<UINT32>(Pos)] == '\n' : Pos == -1);
    } else if (Letter == '<' || Letter == '>') {
        Pos += Letter == '<' ? -7 : 7;
    } else {
        Call(Letter, Pos, Text);
        Require(Pos >= Before && (Pos <= static_cast<INT32>(Text.Length()) || Pos == Before));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    const char* Input = reinterpret_cast<const char*>(Bytes);
    const void* LineFeed = Size ? std::memchr(Input, '\n', Size) : nullptr;
    if (LineFeed) {
        const std::size_t Calls = static_cast<std::size_t>(static_cast<const char*>(LineFeed) - Input);
        GString Text;
        Text.Append(Input + Calls + 1, static_cast<UINT32>(Size - Calls - 1));
        INT32 Pos = 0;
        for (std::size_t i = 0; i < Calls && i < MAX_CALLS; ++i) {
            Step(Input[i], Pos, Text);
        }
    }
    return 0;
}
