// The editor's tools in the scene: the brush on the ground, the mesh brush, and selecting.
#include "editor/EditorFixture.h"
#include "editor/MeshMenu.h"
#include "editor/TerrainMenu.h"
#include "game/Tree.h"

#include <cstring>

namespace {

constexpr Vec2 SKY = {512, 1}, LABEL = {850, 110};

using Sculpting = EditorFixture;

TEST_F(Sculpting, AStrokeThatBeganOffTheRowsChangesTheGroundAndUpdateThePicture) {
    const auto Height = [] { return GLevel->Terrain->GetPoint(16, 16).z; };
    // The brush has nearly its full weight there.
    const Vec2 There = OnScreen(GLevel->Terrain->GetPoint(16, 16) + Vec3{0.2f, 0.3f, 0});
    const auto Stroke = [&](const Vec2& From, int Count) {
        StepAt(From, true);
        for (int i = 1; i < Count; ++i) {
            StepAt(There, true);
        }
        StepAt(There);
        return Height();
    };
    Press({SDLK_3});
    EXPECT_EQ(Stroke(There, 5), GROUND); // the tool is off
    Press({SDLK_2});
    EXPECT_EQ(Stroke(LABEL, 5), GROUND);
    EXPECT_EQ(Stroke(SKY, 1), GROUND);
    const float Raised = Stroke(There, 10);
    EXPECT_NEAR(Raised, GROUND + 10 * 20 * STEP, 0.3f);
    EXPECT_EQ(GLevel->Terrain->Root->Box.Max.z, GROUND);
    Press({SDLK_4});
    EXPECT_EQ(GLevel->Terrain->Root->Box.Max.z, Raised);
    Press({SDLK_3});
    const float Flattened = Stroke(There, 1); // a 300th of the way to the mean
    EXPECT_LT(Flattened, Raised);
    EXPECT_GT(Flattened, Raised - (Raised - GROUND) / 300);
    Press({SDLK_3});
    GLevel->BrushStrength = -100;
    EXPECT_LT(Stroke(There, 4), GROUND);
}

class Meshes : public EditorFixture {
protected:
    void Start() override {
        EditorFixture::Start();
        GLevel->MeshFile = "Data/Models/Boulder.mdd";
        Press({SDLK_4, SDLK_3});
    }
    static UINT32 Hold(const Vec2& At, int Count) {
        for (int i = 0; i <= Count; ++i) {
            StepAt(At, i < Count);
        }
        return GLevel->Entities.Size();
    }
    static SMeshClient& Client(UINT32 i) {
        CEntity* Entity = GLevel->Entities[i];
        const bool IsTree = std::strcmp(Entity->Class->Name, "Tree") == 0;
        return IsTree ? static_cast<CTree*>(Entity)->Client : static_cast<CMeshEntity*>(Entity)->Client;
    }

