// The library writes what would be heard into a file, in real time, as 16-bit stereo; the cases measure it.
#include "assetgen/sound/SoundFile.h"
#include "sound/Stream.h"
#include "sound/WaveBuffers.h"
#include "support/Common.h"

#include <complex>
#include <unistd.h>

namespace {

using CSamples = std::vector<std::int16_t>; // what is heard: left and right in turn

constexpr double ANGLE = 6.2831853071796 / RATE; // radians per sample and hertz

CLoop Tone(double Hertz, double Seconds) {
    CLoop Samples(static_cast<INT32>(Seconds * RATE + 0.5));
    for (INT32 i = 0; i < Samples.Length(); ++i) {
        Samples[i] = static_cast<float>(0.3 * std::sin(ANGLE * Hertz * i));
    }
    return Samples;
}

// Costs many bytes in a file.
SStereo Noise(int Seconds) {
    SStereo Sound(RATE * Seconds);
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        Sound.Left[i] = static_cast<float>(0.3 * std::sin(1e-3 * i * i));
    }
    return Sound;
}

// How loud that frequency is on one side between two times, against a tone as it is in its file.
double Loudness(const CSamples& Heard, int Side, double Hertz, double From, double To) {
    std::complex<double> Sum = 0;
    for (auto i = static_cast<std::size_t>(From * RATE); i < To * RATE && 2 * i + 1 < Heard.size(); ++i) {
        Sum += std::polar<double>(Heard[2 * i + Side], ANGLE * Hertz * static_cast<double>(i));
    }
    return std::abs(Sum) / (0.15 * 32767 * (To - From) * RATE);
}

struct STestEmitter : SEmitter {
    explicit STestEmitter(const char* Name) { EXPECT_EQ(EmitterLoad(Name, *this), 1u); }
    ~STestEmitter() { EmitterRelease(*this); }
};

ALint Ask(const SEmitter& E, ALenum What) {
    ALint Value = -1;
    alGetSourcei(E.Source, What, &Value);
    return Value;
}

// What a fatal error shows, or an empty text if there is none.
std::string FatalTextOf(const std::function<void()>& Call) {
    try {
        Call();
        return "";
    } catch (const std::string& Text) {
        return Text;
    }
}

void PassTime(double Seconds) {
    for (int i = 0; i < Seconds * 200; ++i, usleep(5000)) {
        SoundUpdate(0.005f);
    }
}

class SoundTest : public TempDirTest {
protected:
    void SetUp() override {
        fs::create_directory("heard");
        // Read once per process, before the first sound.
        WriteText("conf", "[general]\nchannels=stereo\nsample-type=int16\nhrtf=false\n[wave]\nfile=heard/out.wav\n");
        setenv("ALSOFT_CONF", "conf", 1);
        setenv("ALSOFT_DRIVERS", "wave", 1);
        GPlatform.ShowError = [](const char*, const char* Text) { throw std::string(Text); };
        ASSERT_EQ(SoundInit(), 1u);
    }
    void TearDown() override { SoundShutdown(); }

    // Closes the device. From the first sound on.
    static CSamples Heard() {
        SoundShutdown();
        CSamples Samples(fs::file_size("heard/out.wav") / 4 * 2);
        std::ifstream("heard/out.wav").read(reinterpret_cast<char*>(Samples.data()), 2 * Samples.size());
        const auto First = std::find_if(Samples.begin() + 40, Samples.end(), [](int Sample) { return Sample > 100; });
        Samples.erase(Samples.begin(), First - (First - Samples.begin()) % 2);
        return Samples;
    }
};

