// The level object: building, running, saving and ending.
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"
#include "world/Probe.h"

#include <GL/glew.h>

namespace {

using Names = std::vector<std::string>;

class Level : public LevelFixture {
protected:
    void SetUp() override {
        LevelFixture::SetUp();
        CProbe::Reset();
    }
    void TearDown() override {
        LevelFixture::TearDown();
        CProbe::Reset();
    }

    static CProbe& Probe(UINT32 Index) { return static_cast<CProbe&>(*GLevel->Entities[Index]); }
};

// The process that is expected to end takes nothing down, so its leak checker is not asked.
class LevelDeathTest : public Level {
protected:
    void SetUp() override {
        Level::SetUp();
        setenv("ASAN_OPTIONS", "detect_leaks=0", 0);
    }
};

TEST_F(LevelDeathTest, MissingFileIsFatal) {
    EXPECT_FATAL(CLevel().LoadSourceLevel("Data/Levels/No.wlm"), "");
    EXPECT_EQ(ReadText("error.log"), "CLevel::LoadSourceLevel - File read error - Data/Levels/No.wlm\n");
}

TEST_F(LevelDeathTest, WrongMagicIsFatal) {
    WriteText("Data/Levels/A.wlm", "WLMG\nterrain sx=1\n");
    EXPECT_FATAL(CLevel().LoadSourceLevel("Data/Levels/A.wlm"), "");
    EXPECT_EQ(ReadText("error.log"), "CLevel::LoadSourceLevel - Wrong file type - Data/Levels/A.wlm\n");
}

TEST_F(LevelDeathTest, UnknownDefinitionIsFatal) {
    WriteText("Data/Levels/A.wlm", "WLMF\nterrain sx=1\nlamp x=1\n");
    EXPECT_FATAL(CLevel().LoadSourceLevel("Data/Levels/A.wlm"), "");
    EXPECT_EQ(ReadText("error.log"), "CLevel::LoadLevel - Wrong definition type lamp in Data/Levels/A.wlm\n");
}

TEST_F(LevelDeathTest, ExtraBlankLineAtTheEndIsFatal) {
    WriteText("Data/Levels/A.wlm", "WLMF\nterrain sx=1\n\n");
    EXPECT_FATAL(CLevel().LoadSourceLevel("Data/Levels/A.wlm"), "");
    EXPECT_EQ(ReadText("error.log"), "CLevel::LoadLevel - Wrong definition type  in Data/Levels/A.wlm\n");
}

TEST_F(Level, ShippedLevelsLoadAndRunInSilence) {
    for (const auto& Entry : std::filesystem::directory_iterator("Data/Levels")) {
        testing::internal::CaptureStdout();
        CLevel& Loaded = LoadLevel(Entry.path().string());
        Loaded.Update(STEP);
        Loaded.Render(1.0f);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << Entry.path();
        ASSERT_NE(Loaded.Terrain, nullptr);
        EXPECT_NE(Loaded.Terrain->Body, nullptr) << Entry.path();
        EXPECT_NE(Loaded.Sky.Texture, 0u) << Entry.path();
        EXPECT_EQ(Loaded.Entities.count, Loaded.EntityDefs.count) << Entry.path();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << Entry.path();
    }
}

TEST_F(Level, MagicOnlyIsAnEmptyLevelThatRuns) {
    CLevel& Empty = LoadText("WLMF\n");
    Empty.Update(STEP);
    Empty.Render(1.0f);
    EXPECT_EQ(Empty.Sky.Texture, 0u);
    EXPECT_EQ(Empty.Terrain->MinPartSize, 0u);
    EXPECT_EQ(Empty.Entities.count, 0u);
    EXPECT_EQ(Empty.EditMode, 0);
}

TEST_F(Level, FileValuesReachTerrainAndGrid) {
    const CLevel& Loaded = LoadText("WLMF\nentity Probe\n" + FlatGround(51) + "scene fdist=700\n");
    EXPECT_EQ(Loaded.Terrain->Extents, Vec3({200, 200, 255}));
    EXPECT_EQ(Loaded.Terrain->GetPoint(16, 16).z, 51.0f);
    EXPECT_EQ(Loaded.Grid->Box.Min, Vec3({-255, -255, -255})) << "the largest size counts";
    EXPECT_EQ(Loaded.Grid->Box.Max, Vec3({255, 255, 255}));
    EXPECT_EQ(Loaded.Grid->CellCounts, Vec3({200, 200, 200}));
    EXPECT_EQ(Loaded.Params.FogDist, 700.0f);
}

TEST_F(Level, UnknownClassIsSkippedWithALine) {
    testing::internal::CaptureStdout();
    const CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\nentity probe Name=b\nentity Probe Name=c\n");
    const std::string Log = testing::internal::GetCapturedStdout();
    EXPECT_NE(Log.find("\"probe\""), std::string::npos) << Log;
    EXPECT_NE(Log.find("Data/Levels/Test.wlm"), std::string::npos) << Log;
    ASSERT_EQ(Loaded.Entities.count, 2u);
    EXPECT_EQ(Probe(0).Name + Probe(1).Name, "ac");
    EXPECT_EQ(Loaded.ActiveEntities.count, 2u);
}

TEST_F(Level, UpdateStepsPhysicsBeforeTheEntitiesInFileOrder) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\n");
    GEditorBody->setLinearVelocity(btVector3(1, 0, 0));
    CProbe::OnUpdate = [](CProbe&) { EXPECT_GT(GEditorBody->getWorldTransform().getOrigin().x(), 0); };
    Loaded.Update(STEP);
    EXPECT_EQ(CProbe::Log, (Names{"update a", "update b"}));
    EXPECT_EQ(Probe(0).LastDelta, STEP);
}