    // The numbers of the selected entities in their order.
    static std::string Selected() {
        std::string Numbers;
        for (const SSpatialClient* Chosen : GLevel->Selection) {
            for (UINT32 i = 0; i < GLevel->Entities.Size(); ++i) {
                Numbers += Chosen == &Client(i) ? std::to_string(i) : "";
            }
        }
        return Numbers;
    }
};

TEST_F(Meshes, TheBrushPlacesAtOnceAndThenAtItsRate) {
    SMenu_Mesh& Menu = Top<SMenu_Mesh>();
    const Vec2 There = {400, 330};
    EXPECT_EQ(Hold(LABEL, 90) + Hold(SKY, 90), 0u);
    EXPECT_EQ(Hold(There, 90), 2u); // one a second
    Menu.PlaceRate = 0;
    EXPECT_EQ(Hold(There, 90), 3u);
    Menu.PlaceRate = 10;
    EXPECT_NEAR(Hold(There, 91), 3 + 1 + 15, 2);
    const UINT32 Before = GLevel->Entities.Size();
    GLevel->MeshFile = "";
    EXPECT_EQ(Hold(There, 90), Before);
}

TEST_F(Meshes, APlacedMeshHasTheTransformThatItsRangesRoll) {
    SMenu_Mesh& Menu = Top<SMenu_Mesh>();
    float* Groups[] = {Menu.PlaceScale, Menu.PlaceRotate, Menu.PlaceMove};
    Vec3 Rolled[3];
    PlatSeedRand(9);
    for (int i = 0; i < 9; ++i) {
        const int Group = i / 3, Axis = 2 - i % 3;
        const float Base = static_cast<float>(1 + i), Extent = static_cast<float>(20 - i);
        Groups[Group][Axis] = Base;
        Groups[Group][3 + Axis] = Extent;
        Rolled[Group][Axis] = Base - Extent + 2 * Extent * PlatRandUnit();
    }
    PlatSeedRand(9);
    Menu.PlaceDepth = 30;
    const Vec3 There = {20, 30, GROUND};
    Click(OnScreen(There));
    ASSERT_EQ(GLevel->Entities.Size(), 1u);
    const SMeshClient& Rock = Client(0);
    ExpectNear(Rock.Scale, Rolled[0], 1e-4f);
    const Quat Turn = M_QuatFromEuler(Rolled[1] * (3.14159265f / 180));
    EXPECT_NEAR(Rock.Rot.x * Turn.x + Rock.Rot.y * Turn.y + Rock.Rot.z * Turn.z + Rock.Rot.w * Turn.w, 1, 1e-4f);
    ExpectNear(Rock.Pos, There + M_Normalized(There - GLevel->EditorPos) * 30 + Rolled[2] - Vec3{0, 0, 5}, 0.02f);
}

TEST_F(Meshes, ClicksAndRectanglesSelectAndDeleteTakesOnlyMeshes) {
    std::string Text;
    for (const char* Place : {"-40;0;100", "0;0;100", "40;0;100", "0;60;100"}) {
        Text += std::string("entity StaticMesh MeshName=Data/Models/Boulder.mdd Position=") + Place + "\n";
    }
    Edit(Text + "entity Tree _POS=60;40;100\n");
    Press({SDLK_4});
    const Vec2 First = OnScreen({-40, 0, 105}), Second = OnScreen({0, 0, 105}), Third = OnScreen({40, 0, 105});
    Click(First);
    Click(Second, {SDLK_LCTRL});
    Click(Second, {SDLK_LCTRL}); // is in already
    Click(SKY, {SDLK_LCTRL});
    Click(Third, {SDLK_LCTRL, SDLK_LALT});
    EXPECT_EQ(Selected(), "01");
    Click(First, {SDLK_LALT});
    Click(Third, {SDLK_LSHIFT}); // without a way it is a plain click
    EXPECT_EQ(Selected(), "2");
    StepAt(First + Vec2{-40, 40}, true, {SDLK_LSHIFT}); // the first two, from a corner to the one across
    StepAt(Second + Vec2{20, -30}, true);
    StepAt(Second + Vec2{20, -30}, false, {SDLK_LCTRL});
    EXPECT_EQ(Selected(), "201");
    Click(LABEL);
    EXPECT_EQ(Selected(), "201");
    Click(SKY);
    EXPECT_EQ(Selected(), "");
    GLevel->SelectClient(0, &static_cast<CTree*>(GLevel->Entities[4])->Client);
    GLevel->SelectClient(1, &Client(3));
    Press({SDLK_DELETE});
    EXPECT_TRUE(GLevel->Entities.Size() == 4 && GLevel->Selection.Size() == 0);
    // A client that goes takes the menus along that may hold it.
    Click(First);
    Press({SDLK_5});
    ASSERT_EQ(GLevel->Menus.Size(), 3u);
    GLevel->RemoveEntity(GLevel->Entities[0]);
    Steps(1);
    EXPECT_TRUE(GLevel->Menus.Size() == 1 && GLevel->Selection.Size() == 0);
}

} // namespace
