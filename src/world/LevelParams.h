// What a level file says, held in memory: the parameters of its "terrain" and "scene" lines and its list of entities.
//
// Plain values without behaviour, owned by the level. Members that the editor shows carry the name that it shows.
// Angles are radians, lengths world units, colours 0 to 1. Wind, gravity and light directions are spherical triples
// (angle round Z, pitch from +Z, radius) as M_Spherical takes them; the light's angles are relative to gravity.
// A value that a file does not give keeps the default written here. A malformed number in a file is stored as the
// scanners' sentinel (the largest float or integer): nothing here checks a range.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"

struct SLevelParams {
    GString TerrainFile;
    float SizeX = 0; // half sizes of the terrain in X and Y, its full height in Z
    float SizeY = 0;
    float SizeZ = 0;
    INT32 TerrainSeed = 1337;

    GArray<GString> GeoMeshes; // descriptors that the level's build tries and drops; never written

    float LightDir_Angle = 0;
    float LightDir_Pitch = 0;
    float LightIntensity = 1; // the radius of the light direction; no file key
    float LightColor_R = 1;
    float LightColor_G = 1;
    float LightColor_B = 1;
    float AmbientColor_R = 0.1f; // no file key: a level always starts with these three
    float AmbientColor_G = 0.15f;
    float AmbientColor_B = 0.2f;
    float CloudAmount = 0.1f;
    GString SkyFile;
    float RayPower = 0.5f; // written, never read back

    float FogColor_R = 0.5f;
    float FogColor_G = 0.5f;
    float FogColor_B = 0.5f;
    float FogDist = 1000;
    float FogExp = 2;
    float SkyFog = 0;
    float SkyFogExp = 4;
    float ClipDist = 1000;

    float Wind_Angle = 0;
    float Wind_Pitch = 0;
    float Wind_Speed = 0;
    float Gravity_Angle = 0;
    float Gravity_Pitch = PI;
    float Gravity_Strength = 10;
};

// One "entity" line.
struct SEntityDef {
    GString ClassName;
    GMap<GString, GString> Properties;
    Vec3 Position; // from the properties x, y and z; 0 where one is absent
};
