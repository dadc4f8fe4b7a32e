#include "shell/Application.h"

#include "foundation/MemPool.h"
#include "game/IGame.h"
#include "graphics/ShaderLib.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "scene/GLFont.h"
#include "sound/Sound.h"
#include "support/Common.h"

#include <SDL/SDL.h>
#include <unistd.h>

namespace {

struct SStep {
    float Time, Delta;
};

struct STurn {
    std::vector<SStep> Steps;
    float BlendDelta;
};

// What the running case wants of clock and game, and what it saw.
struct SScript {
    std::vector<UINT32> Ticks; // one per reading of the clock: before Init, then at the top of each turn
    std::size_t Reading = 0;
    std::function<void()> OnInit = [] {}, OnUpdate = [] {}, OnRender = [] {};
    std::vector<SStep> Running; // steps of the turn that has no picture yet
    std::vector<STurn> Turns;
} Script;

// Follows the script, prints its stages, and ends the program with the last reading of the clock.
class CScriptedGame : public IGame {
public:
    ~CScriptedGame() override { std::puts("Deleted"); }
    void Init() override {
        std::puts("Init");
        EXPECT_EQ(Script.Reading, 1u) << "the first turn covers the loading";
        Script.OnInit();
    }
    void Free() override { std::puts("Free"); }
    void Update(float Time, float Delta) override {
        Script.Running.push_back({Time, Delta});
        Script.OnUpdate();
    }
    void Render(float BlendDelta) override {
        Script.Turns.push_back({Script.Running, BlendDelta});
        Script.Running.clear();
        Script.OnRender();
        GQuit |= Script.Reading == Script.Ticks.size();
    }
};

UINT32 MakeScriptedGame() {
    std::strcpy(GameName, "ScriptedGameData");
    GGame = new CScriptedGame;
    return 1;
}

class ApplicationTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PlatHasDisplay()) {
            GTEST_SKIP() << "needs a display; ./check starts one";
        }
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        setenv("ALSOFT_DRIVERS", "null", 0); // a machine without a sound card is asked nothing
        GPlatform.Ticks = [] { return Script.Ticks.at(Script.Reading++); };
        GPlatform.ShowError = [](const char* Title, const char* Text) {
            std::fprintf(stderr, "%s\n%s\n", Title, Text);
        };
        SetClock({0, 20});
    }
    void TearDown() override {
        PlatformRestore();
        fs::current_path(StartFolder);
    }

    static void SetClock(const std::vector<UINT32>& Ticks) {
        Script = SScript();
        Script.Ticks = Ticks;
    }

    static int RunGame(GameFactory Factory = MakeScriptedGame) {
        char Name[] = "sloperush";
        char* Args[] = {Name, nullptr};
        return RunApplication(1, Args, Factory);
    }

    const fs::path StartFolder = fs::current_path();
    const fs::path ProgramFolder = fs::read_symlink("/proc/self/exe").parent_path();
};

TEST_F(ApplicationTest, ARunPrintsItsStagesInOrderAndLeavesNothingForTheNext) {
    SEmitter Fading;
    GSound.Fades.Add({&Fading, 0, 1, 0, 1});
    Script.OnUpdate = [] { GKeys[SDLK_w] = GWarpMouse = 1; };
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(RunGame(), 0); }),
              "Starting the game...\nSDL successfully initialized\nInit\nFree\nDumping memory leaks...\n"
              "It ends here...\nDeleted\n");
    EXPECT_FALSE(GGame || GFont || GMemPool || GShaderLib || GPhyWorld || GSound.Enabled ||
                 SDL_WasInit(SDL_INIT_EVERYTHING));
    GSound.Fades.Clear();
    EXPECT_FLOAT_EQ(Fading.Gain, 1.0f / 60) << "a step's sound update";
    SetClock({5000, 5020, 5040});
    Script.OnInit = [] { EXPECT_FALSE(GKeys[SDLK_w] || GWarpMouse || GQuit); };
    EXPECT_EQ(RunGame(), 0);
    EXPECT_EQ(Script.Turns.size(), 2u);
}