TEST_F(Level, RemovedEntityLeavesAtTheEndOfTheUpdate) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\nentity Probe Name=c\n");
    CProbe::OnUpdate = [&Loaded](CProbe& Self) {
        if (Self.Name == "a") {
            Loaded.RemoveEntity(&Self);
            Loaded.RemoveEntity(&Self);
        }
    };
    Loaded.Update(STEP);
    EXPECT_EQ(CProbe::Log, (Names{"update a", "update b", "update c", "end a"}));
    CProbe::Log.clear();
    Loaded.Update(STEP);
    EXPECT_EQ(CProbe::Log, (Names{"update c", "update b"})) << "the last one has taken the place of the first";
}

TEST_F(Level, EntityRemovedBeforeItsTurnIsStillUpdatedOnce) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\n");
    CProbe::OnUpdate = [&Loaded](CProbe& Self) {
        if (Self.Name == "a") {
            Loaded.RemoveEntity(Loaded.Entities[1]);
        }
    };
    Loaded.Update(STEP);
    EXPECT_EQ(CProbe::Log, (Names{"update a", "update b", "end b"}));
}

TEST_F(Level, EntityAddedInAnUpdateTakesPartAtOnce) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\n");
    CProbe::OnUpdate = [&Loaded](CProbe&) {
        if (Loaded.Entities.count < 4) {
            Loaded.AddEntity(CreateEntity("Probe", {}));
        }
    };
    Loaded.Update(STEP);
    EXPECT_EQ(CProbe::Log, (Names{"update a", "update ", "update ", "update "}));
    EXPECT_EQ(Loaded.Entities.count, 4u);
    EXPECT_EQ(Loaded.ActiveEntities.count, 4u);
}

TEST_F(Level, UnknownEntityIsNotRemoved) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\n");
    const std::unique_ptr<CEntity> Stranger(CreateEntity("Probe", {}));
    Loaded.RemoveEntity(Stranger.get());
    Loaded.RemoveEntity(nullptr);
    EXPECT_EQ(Loaded.DeadEntities.count, 0u);
    EXPECT_EQ(Loaded.ActiveEntities.count, 1u);
}

