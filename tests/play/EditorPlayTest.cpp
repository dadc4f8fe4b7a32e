// A level is changed in the editor by real keys and mouse, saved, and played as it was saved.
#include "play/PlayFixture.h"

#include <utility>

namespace {

class EditorPlay : public PlayFixture {
protected:
    static constexpr CColor WHITE = {234, 234, 234}; // and what the edges of letters are made of
    static constexpr int X = 270, Y = 470;           // bare ground, in the middle of this part of the picture
    static constexpr SPart PART = {150, 330, 240, 230};

    // Until a line of the panel says so.
    bool Key(const std::string& Name, int Line, const std::string& Text) const {
        const STextPlace Place = {{10, 84 + 20 * Line, 300, 12}, 20, false, 10};
        return HoldUntil(Name, [&] { return Says(Text, Place, WHITE); });
    }
    // Until nothing moves any more but the rider, who is not in the part.
    void Watch(int MouseX, int MouseY) {
        MoveMouse(Window, MouseX, MouseY);
        EXPECT_TRUE(Soon([&] {
            Before = PictureOf(Window, PART);
            Wait(1.5);
            return !HasChanged(0.01);
        }));
    }
    bool HasChanged(double Difference) const { return MeanDifference(PictureOf(Window, PART), Before) > Difference; }

    // Presses there and moves, until the scene has changed by so much.
    bool Pull(int FromX, int FromY, int Step, double Difference) {
        Watch(FromX, FromY);
        const CHeld Held("mouse", "1");
        return Soon([&, Way = 0]() mutable {
            MoveMouse(Window, FromX + (Way += Step), FromY);
            return HasChanged(Difference);
        });
    }
    // By the dark red of its net.
    bool SeesBrush(const SPart& Part) const { return !TextColumns(Part, {140, 10, 10}).empty(); }

    CPixels Before;

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
    const char Header[18] = {0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 8, 0}; // grey, 257 by 257
    std::ofstream(Data("Terrain/Flat.tga")) << std::string(Header, 18) << std::string(257 * 257, '\x40');
    std::ofstream(Data("Terrain/Flat.ter")) << "Data/Terrain/Flat.tga Data/Textures/Terrain/Snow.png "
                                               "Data/Textures/Terrain/Snow.png Data/Textures/Terrain/Rock.png "
                                               "Data/Textures/Terrain/Rock.png";
    WriteQuickLevels("gravr=0", "file=Data/Terrain/Flat.ter ", "0;4200;290");
    ASSERT_NO_FATAL_FAILURE(StartToRide());
    ASSERT_TRUE(Key("F2", 4, "4: Meshes"));
    ASSERT_TRUE(Key("2", 2, "0: go back"));
    ASSERT_TRUE(Pull(974, 130, 1, 6)) << "the sun sinks";
    ASSERT_TRUE(Key("0", 4, "4: Meshes") && Key("4", 1, "1: Choose mesh") && Key("1", 2, "2: Crag.mdd"));
    ASSERT_TRUE(Key("3", 5, "5: Change transform"));
    ASSERT_TRUE(Pull(X, Y, 0, 0.3)) << "a crag is there";
    Watch(X, Y - 10);
    ASSERT_TRUE(Key("3", 5, "5: Transform selection") && HoldUntil("4", [&] { return HasChanged(0.02); })) << "boxes";
    ASSERT_TRUE(Pull(X, Y - 10, 0, 0.01)) << "its box has another colour";
    ASSERT_TRUE(Key("0", 3, "3: Terrain") && Key("3", 4, "4: Update"));
    MoveMouse(Window, X, Y);
    ASSERT_TRUE(HoldUntil("2", [&] { return SeesBrush(PART); }));
    {
        const CHeld Held("mouse", "1");
        ASSERT_TRUE(Soon([&] { return SeesBrush({PART.X, PART.Y, PART.Width, 60}); })) << "it rises";
    }
    Watch(900, 60);
    ASSERT_TRUE(HoldUntil("4", [&] { return HasChanged(0.5); })) << "Update";
    const std::string Saved = Save(), Crag = Line(Saved, "Crag.mdd");
    EXPECT_NE(Crag.find("StaticMesh"), Crag.npos) << Saved;
    EXPECT_EQ(Saved.find("ldp=0.000000"), Saved.npos);
    std::ofstream(Data("Levels/Level1.wlm")) << Saved;
    ASSERT_TRUE(HoldUntil("F2", [&] { return TextColumns({10, 100, 185, 100}, WHITE).empty(); }));
    ASSERT_NO_FATAL_FAILURE(GoBackToMenu());
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    ASSERT_TRUE(Key("F2", 4, "4: Meshes"));
    EXPECT_EQ(Line(Save(), "Crag.mdd"), Crag);
}

} // namespace
