#include "world/LevelFile.h"

#include "foundation/Scan.h"

#include <cstdlib>

namespace {

const char* const LEVEL_MAGIC = "WLMF";

// Where a field's value goes. Of the three members the one that is set tells the type of the value.
struct SFieldKey {
    const char* Key;
    float SLevelParams::*Float = nullptr;
    INT32 SLevelParams::*Integer = nullptr;
    GString SLevelParams::*Text = nullptr;
};

const SFieldKey TERRAIN_KEYS[] = {
    {.Key = "file", .Text = &SLevelParams::TerrainFile},
    {.Key = "sx", .Float = &SLevelParams::SizeX},
    {.Key = "sy", .Float = &SLevelParams::SizeY},
    {.Key = "sz", .Float = &SLevelParams::SizeZ},
    {.Key = "random", .Integer = &SLevelParams::TerrainSeed},
};

const SFieldKey SCENE_KEYS[] = {
    {.Key = "winda", .Float = &SLevelParams::Wind_Angle},    {.Key = "windp", .Float = &SLevelParams::Wind_Pitch},
    {.Key = "windr", .Float = &SLevelParams::Wind_Speed},    {.Key = "grava", .Float = &SLevelParams::Gravity_Angle},
    {.Key = "gravp", .Float = &SLevelParams::Gravity_Pitch}, {.Key = "gravr", .Float = &SLevelParams::Gravity_Strength},
    {.Key = "lda", .Float = &SLevelParams::LightDir_Angle},  {.Key = "ldp", .Float = &SLevelParams::LightDir_Pitch},
    {.Key = "lcr", .Float = &SLevelParams::LightColor_R},    {.Key = "lcg", .Float = &SLevelParams::LightColor_G},
    {.Key = "lcb", .Float = &SLevelParams::LightColor_B},    {.Key = "cldam", .Float = &SLevelParams::CloudAmount},
    {.Key = "sky", .Text = &SLevelParams::SkyFile},          {.Key = "fcr", .Float = &SLevelParams::FogColor_R},
    {.Key = "fcg", .Float = &SLevelParams::FogColor_G},      {.Key = "fcb", .Float = &SLevelParams::FogColor_B},
    {.Key = "fdist", .Float = &SLevelParams::FogDist},       {.Key = "fexp", .Float = &SLevelParams::FogExp},
    {.Key = "skfam", .Float = &SLevelParams::SkyFog},        {.Key = "skfexp", .Float = &SLevelParams::SkyFogExp},
    {.Key = "cldst", .Float = &SLevelParams::ClipDist},
};

// The transform of a "geomesh" line is read and dropped.
const char* const GEOMESH_KEYS[] = {"x", "y", "z", "sx", "sy", "sz", "rx", "ry", "rz", "rw"};

// One walk over a level's text.
class CLevelReader {
public:
    CLevelReader(const GString& Text, SLevelParams& Params, GArray<SEntityDef>& Defs)
        : Text(Text), Params(Params), Defs(Defs) {}

    ELevelText Read(GString& BadWord) {
        if (F_ReadString(Pos, Text, F_IsAlpha) != LEVEL_MAGIC) {
            return ELevelText::WrongType;
        }
        F_SkipLine(Pos, Text);
        while (Pos < static_cast<INT32>(Text.Length())) {
            if (F_RestOfLineEmpty(Pos, Text)) {
                F_SkipLine(Pos, Text);
            }
            const GString Word = F_ReadString(Pos, Text, F_IsAlpha);
            if (!ReadDefinition(Word)) {
                BadWord = Word;
                return ELevelText::WrongDefinition;
            }
            F_SkipLine(Pos, Text);
        }
        return ELevelText::Good;
    }

private:
    bool ReadDefinition(const GString& Word) {
        if (Word == "terrain") {
            ReadFields(TERRAIN_KEYS, std::size(TERRAIN_KEYS));
        } else if (Word == "scene") {
            ReadFields(SCENE_KEYS, std::size(SCENE_KEYS));
        } else if (Word == "entity") {
            ReadEntity();
        } else if (Word == "geomesh") {
            ReadGeoMesh();
        } else {
            return false;
        }
        return true;
    }

    // An unknown key is passed with its "=" only: the scan for the next key's letters jumps over a numeric value.
    void ReadFields(const SFieldKey* Keys, std::size_t KeyCount) {
        while (!F_RestOfLineEmpty(Pos, Text)) {
            const GString Key = F_ReadString(Pos, Text, F_IsAlpha);
            F_CheckChar(Pos, Text, '=');
            for (std::size_t i = 0; i < KeyCount; ++i) {
                if (Key == Keys[i].Key) {
                    ReadValue(Keys[i]);
                    break;
                }
            }
        }
    }

