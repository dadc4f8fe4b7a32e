// What a player hears: the library writes it into a file while the real program is played, and the cases measure that.
#include "assetgen/sound/SoundFile.h"
#include "play/PlayFixture.h"

namespace {

using CSamples = std::vector<double>; // of the left side, full scale 1

CSamples ReadSamples(const fs::path& File, std::size_t HeadBytes, int Channels) {
    const std::string Bytes = ReadText(File);
    CSamples Samples;
    for (std::size_t i = HeadBytes; i + 1 < Bytes.size(); i += 2 * Channels) {
        Samples.push_back((Bytes[i + 1] * 256 + static_cast<unsigned char>(Bytes[i])) / 32768.0);
    }
    return Samples;
}

// Effective value between two samples.
double Level(const CSamples& Samples, std::size_t From, std::size_t To) {
    double Sum = 0;
    for (std::size_t i = From; i < To && i < Samples.size(); ++i) {
        Sum += Samples[i] * Samples[i];
    }
    return std::sqrt(Sum / static_cast<double>(To - From));
}

// How surely a sound of the game is heard behind a sample, up to 1, and where: the largest correlation with the loudest
// tenth of a second of its file.
std::pair<double, std::size_t> Find(const CSamples& Heard, const CSamples& Sound, std::size_t From) {
    constexpr std::size_t LENGTH = RATE / 10;
    std::size_t Loudest = 0;
    for (std::size_t i = 0; i + LENGTH <= Sound.size(); i += LENGTH / 4) {
        Loudest = Level(Sound, i, i + LENGTH) > Level(Sound, Loudest, Loudest + LENGTH) ? i : Loudest;
    }
    std::pair<double, std::size_t> Best = {0, 0};
    for (std::size_t At = From; At + LENGTH < Heard.size(); ++At) {
        double Sum = 0;
        for (std::size_t i = 0; i < LENGTH; ++i) {
            Sum += Heard[At + i] * Sound[Loudest + i];
        }
        const double Energy = Level(Heard, At, At + LENGTH) * Level(Sound, Loudest, Loudest + LENGTH) * LENGTH;
        Best = std::max(Best, std::pair(Energy > 0 ? Sum / Energy : 0, At));
    }
    return Best;
}

class Heard : public PlayFixture {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PlayFixture::SetUp());
        Recording = Folder / "heard.wav";
        Variables = "ALSOFT_DRIVERS=wave ALSOFT_CONF=" + (Folder / "sound.conf").string();
        std::ofstream(Folder / "sound.conf")
            << "[general]\nchannels=stereo\nsample-type=int16\nhrtf=false\n[wave]\nfile=" << Recording.string() << "\n";
    }

    // In samples from the start of the recording.
    std::size_t Now() const { return (std::max<std::size_t>(fs::file_size(Recording), HEAD) - HEAD) / 4; }
    void Record(double Seconds) const {
        const std::size_t End = Now() + static_cast<std::size_t>(Seconds * RATE);
        ASSERT_TRUE(Soon([&] { return Now() > End; }));
    }
    CSamples EndAndListen() {
        Shell("xdotool key --clearmodifiers alt+F4");
        EXPECT_EQ(Game->WaitForEnd(LONGEST), 0);
        return ReadSamples(Recording, HEAD, 2);
    }
    // Whole waves of a steady tone in place of the music, not quite eight of the chunks that a stream is read in: a
    // short last one would run dry before the next is there. A loudness of 0 is silence.
    void ReplaceMusic(float Loudness) const {
        SStereo Tone(1310 * PERIOD);
        for (INT32 i = 0; i < Tone.Length(); ++i) {
            Tone.Left[i] = Tone.Right[i] = Loudness * std::sin(TURN * static_cast<float>(i % PERIOD) / PERIOD);
        }
        ASSERT_TRUE(SaveVorbis(Tone, Data("Music/rush.ogg").c_str()));
    }

    fs::path Recording;
    std::string Variables;
    static constexpr std::size_t HEAD = 68; // bytes
    static constexpr INT32 PERIOD = 100;    // samples
};

TEST_F(Heard, MusicRunsThroughTheRideWithoutAGapAndNotInTheMenu) {
    WriteQuickLevels();
    ReplaceMusic(0.3f);
    ASSERT_NO_FATAL_FAILURE(StartToMenu(Variables));
    const std::size_t Menu = Now();
    ASSERT_TRUE(Click(FIRST_BUTTON, [&] { return SeesRide(); }));
    Record(0.5);
    const std::size_t Ride = Now();
    Record(8);
    const std::size_t RideEnd = Now();
    ASSERT_NO_FATAL_FAILURE(GoBackToMenu());
    Record(0.5);
    const std::size_t Back = Now();
    Record(0.5);
    const CSamples Sound = EndAndListen();
    EXPECT_LT(Level(Sound, 0, Menu), 1e-4);
    EXPECT_LT(Level(Sound, Back, Back + RATE / 2), 1e-4);
    const double Whole = Level(Sound, Ride, RideEnd);
    EXPECT_GT(Whole, 0.05);
    // The file's own ends may be a little off.
    for (std::size_t At = Ride; At < RideEnd; At += 5 * PERIOD) {
        ASSERT_NEAR(Level(Sound, At, At + 5 * PERIOD), Whole, 0.4 * Whole) << At - Ride;
    }
}

TEST_F(Heard, AStrokeSwishesAndThenHits) {
    WriteQuickLevels();
    ReplaceMusic(0);
    ASSERT_NO_FATAL_FAILURE(StartToRide(Variables));
    Record(0.5);
    const std::size_t Before = Now();
    ASSERT_TRUE(HoldUntil("space", [&] { return Says("Trees cut: 40/20", TREES, GREEN); }));
    Record(0.5);
    const CSamples Sound = EndAndListen();
    EXPECT_LT(Level(Sound, Before - RATE / 4, Before), 1e-4);
    const auto Swish = Find(Sound, ReadSamples(Data("Sounds/sword-swish.wav"), 44, 1), Before);
    const auto Hit = Find(Sound, ReadSamples(Data("Sounds/sword-hit.wav"), 44, 1), Before);
    EXPECT_TRUE(Swish.first > 0.8 && Hit.first > 0.8) << Swish.first << ' ' << Hit.first;
    EXPECT_GT(Hit.second, Swish.second);
}

TEST_F(Heard, SlidingIsLouderAtSpeedThanAtRest) {
    // On the level ground of the first slope's start, in the quick levels' size: without a push nothing slides there.
    WriteQuickLevels("gravr=14", "file=Data/Terrain/Slope1.ter ", "0;4050;564");
    ReplaceMusic(0);
    ASSERT_NO_FATAL_FAILURE(StartToRide(Variables));
    Record(2);
    const std::size_t Rest = Now();
    Record(1);
    {
        const CHeld Up("key", "Up");
        Record(4);
    }
    const CSamples Sound = EndAndListen();
    EXPECT_GT(Level(Sound, Sound.size() - 3 * RATE, Sound.size()), 3 * Level(Sound, Rest, Rest + RATE));
    EXPECT_GT(Level(Sound, Sound.size() - 3 * RATE, Sound.size()), 0.003);
}

} // namespace
