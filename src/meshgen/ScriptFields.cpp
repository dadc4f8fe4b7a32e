#include "meshgen/ScriptFields.h"

#include "foundation/Scan.h"
#include "platform/Platform.h"

#include <cmath>

namespace {

INT32 ToCount(float Whole) {
    constexpr float MOST = 2147483520.0f; // the largest float that an INT32 holds
    return !(Whole > -MOST) ? static_cast<INT32>(-MOST) : static_cast<INT32>(Whole < MOST ? Whole : MOST);
}

void ReadValue(const SScriptField& Field, INT32& Pos, const GString& Text, void* Record) {
    void* Target = static_cast<char*>(Record) + Field.Offset;
    const Vec2 Range = F_ReadVec2(Pos, Text);
    switch (Field.Form) {
    case EFieldForm::Range:
        *static_cast<float*>(Target) = RollRange(Range);
        break;
    case EFieldForm::WholeCount:
        *static_cast<INT32*>(Target) = ToCount(std::ceil(RollRange(Range)));
        break;
    case EFieldForm::RoundedCount:
        *static_cast<INT32*>(Target) = ToCount(std::nearbyint(RollRange(Range)));
        break;
    case EFieldForm::Pair:
        *static_cast<Vec2*>(Target) = Range;
        break;
    }
}

} // namespace

float RollRange(const Vec2& Range) {
    return Range.x + Range.y * (2 * PlatRandUnit() - 1);
}

INT32 ReadWholeCount(INT32& Pos, const GString& Text) {
    return ToCount(std::ceil(RollRange(F_ReadVec2(Pos, Text))));
}

bool ReadScriptField(const SScriptField* Table, UINT32 Count, const GString& Key, INT32& Pos, const GString& Text,
                     void* Record) {
    for (UINT32 i = 0; i < Count; ++i) {
        if (Key == Table[i].Key) {
            ReadValue(Table[i], Pos, Text, Record);
            return true;
        }
    }
    return false;
}
