#include "shell/Application.h"

#include "foundation/Camera.h"
#include "foundation/Diagnostics.h"
#include "foundation/MemPool.h"
#include "game/IGame.h"
#include "graphics/ShaderLib.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "platform/Platform.h"

#include <GL/glew.h>
#include <SDL/SDL.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// One call of the game by the shell.
struct SCall {
    enum EKind { UPDATE, RENDER } Kind;
    float First;  // Time of an update, BlendDelta of a picture
    float Second; // Delta of an update
};

// What the running case wants of clock and game, and what it saw.
struct SScript {
    std::vector<UINT32> Ticks; // one per reading of the clock: before Init, then at the top of each turn
    std::size_t Reading = 0;
    std::function<void()> OnInit, OnUpdate, OnRender;
    std::vector<SCall> Calls;
    std::vector<std::size_t> StepsAfterTurn; // the sum of updates after each turn
    std::size_t Updates = 0;
} Script;

UINT32 ScriptedTicks() {
    return Script.Ticks.at(Script.Reading++);
}

void Call(const std::function<void()>& Hook) {
    if (Hook) {
        Hook();
    }
}

// Follows the script, prints what it is asked to do, and ends the program with the last reading of the clock.
class CScriptedGame : public IGame {
public:
    ~CScriptedGame() override { std::puts("Deleted"); }
    void Init() override {
        std::puts("Init");
        Call(Script.OnInit);
    }
    void Free() override { std::puts("Free"); }
    void Update(float Time, float Delta) override {
        Script.Calls.push_back({SCall::UPDATE, Time, Delta});
        ++Script.Updates;
        Call(Script.OnUpdate);
    }
    void Render(float BlendDelta) override {
        Script.Calls.push_back({SCall::RENDER, BlendDelta, 0.0f});
        Script.StepsAfterTurn.push_back(Script.Updates);
        Call(Script.OnRender);
        if (Script.Reading == Script.Ticks.size()) {
            GQuit = 1;
        }
    }
};

constexpr const char* TEST_GAME_NAME = "ScriptedGameData";

UINT32 MakeScriptedGame() {
    std::strcpy(GameName, TEST_GAME_NAME);
    GGame = new CScriptedGame;
    return 1;
}

UINT32 MakeNoGame() {
    return 0;
}

void PrintError(const char* Title, const char* Text) {
    std::fprintf(stderr, "%s\n%s\n", Title, Text);
}

void PushEvent(UINT8 Type, SDLKey Key = SDLK_UNKNOWN, int Modifiers = 0) {
    SDL_Event Event = {};
    Event.type = Type;
    if (Type == SDL_KEYDOWN) {
        Event.key.keysym.sym = Key;
        Event.key.keysym.mod = static_cast<SDLMod>(Modifiers);
    }
    SDL_PushEvent(&Event);
}

int RunGame(GameFactory Factory = MakeScriptedGame) {
    char Name[] = "sloperush";
    char* Args[] = {Name, nullptr};
    return RunApplication(1, Args, Factory);
}

// Times of the updates in the order of the calls.
std::vector<float> UpdateTimes() {
    std::vector<float> Times;
    for (const SCall& Seen : Script.Calls) {
        if (Seen.Kind == SCall::UPDATE) {
            Times.push_back(Seen.First);
        }
    }
    return Times;
}

class ApplicationTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PlatHasDisplay()) {
            GTEST_SKIP() << "needs a display; ./check starts one";
        }
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        Script = SScript();
        Script.Ticks = {0, 20};
        GPlatform.Ticks = ScriptedTicks;
        GPlatform.ShowError = PrintError;
        StartFolder = std::filesystem::current_path();
    }
    void TearDown() override {
        PlatformRestore();
        if (!StartFolder.empty()) {
            std::filesystem::current_path(StartFolder);
        }
    }

    std::filesystem::path StartFolder;
};

TEST_F(ApplicationTest, ARunEndsWithZeroAndPrintsItsStagesInOrder) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunGame(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Starting the game...\n"
                                                      "SDL successfully initialized\n"
                                                      "Init\n"
                                                      "Free\n"
                                                      "Dumping memory leaks...\n"
                                                      "It ends here...\n"
                                                      "Deleted\n");
    EXPECT_EQ(GGame, nullptr);
}

TEST_F(ApplicationTest, NothingIsLeftBehindARun) {
    RunGame();
    EXPECT_EQ(GGame, nullptr);
    EXPECT_EQ(GMemPool, nullptr);
    EXPECT_EQ(GShaderLib, nullptr);
    EXPECT_EQ(GPhyWorld, nullptr);
    EXPECT_EQ(SDL_WasInit(SDL_INIT_EVERYTHING), 0u);
}

