// The five words of a terrain file: any bytes give all of them, none empty or too long to be a path, or none.
#include "terrain/TerrainFile.h"

#include <cstddef>
#include <cstdint>

#include "platform/Platform.h"

static void CheckWord(const GString& Word) {
    G_WASSERT(!Word.Empty() && Word.Length() < PLAT_MAX_PATH);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    GString Text;
    Text.Append(reinterpret_cast<const char*>(Bytes), static_cast<UINT32>(Size));
    STerrainFile File;
    if (ParseTerrainFile("fuzz.ter", Text, File)) {
        CheckWord(File.Picture);
        for (const GString& Detail : File.Details) {
            CheckWord(Detail);
        }
    }
    return 0;
}
