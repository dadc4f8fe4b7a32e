// The text form of a level: a magic line and one definition a line.
//
//   WLMF
//   terrain file=Data/Terrain/Slope1.ter sx=1600.000000 ...
//   scene winda=0.000000 ... sky=Data/Textures/Sky/Day.png ...
//   entity FPSCamera ZAngle=1.500000 _POS=0.000000;3000.000000;700.000000
//
// Both functions work on text in memory and touch nothing else, so that a level can be read without being built.
// Cost: linear in the text. Fields may stand in any order; a field or line that occurs twice takes the last value.
// Bad input: malformed numbers are reported by the scanners and stored as their sentinels; a wrong magic or an unknown
// definition word ends the reading with the result below. What was read until then stays in the output arguments.
#pragma once

#include "world/LevelParams.h"

enum class ELevelText {
    Good,
    WrongType,       // the first word is not the magic
    WrongDefinition, // a line begins with a word that no definition has
};

// Reads Text into Params and Defs, which keep what the text does not name; Defs grows. With WrongDefinition, BadWord is
// the word that was found.
ELevelText ReadLevelText(const GString& Text, SLevelParams& Params, GArray<SEntityDef>& Defs, GString& BadWord);

// Appends the whole file's text to Out. Reading it again gives the same values but for the ambient colour and the ray
// power, and writing those the same bytes. An empty terrain or sky file or property leaves its field out, since an
// empty value would swallow the next field when it is read.
void WriteLevelText(GString& Out, const SLevelParams& Params, const GArray<SEntityDef>& Defs);
