// The game's sounds, decoded: their form, nothing cut off, loops that close and have no holes.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <vorbis/vorbisfile.h>

namespace {

constexpr int RATE = 44100;

struct SSound {
    explicit SSound(const std::string& Name, float Loudest = 0.85f) : Loudest(Loudest) {
        Name.ends_with(".wav") ? ReadWave(SLOPERUSH_GAME_DIR "/Data/Sounds/" + Name) : ReadVorbis(Name);
        EXPECT_NEAR(Peak(0, Frames()), Loudest, 0.12f * Loudest) << Name;
    }
    void ReadWave(const std::string& Path) {
        std::ifstream File(Path, std::ios::binary);
        const std::string Bytes(std::istreambuf_iterator<char>(File), {});
        std::uint16_t Head[22]; // 16-bit samples of one channel: others have no place in the world
        ASSERT_GT(Bytes.size(), sizeof(Head)) << Path;
        std::memcpy(Head, Bytes.data(), sizeof(Head));
        ASSERT_TRUE(Head[11] == 1 && Head[12] == RATE && Head[17] == 16) << Path;
        for (std::size_t i = sizeof(Head); i + 1 < Bytes.size(); i += 2) {
            std::memcpy(Head, Bytes.data() + i, 2);
            Samples.push_back(static_cast<std::int16_t>(Head[0]) / 32768.0f);
        }
    }
    void ReadVorbis(const std::string& Name) {
        OggVorbis_File File;
        ASSERT_EQ(ov_fopen((SLOPERUSH_GAME_DIR "/Data/Music/" + Name).c_str(), &File), 0);
        ASSERT_TRUE(ov_info(&File, -1)->channels == 2 && ov_info(&File, -1)->rate == RATE);
        float** Data;
        for (long Got; (Got = ov_read_float(&File, &Data, 4096, nullptr)) > 0;) {
            Samples.insert(Samples.end(), Data[0], Data[0] + Got);
        }
        ov_clear(&File);
    }
    int Frames() const { return static_cast<int>(Samples.size()); }
    float At(int i) const { return Samples[(i + Frames()) % Frames()]; }
    // How far the curve bends at a frame; frames before the first are at the end.
    float Bend(int i) const { return std::fabs(At(i) - 2 * At(i - 1) + At(i - 2)); }
    float Peak(int First, int End) const {
        const auto Quieter = [](float a, float b) { return std::fabs(a) < std::fabs(b); };
        return std::fabs(*std::max_element(Samples.begin() + First, Samples.begin() + End, Quieter));
    }
    float Loudest;              // what its peak should be; the music leaves room for the effects
    std::vector<float> Samples; // of the left side
};

TEST(Sounds, EffectsBeginAtOnceAndEndInSilence) {
    for (const char* Name : {"sword-swish.wav", "sword-hit.wav", "snow-hit-1.wav"}) {
        const SSound Sound(Name);
        EXPECT_GT(Sound.Peak(0, RATE / 30), 0.1f) << Name;
        EXPECT_LT(Sound.Peak(Sound.Frames() - RATE / 100, Sound.Frames()), 0.01f) << Name;
    }
}

// A stream is fetched in pieces of 16384 frames: a short last one would run dry before the next is there.
TEST(Sounds, LoopsGoRoundWithoutAClickOrAHole) {
    const SSound Slide("snow-slide-1.wav"), Music("rush.ogg", 0.42f);
    EXPECT_TRUE(Slide.Frames() >= 2 * RATE && Music.Frames() >= 120 * RATE && Music.Frames() % 16384 == 0);
    for (const SSound* Sound : {&Slide, &Music}) {
        float Largest = 0;
        for (int i = 2; i < RATE / 200; ++i) {
            Largest = std::fmax(Largest, std::fmax(Sound->Bend(i), Sound->Bend(-i)));
        }
        EXPECT_LE(std::fmax(Sound->Bend(0), Sound->Bend(1)), Largest);
        for (int First = 0; First + RATE / 20 <= Sound->Frames(); First += RATE / 20) {
            EXPECT_GT(Sound->Peak(First, First + RATE / 20), 0.06f * Sound->Loudest) << "a hole at frame " << First;
        }
    }
}

} // namespace