TEST_F(ApplicationTest, TheGameStartsInItsFolderWithItsWindow) {
    const fs::path Folder = ProgramFolder / "ScriptedGameData";
    fs::create_directory(Folder);
    fs::path Seen;
    Script.OnInit = [&] {
        const SDL_Surface* Window = SDL_GetVideoSurface();
        EXPECT_TRUE(Window->w == 1024 && Window->h == 576);
        EXPECT_EQ(Window->flags & (SDL_OPENGL | SDL_FULLSCREEN), static_cast<UINT32>(SDL_OPENGL));
        EXPECT_TRUE(GMemPool && GShaderLib && GPhyWorld && GSound.Enabled);
        Seen = fs::current_path();
    };
    RunGame();
    fs::remove(Folder);
    EXPECT_EQ(Seen, Folder);
}

// Over each clock every turn leaves more than nothing and at most one step of what was due, a turn being worth two
// steps at most; steps count their time from the clock of the turn before.
TEST_F(ApplicationTest, StepsTimesAndBlendDeltaFollowTheClock) {
    // Just not and just cut, slow motion, a leap of the clock, readings above half the range, turns without a step.
    std::vector<std::vector<UINT32>> Clocks = {
        {0, 33}, {0, 34}, {0, 500, 1000, 1500, 2000}, {1000, 1034, 1068, 9000, 9020}, {3000000000u, 3000000020u},
        {123456}};
    std::mt19937 Random(7);
    for (int i = 0; i < 300; ++i) {
        Clocks.back().push_back(Clocks.back().back() + 1 + static_cast<UINT32>(Random() % 40));
    }
    for (const auto& Ticks : Clocks) {
        SetClock(Ticks);
        RunGame();
        ASSERT_EQ(Script.Turns.size() + 1, Ticks.size());
        EXPECT_TRUE(Script.Running.empty());
        double Left = 0; // in steps
        for (std::size_t i = 0; i < Script.Turns.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "clock from " << Ticks[0] << " to " << Ticks[1] << ", turn " << i);
            const STurn& Turn = Script.Turns[i];
            Left += std::min((Ticks[i + 1] - Ticks[i]) * 0.06, 2.0) - static_cast<double>(Turn.Steps.size());
            EXPECT_NEAR(Turn.BlendDelta, Left, 1e-4);
            EXPECT_TRUE(Turn.BlendDelta > 0 && Turn.BlendDelta <= 1) << Turn.BlendDelta;
            double Time = Ticks[i] / 1000.0;
            for (const SStep& Step : Turn.Steps) {
                EXPECT_FLOAT_EQ(Step.Time, static_cast<float>(Time));
                EXPECT_EQ(Step.Delta, 1.0f / 60.0f);
                Time += 1.0 / 60.0;
            }
        }
    }
}

TEST_F(ApplicationTest, TheStatusTextTellsTheTurnsTimesAndCountsTheTurnsOfTheLastSecond) {
    const fs::path Folder = ProgramFolder / "ScriptedGameData";
    fs::create_directory(Folder);
    fs::create_directory_symlink(SLOPERUSH_DATA_DIR, Folder / "Data");
    SetClock({1000, 1020, 2030, 2040});
    std::string Text; // the last that a turn finds, of the turn before it
    Script.OnRender = [&] { Text = GFont->Wrapped.CStr(); };
    RunGame();
    fs::remove_all(Folder);
    EXPECT_EQ(Text, "Time: 2.030000\nDelta: 0.033333\nBlendDelta: 0.200000\nFPS: 2");
}

