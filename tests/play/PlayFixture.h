// The game in the hands of a player: its screens known by their texts, which are read from the window, and levels that
// are won or lost within a second.
//
// Each case runs the program from a copy of its build tree, which it may change. In place of the program that shows
// messages stands a script that writes down what it was asked to show, so that no box waits for a person. Nothing goes
// by the clock: the game slows down on a slow machine, so a case waits until it sees what it waits for.
#pragma once

#include "support/Desktop.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

using CColor = std::array<int, 3>;
constexpr CColor PLAIN = {230, 230, 230}, PRESSED = {128, 102, 77}, RED = {230, 32, 26}, GREEN = {38, 224, 26};

// Where a text stands: centred in the part, or with its left edge at Left.
struct STextPlace {
    SPart Part;
    int Size; // height of a line
    bool Centred = true;
    int Left = 50;
};
constexpr STextPlace FIRST_BUTTON = {{341, 324, 341, 72}, 42}, SECOND_BUTTON = {{341, 432, 341, 72}, 42};
constexpr STextPlace HEADING = {{212, 216, 600, 30}, 30}, TREES = {{40, 50, 300, 23}, 24, false};
constexpr SPart TITLE = {224, 0, 576, 288};
constexpr SPart SCENE = {0, 110, 1024, 100}; // below the HUD and above the menus

class PlayFixture : public testing::Test {
protected:
    static constexpr double LONGEST = 90.0; // seconds; software GL under sanitizers on two busy cores
    static constexpr int FATAL_STATUS = 222;

    void SetUp() override {
        ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "needs a display with a window manager; ./check starts one";
        std::string Name = (fs::temp_directory_path() / "sloperush-play-XXXXXX").string();
        ASSERT_NE(mkdtemp(Name.data()), nullptr);
        Folder = Name;
        const fs::path Built = SLOPERUSH_EXECUTABLE;
        fs::copy(Built, Folder / "sloperush");
        fs::copy(Built.parent_path() / "SlopeRush", Folder / "SlopeRush", fs::copy_options::recursive);
        fs::create_directory(Folder / "programs");
        Answer(0);
        static const std::string Path = std::getenv("PATH");
        setenv("PATH", (Name + "/programs:" + Path).c_str(), 1);
        setenv("ALSOFT_DRIVERS", "null", 1);
        const std::string Table = ReadText(Data("Engine/Font.dat"));
        ASSERT_GE(Table.size(), 273u);
        const double Cell = static_cast<unsigned char>(Table[8]) + 256.0 * static_cast<unsigned char>(Table[9]);
        std::transform(Table.begin() + 17, Table.begin() + 145, Widths.begin(), [=](char w) { return w / Cell; });
    }
    void TearDown() override {
        Game.reset();
        fs::remove_all(Folder);
    }

    std::string Boxes() const { return ReadText(Folder / "boxes.txt"); }
    std::string ErrorLog() const { return ReadText(Folder / "SlopeRush/error.log"); }
    fs::path Data(const std::string& Name) const { return Folder / "SlopeRush/Data" / Name; }

    // What the box program's exit code will be: 0 is Yes, 1 is No.
    void Answer(int Code) const {
        const fs::path Script = Folder / "programs/zenity";
        std::ofstream(Script) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >>" << Folder / "boxes.txt"
                              << "\nexit " << Code << "\n";
        fs::permissions(Script, fs::perms::owner_all);
    }

    // From another directory than the game's own: it has to find its data itself. The window of a game before it must
    // be gone, or it would be taken for this one's.
    void Start(const std::string& Variables = "") {
        Game.reset();
        EXPECT_TRUE(Soon([] { return Shell("xdotool search --onlyvisible --name '^SlopeRush$'").empty(); }));
        Game = std::make_unique<CProgram>(Folder, "sloperush", Variables);
    }
    void StartToLogo(const std::string& Variables = "") {
        Start(Variables);
        const CPixels Empty(std::size_t{3} * SCENE.Width * SCENE.Height);
        ASSERT_TRUE(Soon([&] {
            Window = FindWindow("SlopeRush", 10);
            const CPixels Picture = PictureOf(Window, SCENE);
            return Picture.size() == Empty.size() && MeanDifference(Picture, Empty) > 5;
        })) << Game->Output();
        Shell("timeout 10 xdotool windowfocus --sync " + Window);
        MoveMouse(Window, 900, 500);
    }
    void StartToMenu(const std::string& Variables = "") {
        ASSERT_NO_FATAL_FAILURE(StartToLogo(Variables));
        ASSERT_TRUE(HoldUntil("space", [&] { return SeesTitle(); }));
    }
    void StartToRide(const std::string& Variables = "") {
        ASSERT_NO_FATAL_FAILURE(StartToMenu(Variables));
        ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    }
    // Through the pause. In quick levels the rider rests by himself, but the button's text is legible; on snow it is
    // not, but there everything moves until the pause.
    void GoBackToMenu() {
        const auto IsPaused = [&] { return QuickLevels ? Says("Back to menu", SECOND_BUTTON) : StandsStill(); };
        ASSERT_TRUE(HoldUntil("Escape", IsPaused));
        ASSERT_TRUE(Click(SECOND_BUTTON, [&] { return SeesTitle(); }));
    }
    void ExpectOrderlyEnd() {
        ASSERT_NO_FATAL_FAILURE(GoBackToMenu());
        ASSERT_TRUE(Click(SECOND_BUTTON, [&] { return !Game->IsRunning(); })) << "Quit";
        EXPECT_EQ(Game->WaitForEnd(0), 0) << Game->Output();
        EXPECT_EQ(ErrorLog(), "");
    }

