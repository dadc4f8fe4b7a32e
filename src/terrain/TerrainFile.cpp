#include "terrain/TerrainFile.h"

#include <cctype>

#include "foundation/Diagnostics.h"
#include "platform/Platform.h"

namespace {

constexpr INT32 WORDS = 1 + TERRAIN_DETAILS;

// A longer word cannot be a path.
constexpr UINT32 MAX_WORD = PLAT_MAX_PATH - 1;

bool IsBlank(const GString& Text, UINT32 Pos) {
    return std::isspace(static_cast<unsigned char>(Text.CStr()[Pos])) != 0;
}

struct SWord {
    UINT32 Start;
    UINT32 Length; // 0 at the end of the text
};

SWord FindWord(const GString& Text, UINT32 Pos) {
    while (Pos < Text.Length() && IsBlank(Text, Pos)) {
        Pos++;
    }
    const UINT32 Start = Pos;
    while (Pos < Text.Length() && !IsBlank(Text, Pos)) {
        Pos++;
    }
    return {Start, Pos - Start};
}

} // namespace

INT32 ParseTerrainFile(const char* Path, const GString& Text, STerrainFile& Out) {
    UINT32 Pos = 0;
    for (INT32 i = 0; i < WORDS; i++) {
        const SWord Word = FindWord(Text, Pos);
        if (Word.Length == 0) {
            LogPrintf("Terrain file \"%s\" has %d words, it needs %d\n", Path, i, WORDS);
            return 0;
        }
        if (Word.Length > MAX_WORD) {
            LogPrintf("Terrain file \"%s\": word %d is longer than %u characters\n", Path, i + 1, MAX_WORD);
            return 0;
        }
        GString& Place = i == 0 ? Out.Picture : Out.Details[i - 1];
        Place.Assign(Text, Word.Start, Word.Length);
        Pos = Word.Start + Word.Length;
    }
    return 1;
}
