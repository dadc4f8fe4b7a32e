#include "support/Desktop.h"
#include "support/Program.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr double LONGEST_LOAD = 90.0; // seconds; software GL under sanitizers on two busy cores
constexpr double LONGEST_END = 60.0;  // seconds
constexpr std::size_t EMPTY_WINDOW_COLORS = 16;
constexpr int FATAL_STATUS = 222;

// Runs the game from a copy of its build tree, which a case may spoil. In place of the program that shows messages
// stands a script that writes down what it was asked to show and goes on, so that no box waits for a person.
class PlayTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "needs a display with a window manager; ./check starts one";
        std::string Name = (fs::temp_directory_path() / "sloperush-play-XXXXXX").string();
        ASSERT_NE(mkdtemp(Name.data()), nullptr);
        Folder = Name;
        const fs::path Built = SLOPERUSH_EXECUTABLE;
        fs::copy(Built, Folder / "sloperush");
        fs::copy(Built.parent_path() / "SlopeRush", Folder / "SlopeRush", fs::copy_options::recursive);
        fs::create_directory(Folder / "programs");
        std::ofstream(Folder / "programs/zenity")
            << "#!/bin/sh\nprintf '%s\\n' \"$@\" >>'" << Boxes().string() << "'\n";
        fs::permissions(Folder / "programs/zenity", fs::perms::owner_all);
    }
    void TearDown() override {
        Game.reset();
        if (!Folder.empty()) {
            fs::remove_all(Folder);
        }
    }

    fs::path Boxes() const { return Folder / "boxes.txt"; }
    fs::path Data(const std::string& Name) const { return Folder / "SlopeRush/Data" / Name; }
    std::string ErrorLog() const { return ReadFileText(Folder / "SlopeRush/error.log"); }

    // From another directory than the game's own: it has to find its data itself.
    void Start(CProgram::CVariables Variables = {}) {
        const std::string Path = (Folder / "programs").string() + ":" + std::getenv("PATH");
        Variables["PATH"] = Path;
        Variables["ALSOFT_DRIVERS"] = "null";
        Game = std::make_unique<CProgram>(Folder / "sloperush", "/", Folder / "output.txt", Variables);
    }

    // Starts it and waits until the level is on the screen.
    void StartAndSee() {
        Start();
        Window = CWindow::Find("SlopeRush", 60);
        ASSERT_TRUE(Window) << Game->Output();
        for (double Waited = 0.0; CountColors(Window->Picture()) <= EMPTY_WINDOW_COLORS; Waited += 0.5) {
            ASSERT_LT(Waited, LONGEST_LOAD) << "nothing is drawn\n" << Game->Output();
            ASSERT_TRUE(Game->IsRunning()) << Game->Output();
            Wait(0.5);
        }
        Window->Focus();
    }

    // Runs a game that is expected to stop by itself. Such an end takes nothing down, so a leak checker is not asked.
    std::string RunToFatalEnd() {
        Start({{"ASAN_OPTIONS", "detect_leaks=0"}});
        const auto Code = Game->WaitForEnd(LONGEST_LOAD);
        EXPECT_EQ(Code.value_or(-1), FATAL_STATUS) << Game->Output();
        return Game->Output();
    }

    fs::path Folder;
    std::unique_ptr<CProgram> Game;
    std::optional<CWindow> Window;
};

TEST_F(PlayTest, ClosingTheWindowEndsInOrderAndLeavesNoErrorLog) {
    StartAndSee();
    Window->Close();
    EXPECT_EQ(Game->WaitForEnd(LONGEST_END).value_or(-1), 0);
    // The pine tells how it grows, in lines that begin with a blank.
    std::istringstream Lines(Game->Output());
    std::string Printed;
    for (std::string Line; std::getline(Lines, Line);) {
        Printed += Line[0] == ' ' ? "" : Line + "\n";
    }
    EXPECT_EQ(Printed, "Starting the game...\n"
                       "SDL successfully initialized\n"
                       "Dumping memory leaks...\n"
                       "It ends here...\n");
    EXPECT_FALSE(fs::exists(Folder / "SlopeRush/error.log"));
    EXPECT_FALSE(fs::exists(Boxes()));
}

