// The flow of the game as the shell drives it: which screen follows on which click, what each one writes, and that a
// hundred levels leave nothing behind.
#include "game/GameFixture.h"
#include "game/Screens.h"
#include "game/SlopeRush.h"
#include "gui/Gui.h"
#include "scene/GLFont.h"
#include "support/AllocationCount.h"
#include "support/GoldenPicture.h"

#include <string>
#include <vector>

namespace {

constexpr bool IsSanitized() {
#ifdef __SANITIZE_ADDRESS__
    return true;
#else
    return false;
#endif
}

constexpr Vec2 FIRST_BUTTON = {512, 360};
constexpr Vec2 SECOND_BUTTON = {512, 468};
constexpr Vec2 NO_BUTTON = {900, 360};

struct SText {
    std::string Text;
    Vec4 Color;
    UINT32 Flags;
    float Left, Top, Right, Bottom;
    float Size;
};

class Flow : public LevelFixture {
protected:
    void Start() override {
        LevelFixture::Start();
        GFont = new GLFont(1);
        ReleaseTrees(); // the game grows its own
        PlatSeedRand(1);
        CreateGame();
        PrintedBy([] { GGame->Init(); });
        GMousePos = NO_BUTTON;
    }
    void Finish() override {
        GGame->Free();
        delete GGame;
        GGame = nullptr;
        GuiFree();
        delete GFont;
        GFont = nullptr;
        GQuit = 0;
        GrowTree();
        LevelFixture::Finish();
    }

    static void Steps(int Count) {
        for (int i = 0; i < Count; ++i) {
            InputBeginStep();
            GGame->Update(0, STEP);
            ASSERT_TRUE(GLastFBOs.Empty());
        }
    }
    static void Tap(UINT32 Key) {
        InputBeginStep();
        GKeys[Key] = 1;
        GGame->Update(0, STEP);
        InputBeginStep();
        GKeys[Key] = 0;
        GGame->Update(0, STEP);
    }
    static void Mouse(bool Down, const Vec2& At) {
        InputBeginStep();
        GMousePos = At;
        GMouseLeft = Down;
        GGame->Update(0, STEP);
    }
    static void Click(const Vec2& At) {
        Mouse(true, At);
        Mouse(false, At);
        GMousePos = NO_BUTTON;
    }
    static void Play() {
        Tap(SDLK_SPACE);
        Click(FIRST_BUTTON);
    }
    static CRider& Rider() {
        for (CEntity* Entity : GLevel->Entities) {
            if (std::strcmp(Entity->Class->Name, "Rider") == 0) {
                return static_cast<CRider&>(*Entity);
            }
        }
        ADD_FAILURE() << "no rider";
        std::abort();
    }
    static void PutRiderAt(float y) { PhySetPosition({0, y, 900}, Rider().Body); }

    // Makes the level end on a screen with these values.
    static void EndWith(UINT32 Level, float Time, UINT32 Trees) {
        GLevelIndex = Level;
        GTimeLeft = Time;
        GTreesCut = Trees;
        GGameState = GAME_END;
        Steps(1);
    }

