#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {

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
        std::ofstream(Folder / "programs/zenity") << "#!/bin/sh\nprintf '%s\\n' \"$@\" >>'" << Name << "/boxes.txt'\n";
        fs::permissions(Folder / "programs/zenity", fs::perms::owner_all);
        static const std::string Path = std::getenv("PATH");
        setenv("PATH", (Name + "/programs:" + Path).c_str(), 1);
        setenv("ALSOFT_DRIVERS", "null", 1);
    }
    void TearDown() override {
        Game.reset();
        if (!Folder.empty()) {
            fs::remove_all(Folder);
        }
    }

    fs::path Boxes() const { return Folder / "boxes.txt"; }
    fs::path ErrorLog() const { return Folder / "SlopeRush/error.log"; }

    // From another directory than the game's own: it has to find its data itself.
    void Start(const std::string& Variables = "") {
        Game.reset();
        Game = std::make_unique<CProgram>(Folder, "sloperush", Variables);
    }

    // Starts it and waits until the level is on the screen.
    void StartAndSee() {
        Start();
        Window = FindWindow("SlopeRush", 60);
        ASSERT_FALSE(Window.empty()) << Game->Output();
        for (double Waited = 0.0; CountColors(PictureOf(Window)) <= EMPTY_WINDOW_COLORS; Waited += 0.5) {
            ASSERT_LT(Waited, LONGEST_LOAD) << "nothing is drawn\n" << Game->Output();
            ASSERT_TRUE(Game->IsRunning()) << Game->Output();
            Wait(0.5);
        }
        Shell("xdotool windowfocus --sync " + Window);
    }

    // Twice, with a message that begins and goes on like that in the log and in the box. Such an end takes nothing
    // down, so a leak checker is not asked.
    void ExpectFatalEnd(const std::string& Message, const std::string& More) {
        std::string Once;
        for (int Run = 0; Run < 2; ++Run) {
            Start("ASAN_OPTIONS=detect_leaks=0");
            EXPECT_EQ(Game->WaitForEnd(LONGEST_LOAD).value_or(-1), FATAL_STATUS) << Game->Output();
            EXPECT_EQ(Game->Output().find("It ends here..."), std::string::npos);
            const std::string Log = ReadText(ErrorLog());
            Once = Run ? Once : Log;
            EXPECT_EQ(Log, Run ? Once + Once : Once);
        }
        EXPECT_EQ(Once.find(Message), 0u) << Once;
        EXPECT_NE(Once.find(More), std::string::npos) << Once;
        const std::string Shown = ReadText(Boxes());
        EXPECT_NE(Shown.find("Error!\n"), std::string::npos) << Shown;
        EXPECT_NE(Shown.find(Once), std::string::npos) << Shown;
    }

    fs::path Folder;
    std::unique_ptr<CProgram> Game;
    std::string Window;
};

TEST_F(PlayTest, ClosingTheWindowEndsInOrderAndLeavesNoErrorLog) {
    StartAndSee();
    // The window manager takes this key and asks the window to close, as its close button does.
    Shell("xdotool windowfocus --sync " + Window + " key --clearmodifiers alt+F4");
    EXPECT_EQ(Game->WaitForEnd(LONGEST_END).value_or(-1), 0);
    // The pine tells how it grows, in lines that begin with a blank.
    std::istringstream Lines(Game->Output());
    std::string Printed;
    for (std::string Line; std::getline(Lines, Line);) {
        Printed += Line[0] == ' ' ? "" : Line + "\n";
    }
    EXPECT_EQ(Printed, "Starting the game...\nSDL successfully initialized\nDumping memory leaks...\n"
                       "It ends here...\n");
    EXPECT_FALSE(fs::exists(ErrorLog()) || fs::exists(Boxes()));
}

TEST_F(PlayTest, ThePictureStandsStillWithoutInputAndChangesWithEachKeyAndTheMouse) {
    StartAndSee();
    Wait(1.0);
    CPixels Before = PictureOf(Window);
    Wait(0.5);
    const double Still = MeanDifference(Before, PictureOf(Window));
    EXPECT_LT(Still, 1.0);
    for (const char* Key : {"w", "s", "a", "d"}) {
        Before = PictureOf(Window);
        HoldKey(Key, 1.0);
        EXPECT_GT(MeanDifference(Before, PictureOf(Window)), 1.0 + 3.0 * Still) << Key;
        Wait(3.0); // the camera coasts to a halt
    }
    for (const auto& [X, Y] : {std::pair{6, 0}, {0, 6}}) {
        Before = PictureOf(Window);
        MoveMouse(X, Y, 10);
        Wait(0.5);
        EXPECT_GT(MeanDifference(Before, PictureOf(Window)), 2.0) << X << ' ' << Y;
    }
    EXPECT_TRUE(Game->IsRunning()) << Game->Output();
}

TEST_F(PlayTest, MissingLevelEndsWithItsMessageOnEachRun) {
    fs::remove(Folder / "SlopeRush/Data/Levels/Menu.wlm");
    ExpectFatalEnd("CLevel::LoadSourceLevel - File read error - Data/Levels/Menu.wlm\n", "");
}

TEST_F(PlayTest, AShaderThatDoesNotCompileEndsWithItsLogOnEachRun) {
    std::ofstream(Folder / "SlopeRush/Data/Shaders/FSQuad.psh") << "void main() { nonsense; }\n";
    ExpectFatalEnd("-SHADER COMPILE ERROR-\n", "nonsense");
}

} // namespace