TEST_F(PlayTest, ThePictureStandsStillWithoutInputAndChangesWithEachKey) {
    StartAndSee();
    Wait(1.0);
    CPixels Before = Window->Picture();
    Wait(0.5);
    const double Still = MeanDifference(Before, Window->Picture());
    EXPECT_LT(Still, 1.0);
    for (const char* Key : {"w", "s", "a", "d"}) {
        Before = Window->Picture();
        HoldKey(Key, 1.0);
        EXPECT_GT(MeanDifference(Before, Window->Picture()), 1.0 + 3.0 * Still) << Key;
        Wait(3.0); // the camera coasts to a halt
    }
    EXPECT_TRUE(Game->IsRunning()) << Game->Output();
}

TEST_F(PlayTest, TheMouseTurnsTheViewBothWays) {
    StartAndSee();
    Wait(1.0);
    const CPixels Start = Window->Picture();
    MoveMouse(6, 0, 10);
    Wait(0.5);
    const CPixels Right = Window->Picture();
    EXPECT_GT(MeanDifference(Start, Right), 2.0);
    MoveMouse(0, 6, 10);
    Wait(0.5);
    EXPECT_GT(MeanDifference(Right, Window->Picture()), 2.0);
}

struct SBrokenFile {
    const char* Case;
    const char* File;       // below Data
    const char* Text;       // what stands in it instead; null: it is missing
    const char* Message;    // how the message begins
    const char* MessageEnd; // a later part of it
};

class BrokenDataTest : public PlayTest, public testing::WithParamInterface<SBrokenFile> {};

TEST_P(BrokenDataTest, EndsWithItsMessageOnEachRun) {
    const SBrokenFile& Broken = GetParam();
    ASSERT_TRUE(fs::remove(Data(Broken.File)));
    if (Broken.Text) {
        std::ofstream(Data(Broken.File)) << Broken.Text;
    }
    const std::string Output = RunToFatalEnd();
    EXPECT_EQ(Output.find("It ends here..."), std::string::npos);
    const std::string Once = ErrorLog();
    EXPECT_EQ(Once.find(Broken.Message), 0u) << Once;
    EXPECT_NE(Once.find(Broken.MessageEnd), std::string::npos) << Once;

    RunToFatalEnd();
    EXPECT_EQ(ErrorLog(), Once + Once);

    const std::string Shown = ReadFileText(Boxes());
    EXPECT_NE(Shown.find("Error!\n"), std::string::npos) << Shown;
    EXPECT_NE(Shown.find(Once), std::string::npos) << Shown;
}

INSTANTIATE_TEST_SUITE_P(
    Files, BrokenDataTest,
    testing::Values(SBrokenFile{"MissingLevel", "Levels/Level1.wlm", nullptr,
                                "CLevel::LoadSourceLevel - File read error - Data/Levels/Level1.wlm\n", ""},
                    SBrokenFile{"WrongMagic", "Levels/Level1.wlm", "WLMX\nterrain size=1;1;1 file=x\n",
                                "CLevel::LoadSourceLevel - Wrong file type - Data/Levels/Level1.wlm\n", ""},
                    SBrokenFile{"WrongDefinition", "Levels/Level1.wlm", "WLMF\nriver wide=3\n",
                                "CLevel::LoadLevel - Wrong definition type river in Data/Levels/Level1.wlm\n", ""},
                    SBrokenFile{"ShaderThatDoesNotCompile", "Shaders/FSQuad.psh", "void main() { nonsense; }\n",
                                "-SHADER COMPILE ERROR-\n", "nonsense"}),
    [](const testing::TestParamInfo<SBrokenFile>& Info) { return Info.param.Case; });

} // namespace