TEST_F(ApplicationTest, ASecondRunInTheSameProcessStartsFresh) {
    Script.OnUpdate = [] { GKeys[SDLK_w] = GWarpMouse = 1; };
    EXPECT_EQ(RunGame(), 0);
    Script = SScript();
    Script.Ticks = {5000, 5020, 5040};
    bool Fresh = false;
    Script.OnInit = [&] { Fresh = !GKeys[SDLK_w] && !GWarpMouse && !GQuit; };
    EXPECT_EQ(RunGame(), 0);
    EXPECT_TRUE(Fresh);
    EXPECT_EQ(Script.StepsAfterTurn, (std::vector<std::size_t>{1, 2}));
}

TEST_F(ApplicationTest, ServicesAndDrawingStateAreUpWhenTheGameStarts) {
    bool Services = false;
    GLint DepthFunc = 0, FrontFace = 0, Source = 0, Target = 0;
    GLfloat Clear[4] = {};
    Script.OnInit = [&] {
        Services = GMemPool && GShaderLib && GPhyWorld && glIsEnabled(GL_DEPTH_TEST) && glIsEnabled(GL_CULL_FACE) &&
                   glIsEnabled(GL_VERTEX_ARRAY);
        glGetIntegerv(GL_DEPTH_FUNC, &DepthFunc);
        glGetIntegerv(GL_FRONT_FACE, &FrontFace);
        glGetIntegerv(GL_BLEND_SRC, &Source);
        glGetIntegerv(GL_BLEND_DST, &Target);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, Clear);
    };
    RunGame();
    EXPECT_TRUE(Services);
    EXPECT_EQ(DepthFunc, GL_LEQUAL);
    EXPECT_EQ(FrontFace, GL_CW);
    EXPECT_EQ(Source, GL_SRC_ALPHA);
    EXPECT_EQ(Target, GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_FLOAT_EQ(Clear[0], 0.2f);
    EXPECT_FLOAT_EQ(Clear[1], 0.3f);
    EXPECT_FLOAT_EQ(Clear[2], 0.4f);
    EXPECT_FLOAT_EQ(Clear[3], 1.0f);
}

TEST_F(ApplicationTest, TheWindowHasTheFixedSizeAndCanDraw) {
    int Width = 0, Height = 0;
    bool OpenGl = false;
    Script.OnInit = [&] {
        const SDL_Surface* Window = SDL_GetVideoSurface();
        Width = Window->w;
        Height = Window->h;
        OpenGl = (Window->flags & SDL_OPENGL) && !(Window->flags & SDL_FULLSCREEN);
    };
    RunGame();
    EXPECT_EQ(Width, 1024);
    EXPECT_EQ(Height, 576);
    EXPECT_TRUE(OpenGl);
}

TEST_F(ApplicationTest, TheGameRunsInTheFolderOfItsNameBesideTheExecutable) {
    const auto Folder = std::filesystem::read_symlink("/proc/self/exe").parent_path() / TEST_GAME_NAME;
    std::filesystem::create_directory(Folder);
    std::filesystem::path Seen;
    Script.OnInit = [&] { Seen = std::filesystem::current_path(); };
    RunGame();
    std::filesystem::current_path(StartFolder);
    std::filesystem::remove(Folder);
    EXPECT_EQ(Seen, Folder);
}

TEST_F(ApplicationTest, ALongTurnIsCutAndALeftOverWholeStepDoesNotRun) {
    Script.Ticks = {1000, 6000};
    RunGame();
    // A thirtieth of a second is two steps to the last bit: the second one is not strictly above the step.
    ASSERT_EQ(Script.Calls.size(), 2u);
    EXPECT_EQ(Script.Calls[0].Kind, SCall::UPDATE);
    EXPECT_EQ(Script.Calls[1].Kind, SCall::RENDER);
    EXPECT_EQ(Script.Calls[1].First, 1.0f);
}

TEST_F(ApplicationTest, TheTurnIsCutFromAThirtiethOfASecondOn) {
    Script.Ticks = {0, 33};
    RunGame();
    EXPECT_EQ(Script.Updates, 1u);
    EXPECT_NEAR(Script.Calls.back().First, 33 * 0.06 - 1.0, 1e-5);
    Script = SScript();
    Script.Ticks = {0, 34};
    RunGame();
    EXPECT_EQ(Script.Updates, 1u);
    EXPECT_EQ(Script.Calls.back().First, 1.0f);
}