    static std::vector<UINT8> Overlay() {
        return ReadTexture(GLevel->OverlayRT.ColorTex, GLevel->OverlayRT.Width, GLevel->OverlayRT.Height);
    }
    // The layer as it must look with these texts and nothing else.
    static std::vector<UINT8> Drawn(const std::vector<SText>& Texts) {
        GLevel->OverlayRT.Bind();
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        {
            const CGuiScope Scope(1);
            for (const SText& t : Texts) {
                GFont->Draw(t.Text.c_str(), M_PackColor(t.Color), t.Flags, t.Left, t.Right, t.Top, t.Bottom, t.Size);
            }
        }
        GLevel->OverlayRT.Unbind();
        return Overlay();
    }
    static SText Heading(const std::string& Text, const Vec4& Color) {
        return {Text, Color, FONT_CENTERX, 341, 216, 682, 288, 30};
    }
    static SText Button(const std::string& Text, float Top, const Vec4& Color = {0.9f, 0.9f, 0.9f, 1}) {
        return {Text, Color, FONT_CENTERX | FONT_CENTERY, 341, Top, 682, Top + 72, 42};
    }
};

TEST_F(Flow, TheLogoGivesWayByItsTimeOrBySpace) {
    EXPECT_EQ(GGameState, GAME_LOGO);
    Steps(359);
    EXPECT_EQ(GGameState, GAME_LOGO) << "six seconds, from -2 to 4";
    Steps(3);
    EXPECT_EQ(GGameState, GAME_MENU);
    GGameState = GAME_LOGO;
    Tap(SDLK_SPACE);
    EXPECT_EQ(GGameState, GAME_MENU);
}

TEST_F(Flow, AClickCountsWhereTheButtonWentDownAndCameUp) {
    Tap(SDLK_SPACE);
    Mouse(true, NO_BUTTON);
    Mouse(false, SECOND_BUTTON);
    Mouse(true, SECOND_BUTTON);
    Mouse(true, NO_BUTTON);
    Mouse(false, NO_BUTTON);
    EXPECT_EQ(GQuit, 0u);
    Mouse(true, {341, 432});
    Mouse(true, NO_BUTTON);
    Mouse(false, {682, 504});
    EXPECT_EQ(GQuit, 1u) << "borders count, and leaving it in between does not matter";
    GTimeLeft = 3;
    GTreesCut = 9;
    Click(FIRST_BUTTON);
    EXPECT_EQ(GGameState, GAME_PLAYING);
    EXPECT_EQ(GLevelIndex, 0u);
    EXPECT_EQ(GTreesCut, 0u);
    EXPECT_NEAR(GTimeLeft, 100, 0.1f);
    EXPECT_GT(GLevel->Entities.count, 3000u);
}

TEST_F(Flow, TheHudShowsCountAndClock) {
    Play();
    const auto Hud = [&](const std::string& Trees, const Vec4& TreeColor, const std::string& Time,
                         const Vec4& TimeColor) {
        const Vec4 Black = {0, 0, 0, 1};
        return std::vector<SText>{{Trees, Black, 0, 51, 51, 500, 500, 24},
                                  {Trees, TreeColor, 0, 50, 50, 500, 500, 24},
                                  {Time, Black, 0, 51, 75, 500, 500, 24},
                                  {Time, TimeColor, 0, 50, 74, 500, 500, 24}};
    };
    const Vec4 Red = {0.9f, 0.15f, 0.1f, 1}, Green = {0.2f, 0.85f, 0.1f, 1}, Pale = {0.9f, 0.85f, 0.8f, 1};
    for (const auto& [Trees, Time] : {std::pair{19u, 10 + 1.5f * STEP}, {20u, 8.6f}}) {
        GTreesCut = Trees;
        GTimeLeft = Time;
        Steps(1);
        const std::vector<UINT8> Shown = Overlay();
        const bool Less = Trees < 20;
        EXPECT_TRUE(Shown == Drawn(Hud(Less ? "Trees cut: 19/20" : "Trees cut: 20/20", Less ? Red : Green,
                                       Less ? "Time left: 10" : "Time left: 9", Less ? Pale : Red)));
    }
}

TEST_F(Flow, APauseHoldsTheLevelButNotTheClock) {
    Play();
    Tap(SDLK_ESCAPE);
    ASSERT_EQ(GPaused, 1u);
    const Vec3 Place = Rider().Client.Pos;
    const float Time = GTimeLeft;
    Steps(60);
    EXPECT_EQ(Rider().Client.Pos, Place);
    EXPECT_NEAR(GTimeLeft, Time - 1, 0.01f);
    Click(FIRST_BUTTON);
    EXPECT_EQ(GPaused, 0u);
    Steps(30);
    EXPECT_FALSE(Rider().Client.Pos == Place);
    Tap(SDLK_ESCAPE);
    Click(SECOND_BUTTON);
    EXPECT_EQ(GGameState, GAME_MENU);
    EXPECT_EQ(GPaused, 0u);
    EXPECT_LT(GLevel->Entities.count, 1000u) << "the menu's level";
    // The clock can run out behind the pause, which then stays.
    Click(FIRST_BUTTON);
    Tap(SDLK_ESCAPE);
    GTimeLeft = STEP / 2;
    Steps(1);
    EXPECT_EQ(GGameState, GAME_END);
    Click(FIRST_BUTTON);
    EXPECT_EQ(GGameState, GAME_PLAYING);
    EXPECT_EQ(GPaused, 1u);
}

TEST_F(Flow, ARunEndsBelowTheSlopeOrWhenTheTimeIsBelowZero) {
    Play();
    const float End = -0.8f * GLevel->Params.SizeY;
    GTimeLeft = STEP;
    Steps(1);
    EXPECT_EQ(GGameState, GAME_PLAYING) << "exactly zero is not below";
    EXPECT_EQ(GTimeLeft, 0);
    PutRiderAt(End + 30);
    GTimeLeft = 50;
    Steps(1);
    EXPECT_EQ(GGameState, GAME_PLAYING);
    PutRiderAt(End - 30);
    Steps(1);
    EXPECT_EQ(GGameState, GAME_END);
    const float Left = GTimeLeft;
    Steps(10);
    EXPECT_EQ(GTimeLeft, Left);
}

TEST_F(Flow, TheEndTellsWhatHappenedAndGoesOnFromThere) {
    Play();
    const Vec4 Red = {0.9f, 0.1f, 0.1f, 1};
    const Vec4 Green = {0.1f, 0.9f, 0.1f, 1};
    struct SCase {
        UINT32 Level;
        float Time;
        UINT32 Trees;
        const char* Text;
        Vec4 Color;
        const char* Button;
        UINT32 Next;
    };
    const SCase Cases[] = {
        {1, 0, 25, "You failed to get to the end on time!", Red, "Retry level", 1},
        {4, 5, 39, "You didn't cut enough trees!", Red, "Retry level", 4},
        {0, 5, 20, "You completed the level!", Green, "Continue", 1},
        {4, 5, 40, "You finished the game!", Green, "Restart game", 0},
    };
    for (const SCase& Case : Cases) {
        SCOPED_TRACE(Case.Text);
        EndWith(Case.Level, Case.Time, Case.Trees);
        const std::vector<UINT8> Shown = Overlay();
        EXPECT_TRUE(Shown ==
                    Drawn({Heading(Case.Text, Case.Color), Button(Case.Button, 324), Button("Back to menu", 432)}));
        Click(FIRST_BUTTON);
        EXPECT_EQ(GGameState, GAME_PLAYING);
        EXPECT_EQ(GLevelIndex, Case.Next);
        EXPECT_NEAR(GTimeLeft, GLevels[Case.Next].TimeLimit, 0.1f);
        EXPECT_EQ(GTreesCut, 0u);
    }
    EndWith(2, 5, 99);
    for (const auto& [Down, Color] : {std::pair{false, Vec4{0.8f, 0.9f, 1.0f, 1}}, {true, {0.5f, 0.4f, 0.3f, 1}}}) {
        Mouse(Down, FIRST_BUTTON);
        const std::vector<UINT8> Shown = Overlay();
        EXPECT_TRUE(Shown == Drawn({Heading("You completed the level!", Green), Button("Continue", 324, Color),
                                    Button("Back to menu", 432)}));
    }
    Mouse(false, NO_BUTTON);
    Click(SECOND_BUTTON);
    EXPECT_EQ(GGameState, GAME_MENU);
}

// Under the sanitizer fewer do: its own leak checker looks at the end.
TEST_F(Flow, AHundredLevelsLeaveNothingBehind) {
    constexpr int CHANGES = IsSanitized() ? 10 : 100;
    const auto Change = [](int Times) {
        for (int i = 0; i < Times; ++i) {
            LoadLevel(GLevels[i % LEVEL_COUNT].File);
            PlaceTrees(200);
            GGame->Update(0, STEP);
        }
        DropLevel();
        return GLiveBlocks;
    };
    GGameState = GAME_PLAYING;
    GTimeLeft = 1e6f;
    const INT64 Before = Change(10);
    EXPECT_LT(Change(CHANGES), Before + CHANGES / 2);
    EXPECT_EQ(GActiveBinds.Size(), 0u);
    EXPECT_EQ(GPhyCallbacks.Size(), 0u);
    EXPECT_EQ(GSound.Emitters.Size(), 0u);
}

TEST_F(Flow, EveryScreenLooksAsItWasKept) {
    const auto Shows = [&](const char* Name) {
        GGame->Render(1);
        EXPECT_TRUE(MatchesGolden(Shrunk(ReadWindow()), Name, 1.0));
    };
    Steps(150);
    Shows("screen-logo");
    Tap(SDLK_SPACE);
    Shows("screen-menu");
    Click(FIRST_BUTTON);
    // Drawn and swapped by the click; a swap leaves the picture where it is read from.
    EXPECT_TRUE(MatchesGolden(Shrunk(ReadWindow()), "screen-loading", 1.0));
    LoadLevel(GLevels[0].File);
    SowTrees(GLevels[0].Trees, 1);
    GTimeLeft = 80;
    Steps(90);
    Shows("screen-play");
    Tap(SDLK_ESCAPE);
    Shows("screen-pause");
    EndWith(0, 5, 20);
    Shows("screen-end");
}

} // namespace
