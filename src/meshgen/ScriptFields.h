// The key=value fields of a script line: a table of keys, and the forms that their values have.
//
// Every rolled value consumes one random number, in the order in which the fields stand. Bad numbers are reported by
// the scanners and go on as their sentinel; counts are cut to what an INT32 holds.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "foundation/Vector.h"

#include <cstddef>

enum class EFieldForm {
    Range,        // center;spread, rolled to a float
    WholeCount,   // rolled and rounded up to an INT32
    RoundedCount, // rolled and rounded to the nearest INT32, ties to even
    Pair,         // center;spread, kept as a Vec2
};

struct SScriptField {
    const char* Key;
    EFieldForm Form;
    std::size_t Offset; // of the target in the line's record
};

// The number that one roll of the range gives.
float RollRange(const Vec2& Range);

INT32 ReadWholeCount(INT32& Pos, const GString& Text);

// Reads the value of the field called Key into Record. False if the table lacks the key; nothing is read then.
bool ReadScriptField(const SScriptField* Table, UINT32 Count, const GString& Key, INT32& Pos, const GString& Text,
                     void* Record);

template <UINT32 COUNT>
bool ReadScriptField(const SScriptField (&Table)[COUNT], const GString& Key, INT32& Pos, const GString& Text,
                     void* Record) {
    return ReadScriptField(Table, COUNT, Key, Pos, Text, Record);
}
