// The editor's frame: menus, rows, the free camera, and the key that leads in and out.
#include "editor/EditorFixture.h"
#include "game/SlopeRush.h"
#include "scene/GLFont.h"

namespace {

using Editor = EditorFixture;

std::string Panel() {
    SMenu& Menu = *GLevel->Menus.last->obj;
    std::string Text;
    for (UINT32 i = 1; i <= Menu.GetOpCount() + 1; ++i) {
        GString Name;
        Menu.GetOpName(&Name, static_cast<INT32>(i));
        Text += Name.CStr() + std::string("|");
    }
    return Text;
}

TEST_F(Editor, NumberKeysWalkTheMenusFromARootThatStays) {
    Press({SDLK_1, SDLK_0, SDLK_5});
    EXPECT_EQ(Panel(), "File|Scene|Terrain|Meshes|<OP NAME NOT DEFINED>|");
    Press({SDLK_2, SDLK_1, SDLK_2});
    EXPECT_EQ(Panel(), "Change sky texture|<OP NAME NOT DEFINED>|");
    Press({SDLK_0, SDLK_3, SDLK_1, SDLK_2, SDLK_3, SDLK_5});
    EXPECT_EQ(Panel(), "Change terrain|Sculpt - ON|[chg] Tool: Flatten|Update|Change size|<OP NAME NOT DEFINED>|");
    GLevel->MeshFile = "Data\\Models/Sub\\Hut.mdd";
    Press({SDLK_0, SDLK_4, SDLK_2, SDLK_5, SDLK_4}); // nothing is selected, so nothing opens
    EXPECT_EQ(Panel().substr(0, 71), "Choose mesh|Hut.mdd|[1/2] Tool: Select|DrawAABB: ON|Transform selection");
    Press({SDLK_3, SDLK_4, SDLK_5, SDLK_0});
    EXPECT_EQ(Panel().substr(0, 68), "Choose mesh|Hut.mdd|[2/2] Tool: Brush|DrawAABB: OFF|Change transform");
    Press({SDLK_0});
    StepAt(GMousePos, false, {SDLK_2, SDLK_3}); // the second key goes to the menu that the first one opens
    EXPECT_EQ(GLevel->Menus.Size(), 2u);
}

TEST_F(Editor, EachRowChangesItsParameter) {
    SLevelParams& P = GLevel->Params;
    Press({SDLK_2});
    Vec2 Row = ROW;
    // Rows follow each other as the parameters do in memory, in three runs.
    for (const auto& [First, Count] : {std::pair{&P.LightDir_Angle, 2}, {&P.LightColor_R, 7}, {&P.RayPower, 15}}) {
        for (float* Value = First; Value < First + Count; ++Value, Row = Row + NEXT_ROW) {
            const bool UpToOne = Value == &P.CloudAmount || Value == &P.RayPower || Value == &P.SkyFog;
            const float Wanted = *Value + 0.9f;
            StepAt(Row, true);
            StepAt(Row + Vec2{3, 0}, true);
            StepAt(Row + Vec2{3, 0});
            EXPECT_NEAR(*Value, UpToOne ? std::min(Wanted, 1.0f) : Wanted, 1e-3f) << Row.y;
        }
    }
}

TEST_F(Editor, ADragsStepIsATenthOfWhatTheLastOneLeftIfItEndedOnTheWidget) {
    float& Fog = GLevel->Params.FogDist;
    const Vec2 Row = ROW + NEXT_ROW * 13, Way = {10, 0};
    const auto Drag = [&](const Vec2& To) {
        StepAt(Row, true);
        StepAt(To, true);
        StepAt(To);
        return Fog;
    };
    Press({SDLK_2});
    StepAt({400, Row.y}, true); // pressed beside it, moved over it
    EXPECT_EQ(Drag(Row + Way), 1000);
    EXPECT_FLOAT_EQ(Drag(Row - Way * 2), 960);
    EXPECT_EQ(Drag(Row - Way * 300), 10); // ends off the widget, and leaves the step as it was
    EXPECT_FLOAT_EQ(Drag(Row + Way), 10 + 10 * 96);
}

TEST_F(Editor, ARowIsLetGoWhenItsMenuGoesWhileTheButtonIsHeld) {
    const auto Angle = [] { return GLevel->Params.LightDir_Angle; };
    const auto IsDragged = [&](const auto& GoAndComeBack) {
        StepAt(ROW, true);
        EXPECT_TRUE((*GButtons)[1038].Pressed);
        GoAndComeBack();
        const float Before = Angle();
        StepAt(ROW + Vec2{30, 0}, GMouseLeft);
        StepAt(GMousePos);
        return Angle() != Before;
    };
    const auto Key = [](UINT32 Which) {
        StepAt(GMousePos, GMouseLeft, {Which});
        StepAt(GMousePos, GMouseLeft);
    };
    Press({SDLK_2});
    EXPECT_TRUE(IsDragged([] {}));
    EXPECT_FALSE(IsDragged([&] {
        Key(SDLK_0);
        StepAt(GMousePos);
        Key(SDLK_2);
    })) << "let go elsewhere";
    EXPECT_FALSE(IsDragged([&] {
        Key(SDLK_0);
        Key(SDLK_2);
    })) << "never let go";
    EXPECT_FALSE(IsDragged([&] {
        GLevel->ToggleEditor();
        StepAt(GMousePos);
        GLevel->ToggleEditor();
    }));
}

TEST_F(Editor, TheFreeCameraTakesOverTheViewAndFliesAlongIt) {
    GLevel->ToggleEditor();
    GLevel->Params.Gravity_Angle = 1;
    GLevel->Params.Gravity_Pitch = 2.5f;
    const Vec3 Eye = {5, -40, 300}, Ahead = M_Normalized(Vec3{-2, 1, 0.3f});
    LookFrom(Eye, Eye + Ahead);
    GLevel->ToggleEditor();
    const auto Flight = [](const std::vector<UINT32>& Keys) {
        GEditorBody->setLinearVelocity({0, 0, 0});
        for (int i = 0; i < 4; ++i) {
            StepAt({}, false, Keys);
        }
        return GLevel->EditorPos - GLevel->EditorPrevPos;
    };
    Vec3 Up;
    M_QuatRotate(GLevel->GravityRotation(), {0, 0, 1}, Up);
    const Vec3 Forward = Flight({SDLK_w}), Left = Flight({SDLK_a});
    EXPECT_NEAR(M_Dot(M_Normalized(Forward), Ahead), 1, 1e-4f);
    EXPECT_NEAR(M_Dot(M_Normalized(Left), Up), 0, 1e-4f);
    EXPECT_GT(M_Dot(M_Cross(Forward, Left), Up), 0);
    ExpectNear(Flight({SDLK_s}), -Forward, 0.1f);
    ExpectNear(Flight({SDLK_d, SDLK_LSHIFT}), Left * -2, 0.1f);
    GMouseRight = 1;
    Steps(1);
    EXPECT_TRUE(GWarpMouse == 1 && (GMousePos == Vec2{512, 288}));
    const float Yaw = GLevel->EditorYaw;
    StepAt({502, 288 + 1000});
    EXPECT_FLOAT_EQ(GLevel->EditorYaw, Yaw + 0.1f);
    EXPECT_FLOAT_EQ(GLevel->EditorPitch, 3.1415927f);
    StepAt({502 + 700, -1000});
    EXPECT_NEAR(GLevel->EditorYaw, std::fmod(Yaw + 0.1f - 7, 6.2831855f), 1e-4f);
    EXPECT_EQ(GLevel->EditorPitch, 0);
    GMouseRight = 0;
    Steps(1);
    EXPECT_EQ(GWarpMouse, 0u);
}

TEST_F(Editor, F2StopsTheRideAndItsClockAndNoButtonOfTheGameLiesOverTheScene) {
    SlopeRush Game;
    Edit("entity Rider Position=0;0;200\n");
    GLevel->ToggleEditor();
    GTimeLeft = 50;
    const auto Turn = [&](UINT32 State, UINT32 Key, bool Left = false) {
        InputBeginStep();
        std::memset(GKeys, 0, sizeof(GKeys));
        GKeys[Key] = 1;
        GMouseLeft = Left;
        GGameState = State;
        Game.Update(0, STEP);
        return GLevel->EditMode;
    };
    EXPECT_TRUE(Turn(GAME_PLAYING, SDLK_F2) && Turn(GAME_PLAYING, SDLK_F2)); // the second time it is held
    GMousePos = {512, 468};                                                  // where "Quit" is
    Turn(GAME_MENU, SDLK_x, true);
    Turn(GAME_MENU, SDLK_x);
    EXPECT_TRUE(GQuit == 0 && GTimeLeft == 50);
    GPaused = 1;
    EXPECT_TRUE(Turn(GAME_PLAYING, SDLK_F2));
    GPaused = 0;
    Turn(GAME_PLAYING, SDLK_x);
    EXPECT_FALSE(Turn(GAME_PLAYING, SDLK_F2));
    EXPECT_LT(GTimeLeft, 50);
}

TEST_F(Editor, EachShippedLevelComesBackFromItsSavedFileAndIsSavedAgainByteForByte) {
    const std::string Saved = "Data/Levels/_TmpSlopeRush.wlm";
    const auto Entities = [](const std::string& Text) {
        std::size_t Count = 0;
        for (std::size_t At = 0; (At = Text.find("\nentity ", At)) != std::string::npos; ++At) {
            ++Count;
        }
        return Count;
    };
    for (const char* const Name : {"Level1", "Level2", "Level3", "Level4", "Level5", "Menu"}) {
        const std::string Shipped = "Data/Levels/" + std::string(Name) + ".wlm";
        EXPECT_EQ(LoadLevel(Shipped).SaveTemporaryLevel(), 1u);
        const std::string First = ReadText(Saved);
        EXPECT_EQ(Entities(First), Entities(ReadText(Shipped))) << Name;
        EXPECT_EQ(LoadLevel(Saved).SaveTemporaryLevel(), 1u);
        EXPECT_TRUE(ReadText(Saved) == First) << Name;
    }
}

TEST_F(Editor, LooksAsItDidWhenItWasLookedAt) {
    GFont = new GLFont(1);
    Edit("entity StaticMesh MeshName=Data/Models/Hut.mdd Position=-40;20;100\n"
         "entity StaticMesh MeshName=Data/Models/Crag.mdd Position=50;0;95\n");
    GLevel->SelectClient(0, &static_cast<CMeshEntity*>(GLevel->Entities[1])->Client);
    Press({SDLK_4, SDLK_4});
    const SPicture Meshes = Drawn();
    EXPECT_TRUE(MatchesGolden(Meshes, "editor-meshes", 1.0));
    Press({SDLK_0, SDLK_3, SDLK_2});
    StepAt({400, 330});
    EXPECT_TRUE(MatchesGolden(Drawn(), "editor-terrain", 1.0));
    delete GFont;
    GFont = nullptr;
}

} // namespace
