// A level is built in the editor by real keys and mouse, saved, and comes back when the game starts again.
#include "play/PlayFixture.h"

#include <sstream>
#include <utility>

namespace {

// Works on the level behind the menu, whose camera looks down on bare ground in the middle of the window.
class EditorPlay : public PlayFixture {
protected:
    static constexpr CColor WHITE = {234, 234, 234};    // and what the edges of letters are made of
    static constexpr CColor SELECTED = {230, 179, 153}; // the edges of a selected mesh's box
    static constexpr int X = 512, Y = 288;
    static constexpr SPart MIDDLE = {412, 188, 200, 200};
    static constexpr SPart FIRST_VALUE = {944, 104, 60, 12};
    const fs::path Menu = "Levels/Menu.wlm";

    void WriteLevel() const {
        const char Header[18] = {0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 33, 0, 33, 0, 8, 0}; // grey, 33 by 33
        std::ofstream(Data("Terrain/Flat.tga")) << std::string(Header, 18) << std::string(33 * 33, '\x40');
        std::ofstream Ground(Data("Terrain/Flat.ter"));
        Ground << "Data/Terrain/Flat.tga";
        for (const char* const Name : {"Snow", "Snow", "Rock", "Rock"}) {
            Ground << " Data/Textures/Terrain/" << Name << ".png";
        }
        std::ofstream(Data(Menu)) << "WLMF\nterrain file=Data/Terrain/Flat.ter sx=500 sy=500 sz=1000\n"
                                  << "scene gravp=3.141593 sky=Data/Textures/Sky/Dusk.png fdist=1700 lda=1 ldp=1\n"
                                  << "entity MenuCam _POS=0;0;300 Target=0;60;251\n";
    }
    void StartEditor() {
        ASSERT_NO_FATAL_FAILURE(StartToMenu());
        ASSERT_TRUE(Key("F2", 4, "4: Meshes"));
    }
    // Held until a line of the panel says so. The same key twice in turn might look to the game like one long press.
    bool Key(const std::string& Name, int Line, const std::string& Text) const {
        const STextPlace Place = {{10, 84 + 20 * Line, 300, 12}, 20, false, 10};
        return HoldUntil(Name, [&] { return Says(Text, Place, WHITE); });
    }
    // Presses there and moves on to the right, until what is in the part has changed.
    bool Pull(int FromX, int FromY, int Step, const SPart& Part, double Difference) const {
        MoveMouse(Window, FromX, FromY);
        const CPixels Before = PictureOf(Window, Part);
        const CHeld Held("mouse", "1");
        return Soon([&, Way = 0]() mutable {
            MoveMouse(Window, FromX + (Way += Step), FromY);
            return MeanDifference(PictureOf(Window, Part), Before) > Difference;
        });
    }
    std::string Save() const {
        const fs::path File = Data("Levels/_TmpSlopeRush.wlm");
        fs::remove(File);
        const CHeld Held("key", "Control_L");
        std::string Text;
        HoldUntil("s", [&] { return std::exchange(Text, ReadText(File)) == Text && !Text.empty(); });
        return Text;
    }
    // A slow machine sows several at one place, of which one is selected.
    static bool HasScaledCrag(const std::string& Level) {
        std::istringstream Lines(Level);
        for (std::string Line; std::getline(Lines, Line);) {
            const auto Has = [&](const char* Word) { return Line.find(Word) != std::string::npos; };
            if (Has("StaticMesh") && Has("Crag.mdd") && Has(" Scale=") && !Has(" Scale=1.000000;")) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(EditorPlay, ALevelIsBuiltSavedAndThereAfterARestart) {
    std::ofstream(Folder / "programs/zenity") << "#!/bin/sh\necho " << Data("Models/Crag.mdd").string() << "\n";
    WriteLevel();
    ASSERT_NO_FATAL_FAILURE(StartEditor());
    ASSERT_TRUE(Key("2", 2, "0: go back"));
    ASSERT_TRUE(Pull(950, 130, 2, MIDDLE, 6)) << "the sun sinks";
    ASSERT_TRUE(Key("0", 4, "4: Meshes") && Key("4", 1, "1: Choose mesh") && Key("1", 2, "2: Crag.mdd"));
    ASSERT_TRUE(Key("3", 5, "5: Change transform") && Pull(X, Y, 0, MIDDLE, 1)) << "a crag is there";
    ASSERT_TRUE(Key("3", 5, "5: Transform selection") && Key("4", 4, "4: DrawAABB: ON"));
    ASSERT_TRUE(Pull(X, Y, 0, MIDDLE, 0.05)) << "its box is bluer while the button is down";
    ASSERT_TRUE(Soon([&] { return !TextColumns(MIDDLE, SELECTED).empty(); }));
    ASSERT_TRUE(Key("5", 4, "4: Rotate") && Key("4", 3, "3: Move") && Key("5", 4, "4: Rotate"));
    ASSERT_TRUE(Pull(X + 28, Y + 12, 1, FIRST_VALUE, 1)) << "the box grows";
    const std::string Saved = Save();
    EXPECT_EQ(Saved.find("ldp=1.000000"), std::string::npos) << Saved;
    EXPECT_TRUE(HasScaledCrag(Saved)) << Saved;
    std::ofstream(Data(Menu)) << Saved;
    ASSERT_NO_FATAL_FAILURE(StartEditor());
    EXPECT_EQ(Save(), Saved);
}

} // namespace
