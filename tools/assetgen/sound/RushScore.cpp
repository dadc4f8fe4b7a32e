// "Rush", the music of the slopes: D major, 129 beats a minute, nine sections of eight bars that go round.
//
//   A   the theme over a light beat        C   half the beat, bells: a look over the valley
//   A'  with a counter line                C2  the theme's first figure climbs out of it again
//   B   the other theme, high and long     B'  all of it, in two voices
//   A'' the theme broken up                A3  the theme in two voices
//                                          D   a figure of plucked strings that leads back to A
//
// See Score.h for the forms of the lines.
#include "Score.h"

namespace {

constexpr SChord CHORDS[] = {
    {"D", "D2", "A3 D4 F#4 A4"},     {"Gmaj9", "G1", "B3 D4 F#4 A4"}, {"G", "G1", "B3 D4 G4 B4"},
    {"Bm", "B1", "B3 D4 F#4 B4"},    {"Bm7", "B1", "A3 D4 F#4 B4"},   {"A", "A1", "A3 C#4 E4 A4"},
    {"Asus", "A1", "A3 D4 E4 A4"},   {"Em7", "E2", "G3 B3 D4 G4"},    {"F#m", "F#2", "A3 C#4 F#4 A4"},
    {"F#m7", "F#2", "A3 C#4 E4 A4"}, {"D/F#", "F#2", "A3 D4 F#4 A4"}, {"C", "C2", "G3 C4 E4 G4"},
    {"Bb", "Bb1", "Bb3 D4 F4 Bb4"},
};

// The beats. One text of sixteen steps a bar for each drum.

constexpr SDrumLine LIGHT_LINES[] = {
    {PART_KICK, "X.....x.X.......X.....x.X.x....."},
    {PART_SNARE, "....x.......x......ox.......x..o"},
    {PART_HAT, "x.o.x.o.x.o.x.o."},
    {PART_SLEIGH, "x...x...x...x..."},
};
constexpr SDrumLine FULL_LINES[] = {
    {PART_KICK, "X...X...X...X...X...X...X...X.x."},
    {PART_SNARE, "....X..o.o..X......oX..o.o..X..."},
    {PART_HAT, "xoo.xoo.xoo.xoo."},
    {PART_OPEN_HAT, "..............x."},
    {PART_SLEIGH, "x.o.x.o.x.o.x.o."},
};
constexpr SDrumLine HIGH_LINES[] = {
    {PART_KICK, "X...X...X...X..."}, {PART_SNARE, "....X.......X..o"},    {PART_CLAP, "....x.......x..."},
    {PART_HAT, "oo.ooo.ooo.ooo.o"},  {PART_OPEN_HAT, "..x...x...x...x."},
};
constexpr SDrumLine HALF_LINES[] = {
    {PART_KICK, "X.........x.....X.....x........."},
    {PART_SNARE, "........x...............x......."},
    {PART_SLEIGH, "x...o...x...o..."},
    {PART_HAT, "..o...o...o...o."},
};
constexpr SDrumLine CLIMB_LINES[] = {
    {PART_KICK, "X...X...X...X..."},
    {PART_SNARE, "....o..o....o..oo...o..oo...o.oo"},
    {PART_HAT, "x.o.x.o.x.o.x.o."},
    {PART_SLEIGH, "x.o.x.o.x.o.x.o."},
};
constexpr SDrumLine BOUNCE_LINES[] = {
    {PART_KICK, "X..x..x.X..x..x.X..x..x.X.....x."},
    {PART_SNARE, "....X.......X......oX.......X..o"},
    {PART_CLAP, "....o.......o..."},
    {PART_HAT, "x.oox.oox.oox.oo"},
};
constexpr SDrumLine TURN_LINES[] = {
    // in the middle of a section
    {PART_KICK, "X...X...X...X..."},     {PART_SNARE, "....X..o.o..X.xx"},  {PART_HAT, "xoo.xoo.xoo....."},
    {PART_OPEN_HAT, "..............x."}, {PART_SLEIGH, "x.o.x.o.x.o.x.o."},
};
constexpr SDrumLine TOM_FILL_LINES[] = {
    {PART_KICK, "X...X...X......."},
    {PART_SNARE, "....X...x.xx...."},
    {PART_HAT, "x.o.x.o........."},
    {PART_TOM, "............hmml"},
};
constexpr SDrumLine ROLL_FILL_LINES[] = {
    {PART_KICK, "X...X...X...X..."},
    {PART_SNARE, "o.o.o.ooxoxoxxXX"},
    {PART_TOM, "..........h.m.l."},
    {PART_RISER, "x---------------"},
};
constexpr SDrumLine SOFT_FILL_LINES[] = {
    {PART_KICK, "X.......x......."},
    {PART_SNARE, "............o.oo"},
    {PART_TOM, "........h.m.l..."},
    {PART_SLEIGH, "x...x...x...x..."},
};

template <UINT32 N>
constexpr SGroove Groove(const SDrumLine (&Lines)[N]) {
    return {Lines, N};
}
constexpr SGroove LIGHT = Groove(LIGHT_LINES), FULL = Groove(FULL_LINES), HIGH = Groove(HIGH_LINES);
constexpr SGroove HALF = Groove(HALF_LINES), CLIMB = Groove(CLIMB_LINES), BOUNCE = Groove(BOUNCE_LINES);
constexpr SGroove TURN_BAR = Groove(TURN_LINES), TOM_FILL = Groove(TOM_FILL_LINES);
constexpr SGroove ROLL_FILL = Groove(ROLL_FILL_LINES), SOFT_FILL = Groove(SOFT_FILL_LINES);

// The melodies, a bar a line.

constexpr char A_CHORDS[] = "D G Bm7 A D G Em7 Asus+A";

constexpr char A_LEAD[] = "F#5:3! E5:3 D5:2 A4:4 D5:2 E5:2 |"
                          "F#5:3! G5:3 F#5:2 D5:6 -:2 |"
                          "F#5:3! E5:3 D5:2 B4:4 D5:2 F#5:2 |"
                          "E5:10! -:2 C#5:2 D5:2 |"
                          "F#5:3! E5:3 D5:2 A4:4 D5:2 F#5:2 |"
                          "A5:3! G5:3 F#5:2 D5:4 E5:2 F#5:2 |"
                          "G5:3! F#5:3 E5:2 B4:4 E5:2 F#5:2 |"
                          "D5:6 E5:2 C#5:6 -:2 |";

constexpr char A_LEAD_UP[] = "F#5:3! E5:3 D5:2 A4:4 D5:2 E5:2 |"
                             "F#5:3! G5:3 F#5:2 D5:6 -:2 |"
                             "F#5:3! E5:3 D5:2 B4:4 D5:2 F#5:2 |"
                             "E5:10! -:2 C#5:2 D5:2 |"
                             "F#5:3! E5:3 D5:2 A4:4 D5:2 F#5:2 |"
                             "A5:3! G5:3 F#5:2 D5:4 E5:2 F#5:2 |"
                             "G5:3! F#5:3 G5:2 B5:4! A5:2 G5:2 |"
                             "A5:6! F#5:2 E5:6 -:2 |";

constexpr char A_HARMONY_UP[] = "D5:3! C#5:3 A4:2 F#4:4 A4:2 C#5:2 |"
                                "D5:3! D5:3 D5:2 B4:6 -:2 |"
                                "D5:3! C#5:3 B4:2 F#4:4 B4:2 D5:2 |"
                                "C#5:10! -:2 A4:2 B4:2 |"
                                "D5:3! C#5:3 A4:2 F#4:4 A4:2 D5:2 |"
                                "F#5:3! E5:3 D5:2 B4:4 C#5:2 D5:2 |"
                                "E5:3! D5:3 E5:2 G5:4! F#5:2 E5:2 |"
                                "D5:6! D5:2 C#5:6 -:2 |";

constexpr char A_LEAD_BROKEN[] = "F#5:2! -:1 F#5:1 E5:2 D5:2 A4:2! B4:2 D5:2 E5:2 |"
                                 "F#5:3! G5:3 A5:2 F#5:4 D5:4 |"
                                 "F#5:2! -:1 F#5:1 E5:2 D5:2 B4:2! C#5:2 D5:2 F#5:2 |"
                                 "E5:8! C#5:2 E5:2 A5:4 |"
                                 "F#5:2! -:1 F#5:1 E5:2 D5:2 A4:2! B4:2 D5:2 F#5:2 |"
                                 "B5:3! A5:3 G5:2 F#5:4 D5:2 F#5:2 |"
                                 "G5:3! F#5:3 G5:2 B5:4! A5:2 G5:2 |"
                                 "A5:6! F#5:2 E5:6 -:2 |";

constexpr char A_COUNTER[] = "-:6 F#4:4 E4:2 D4:4 |"
                             "B4:6 A4:2 G4:8 |"
                             "-:6 F#4:4 E4:2 D4:4 |"
                             "E4:2 A4:2 C#5:4! B4:2 A4:2 G4:4 |"
                             "F#4:8 D4:8 |"
                             "B4:6 A4:2 B4:8 |"
                             "G4:8 B4:8 |"
                             "A4:6 B4:2 A4:4 G4:4 |";

constexpr char A_COUNTER_BUSY[] = "A4:4 F#4:4 -:2 F#4:2 A4:4 |"
                                  "B4:4 -:4 A4:2 B4:2 D5:4 |"
                                  "B4:4 F#4:4 -:2 F#4:2 B4:4 |"
                                  "A4:2 C#5:2 A4:2 E4:2 A4:4 C#5:4 |"
                                  "A4:4 F#4:4 -:2 F#4:2 A4:4 |"
                                  "D5:4 B4:4 A4:4 B4:4 |"
                                  "B4:6 A4:2 G4:8 |"
                                  "A4:4 B4:4 C#5:6 -:2 |";

constexpr char A_BELLS[] = "-:12 A5:2 D6:2 |"
                           "F#6:8! -:8 |"
                           "-:16 |"
                           "-:4 A5:2 C#6:2 E6:8! |"
                           "-:12 A5:2 D6:2 |"
                           "D6:8! -:8 |"
                           "-:16 |"
                           "D6:4 -:4 C#6:4! -:4 |";

constexpr char B_CHORDS[] = "Bm F#m G D Em7 Bm C Asus+A";

constexpr char B_LEAD[] = "B4:2 D5:2 F#5:8! E5:2 D5:2 |"
                          "C#5:6! A4:2 C#5:6 E5:2 |"
                          "D5:6! B4:2 D5:4 G5:4 |"
                          "F#5:12! -:2 E5:2 |"
                          "G5:6! F#5:2 E5:6 F#5:2 |"
                          "D5:6! E5:2 F#5:6 A5:2 |"
                          "G5:6! E5:2 C5:4 E5:4 |"
                          "D5:4 E5:4 A5:6! -:2 |";

constexpr char B_HARMONY[] = "F#4:2 B4:2 D5:8! C#5:2 B4:2 |"
                             "A4:6! F#4:2 A4:6 C#5:2 |"
                             "B4:6! G4:2 B4:4 D5:4 |"
                             "D5:12! -:2 C#5:2 |"
                             "E5:6! D5:2 B4:6 D5:2 |"
                             "B4:6! C#5:2 D5:6 F#5:2 |"
                             "E5:6! C5:2 G4:4 C5:4 |"
                             "A4:4 A4:4 C#5:6! -:2 |";

constexpr char B_COUNTER[] = "F#4:4 -:4 B4:2 C#5:2 B4:2 F#4:2 |"
                             "A4:8 F#4:4 A4:4 |"
                             "B4:4 G4:4 B4:8 |"
                             "A4:2 B4:2 A4:2 F#4:2 D4:4 F#4:4 |"
                             "B4:8 G4:4 B4:4 |"
                             "F#4:4 B4:4 D5:8 |"
                             "E4:4 G4:4 C5:4 G4:4 |"
                             "A4:8 C#5:4 E5:2 -:2 |";

constexpr char C_BELLS[] = "F#5:6! G5:2 D5:8 |"
                           "E5:6! F#5:2 C#5:8 |"
                           "C#5:4 E5:4 A4:8 |"
                           "D5:6! C#5:2 B4:8 |"
                           "B4:4 D5:4 F#5:6! G5:2 |"
                           "E5:8 A5:8! |"
                           "F5:6! G5:2 D5:8 |"
                           "E5:6 F5:2 G5:8! |";

constexpr char C_COUNTER[] = "-:16 |"
                             "-:16 |"
                             "-:8 F#4:4 E4:4 |"
                             "F#4:16 |"
                             "D4:12 A4:4 |"
                             "A4:8 C#5:8 |"
                             "D5:8 Bb4:8 |"
                             "C5:8 E5:8 |";

constexpr char C2_LEAD[] = "D5:3! E5:3 F#5:2 B4:8 |"
                           "C#5:3! D5:3 E5:2 A4:8 |"
                           "B4:3! C#5:3 D5:2 G4:4 B4:4 |"
                           "A4:6 D5:2 F#5:8! |"
                           "G5:3! A5:3 B5:2 F#5:8 |"
                           "F#5:3! G5:3 A5:2 D5:8 |"
                           "G5:3! E5:3 C5:2 G5:8 |"
                           "A5:12! -:4 |";

constexpr char C2_COUNTER[] = "-:16 |"
                              "-:16 |"
                              "-:8 B4:4 D5:4 |"
                              "F#4:8 A4:8 |"
                              "-:8 D5:2 B4:2 D5:4 |"
                              "-:8 B4:2 A4:2 F#4:4 |"
                              "-:8 E5:2 C5:2 E5:4 |"
                              "C#5:2 D5:2 E5:8 -:4 |";

constexpr char D_RIFF[] = "D5:2! D5:2 A4:2 D5:4! E5:2 F#5:4 |"
                          "E5:2! E5:2 C5:2 G4:4! C5:2 D5:4 |"
                          "D5:2! D5:2 B4:2 G4:4! B4:2 D5:4 |"
                          "F#5:3! E5:3 D5:6 A4:4 |"
                          "D5:2! D5:2 A4:2 D5:4! E5:2 F#5:4 |"
                          "G5:2! G5:2 E5:2 C5:4! E5:2 G5:4 |"
                          "G5:2! F#5:2 D5:2 B4:4! D5:2 G5:4 |"
                          "A5:4! E5:4 C#5:4 A4:4 |";

constexpr char D_COUNTER[] = "-:16 |"
                             "-:16 |"
                             "-:8 G4:4 B4:4 |"
                             "A4:8 F#4:8 |"
                             "F#4:12 A4:4 |"
                             "G4:12 E4:4 |"
                             "G4:8 B4:8 |"
                             "A4:6 B4:2 C#5:8 |";

constexpr SSection SECTIONS[] = {
    // name, dynamics, chords, {lead, harmony, counter, bells, riff}, pluck, arp, strum, bass, pad, crash, beat, turn,
    // fill
    {"A",
     0.80f,
     A_CHORDS,
     {A_LEAD, nullptr, nullptr, nullptr, nullptr},
     "1.3.2.4.1.3.2.4.",
     nullptr,
     nullptr,
     "1.1.1.8.1.1.5.8.",
     true,
     true,
     &LIGHT,
     nullptr,
     &TOM_FILL},
    {"A'",
     0.88f,
     A_CHORDS,
     {A_LEAD_UP, nullptr, A_COUNTER, A_BELLS, nullptr},
     "1.3.2.4.1.3.2.4.",
     nullptr,
     "d-..d-u-..u-d-u-",
     "1.1.1.8.1.1.5.8.",
     true,
     false,
     &FULL,
     &TURN_BAR,
     &TOM_FILL},
    {"B",
     0.94f,
     B_CHORDS,
     {B_LEAD, nullptr, B_COUNTER, nullptr, nullptr},
     nullptr,
     "1324132413241325",
     nullptr,
     "1-.1.1-81-.1.158",
     true,
     true,
     &HIGH,
     &TURN_BAR,
     &TOM_FILL},
    {"A''",
     0.92f,
     A_CHORDS,
     {A_LEAD_BROKEN, nullptr, A_COUNTER_BUSY, nullptr, nullptr},
     "1.342.341.342.35",
     nullptr,
     "....d-..u-..d-u-",
     "1.1.8.1.1.8.1.5.",
     true,
     true,
     &FULL,
     &TURN_BAR,
     &SOFT_FILL},
    {"C",
     0.70f,
     "Gmaj9 A F#m7 Bm7 Gmaj9 A Bb C",
     {nullptr, nullptr, C_COUNTER, C_BELLS, nullptr},
     "1...2...3...4...",
     nullptr,
     nullptr,
     "1-------1-----5-",
     true,
     false,
     &HALF,
     nullptr,
     &SOFT_FILL},
    {"C2",
     0.82f,
     "G F#m7 Em7 D/F# G Bm7 C A",
     {C2_LEAD, nullptr, C2_COUNTER, nullptr, nullptr},
     nullptr,
     "1.2.3.4.5.4.3.2.",
     nullptr,
     "1.1.1.1.1.1.1.1.",
     true,
     false,
     &CLIMB,
     nullptr,
     &ROLL_FILL},
    {"B'",
     1.00f,
     B_CHORDS,
     {B_LEAD, B_HARMONY, B_COUNTER, nullptr, nullptr},
     nullptr,
     "1324152413241526",
     "d-..d-u-..u-d-u-",
     "1-.1.1-81-.1.158",
     true,
     true,
     &HIGH,
     &TURN_BAR,
     &TOM_FILL},
    {"A3",
     0.96f,
     A_CHORDS,
     {A_LEAD_UP, A_HARMONY_UP, A_COUNTER, A_BELLS, nullptr},
     nullptr,
     "1.3.2.4.1.3.2.4.",
     "d-..d-u-..u-d-u-",
     "1.1.1.8.1.1.5.8.",
     true,
     true,
     &FULL,
     &TURN_BAR,
     &TOM_FILL},
    {"D",
     0.84f,
     "D C G D D C G A",
     {nullptr, nullptr, D_COUNTER, nullptr, D_RIFF},
     nullptr,
     nullptr,
     "d-..u-..d-..u-..",
     "1..1..1.8..1..5.",
     true,
     false,
     &BOUNCE,
     nullptr,
     &ROLL_FILL},
};

template <class T, UINT32 N>
constexpr UINT32 CountOf(const T (&)[N]) {
    return N;
}

} // namespace

// 5120 samples a step make the whole 360 times 16384 samples long: players that fetch it in pieces of a power of two
// get no short last piece.
const SScore RUSH = {5120, CHORDS, CountOf(CHORDS), SECTIONS, CountOf(SECTIONS)};
