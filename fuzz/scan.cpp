// The scanners on any bytes. Up to the first line feed the input says which calls to make, one letter each (see Step);
// the rest is the text that they read.
#include "foundation/Scan.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

void Require(bool Promise) {
    if (!Promise) {
        __builtin_trap();
    }
}

struct SScan {
    const GString& Text;
    INT32 Pos = 0;

    INT32 Length() const { return static_cast<INT32>(Text.Length()); }

    void Word(FCharClass Class) {
        const GString Found = F_ReadString(Pos, Text, Class);
        Require(F_Error == Found.Empty());
        for (UINT32 i = 0; i < Found.Length(); ++i) {
            Require(Class(Found[i]));
        }
    }

    void Number(bool Strict) {
        const float Value = F_ReadFloat(Pos, Text, Strict);
        Require(!F_Error || Value == F_BAD_FLOAT);
    }

    void Integer() {
        const INT32 Value = F_ReadInteger(Pos, Text);
        Require(!F_Error || Value == F_BAD_INTEGER);
    }

    void Char(char Wanted) {
        const INT32 Before = Pos;
        const int Found = F_CheckChar(Pos, Text, Wanted);
        Require(Found != static_cast<int>(F_Error));
        Require(Found ? Text[static_cast<UINT32>(Pos) - 1] == Wanted : Pos == Before);
    }

    void NextLine() {
        if (F_SkipLine(Pos, Text)) {
            Require(Text[static_cast<UINT32>(Pos) - 1] == '\n');
        } else {
            Require(Pos >= Length());
        }
    }

    void PrevLine() {
        if (F_PrevLine(Pos, Text)) {
            Require(Text[static_cast<UINT32>(Pos)] == '\n');
        } else {
            Require(Pos == -1);
        }
    }

    void Call(char Letter) {
        switch (Letter) {
        case 'f':
            return Number(false);
        case 'F':
            return Number(true);
        case 'i':
            return Integer();
        case 'a':
            return Word(F_IsAlpha);
        case 'n':
            return Word(F_IsName);
        case 'p':
            return Word(F_IsPrintable);
        case 'v':
            F_ReadVec4(Pos, Text);
            return;
        case 'b':
            F_SkipBlanks(Pos, Text);
            return;
        case 'l':
            return NextLine();
        case 'e':
            F_RestOfLineEmpty(Pos, Text);
            return;
        default:
            Char(Letter);
        }
    }

    // Every scanner but F_PrevLine goes forward, and none from inside of the text to behind it.
    void Step(char Letter) {
        const INT32 Before = Pos;
        if (Letter == 'u') {
            PrevLine();
        } else if (Letter == '<') {
            Pos -= 7;
        } else if (Letter == '>') {
            Pos += 7;
        } else {
            Call(Letter);
            Require(Pos >= Before && (Pos <= Length() || Pos == Before));
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    constexpr std::size_t MAX_CALLS = 64;
    const char* Input = reinterpret_cast<const char*>(Bytes);
    const void* LineFeed = Size ? std::memchr(Input, '\n', Size) : nullptr;
    if (!LineFeed) {
        return 0;
    }
    const std::size_t Calls = static_cast<std::size_t>(static_cast<const char*>(LineFeed) - Input);
    GString Text;
    Text.Append(Input + Calls + 1, static_cast<UINT32>(Size - Calls - 1));
    SScan Scan{Text};
    for (std::size_t i = 0; i < Calls && i < MAX_CALLS; ++i) {
        Scan.Step(Input[i]);
    }
    return 0;
}
