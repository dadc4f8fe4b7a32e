// The level object: building, running, saving and ending.
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"
#include "world/Probe.h"

namespace {

using Names = std::vector<std::string>;

class Level : public LevelFixture {
protected:
    void Finish() override {
        LevelFixture::Finish();
        CProbe::Log.clear();
        CProbe::OnUpdate = [](CProbe&, float) {};
        CProbe::OnEnd = [] {};
    }

    static CProbe& Probe(UINT32 Index) { return static_cast<CProbe&>(*GLevel->Entities[Index]); }
};

TEST_F(Level, BrokenFilesAreFatalInTheseWords) {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the process that is expected to end takes nothing down
    const std::pair<const char*, const char*> CASES[] = {
        {"WLMG\nterrain sx=1\n", "CLevel::LoadSourceLevel - Wrong file type - A.wlm\n"},
        {"WLMF\nterrain sx=1\nlamp x=1\n", "CLevel::LoadLevel - Wrong definition type lamp in A.wlm\n"},
        {"WLMF\nterrain sx=1\n\n", "CLevel::LoadLevel - Wrong definition type  in A.wlm\n"}};
    std::string Log = "CLevel::LoadSourceLevel - File read error - A.wlm\n";
    EXPECT_FATAL(CLevel().LoadSourceLevel("A.wlm"), "");
    for (const auto& [Text, Words] : CASES) {
        WriteText("A.wlm", Text);
        EXPECT_FATAL(CLevel().LoadSourceLevel("A.wlm"), "");
        Log += Words;
    }
    EXPECT_EQ(ReadText("error.log"), Log);
}

TEST_F(Level, RunsWithoutSkyAndTerrainAndTheEditorBodyHangs) {
    for (const char* Lines : {"", "terrain file=No.ter sx=10 sy=10 sz=10\nscene sky=No.png\n"}) {
        PrintedBy([&] { LoadText(std::string("WLMF\n") + Lines); });
        Steps(60);
        GLevel->Render(1.0f);
        EXPECT_EQ(GLevel->Sky.Texture, 0u);
        const btVector3 Origin = GEditorBody->getWorldTransform().getOrigin() * PhyWorldScale;
        ExpectNear({Origin.x(), Origin.y(), Origin.z()}, {0, 0, 400}, 0.01f);
    }
}

TEST_F(Level, FileValuesReachTerrainAndGrid) {
    const CLevel& Loaded = LoadText("WLMF\nentity Probe\n" + FlatGround(51));
    EXPECT_EQ(Loaded.Terrain->Extents, Vec3({200, 200, 255}));
    EXPECT_EQ(Loaded.Terrain->GetPoint(16, 16).z, 51.0f);
    EXPECT_EQ(Loaded.Grid->Box.Min, Vec3({-255, -255, -255})) << "the largest size counts";
    EXPECT_EQ(Loaded.Grid->Box.Max, Vec3({255, 255, 255}));
    EXPECT_EQ(Loaded.Grid->CellCounts, Vec3({200, 200, 200}));
}

TEST_F(Level, UnknownClassIsSkippedWithALine) {
    const std::string Log =
        PrintedBy([] { LoadText("WLMF\nentity Probe Name=a\nentity probe Name=b\nentity Probe Name=c\n"); });
    EXPECT_NE(Log.find("\"probe\""), std::string::npos) << Log;
    EXPECT_NE(Log.find("Data/Levels/Test.wlm"), std::string::npos) << Log;
    ASSERT_EQ(GLevel->Entities.count, 2u);
    EXPECT_EQ(Probe(0).Name + Probe(1).Name, "ac");
}

TEST_F(Level, EntitiesThatComeAndGoInAnUpdateTakePartInIt) {
    CLevel& Loaded = LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\nentity Probe Name=c\n");
    const std::unique_ptr<CEntity> Stranger(CreateEntity("Probe", {}));
    GEditorBody->setLinearVelocity(btVector3(1, 0, 0));
    CProbe::OnUpdate = [&](CProbe& Self, float Delta) {
        EXPECT_EQ(Delta, STEP);
        EXPECT_GT(GEditorBody->getWorldTransform().getOrigin().x(), 0) << "physics comes first";
        if (Self.Name == "a") {
            Loaded.AddEntity(CreateEntity("Probe", {}));
            for (CEntity* Entity : {Loaded.Entities[0], Loaded.Entities[0], Loaded.Entities[1], Stranger.get()}) {
                Loaded.RemoveEntity(Entity);
            }
        }
    };
    Steps(1);
    EXPECT_EQ(CProbe::Log, (Names{"update a", "update b", "update c", "update ", "end a", "end b"}));
    CProbe::Log.clear();
    Steps(1);
    EXPECT_EQ(CProbe::Log, (Names{"update ", "update c"})) << "the last one takes the place of the removed one";
}

TEST_F(Level, EntitiesLiveBetweenTheBuildingAndTheEndOfTheRest) {
    LoadText("WLMF\nentity Probe Name=a\nentity Probe Name=b\n" + FlatGround(51));
    EXPECT_TRUE(Probe(0).BuiltOnGround);
    CProbe::OnEnd = [] {
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 2) << "the ground and the editor's body";
        EXPECT_TRUE(GLevel->Grid->CanHold());
        EXPECT_EQ(GLevel->Terrain->GetPoint(1, 1).z, 51.0f);
    };
    GLevel->RemoveEntity(GLevel->Entities[0]);
    DropLevel();
    EXPECT_EQ(CProbe::Log, (Names{"end a", "end b"})) << "each once, also the one that was removed already";
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
    EXPECT_TRUE(!GEditorBody && GLastFBOs.Empty());
}

TEST_F(Level, SavedLevelComesBack) {
    constexpr const char* SAVED = "Data/Levels/_TmpSlopeRush.wlm";
    CLevel& First = LoadText("WLMF\nentity Probe x=1\nentity FPSCamera _POS=0;0;90.5 ZAngle=1.5\n" + FlatGround(51) +
                             "scene fdist=321.125\n");
    First.Params.LightColor_R = 0.25f;
    First.Entities[0]->Position = {5, 6, 7};
    EXPECT_EQ(First.SaveTemporaryLevel(), 1u);
    const std::string Text = ReadText(SAVED);
    EXPECT_NE(Text.find("\nentity Probe x=5.000000 y=6.000000 z=7.000000\nentity FPSCamera x="), std::string::npos);
    CLevel& Second = LoadLevel(SAVED);
    EXPECT_TRUE(Second.Params.FogDist == 321.125f && Second.Params.LightColor_R == 0.25f);
    EXPECT_EQ(Second.Entities[1]->Position, Vec3({0, 0, 90.5f}));
    EXPECT_EQ(Second.SaveTemporaryLevel(), 1u);
    EXPECT_EQ(ReadText(SAVED), Text);
    fs::remove_all("Data/Levels");
    EXPECT_EQ(Second.SaveTemporaryLevel(), 0u) << "no folder to write to";
}

} // namespace
