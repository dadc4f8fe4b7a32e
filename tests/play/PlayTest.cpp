// Every screen, by real keys and clicks, and the ends that the program comes to.
#include "play/PlayFixture.h"

#include <sstream>

namespace {

using Play = PlayFixture;

TEST_F(Play, ARideGoesFromTheLogoThroughPauseAndMenuToAnOrderlyEnd) {
    ASSERT_NO_FATAL_FAILURE(StartToLogo());
    // Its white rim and letters come down over the evening.
    ASSERT_TRUE(Soon([&] { return TextColumns(TITLE, PLAIN).size() > 250; })) << "the logo";
    ASSERT_TRUE(HoldUntil("space", [&] { return SeesTitle(); }));
    EXPECT_TRUE(Says("Start", FIRST_BUTTON) && Says("Quit", SECOND_BUTTON));
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    const CPixels Before = PictureOf(Window, SCENE);
    const auto HasMoved = [&] { return MeanDifference(PictureOf(Window, SCENE), Before) > 10; };
    EXPECT_TRUE(HoldUntil("Up", HasMoved));
    EXPECT_FALSE(StandsStill());
    EXPECT_TRUE(HoldUntil("Escape", [&] { return StandsStill(); }));
    EXPECT_TRUE(StandsStill());
    EXPECT_TRUE(Click(FIRST_BUTTON, [&] { return !StandsStill(); })) << "Continue";
    ExpectOrderlyEnd();
}

// Far from the end of the slope: steering pushes him a little, for as long as a slow machine needs to show it.
TEST_F(Play, KeysTurnTheRider) {
    WriteQuickLevels("gravr=0", "", "0;0;1500");
    ASSERT_NO_FATAL_FAILURE(StartToRide());
    CPixels Before = PictureOf(Window, SCENE);
    EXPECT_TRUE(HoldUntil("Left", [&] { return ShiftSince(Before) > 8; })) << "the world goes to the right";
    Before = PictureOf(Window, SCENE);
    EXPECT_TRUE(HoldUntil("Right", [&] { return ShiftSince(Before) < -8; }));
    EXPECT_TRUE(SeesRide()) << "no tree is cut yet";
}

TEST_F(Play, FailedAndWonLevelsLeadThroughTheGameAndToItsBeginning) {
    WriteQuickLevels();
    ASSERT_NO_FATAL_FAILURE(StartToRide());
    ASSERT_TRUE(HoldUntil("Up", [&] { return Says("You didn't cut enough trees!", HEADING, RED); }));
    EXPECT_TRUE(Says("Retry level", FIRST_BUTTON) && Says("Back to menu", SECOND_BUTTON));
    for (const std::string Quota : {"20", "25", "30", "35", "40"}) {
        ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return Says("Trees cut: 0/" + Quota, TREES, RED); })) << Quota;
        ASSERT_TRUE(HoldUntil("space", [&] { return Says("Trees cut: 40/" + Quota, TREES, GREEN); })) << Quota;
        const bool Last = Quota == "40";
        const char* const Result = Last ? "You finished the game!" : "You completed the level!";
        ASSERT_TRUE(HoldUntil("Up", [&] { return Says(Result, HEADING, GREEN); })) << Quota;
        EXPECT_TRUE(Says(Last ? "Restart game" : "Continue", FIRST_BUTTON)) << Quota;
    }
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    ExpectOrderlyEnd();
}

TEST_F(Play, ClosingTheWindowEndsInOrder) {
    ASSERT_NO_FATAL_FAILURE(StartToLogo());
    // The window manager takes this key and asks the window to close, as its close button does.
    Shell("xdotool key --clearmodifiers alt+F4");
    EXPECT_EQ(Game->WaitForEnd(LONGEST), 0);
    // The pine tells how it grows, in lines that begin with a blank.
    std::istringstream Lines(Game->Output());
    std::string Printed;
    for (std::string Line; std::getline(Lines, Line);) {
        Printed += Line[0] == ' ' ? "" : Line + "\n";
    }
    EXPECT_EQ(Printed, "Starting the game...\nSDL successfully initialized\nDumping memory leaks...\n"
                       "It ends here...\n");
    EXPECT_EQ(ErrorLog() + Boxes(), "");
}