// Plain, with a gain that a fade leads to, with two volumes out of three, and four times as far away as where
// the loudness is full.
TEST_F(SoundTest, TonesAreHeardAtTheirPitchWithGainVolumesAndDistance) {
    const double Pitches[] = {400, 900, 1500, 2300, 3000}, Expected[] = {1, 0.5, 0.25, 0.25, 0};
    SEmitter Emitters[4];
    const float Volumes[] = {0.8f, 0.5f, 0.3125f}; // the first and the last make a quarter
    std::copy_n(Volumes, 3, GSound.Volumes);
    alSourcePlay(12345); // leaves an error behind, which is none of the loader's
    for (UINT32 i = 0; i < 4; ++i) {
        SaveWave(Tone(Pitches[i], 0.1), "a.WAV");
        EmitterLoad("a.WAV", Emitters[i]);
        WaveBuffersForget();
        Emitters[i].Channels = i == 2 ? 5 : 0;
        EmitterSetGain(Emitters[i]);
        EmitterSetLoop(Emitters[i]);
        EmitterPlay(Emitters[i]);
    }
    alSource3f(Emitters[3].Source, AL_POSITION, 0, 0, -4);
    GSound.Fades.Add({&Emitters[1], 3, 0, 0, 0});
    GSound.Fades.Add({&Emitters[1], 1, 0.5f, 0, 0.05f});
    PassTime(0.5);
    EXPECT_EQ(GSound.Fades.Size(), 0u);
    std::for_each_n(Emitters, 4, EmitterRelease);
    const CSamples Sound = Heard();
    const double Plain = Loudness(Sound, 0, 400, 0.2, 0.4);
    EXPECT_NEAR(Plain, 0.7, 0.2); // as the speakers are laid out
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(Loudness(Sound, 0, Pitches[i], 0.2, 0.4) / Plain, Expected[i], 0.02) << Pitches[i];
    }
}

TEST_F(SoundTest, StreamsLoopPastTheirEndWithoutAGapOrEndWithAnEmptyQueue) {
    SStereo Sides(RATE * 3 / 10);
    Sides.Left = Tone(900, 0.3);
    Sides.Right = Tone(1500, 0.3);
    SaveVorbis(Sides, "end.ogg"); // one chunk: the second buffer stays empty
    Sides.Left = Tone(440, 1.4);
    SaveVorbis(Sides, "loop.ogg", 1); // whole waves, two chunks
    STestEmitter Loop("loop.ogg"), End("end.ogg");
    EmitterSetLoop(Loop);
    EmitterPlay(Loop);
    EmitterPlay(End);
    PassTime(2.2);
    EXPECT_EQ(Ask(End, AL_BUFFERS_QUEUED), 0);
    const CSamples Sound = Heard();
    for (const int Side : {0, 1}) {
        EXPECT_NEAR(Loudness(Sound, Side, 900, 0.1, 0.2), 1 - Side, 0.05);
        EXPECT_NEAR(Loudness(Sound, Side, 1500, 0.1, 0.2), Side, 0.05);
    }
    const double Whole = Loudness(Sound, 0, 440, 0.5, 1.3);
    EXPECT_NEAR(Whole, 0.7, 0.2);
    for (double Time = 0.5; Time < 2.0; Time += 0.01) {
        EXPECT_NEAR(Loudness(Sound, 0, 440, Time, Time + 0.01), Whole, 0.2 * Whole) << Time;
    }
}

// A source that is stopped has played all that is queued, so no time needs to pass.
TEST_F(SoundTest, AReadErrorQueuesTheOldChunkAndTheStreamGoesOnBehindTheDamage) {
    SaveVorbis(Noise(3), "a.ogg", 1); // four chunks and a little
    std::string Bytes = ReadText("a.ogg");
    Bytes[Bytes.size() * 4 / 5] ^= 1;
    WriteText("a.ogg", Bytes);
    STestEmitter Music("a.ogg");
    EmitterPlay(Music);
    EmitterPlay(Music); // starts over
    EXPECT_EQ(ov_pcm_tell(&Music.Vorbis), STREAM_CHUNK);
    const std::string Printed = PrintedBy([&] {
        for (const auto& [Result, Queued] : {std::pair{1, 2}, {-1, 2}, {1, 2}, {0, 1}}) {
            alSourceStop(Music.Source);
            EXPECT_EQ(StreamUpdate(Music), Result);
            EXPECT_EQ(Ask(Music, AL_BUFFERS_QUEUED), Queued);
        }
    });
    EXPECT_EQ(Printed, "Ogg stream read error -3\n");
}