TEST_F(ApplicationTest, AShortTurnRendersWithoutAStepAndReadsNoEvent) {
    Script.Ticks = {0, 10, 20};
    Script.OnInit = [] { PushEvent(SDL_KEYDOWN, SDLK_w); };
    std::vector<int> KeySeen;
    Script.OnRender = [&] { KeySeen.push_back(GKeys[SDLK_w]); };
    RunGame();
    EXPECT_EQ(Script.StepsAfterTurn, (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(KeySeen, (std::vector<int>{0, 1}));
}

TEST_F(ApplicationTest, StepsAndBlendDeltaFollowTheClockOverManyTurns) {
    std::mt19937 Random(7);
    std::uniform_int_distribution<UINT32> TurnLength(1, 33); // never long enough to be cut
    Script.Ticks = {123456};
    for (int i = 0; i < 300; ++i) {
        Script.Ticks.push_back(Script.Ticks.back() + TurnLength(Random));
    }
    RunGame();
    std::size_t Turn = 0;
    for (const SCall& Seen : Script.Calls) {
        if (Seen.Kind != SCall::RENDER) {
            EXPECT_EQ(Seen.Second, 1.0f / 60.0f);
            continue;
        }
        const double Due = (Script.Ticks[Turn + 1] - Script.Ticks[0]) * 0.06; // steps in the time so far
        const double Left = Due - static_cast<double>(Script.StepsAfterTurn[Turn]);
        EXPECT_NEAR(Seen.First, Left, 1e-4) << "turn " << Turn;
        EXPECT_LE(Seen.First, 1.0f) << "turn " << Turn;
        EXPECT_GT(Seen.First, 0.0f) << "turn " << Turn;
        ++Turn;
    }
    EXPECT_EQ(Turn, 300u);
}

TEST_F(ApplicationTest, SlowTurnsRunInSlowMotion) {
    Script.Ticks = {0};
    for (UINT32 i = 1; i <= 30; ++i) {
        Script.Ticks.push_back(i * 500);
    }
    RunGame();
    // Thirty cut turns are one second of the game, but for the step that may be left over at either end.
    EXPECT_NEAR(static_cast<double>(Script.Updates), 59.5, 1.0);
}

TEST_F(ApplicationTest, TimeIsTheClockOfTheLastTurnPlusTheStepsOfThisOne) {
    Script.Ticks = {1000, 1034, 1068, 9000, 9020};
    RunGame();
    const std::vector<float> Times = UpdateTimes();
    // The last turn is short and ran what was left over too: its first step stands at the clock of the turn before.
    const std::size_t LastTurn = Script.StepsAfterTurn[2];
    ASSERT_LT(LastTurn, Times.size());
    EXPECT_FLOAT_EQ(Times[0], 1.0f);
    EXPECT_FLOAT_EQ(Times[1], 1.034f);
    EXPECT_FLOAT_EQ(Times[2], 1.034f + 1.0f / 60.0f);
    EXPECT_FLOAT_EQ(Times[Script.StepsAfterTurn[1]], 1.068f);
    EXPECT_FLOAT_EQ(Times[LastTurn], 9.0f);
}

TEST_F(ApplicationTest, ClockReadingsAboveHalfTheRangeStayPositive) {
    Script.Ticks = {3000000000u, 3000000020u};
    RunGame();
    ASSERT_EQ(Script.Updates, 1u);
    EXPECT_FLOAT_EQ(Script.Calls[0].First, 3000000.0f);
}

TEST_F(ApplicationTest, TheFirstTurnCoversTheLoading) {
    Script.Ticks = {0, 12};
    bool ClockReadBeforeInit = false;
    Script.OnInit = [&] { ClockReadBeforeInit = Script.Reading == 1; };
    RunGame();
    EXPECT_TRUE(ClockReadBeforeInit);
}

class QuitEventTest : public ApplicationTest, public testing::WithParamInterface<bool> {};

TEST_P(QuitEventTest, EndsTheLoopAfterTheRunningTurn) {
    Script.Ticks = {0, 34, 68, 102, 136};
    // In the first turn a single step runs and a whole one is left over, so the second turn has more than one.
    Script.OnRender = [] {
        if (Script.StepsAfterTurn.size() == 1) {
            PushEvent(GetParam() ? SDL_KEYDOWN : SDL_QUIT, SDLK_F4, KMOD_LALT);
        }
    };
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunGame(), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("It ends here...\n"), std::string::npos);
    EXPECT_EQ(Script.StepsAfterTurn.size(), 2u);
    EXPECT_GE(Script.StepsAfterTurn[1], 3u);
}
INSTANTIATE_TEST_SUITE_P(WindowClosedAndAltF4, QuitEventTest, testing::Bool());

TEST_F(ApplicationTest, AWarpedMouseMeasuresFromTheCentre) {
    Vec2 Last = {}, Now = {};
    Script.OnInit = [] {
        GWarpMouse = 1;
        SDL_Event Event;
        while (SDL_PollEvent(&Event)) {
        }
        Event = {};
        Event.type = SDL_MOUSEMOTION;
        Event.motion.x = 600;
        Event.motion.y = 200;
        SDL_PushEvent(&Event);
    };
    Script.OnUpdate = [&] {
        Last = GLastMousePos;
        Now = GMousePos;
    };
    RunGame();
    EXPECT_EQ(Last.x, 512.0f);
    EXPECT_EQ(Last.y, 288.0f);
    EXPECT_EQ(Now.x, 600.0f);
    EXPECT_EQ(Now.y, 200.0f);
}

TEST_F(ApplicationTest, WithoutAGameItReturnsItsOwnCodeAndOpensNothing) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunGame(MakeNoGame), 45438);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(SDL_WasInit(SDL_INIT_EVERYTHING), 0u);
    EXPECT_EQ(Script.Reading, 0u);
}

