// The terrain file: five words between blanks. They name the height picture and the four detail textures.
//
// Nothing is opened here; the words are paths, used unchanged. Words behind the fifth are ignored.
// Bad input: fewer than five words, or a word longer than any path can be, print one line that names the file.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

constexpr UINT32 TERRAIN_DETAILS = 4;

struct STerrainFile {
    GString Picture;
    GString Details[TERRAIN_DETAILS]; // DetailMap, DetailMapN, DetailMap2, DetailMap2N
};

// Path is for the message only. 1 if all five words are there, else 0 after the message.
INT32 ParseTerrainFile(const char* Path, const GString& Text, STerrainFile& Out);