// Cut at every place in the first part, then anywhere; then with bytes changed, near the beginning in turn.
TEST_F(SoundTest, DamagedFilesGiveTheirWordsOrPlay) {
    const char* const Names[] = {"x.ogg", "x.wav"};
    SaveVorbis(Noise(1), "x.ogg", 1);
    SaveWave(Tone(440, 0.01), "x.wav");
    const std::string Files[] = {ReadText("x.ogg"), ReadText("x.wav")};
    const std::string Words[] = {
        "Ogg loader could not parse the file (x.ogg) - it is either damaged or too new for the format to read or is "
        "not an ogg file\n",
        "Trying to load a bad wave file - x.wav\nEither it doesn't exist, or it's in wrong format, or it's damaged.\n"};
    std::mt19937 Random(11);
    int Fatal = 0;
    for (int i = 0; i < 800; ++i) {
        std::string Bytes = Files[i % 2];
        if (i < 500) {
            Bytes.resize(i < 300 ? i / 2 : Random() % Bytes.size());
        }
        for (int k = 0; i >= 500 && k < 3; ++k) {
            Bytes[Random() % (i % 4 < 2 ? 60 : Bytes.size())] = static_cast<char>(Random());
        }
        WriteText(Names[i % 2], Bytes);
        SEmitter E;
        const std::string Said = FatalTextOf([&] { EmitterLoad(Names[i % 2], E); });
        WaveBuffersForget();
        if (!Said.empty()) {
            EXPECT_EQ(Said, Words[i % 2]);
            alDeleteSources(1, &E.Source);
            ++Fatal;
            continue;
        }
        EmitterSetLoop(E);
        EmitterPlay(E);
        for (int Update = 0; Update < 4; ++Update) {
            alSourceStop(E.Source);
            SoundUpdate(0);
        }
        EmitterRelease(E);
    }
    EXPECT_NEAR(Fatal, 575, 175);
}

TEST_F(SoundTest, EmittersOfAFileShareItsBufferAndWrongCallsGiveTheirWords) {
    SaveWave(Tone(440, 0.1), "wav"); // without a dot the name is the extension
    STestEmitter First("wav"), Second("wav");
    EXPECT_NE(First.Source, Second.Source);
    EXPECT_EQ(Ask(First, AL_BUFFER), Ask(Second, AL_BUFFER));
    EXPECT_EQ(EmitterLoad("wav", First), 0u);
    SEmitter E;
    EXPECT_EQ(FatalTextOf([&] { EmitterRelease(E); }), "Damaged Sound Emitter found or emitter is released twice...\n");
    EXPECT_EQ(FatalTextOf([&] { EmitterLoad("x.mp3", E); }), "Unknown file format - file cannot be loaded - x.mp3\n");
    EXPECT_EQ(FatalTextOf([&] { EmitterLoad("x.jpeg", E); }),
              "-ASSERT-\nThis test expression is false:\next.Size() == 3\n");
    EXPECT_EQ(FatalTextOf([&] { EmitterLoad("no.ogg", E); }), "Ogg file no.ogg is not found or accessible\n");
}

TEST_F(SoundTest, WithoutADeviceItAsksAndRunsSilentAndStartsLaterAllTheSame) {
    GPlatform.AskYesNo = [](const char*, const char* Text, bool Default) {
        EXPECT_STREQ(Text, "alcOpenDevice failed - default device could not be opened\n\n"
                           "Do you want to continue without sound?");
        return !Default;
    };
    SoundShutdown();
    fs::remove_all("heard");
    EXPECT_EQ(SoundInit(), 0u);
    EXPECT_EQ(GSoundRefused, 1u);
    STestEmitter Wave("no.wav"), Music("no.ogg");
    EXPECT_EQ(EmitterLoad("no.ogg", Wave), 0u);
    EmitterSetGain(Wave);
    EmitterSetLoop(Wave);
    EmitterPlay(Wave);
    SoundUpdate(1);
    fs::create_directory("heard");
    EXPECT_EQ(SoundInit(), 1u);
    EXPECT_EQ(GSoundRefused, 0u);
}

} // namespace
