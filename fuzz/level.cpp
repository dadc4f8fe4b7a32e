// The text of a level, any bytes: it is read, written, read and written again, and the two written texts are the same.
#include "world/LevelFile.h"

#include <cmath>
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

    // The writer cuts its pieces at fixed lengths: numbers with many digits and long names are lost there.
    bool FitsThePieces() const {
        constexpr float LARGEST = 1e9f;
        constexpr UINT32 LONGEST_NAME = 400;
        const SLevelParams& P = Params;
        for (const float Value :
             {P.SizeX,        P.SizeY,        P.SizeZ,         P.LightDir_Angle, P.LightDir_Pitch,  P.LightColor_R,
              P.LightColor_G, P.LightColor_B, P.CloudAmount,   P.FogColor_R,     P.FogColor_G,      P.FogColor_B,
              P.FogDist,      P.FogExp,       P.SkyFog,        P.SkyFogExp,      P.ClipDist,        P.Wind_Angle,
              P.Wind_Pitch,   P.Wind_Speed,   P.Gravity_Angle, P.Gravity_Pitch,  P.Gravity_Strength}) {
            if (!(std::fabs(Value) < LARGEST)) {
                return false;
            }
        }
        return P.TerrainFile.Length() < LONGEST_NAME && P.SkyFile.Length() < LONGEST_NAME;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    GString Text;
    Text.Append(reinterpret_cast<const char*>(Bytes), static_cast<UINT32>(Size));
    const SLevel First(Text);
    const GString Written = First.Written();
    const SLevel Second(Written);
    if (First.FitsThePieces() && (Second.Written() != Written || Second.Defs.count != First.Defs.count)) {
        __builtin_trap();
    }
    return 0;
}