TEST_F(ApplicationTest, ClosingTheWindowAndAltF4EndTheLoopAfterTheRunningTurn) {
    SDL_Event Close = {}, AltF4 = {};
    Close.type = SDL_QUIT;
    AltF4.key = {SDL_KEYDOWN, 0, SDL_PRESSED, {0, SDLK_F4, KMOD_LALT, 0}};
    for (SDL_Event Event : {Close, AltF4}) {
        // In the first turn a single step runs and a whole one is left over, so the second turn has more than one.
        SetClock({0, 34, 68, 102, 136});
        Script.OnRender = [&] { SDL_PushEvent(&Event); };
        EXPECT_EQ(RunGame(), 0);
        ASSERT_EQ(Script.Turns.size(), 2u);
        EXPECT_GE(Script.Turns[1].Steps.size(), 2u);
    }
}

// In a process of its own, since the list of sound drivers is read once.
TEST_F(ApplicationTest, WithoutSoundANoEndsItInOrderBeforeTheFirstTurn) {
    const auto Run = [] {
        setenv("ALSOFT_DRIVERS", "nonesuch", 1);
        GPlatform.AskYesNo = [](const char*, const char*, bool) { return false; };
        std::_Exit(RunGame() + static_cast<int>(Script.Turns.size()));
    };
    EXPECT_EXIT(Run(), testing::ExitedWithCode(0), "");
}

TEST_F(ApplicationTest, AWarpedMouseMeasuresFromTheCentre) {
    Script.OnInit = [] {
        GWarpMouse = 1;
        SDL_Event Event;
        while (SDL_PollEvent(&Event)) {
        }
        Event.motion = {SDL_MOUSEMOTION, 0, 0, 600, 200, 0, 0};
        SDL_PushEvent(&Event);
    };
    RunGame();
    EXPECT_TRUE((GLastMousePos == Vec2{512, 288} && GMousePos == Vec2{600, 200}));
}

TEST_F(ApplicationTest, WithoutAGameItReturnsItsOwnCodeAndOpensNothing) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(RunGame([] { return UINT32(0); }), 45438); }), "");
    EXPECT_EQ(Script.Reading, 0u);
}

// A death test looks at standard error only, so standard output joins it.
TEST_F(ApplicationTest, ARefusedVideoSystemOrWindowIsFatal) {
    const char* const Drivers[][2] = {{"nonesuch", "Error!\n! SDL Initialization error !\nSDL says: .+\n"},
                                      {"dummy", "SDL successfully initialized\n! Video mode error !\n"
                                                "(.|\n)*Error!\n! SDL Video mode error !\nSDL says: .+\n"}};
    const fs::path Folder = ProgramFolder / "FatalStart";
    for (const auto& [Driver, Text] : Drivers) {
        const auto Run = [&] {
            setenv("SDL_VIDEODRIVER", Driver, 1);
            fs::create_directories(Folder / Driver);
            fs::current_path(Folder / Driver);
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::setvbuf(stdout, nullptr, _IONBF, 0);
            RunGame();
        };
        EXPECT_FATAL(Run(), Text);
        EXPECT_TRUE(fs::exists(Folder / Driver / "error.log"));
    }
    fs::remove_all(Folder);
}

TEST(DataFolder, LiesBesideTheExecutable) {
    // Of the last separators of either kind the one that comes first counts.
    const char* const Paths[][2] = {{"/opt/game/bin/sloperush", "/opt/game/bin/SlopeRush\\"},
                                    {"C:\\game\\sloperush.exe", "C:\\game\\SlopeRush\\"},
                                    {"/sloperush", "/SlopeRush\\"},
                                    {"sloperush", "SlopeRush\\"},
                                    {"", "SlopeRush\\"},
                                    {"a\\b/c", "a\\SlopeRush\\"},
                                    {"a/b\\c", "a/SlopeRush\\"},
                                    {"a\\b/c\\d", "a\\b/SlopeRush\\"}};
    for (const auto& [Executable, Folder] : Paths) {
        EXPECT_STREQ(DataFolder(Executable, "SlopeRush").CStr(), Folder) << Executable;
    }
}

} // namespace