// A run that is expected to die: in a folder of its own for error.log, with standard output joined to standard error,
// which is what a death test looks at.
void RunToItsEnd(const char* VideoDriver, const std::filesystem::path& Folder) {
    setenv("SDL_VIDEODRIVER", VideoDriver, 1);
    std::filesystem::current_path(Folder);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    RunGame();
}

class FatalStartTest : public ApplicationTest {
protected:
    void SetUp() override {
        ApplicationTest::SetUp();
        const char* Case = testing::UnitTest::GetInstance()->current_test_info()->name();
        Folder = std::filesystem::read_symlink("/proc/self/exe").parent_path() / Case;
        std::filesystem::create_directory(Folder);
    }
    void TearDown() override {
        ApplicationTest::TearDown();
        std::filesystem::remove_all(Folder);
    }

    std::filesystem::path Folder;
};

constexpr int FATAL_STATUS = 222; // what exit(0xBADDC0DE) comes out as

TEST_F(FatalStartTest, AVideoSystemThatDoesNotExist) {
    EXPECT_EXIT(RunToItsEnd("nonesuch", Folder), testing::ExitedWithCode(FATAL_STATUS),
                "Error!\n! SDL Initialization error !\nSDL says: .+\n");
}

TEST_F(FatalStartTest, AWindowWithoutOpenGl) {
    EXPECT_EXIT(RunToItsEnd("dummy", Folder), testing::ExitedWithCode(FATAL_STATUS),
                "SDL successfully initialized\n! Video mode error !\n"
                "(.|\n)*Error!\n! SDL Video mode error !\nSDL says: .+\n");
    EXPECT_TRUE(std::filesystem::exists(Folder / "error.log"));
}

struct SFolderCase {
    const char* Case;
    const char* Executable;
    const char* Folder;
};

class DataFolderTest : public testing::TestWithParam<SFolderCase> {};

TEST_P(DataFolderTest, LiesBesideTheExecutable) {
    EXPECT_STREQ(DataFolder(GetParam().Executable, "SlopeRush").CStr(), GetParam().Folder);
}

INSTANTIATE_TEST_SUITE_P(Paths, DataFolderTest,
                         testing::Values(SFolderCase{"Slashes", "/opt/game/bin/sloperush", "/opt/game/bin/SlopeRush\\"},
                                         SFolderCase{"Backslashes", "C:\\game\\sloperush.exe", "C:\\game\\SlopeRush\\"},
                                         SFolderCase{"Relative", "./sloperush", "./SlopeRush\\"},
                                         SFolderCase{"AtTheRoot", "/sloperush", "/SlopeRush\\"},
                                         SFolderCase{"NoSeparator", "sloperush", "SlopeRush\\"},
                                         SFolderCase{"Empty", "", "SlopeRush\\"},
                                         // Of the last separators of either kind the one that comes first counts.
                                         SFolderCase{"BackslashFirst", "a\\b/c", "a\\SlopeRush\\"},
                                         SFolderCase{"SlashFirst", "a/b\\c", "a/SlopeRush\\"},
                                         SFolderCase{"Mixed", "a\\b/c\\d", "a\\b/SlopeRush\\"}),
                         [](const testing::TestParamInfo<SFolderCase>& Info) { return Info.param.Case; });

} // namespace