TEST_F(Level, EntitiesLiveBetweenTheBuildingAndTheEndOfTheRest) {
    LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\n" + FlatGround(51));
    EXPECT_TRUE(Probe(0).BuiltOnGround);
    Probe(0).OnEnd = [] {
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 2) << "the ground and the editor's body";
        EXPECT_TRUE(GLevel->Grid->CanHold());
        EXPECT_EQ(GLevel->Terrain->GetPoint(1, 1).z, 51.0f);
    };
    GLevel->RemoveEntity(GLevel->Entities[0]);
    DropLevel();
    EXPECT_EQ(CProbe::Log, (Names{"end a", "end b"})) << "each once, also the one that was removed already";
}

TEST_F(Level, LevelsOneAfterTheOtherLeaveNothingBehind) {
    LoadLevel("Data/Levels/Level1.wlm");
    const int Bodies = GPhyWorld->getNumCollisionObjects();
    EXPECT_GE(Bodies, 2);
    LoadLevel("Data/Levels/Level1.wlm");
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), Bodies);
    DropLevel();
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
    EXPECT_EQ(GEditorBody, nullptr);
    EXPECT_TRUE(GLastFBOs.Empty());
}

TEST_F(Level, MissingSkyAndTerrainLeaveTheRestRunning) {
    testing::internal::CaptureStdout();
    CLevel& Loaded = LoadText("WLMF\nterrain file=No.ter sx=10 sy=10 sz=10\nscene sky=No.png\n");
    testing::internal::GetCapturedStdout();
    Loaded.Update(STEP);
    Loaded.Render(1.0f);
    EXPECT_EQ(Loaded.Sky.Texture, 0u);
}

TEST_F(Level, EditorBodyHangsWhereItWasPut) {
    CLevel& Empty = LoadText("WLMF\n");
    for (int i = 0; i < 60; ++i) {
        Empty.Update(STEP);
    }
    const btVector3 Origin = GEditorBody->getWorldTransform().getOrigin() * PhyWorldScale;
    EXPECT_NEAR(Origin.z(), 400.0f, 0.01f);
    EXPECT_NEAR(Origin.length(), 400.0f, 0.01f);
}

TEST_F(Level, SavedLevelComesBack) {
    constexpr const char* SAVED = "Data/Levels/_TmpSlopeRush.wlm";
    CLevel& First = LoadText("WLMF\nentity Probe x=1\nentity FPSCamera _POS=0;0;90.5 ZAngle=1.5\n" + FlatGround(51) +
                             "scene fdist=321.125\n");
    First.Params.LightColor_R = 0.25f;
    First.Entities[0]->Position = {5, 6, 7};
    EXPECT_EQ(First.SaveTemporaryLevel(), 1u);
    const std::string Text = ReadText(SAVED);
    EXPECT_NE(Text.find("\nentity Probe x=5.000000 y=6.000000 z=7.000000\nentity FPSCamera x="), std::string::npos)
        << Text;

    CLevel& Second = LoadLevel(SAVED);
    EXPECT_EQ(Second.Params.FogDist, 321.125f);
    EXPECT_EQ(Second.Params.LightColor_R, 0.25f);
    EXPECT_EQ(Second.Entities[0]->Position, Vec3({5, 6, 7}));
    EXPECT_EQ(Second.Entities[1]->Position, Vec3({0, 0, 90.5f}));
    EXPECT_EQ(Second.SaveTemporaryLevel(), 1u);
    EXPECT_EQ(ReadText(SAVED), Text);
}

TEST_F(Level, SavingWithoutAFolderGivesZero) {
    CLevel& Empty = LoadText("WLMF\n");
    std::filesystem::remove_all("Data/Levels");
    EXPECT_EQ(Empty.SaveTemporaryLevel(), 0u);
}

} // namespace
