// A level is changed in the editor by real keys and mouse, saved, and played as it was saved.
#include "play/PlayFixture.h"

#include <utility>

namespace {

class EditorPlay : public PlayFixture {
protected:
    static constexpr CColor WHITE = {234, 234, 234}; // and what the edges of letters are made of
    static constexpr int X = 330, Y = 450;           // bare ground, in the middle of this part of the picture
    static constexpr SPart PART = {210, 330, 240, 230};

    // Until a line of the panel says so.
    bool Key(const std::string& Name, int Line, const std::string& Text) const {
        const STextPlace Place = {{10, 84 + 20 * Line, 185, 12}, 20, false, 10};
        return HoldUntil(Name, [&] { return Says(Text, Place, WHITE); });
    }
    // Presses there and moves, until the scene has changed by so much.
    bool Pull(int FromX, int FromY, int Step, double Difference) const {
        MoveMouse(Window, FromX, FromY);
        Wait(1); // the cursor follows
        const CPixels Before = PictureOf(Window, PART);
        const CHeld Held("mouse", "1");
        int Way = 0;
        return Soon([&] {
            MoveMouse(Window, FromX + (Way += Step), FromY);
            return MeanDifference(PictureOf(Window, PART), Before) > Difference;
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
    // The first line of a level with that word.
    static std::string Line(const std::string& Level, const std::string& Word) {
        const std::size_t At = std::min(Level.find(Word), Level.size());
        const std::size_t Begin = Level.rfind('\n', At) + 1;
        return Level.substr(Begin, Level.find('\n', At) - Begin);
    }
};

TEST_F(EditorPlay, ALevelIsChangedSavedAndPlayed) {
    std::ofstream(Folder / "programs/zenity") << "#!/bin/sh\necho " << Data("Models/Crag.mdd").string() << "\n";
    WriteQuickLevels("gravr=0", "file=Data/Terrain/Slope1.ter ", "0;4050;1045");
    ASSERT_NO_FATAL_FAILURE(StartToRide());
    ASSERT_TRUE(Key("F2", 4, "4: Meshes"));
    ASSERT_TRUE(Key("2", 2, "0: go back"));
    ASSERT_TRUE(Pull(974, 310, 2, 15)) << "the fog's red";
    ASSERT_TRUE(Key("0", 3, "3: Terrain") && Key("3", 4, "4: Update") && Key("2", 2, "2: Sculpt - ON"));
    ASSERT_TRUE(Pull(X, Y, 0, 1.5)) << "the brush's net rises";
    MoveMouse(Window, 900, 60);
    Wait(1);
    const CPixels Before = PictureOf(Window, PART);
    ASSERT_TRUE(HoldUntil("4", [&] { return MeanDifference(PictureOf(Window, PART), Before) > 1; })) << "Update";
    ASSERT_TRUE(Key("0", 4, "4: Meshes") && Key("4", 1, "1: Choose mesh") && Key("1", 2, "2: Crag.mdd"));
    ASSERT_TRUE(Key("3", 3, "3: [2/2] Tool: Brush"));
    ASSERT_TRUE(Pull(X, Y, 0, 0.3)) << "a crag is there";
    ASSERT_TRUE(Key("3", 3, "3: [1/2] Tool: Select"));
    ASSERT_TRUE(Pull(X, Y - 10, 0, 0.01)) << "it has its box";
    ASSERT_TRUE(Key("5", 3, "3: > Move") && Key("5", 5, "5: > Scale"));
    ASSERT_TRUE(Pull(X, Y - 10, 1, 0.5)) << "it grows or shrinks";
    const std::string Saved = Save(), Crag = Line(Saved, "Crag.mdd");
    EXPECT_EQ(Crag.find("Scale=1.000000;1.0"), Crag.npos) << Crag;
    EXPECT_EQ(Saved.find("fcr=0.200000"), Saved.npos);
    std::ofstream(Data("Levels/Level1.wlm")) << Saved;
    ASSERT_TRUE(HoldUntil("F2", [&] { return TextColumns({10, 100, 185, 100}, WHITE).empty(); }));
    ASSERT_NO_FATAL_FAILURE(GoBackToMenu());
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    ASSERT_TRUE(Key("F2", 4, "4: Meshes"));
    EXPECT_EQ(Line(Save(), "Crag.mdd"), Crag);
}

} // namespace
