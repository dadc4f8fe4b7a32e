// The text of a level, any bytes: it is read, written, read and written again, and the two written texts are the same.
#include "world/LevelFile.h"

#include <cstddef>
#include <cstdint>

namespace {

struct SLevel {
    SLevelParams Params;
    GArray<SEntityDef> Defs;

    explicit SLevel(const GString& Text) {
        GString BadWord;
        const ELevelText Result = ReadLevelText(Text, Params, Defs, BadWord);
        if (Result == ELevelText::WrongType && Defs.count > 0) {
            __builtin_trap();
        }
    }

    GString Written() const {
        GString Out;
        WriteLevelText(Out, Params, Defs);
        return Out;
    }
};

// The writer cuts its pieces at fixed lengths: numbers with many digits and long names are lost there.
bool FitsThePieces(const GString& Written) {
    constexpr UINT32 LONGEST_FIELD = 30;
    UINT32 Length = 0;
    for (UINT32 i = 0, Lines = 0; i < Written.Length() && Lines < 3 && Length <= LONGEST_FIELD; ++i) {
        Length = Written[i] == ' ' || Written[i] == '\n' ? 0 : Length + 1;
        Lines += Written[i] == '\n';
    }
    return Length <= LONGEST_FIELD;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    GString Text;
    Text.Append(reinterpret_cast<const char*>(Bytes), static_cast<UINT32>(Size));
    const SLevel First(Text);
    const GString Written = First.Written();
    const SLevel Second(Written);
    if (FitsThePieces(Written) && (Second.Written() != Written || Second.Defs.count != First.Defs.count)) {
        __builtin_trap();
    }
    return 0;
}