TEST_F(Play, WithoutASoundDeviceItAsksAndPlaysOnOrEnds) {
    WriteQuickLevels();
    Answer(1);
    Start("ALSOFT_DRIVERS=none");
    EXPECT_EQ(Game->WaitForEnd(LONGEST), 0) << "No";
    EXPECT_NE(Boxes().find("alcOpenDevice failed - default device could not be opened\n\n"
                           "Do you want to continue without sound?\n"),
              std::string::npos)
        << Boxes();
    Answer(0);
    ASSERT_NO_FATAL_FAILURE(StartToRide("ALSOFT_DRIVERS=none"));
    EXPECT_TRUE(HoldUntil("space", [&] { return Says("Trees cut: 40/20", TREES, GREEN); }));
    ExpectOrderlyEnd();
}

TEST_F(Play, WithoutTheFontsTableItPlaysUnlettered) {
    fs::remove(Data("Engine/Font.dat"));
    ASSERT_NO_FATAL_FAILURE(StartToMenu());
    EXPECT_TRUE(TextColumns(FIRST_BUTTON.Part, PLAIN).empty());
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return !SeesTitle() && !StandsStill(); })) << "the rider slides";
    ExpectOrderlyEnd();
}

// A rider in the menu loads the sounds at the start. The log grows with each run.
TEST_F(Play, MissingAndDamagedFilesEndWithTheirWords) {
    std::ofstream(Data("Levels/Menu.wlm"), std::ios::app) << "entity Rider Position=0;0;2000\n";
    // Its name, what stands in it now, if it is not missing, how the message begins, and a word of it.
    const char* const Damages[][4] = {
        {"Levels/Menu.wlm", nullptr, "CLevel::LoadSourceLevel - File read error - Data/Levels/Menu.wlm\n", ""},
        {"Shaders/FSQuad.psh", "void main() { nonsense; }\n", "-SHADER COMPILE ERROR-\n", "nonsense"},
        {"Music/rush.ogg", nullptr, "Ogg file Data/Music/rush.ogg is not found or accessible\n", ""},
        {"Music/rush.ogg", "OggS", "Ogg loader could not parse the file (Data/Music/rush.ogg)", "damaged"},
        {"Sounds/sword-hit.wav", nullptr, "Trying to load a bad wave file - Data/Sounds/sword-hit.wav\n", "exist"},
        {"Sounds/snow-slide-1.wav", "RIFF", "Trying to load a bad wave file - Data/Sounds/snow-slide-1.wav\n", ""},
    };
    std::string Log;
    for (const auto& [Name, Content, Message, More] : Damages) {
        SCOPED_TRACE(Name);
        const fs::path File = Data(Name);
        const std::string Whole = ReadText(File);
        Content ? void(std::ofstream(File) << Content) : void(fs::remove(File));
        Start("ASAN_OPTIONS=detect_leaks=0"); // such an end takes nothing down
        EXPECT_EQ(Game->WaitForEnd(LONGEST).value_or(-1), FATAL_STATUS) << Game->Output();
        EXPECT_EQ(Game->Output().find("It ends here..."), std::string::npos);
        const std::string Before = std::exchange(Log, ErrorLog());
        EXPECT_EQ(Log.find(Before), 0u);
        EXPECT_EQ(Log.find(Message, Before.size()), Before.size()) << Log;
        EXPECT_NE(Log.find(More, Before.size()), std::string::npos) << Log;
        EXPECT_NE(Boxes().find("Error!\n--text\n" + Log.substr(Before.size())), std::string::npos) << Log;
        std::ofstream(File, std::ios::binary) << Whole;
    }
}

TEST_F(Play, WithoutTheFontsPictureACheckStopsIt) {
    std::ofstream(Data("Engine/Font.tga")) << "no picture";
    Start();
    EXPECT_EQ(Game->WaitForEnd(LONGEST), 128 + SIGABRT);
    EXPECT_NE(Game->Output().find("Assertion failed: FontTex, file GLFont"), std::string::npos) << Game->Output();
}

} // namespace
