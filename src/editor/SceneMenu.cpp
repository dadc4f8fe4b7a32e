#include "editor/SceneMenu.h"

#include "editor/Rows.h"
#include "world/GameLevel.h"

namespace {

struct SSceneRow {
    UINT32 Id;
    const char* Label;
    float SLevelParams::*Value;
    float Min, Max;
};

// Colours may be brighter than white. A distance stays clear of 0 and an exponent too: the fog divides by them.
constexpr float BRIGHTEST = 10;
constexpr float SHORTEST = 10;
constexpr float SMALLEST_EXPONENT = 0.01f;
constexpr float LARGEST_EXPONENT = 100;

constexpr SSceneRow ROWS[] = {
    {1038, "LightDir_Angle", &SLevelParams::LightDir_Angle, -NO_LIMIT, NO_LIMIT},
    {1039, "LightDir_Pitch", &SLevelParams::LightDir_Pitch, -NO_LIMIT, NO_LIMIT},
    {1041, "LightColor_R", &SLevelParams::LightColor_R, 0, BRIGHTEST},
    {1042, "LightColor_G", &SLevelParams::LightColor_G, 0, BRIGHTEST},
    {1043, "LightColor_B", &SLevelParams::LightColor_B, 0, BRIGHTEST},
    {1045, "AmbientColor_R", &SLevelParams::AmbientColor_R, 0, BRIGHTEST},
    {1046, "AmbientColor_G", &SLevelParams::AmbientColor_G, 0, BRIGHTEST},
    {1047, "AmbientColor_B", &SLevelParams::AmbientColor_B, 0, BRIGHTEST},
    {1049, "CloudAmount", &SLevelParams::CloudAmount, 0, 1},
    {1050, "RayPower", &SLevelParams::RayPower, 0, 1},
    {1051, "FogColor_R", &SLevelParams::FogColor_R, 0, BRIGHTEST},
    {1052, "FogColor_G", &SLevelParams::FogColor_G, 0, BRIGHTEST},
    {1053, "FogColor_B", &SLevelParams::FogColor_B, 0, BRIGHTEST},
    {1054, "FogDist", &SLevelParams::FogDist, SHORTEST, NO_LIMIT},
    {1055, "FogExp", &SLevelParams::FogExp, SMALLEST_EXPONENT, LARGEST_EXPONENT},
    {1056, "SkyFog", &SLevelParams::SkyFog, 0, 1},
    {1057, "SkyFogExp", &SLevelParams::SkyFogExp, SMALLEST_EXPONENT, LARGEST_EXPONENT},
    {1058, "ClipDist", &SLevelParams::ClipDist, SHORTEST, NO_LIMIT},
    {1060, "Wind_Angle", &SLevelParams::Wind_Angle, -NO_LIMIT, NO_LIMIT},
    {1061, "Wind_Pitch", &SLevelParams::Wind_Pitch, -NO_LIMIT, NO_LIMIT},
    {1062, "Wind_Speed", &SLevelParams::Wind_Speed, -NO_LIMIT, NO_LIMIT},
    {1063, "Gravity_Angle", &SLevelParams::Gravity_Angle, -NO_LIMIT, NO_LIMIT},
    {1064, "Gravity_Pitch", &SLevelParams::Gravity_Pitch, -NO_LIMIT, NO_LIMIT},
    {1065, "Gravity_Strength", &SLevelParams::Gravity_Strength, -NO_LIMIT, NO_LIMIT},
};

} // namespace

void SMenu_Scene::GetOpName(GString* Out, INT32 Op) {
    *Out = Op == 1 ? "Change sky texture" : NO_OP_NAME;
}

void SMenu_Scene::Update(float) {
    for (const SSceneRow& Row : ROWS) {
        Level->FloatRow(Row.Id, Row.Label, &(Level->Params.*Row.Value), Row.Min, Row.Max);
    }
}
