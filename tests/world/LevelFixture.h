// A fixture in which levels can run: a context, the shader library, the physics world and the game's data.
//
// The working directory has the folders of the game's data as links, and a folder Levels of its own with copies of the
// shipped ones, so that a case may write there. Behind each case all bodies and textures must be gone.
#pragma once

#include <GL/glew.h>

#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "support/GlFixture.h"
#include "world/GameLevel.h"

#include <btBulletDynamicsCommon.h>
#include <filesystem>
#include <memory>

inline void ExpectNear(const Vec3& A, const Vec3& B, float Tolerance) {
    EXPECT_LE(M_Length(A - B), Tolerance)
        << A.x << ' ' << A.y << ' ' << A.z << " but not " << B.x << ' ' << B.y << ' ' << B.z;
}

class LevelFixture : public GlFixture {
protected:
    static constexpr float STEP = 1.0f / 60;

    void SetUp() override {
        GlFixture::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        ASSERT_TRUE(std::filesystem::exists(SLOPERUSH_DATA_DIR "/Levels/Level1.wlm")) << "build the target data first";
        for (const auto& Entry : std::filesystem::directory_iterator(SLOPERUSH_DATA_DIR)) {
            const std::filesystem::path Here = "Data" / Entry.path().filename();
            if (Here.filename() == "Levels") {
                using enum std::filesystem::copy_options;
                std::filesystem::copy(Entry, Here, recursive | skip_existing);
            } else {
                std::filesystem::remove(Here);
                std::filesystem::create_directory_symlink(Entry, Here);
            }
        }
        InputReset();
        GMousePos = GLastMousePos = {};
        ShaderLibInit();
        PhyInit();
    }

    void TearDown() override {
        DropLevel();
        if (GPhyWorld) {
            EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
            EXPECT_EQ(GTextureByName.root, nullptr);
            PhyFree();
            glUseProgram(0);
            ShaderLibFree();
        }
        GlFixture::TearDown();
    }

    static CLevel& LoadLevel(const std::string& Path) {
        DropLevel();
        GLevel = new CLevel;
        GLevel->LoadSourceLevel(Path.c_str());
        return *GLevel;
    }

    static CLevel& LoadText(const std::string& Text) {
        WriteText("Data/Levels/Test.wlm", Text);
        return LoadLevel("Data/Levels/Test.wlm");
    }

    static void DropLevel() {
        delete GLevel;
        GLevel = nullptr;
    }

    // A level line for level ground of 400 by 400 at the given height, of which 255 is the most.
    static std::string FlatGround(UINT8 Height) {
        constexpr int SIDE = 33;
        WriteTga("Data/Levels/Flat.tga", SIDE, SIDE, 1, std::vector<UINT8>(SIDE * SIDE, Height));
        const std::string Picture = "Data/Levels/Flat.tga ";
        WriteText("Data/Levels/Flat.ter", Picture + Picture + Picture + Picture + Picture);
        return "terrain file=Data/Levels/Flat.ter sx=200 sy=200 sz=255\n";
    }
};