    // Levels without ground: nothing is heard but the rider's stroke, and a short push leads over the end of the slope.
    // Forty trees, as many as the largest quota, stand in reach at one place; they are small and quick to draw.
    void WriteQuickLevels(const std::string& MoreOfScene = "gravr=0", const std::string& Ground = "",
                          const std::string& Place = "0;-3585;1500") {
        QuickLevels = true;
        std::ofstream(Data("Generators/PineTree0.mgn"))
            << "shade part=0 ps=Mesh vs=Mesh part=1 ps=Foliage vs=Foliage\n"
               "trunk subw=3;0 subh=1;0 height=10;0 rad=0.5;0 basepush=0;0\n"
               "leaf extx=2;0 exty=2;0 heightq=0.5;0 depthq=1;0\n";
        for (char Number = '1'; Number <= '5'; ++Number) {
            std::ofstream Level(Data(std::string("Levels/Level") + Number + ".wlm"));
            Level << "WLMF\nterrain " << Ground << "sx=1900 sy=4500 sz=1000\nscene grava=-1.570796 gravp=3.141593 "
                  << MoreOfScene << " sky=Data/Textures/Sky/Dusk.png fcr=0.2 fcg=0.2 fcb=0.4 fdist=1700 fexp=1.6\n"
                  << "entity Rider Position=" << Place << "\n";
            for (int i = 0; i < 40; ++i) {
                Level << "entity Tree _POS=25;-3590;1472\n";
            }
        }
    }

    static bool Soon(const std::function<bool()>& Seen) {
        const auto Clock = std::chrono::steady_clock::now;
        for (const auto End = Clock() + std::chrono::duration<double>(LONGEST); Clock() < End; Wait(0.05)) {
            if (Seen()) {
                return true;
            }
        }
        return false;
    }
    static bool HoldUntil(const std::string& Key, const std::function<bool()>& Seen) {
        const CHeld Held("key", Key);
        return Soon(Seen);
    }
    // Keeps the button down until the label shows that the game has noticed; without letters, for a good while.
    bool Click(const STextPlace& Button, const std::function<bool()>& Seen) const {
        const SPart& Part = Button.Part;
        const bool Lettered = fs::exists(Data("Engine/Font.dat"));
        MoveMouse(Window, Part.X + Part.Width / 2, Part.Y + Part.Height / 2);
        {
            const CHeld Held("mouse", "1");
            Lettered ? void(Soon([&] { return TextColumns(Part, PRESSED).size() >= 20; })) : Wait(5);
        }
        const bool Result = Soon(Seen);
        MoveMouse(Window, 900, 500);
        return Result;
    }

    // Columns of a part in which that colour is.
    std::vector<int> TextColumns(const SPart& Part, const CColor& Color) const {
        const auto IsNear = [](int A, int B) { return std::abs(A - B) < 24; };
        const CPixels Picture = PictureOf(Window, Part);
        std::vector<int> Columns;
        for (int x = 0; x < Part.Width; ++x) {
            for (std::size_t i = 3 * x; i + 2 < Picture.size(); i += 3 * Part.Width) {
                if (std::equal(Color.begin(), Color.end(), Picture.begin() + static_cast<std::ptrdiff_t>(i), IsNear)) {
                    Columns.push_back(x);
                    break;
                }
            }
        }
        return Columns;
    }
    // Whether something of that colour reaches from where the text must begin to where it must end by the font's table.
    // Texts of the game that may stand at one place differ in their widths.
    bool Says(const std::string& Text, const STextPlace& Place, const CColor& Color = PLAIN) const {
        const std::vector<int> Columns = TextColumns(Place.Part, Color);
        double Width = 0;
        for (const char Character : Text) {
            Width += Widths[static_cast<std::size_t>(Character)] * Place.Size;
        }
        const double Left = Place.Centred ? (Place.Part.Width - Width) / 2 : Place.Left - Place.Part.X;
        return Columns.size() > Width / 2 && std::abs(Columns.front() - Left) < 6 &&
               std::abs(Columns.back() - Left - Width) < 6;
    }
    // By the title's orange letters.
    bool SeesTitle() const { return TextColumns(TITLE, {250, 150, 30}).size() > 100; }
    bool SeesRide() const { return Says("Trees cut: 0/20", TREES, RED); }

    bool StandsStill() const {
        const CPixels Before = PictureOf(Window, SCENE);
        Wait(1);
        return MeanDifference(PictureOf(Window, SCENE), Before) < 0.1;
    }
    // How far the middle of the scene has moved to the right since then, in pixels; far enough that a turn is still
    // seen on a machine that shows few pictures of it.
    int ShiftSince(const CPixels& Before) const {
        constexpr int REACH = 300;
        const CPixels Now = PictureOf(Window, SCENE);
        std::array<double, 2 * REACH + 1> Apart = {};
        for (int Shift = -REACH; Shift <= REACH; ++Shift) {
            for (int i = 0; i < static_cast<int>(std::min(Now.size(), Before.size())); i += 13) {
                const int x = i / 3 % SCENE.Width;
                if (x >= REACH && x < SCENE.Width - REACH) {
                    Apart[Shift + REACH] += std::abs(Now[i + 3 * Shift] - Before[i]);
                }
            }
        }
        return static_cast<int>(std::min_element(Apart.begin(), Apart.end()) - Apart.begin()) - REACH;
    }

    fs::path Folder;
    std::unique_ptr<CProgram> Game;
    std::string Window;
    bool QuickLevels = false;
    std::array<double, 128> Widths = {}; // of the font's characters, against the height of a line
};
