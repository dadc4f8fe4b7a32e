#include "assets/GameFiles.h"

#include <IL/il.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

float SGamePicture::At(int x, int y, int Channel) const {
    const int Column = (x % Width + Width) % Width;
    const int Row = (y % Height + Height) % Height;
    return static_cast<float>(Rgba[static_cast<std::size_t>((Row * Width + Column) * 4 + Channel)]) / 255.0f;
}

std::string GamePath(const std::string& Relative) {
    return SLOPERUSH_GAME_DIR "/" + Relative;
}

std::string FileBytes(const std::filesystem::path& Path) {
    std::ifstream File(Path, std::ios::binary);
    EXPECT_TRUE(File.is_open()) << Path;
    return std::string(std::istreambuf_iterator<char>(File), {});
}

SGamePicture LoadPicture(const std::string& Relative) {
    ilInit();
    const ILuint Image = ilGenImage();
    ilBindImage(Image);
    SGamePicture Picture;
    if (ilLoadImage(GamePath(Relative).c_str())) {
        ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
        Picture.Width = ilGetInteger(IL_IMAGE_WIDTH);
        Picture.Height = ilGetInteger(IL_IMAGE_HEIGHT);
        const UINT8* Bytes = ilGetData();
        Picture.Rgba.assign(Bytes, Bytes + Picture.Width * Picture.Height * 4);
    } else {
        ADD_FAILURE() << "no picture: " << Relative;
    }
    ilDeleteImage(Image);
    return Picture;
}

std::vector<SGameLevel> ShippedLevels() {
    std::vector<SGameLevel> Levels;
    for (const auto& Entry : std::filesystem::directory_iterator(GamePath("Data/Levels"))) {
        // Levels that a maker saved lie beside the shipped ones.
        if (Entry.path().extension() != ".wlm" || Entry.path().filename().string()[0] == '_') {
            continue;
        }
        SGameLevel Level;
        Level.Path = Entry.path().string();
        GArray<SEntityDef> Defs;
        GString BadWord;
        EXPECT_EQ(ReadLevelText(FileBytes(Entry.path()).c_str(), Level.Params, Defs, BadWord), ELevelText::Good);
        if (Level.Params.TerrainFile.Length() > 0) {
            const char* Terrain = Level.Params.TerrainFile.CStr();
            EXPECT_EQ(ParseTerrainFile(Terrain, FileBytes(GamePath(Terrain)).c_str(), Level.Terrain), 1);
            Levels.push_back(Level);
        }
    }
    EXPECT_FALSE(Levels.empty());
    return Levels;
}