    void ReadValue(const SFieldKey& Key) {
        if (Key.Float) {
            Params.*Key.Float = F_ReadFloat(Pos, Text, true);
        } else if (Key.Integer) {
            Params.*Key.Integer = F_ReadInteger(Pos, Text);
        } else {
            Params.*Key.Text = F_ReadString(Pos, Text, F_IsPrintable);
        }
    }

    void ReadEntity() {
        SEntityDef Def;
        Def.ClassName = F_ReadString(Pos, Text, F_IsName);
        while (!F_RestOfLineEmpty(Pos, Text)) {
            const GString Key = F_ReadString(Pos, Text, F_IsName);
            F_CheckChar(Pos, Text, '=');
            const GString Value = F_ReadString(Pos, Text, F_IsPrintable);
            Def.Properties.Insert(Key, Value)->value = Value;
            if (Key == "x") {
                Def.Position.x = static_cast<float>(std::atof(Value.CStr()));
            } else if (Key == "y") {
                Def.Position.y = static_cast<float>(std::atof(Value.CStr()));
            } else if (Key == "z") {
                Def.Position.z = static_cast<float>(std::atof(Value.CStr()));
            }
        }
        Defs.Add(Def);
    }

    void ReadGeoMesh() {
        Params.GeoMeshes.Add(F_ReadString(Pos, Text, F_IsPrintable));
        while (!F_RestOfLineEmpty(Pos, Text)) {
            const GString Key = F_ReadString(Pos, Text, F_IsAlpha);
            F_CheckChar(Pos, Text, '=');
            for (const char* Known : GEOMESH_KEYS) {
                if (Key == Known) {
                    F_ReadFloat(Pos, Text, true);
                    break;
                }
            }
        }
    }

    const GString& Text;
    SLevelParams& Params;
    GArray<SEntityDef>& Defs;
    INT32 Pos = 0;
};

// "key=text ", or nothing for an empty text.
GString TextField(const char* Key, const GString& Value) {
    GString Field;
    if (Value.Length() > 0) {
        Field = Key;
        Field += "=";
        Field += Value;
        Field += " ";
    }
    return Field;
}

void WriteTerrain(GString& Out, const SLevelParams& P) {
    GString Line;
    Line.Format(2048, "terrain %ssx=%f sy=%f sz=%f random=%d\n", TextField("file", P.TerrainFile).CStr(), P.SizeX,
                P.SizeY, P.SizeZ, P.TerrainSeed);
    Out += Line;
}

void WriteScene(GString& Out, const SLevelParams& P) {
    constexpr int SHORT_PIECE = 128;
    GString Piece;
    Piece.Format(SHORT_PIECE, "scene winda=%f windp=%f windr=%f ", P.Wind_Angle, P.Wind_Pitch, P.Wind_Speed);
    Out += Piece;
    Piece.Format(SHORT_PIECE, "grava=%f gravp=%f gravr=%f ", P.Gravity_Angle, P.Gravity_Pitch, P.Gravity_Strength);
    Out += Piece;
    Piece.Format(SHORT_PIECE, "lda=%f ldp=%f ", P.LightDir_Angle, P.LightDir_Pitch);
    Out += Piece;
    Piece.Format(SHORT_PIECE, "lcr=%f lcg=%f lcb=%f ", P.LightColor_R, P.LightColor_G, P.LightColor_B);
    Out += Piece;
    Piece.Format(512, "cldam=%f %sraypwr=%f ", P.CloudAmount, TextField("sky", P.SkyFile).CStr(), P.RayPower);
    Out += Piece;
    Piece.Format(SHORT_PIECE, "fcr=%f fcg=%f fcb=%f ", P.FogColor_R, P.FogColor_G, P.FogColor_B);
    Out += Piece;
    Piece.Format(256, "fdist=%f fexp=%f skfam=%f skfexp=%f cldst=%f\n", P.FogDist, P.FogExp, P.SkyFog, P.SkyFogExp,
                 P.ClipDist);
    Out += Piece;
}

void WriteEntity(GString& Out, const SEntityDef& Def) {
    Out += "entity ";
    Out += Def.ClassName;
    for (GMap<GString, GString>::Iterator It(Def.Properties); It.Valid(); It.Next()) {
        if (It.Value().Empty()) {
            continue;
        }
        Out += " ";
        Out += It.Key();
        Out += "=";
        Out += It.Value();
    }
    Out += "\n";
}

} // namespace

ELevelText ReadLevelText(const GString& Text, SLevelParams& Params, GArray<SEntityDef>& Defs, GString& BadWord) {
    return CLevelReader(Text, Params, Defs).Read(BadWord);
}

void WriteLevelText(GString& Out, const SLevelParams& Params, const GArray<SEntityDef>& Defs) {
    Out += LEVEL_MAGIC;
    Out += "\n";
    WriteTerrain(Out, Params);
    WriteScene(Out, Params);
    for (const SEntityDef& Def : Defs) {
        WriteEntity(Out, Def);
    }
}
