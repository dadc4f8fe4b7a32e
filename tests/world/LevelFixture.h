// A fixture in which levels can run: a context, the shader library, the physics world and the game's data.
//
// The working directory has the folders of the game's data as links, and a folder Levels of its own with copies of the
// shipped ones, so that a case may write there. Behind each case all bodies and textures must be gone.
#pragma once

#include <GL/glew.h>

#include "game/GameState.h"
#include "game/Wood.h"
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "platform/Platform.h"
#include "support/GoldenPicture.h"
#include "world/GameLevel.h"

#include <btBulletDynamicsCommon.h>
#include <memory>

class LevelFixture : public GlFixture {
protected:
    static constexpr float STEP = 1.0f / 60;

    void Start() override {
        for (const auto& Entry : fs::directory_iterator(SLOPERUSH_DATA_DIR)) {
            const fs::path Here = "Data" / Entry.path().filename();
            if (Here.filename() == "Levels") {
                fs::copy(Entry, Here, fs::copy_options::recursive | fs::copy_options::skip_existing);
            } else {
                fs::remove(Here);
                fs::create_directory_symlink(Entry, Here);
            }
        }
        InputReset();
        ResetGameState();
        GMousePos = GLastMousePos = {};
        ShaderLibInit();
        PhyInit();
        GrowTree();
    }

    void Finish() override {
        DropLevel();
        ReleaseTrees();
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
        EXPECT_EQ(GTextureByName.root, nullptr);
        PhyFree();
        glUseProgram(0);
        ShaderLibFree();
    }

    // The same tree as at the start of a program. Its script tells what it grows.
    static void GrowTree() {
        PlatSeedRand(1);
        PrintedBy(GrowTrees);
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

    static void Steps(int Count) {
        for (int i = 0; i < Count; ++i) {
            GLevel->Update(STEP);
        }
    }

    static void LookFrom(const Vec3& Eye, const Vec3& Target, const Vec3& Up = {0, 0, 1}) {
        GCamera = CameraState();
        GCamera.Eye = GLodCameraPos = Eye;
        GCamera.Target = Target;
        GCamera.Up = Up;
    }

    // The level as the camera sees it, made small.
    static SPicture Drawn() {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLevel->Render(1.0f);
        return Shrunk(ReadWindow());
    }

    // A level line for level ground of 400 by 400 at the given height, of which 255 is the most.
    static std::string FlatGround(UINT8 Height) {
        constexpr int SIDE = 33;
        WriteTga("Data/Levels/Flat.tga", SIDE, SIDE, 1, FBytes(SIDE * SIDE, Height));
        std::string Words;
        for (int i = 0; i < 5; ++i) {
            Words += "Data/Levels/Flat.tga ";
        }
        WriteText("Data/Levels/Flat.ter", Words);
        return "terrain file=Data/Levels/Flat.ter sx=200 sy=200 sz=255\n";
    }
};
