// The game's own files as the build made them, for tests that look at what ships.
//
// Paths in levels and terrain files are relative to the game's folder; GamePath makes them absolute. Pictures come as
// the engine sees them: RGBA with the file's first row first. Everything here fails the running case where a file is
// missing.
#pragma once

#include "terrain/TerrainFile.h"
#include "world/LevelFile.h"

#include <filesystem>
#include <string>
#include <vector>

struct SGamePicture {
    int Width = 0;
    int Height = 0;
    std::vector<UINT8> Rgba;

    // One channel at a place, 0 to 1; places beyond the edges are found on the other side.
    float At(int x, int y, int Channel) const;
};

struct SGameLevel {
    std::string Path;
    SLevelParams Params;
    STerrainFile Terrain;
};

std::string GamePath(const std::string& Relative);
std::string FileBytes(const std::filesystem::path& Path);
SGamePicture LoadPicture(const std::string& Relative);
std::vector<SGameLevel> ShippedLevels(); // those that have a terrain
