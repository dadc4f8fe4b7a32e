#include "foundation/Scan.h"

#include "foundation/Diagnostics.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

UINT32 F_Error = 0;

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\n' || c == '\t';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsFloatChar(char c) {
    return IsDigit(c) || c == '.' || c == ',' || c == '-';
}

bool IsIntegerChar(char c) {
    return IsDigit(c) || c == '-';
}

INT32 End(const GString& Text) {
    return static_cast<INT32>(Text.Length());
}

GString Part(const GString& Text, INT32 From, INT32 To) {
    GString Result;
    Result.Assign(Text, static_cast<UINT32>(From), static_cast<UINT32>(To - From));
    return Result;
}

void Fail() {
    F_Error = 1;
}

// What a number of one kind is made of, and what is said when there is none.
struct SNumberForm {
    bool (*IsPart)(char);
    const char* AtEnd;
    const char* BadChar;
    const char* PastEnd;
};

// Reads the characters of a number into Number. EndsEarly lets a foreign character end it. False, after the message, if
// there is no number.
bool ReadNumber(INT32& Pos, const GString& Text, const SNumberForm& Form, bool EndsEarly, GString& Number) {
    F_Error = 0;
    Pos = std::max(Pos, 0);
    const INT32 Length = End(Text);
    const char* Chars = Text.CStr();
    if (Pos > Length) {
        LogPrintf("%s", Form.PastEnd);
        Fail();
        return false;
    }
    while (Pos < Length && IsBlank(Chars[Pos])) {
        ++Pos;
    }
    const INT32 Start = Pos;
    while (Pos < Length && Form.IsPart(Chars[Pos])) {
        ++Pos;
    }
    const bool Collected = Pos > Start;
    if (Pos == Length && !Collected) {
        LogPrintf("%s", Form.AtEnd);
        Fail();
        return false;
    }
    if (Pos < Length && !IsBlank(Chars[Pos]) && !(EndsEarly && Collected)) {
        LogPrintf(Form.BadChar, Chars[Pos]);
        Fail();
        return false;
    }
    Number = Part(Text, Start, Pos);
    return true;
}

} // namespace

float F_ReadFloat(INT32& Pos, const GString& Text, bool Strict) {
    static constexpr SNumberForm FORM = {IsFloatChar, "F_ReadFloat: Float not found, reached end of string\n",
                                         "F_ReadFloat: Unexpected character found: %c\n",
                                         "F_ReadFloat: Float not found\n"};
    GString Number;
    if (!ReadNumber(Pos, Text, FORM, !Strict, Number)) {
        return F_BAD_FLOAT;
    }
    return static_cast<float>(std::atof(Number.CStr()));
}

INT32 F_ReadInteger(INT32& Pos, const GString& Text) {
    static constexpr SNumberForm FORM = {IsIntegerChar, "F_ReadInteger: Integer not found, reached end of string\n",
                                         "F_ReadInteger: Unexpected character found: %c\n",
                                         "F_ReadInteger: Integer not found\n"};
    GString Number;
    if (!ReadNumber(Pos, Text, FORM, false, Number)) {
        return F_BAD_INTEGER;
    }
    const long Value = std::strtol(Number.CStr(), nullptr, 10);
    return static_cast<INT32>(std::clamp(Value, static_cast<long>(INT32_MIN), static_cast<long>(INT32_MAX)));
}

// The character tests of the library take values of unsigned char, and a text may hold any byte.
bool F_IsAlpha(char c) {
    return std::isalpha(static_cast<unsigned char>(c));
}

bool F_IsName(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

bool F_IsPrintable(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || std::ispunct(static_cast<unsigned char>(c)) || c == '_';
}

GString F_ReadString(INT32& Pos, const GString& Text, FCharClass Class) {
    F_Error = 0;
    Pos = std::max(Pos, 0);
    const INT32 Length = End(Text);
    const char* Chars = Text.CStr();
    const auto Belongs = [Class](char c) { return !IsBlank(c) && Class(c); };
    if (Pos > Length) {
        LogPrintf("F_ReadString: String not found\n");
        Fail();
        return {};
    }
    while (Pos < Length && !Belongs(Chars[Pos])) {
        ++Pos;
    }
    if (Pos == Length) {
        LogPrintf("F_ReadString: String not found, reached end of string\n");
        Fail();
        return {};
    }
    const INT32 Start = Pos;
    while (Pos < Length && Belongs(Chars[Pos])) {
        ++Pos;
    }
    return Part(Text, Start, Pos);
}

int F_CheckChar(INT32& Pos, const GString& Text, char Wanted) {
    F_Error = 0;
    const INT32 At = std::max(Pos, 0);
    if (At >= End(Text)) {
        LogPrintf("F_CheckChar: Char not found, reached end of string\n");
        Fail();
        return 0;
    }
    const char Found = Text.CStr()[At];
    if (Found != Wanted) {
        LogPrintf("F_CheckChar: Right char not found, got this instead: %c\n", Found);
        Fail();
        return 0;
    }
    Pos = At + 1;
    return 1;
}

namespace {

void ReadFloats(INT32& Pos, const GString& Text, float* Values, int Count) {
    for (int i = 0; i < Count; ++i) {
        if (i > 0) {
            F_CheckChar(Pos, Text, ';');
        }
        Values[i] = F_ReadFloat(Pos, Text, false);
    }
}

} // namespace

Vec2 F_ReadVec2(INT32& Pos, const GString& Text) {
    float v[2];
    ReadFloats(Pos, Text, v, 2);
    return {v[0], v[1]};
}

Vec3 F_ReadVec3(INT32& Pos, const GString& Text) {
    float v[3];
    ReadFloats(Pos, Text, v, 3);
    return {v[0], v[1], v[2]};
}

Vec4 F_ReadVec4(INT32& Pos, const GString& Text) {
    float v[4];
    ReadFloats(Pos, Text, v, 4);
    return {v[0], v[1], v[2], v[3]};
}

int F_SkipBlanks(INT32& Pos, const GString& Text) {
    Pos = std::max(Pos, 0);
    const char* Chars = Text.CStr();
    while (Pos < End(Text) && (IsBlank(Chars[Pos]) || Chars[Pos] == '\r')) {
        ++Pos;
    }
    return 1;
}

int F_SkipLine(INT32& Pos, const GString& Text) {
    Pos = std::max(Pos, 0);
    const char* Chars = Text.CStr();
    while (Pos < End(Text)) {
        if (Chars[Pos++] == '\n') {
            return 1;
        }
    }
    return 0;
}

int F_PrevLine(INT32& Pos, const GString& Text) {
    Pos = std::clamp(Pos, -1, End(Text));
    const char* Chars = Text.CStr();
    while (Pos > -1) {
        --Pos;
        if (Pos > -1 && Chars[Pos] == '\n') {
            return 1;
        }
    }
    return 0;
}

int F_RestOfLineEmpty(INT32 Pos, const GString& Text) {
    const char* Chars = Text.CStr();
    for (INT32 i = std::max(Pos, 0); i < End(Text) && Chars[i] != '\n'; ++i) {
        if (Chars[i] != ' ' && Chars[i] != '\t') {
            return 0;
        }
    }
    return 1;
}
