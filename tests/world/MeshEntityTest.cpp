// Scenery in a level: its properties, what the editor's changes do, and the frame list.
#include "world/MeshEntity.h"
#include "support/AllocationCount.h"
#include "world/LevelFixture.h"

namespace {

class Scenery : public LevelFixture {
protected:
    static CMeshEntity& Entity(UINT32 i) { return *static_cast<CMeshEntity*>(GLevel->Entities[i]); }

    static void TearDownTestSuite() { EXPECT_EQ(GMeshByName.root, nullptr); }
};

TEST_F(Scenery, StandsWhereItsPropertiesSayAndComesBackFromASavedLevel) {
    LoadText("WLMF\n" + FlatGround(10) +
             "geomesh Data/Models/none.mdd x=1\n"
             "entity StaticMesh MeshName=Data/Models/Hut.mdd Position=1;2;3 Scale=2;1;1 Rotation=0;0;0.6;0.8 x=50\n"
             "entity StaticMesh x=7 y=8 z=9\n");
    SMeshClient& Hut = Entity(0).Client;
    EXPECT_TRUE((Hut.Pos == Vec3{1, 2, 3} && Hut.PrevScale == Vec3{2, 1, 1} && Hut.PrevRot.z == 0.6f));
    EXPECT_TRUE((!Entity(1).Client.Mesh && Entity(1).Client.Pos == Vec3{7, 8, 9}));
    float Distance = 0;
    EXPECT_FALSE(Entity(1).Client.TraceRay({{7, 8, 99}, {0, 0, -1}}, &Distance, 0));
    GLevel->TraceClients({{1, 2, 150}, {0, 0, -1}});
    ASSERT_NE(GLevel->PickHits.Hits.root, nullptr);
    EXPECT_EQ(GLevel->PickHits.Hits.root->value, &Hut);
    GProperties Saved;
    Entity(0).SaveProperties(Saved);
    EXPECT_EQ(Saved["Rotation"], GString("0.000000;0.000000;0.600000;0.800000"));
    EXPECT_EQ(Saved["MeshName"], GString("Data/Models/Hut.mdd"));
    CMeshEntity Again(Saved);
    EXPECT_EQ(std::memcmp(&Again.Client.WorldBox, &Hut.WorldBox, sizeof(BBox)), 0);
}

TEST_F(Scenery, MovesOnlyWhileTheEditorRuns) {
    LoadText("WLMF\n" + FlatGround(10) + "entity StaticMesh MeshName=Data/Models/Boulder.mdd Position=0;0;20\n");
    SMeshClient& Rock = Entity(0).Client;
    Rock.Pos = {100, 50, 20};
    Rock.Scale = {3, 3, 3};
    GLevel->Update(STEP);
    EXPECT_LT(Rock.BBox.Max.x, 20);
    GLevel->EditMode = 1;
    Steps(2);
    EXPECT_TRUE(Rock.PrevPos == Rock.Pos && Rock.PrevScale == Rock.Scale && Entity(0).Position == Rock.Pos);
    BBox Exact;
    Mat4 World;
    Rock.GetMatrix(World, false);
    ASSERT_EQ(Rock.Mesh->GetBounds(Exact, World), 1u);
    EXPECT_EQ(std::memcmp(&Exact, &Rock.BBox, sizeof(BBox)), 0);
    GLevel->EditMode = 0;
    GLevel->TraceClients({{100, 50, 150}, {0, 0, -1}});
    EXPECT_NE(GLevel->PickHits.Hits.root, nullptr);
}

TEST_F(Scenery, LevelsOfDetailAndDrawingEndAtTheirDistances) {
    LoadText("WLMF\n" + FlatGround(10) + "entity StaticMesh MeshName=Data/Models/Hut.mdd Position=0;0;0\n");
    SMeshClient& Hut = Entity(0).Client;
    const SMeshPart& Part = Hut.Mesh->Parts[0];
    for (const auto& [Distance, Lod] :
         {std::pair{0.0f, 0}, {99.0f, 0}, {100.5f, 1}, {201.0f, 2}, {400.0f, 3}, {499.0f, 3}}) {
        GLodCameraPos = {Hut.WorldBox.Max.x + Distance, 0, 5};
        SRenderData Rd;
        ASSERT_TRUE(Hut.GetRenderData(0, 0, &Rd));
        EXPECT_EQ(Rd.IndexBuffer, Hut.Mesh->IB[Lod]);
        EXPECT_EQ(Rd.IndexCount, 3 * Part.TriangleCount[Lod]);
    }
    GLodCameraPos = {Hut.WorldBox.Max.x + 500.5f, 0, 5};
    SRenderData Rd;
    EXPECT_FALSE(Hut.GetRenderData(0, 0, &Rd));
    EXPECT_EQ(Hut.GetPartCount(1), 0u);
}

TEST_F(Scenery, TheFrameListIsSortedByStateAndCostsNoMemoryOnceWarm) {
    std::string Lines = "WLMF\n" + FlatGround(10);
    for (int i = 0; i < 200; ++i) {
        Lines += std::string("entity StaticMesh MeshName=Data/Models/") + (i % 3 ? "Boulder" : "Fence") +
                 ".mdd z=10 x=" + std::to_string(i % 20 * 15 - 150) + " y=" + std::to_string(i / 20 * 15 - 80) + "\n";
    }
    LoadText(Lines);
    LookFrom({0, 190, 60}, {0, 0, 10});
    GLevel->BuildDrawList(false, 0.5f, false, false);
    ASSERT_GT(GLevel->SceneEntries.count, 60u);
    std::map<UINT64, int> Runs;
    for (UINT32 i = 0; i < GLevel->SceneEntries.count; ++i) {
        const SDrawEntry& Entry = GLevel->SceneEntries[i];
        EXPECT_EQ(Entry.SortKey, Entry.Record->SortKey);
        EXPECT_EQ(Entry.Record->Client->BlendFactor, 0.5f);
        if (i > 0) {
            const SRenderData& Before = *GLevel->SceneEntries[i - 1].Record;
            EXPECT_LE(Before.SortKey, Entry.Record->SortKey);
            Runs[Entry.Record->StateId] += Before.StateId != Entry.Record->StateId;
            if (Before.StateId == Entry.Record->StateId) {
                EXPECT_LE(Before.Depth, Entry.Record->Depth);
            }
        }
    }
    EXPECT_EQ(Runs.size(), 2u);
    const UINT64 Before = GAllocations;
    GLevel->BuildDrawList(false, 0.5f, false, false);
    EXPECT_EQ(GAllocations, Before);
}

} // namespace
