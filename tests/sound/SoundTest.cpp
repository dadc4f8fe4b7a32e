// The library writes what would be heard into a file, in real time, as 16-bit stereo; the cases measure it.
#include "platform/Platform.h"
#include "sound/Stream.h"
#include "sound/WaveBuffers.h"

#include <complex>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>
#include <vorbis/vorbisenc.h>

namespace {

namespace fs = std::filesystem;

using CSamples = std::vector<std::int16_t>; // what is heard: left and right in turn

constexpr int RATE = 44100;               // samples per second
constexpr double TURN = 2 * 3.1415926535; // radians

CSamples Tone(double Hertz, double Seconds) {
    CSamples Samples(static_cast<std::size_t>(Seconds * RATE + 0.5));
    for (std::size_t i = 0; i < Samples.size(); ++i) {
        Samples[i] = static_cast<std::int16_t>(10000 * std::sin(TURN * Hertz * static_cast<double>(i) / RATE));
    }
    return Samples;
}

// How loud that frequency is on one side between two times, against a tone as it is in its file.
double Loudness(const CSamples& Heard, int Side, double Hertz, double From, double To) {
    std::complex<double> Sum = 0;
    for (auto i = static_cast<std::size_t>(From * RATE); i < To * RATE && 2 * i + 1 < Heard.size(); ++i) {
        Sum += std::polar<double>(Heard[2 * i + Side], TURN * Hertz * static_cast<double>(i) / RATE);
    }
    return std::abs(Sum) / (5000 * (To - From) * RATE);
}

void WriteBytes(const std::string& Name, const std::string& Bytes) {
    std::ofstream(Name) << Bytes;
}
std::string ReadBytes(const std::string& Name) {
    std::ifstream File(Name);
    return {std::istreambuf_iterator<char>(File), {}};
}

void WriteWave(const std::string& Name, const CSamples& Mono) {
    const auto Size = static_cast<UINT32>(2 * Mono.size());
    const UINT32 Header[] = {0x46464952, 36 + Size, 0x45564157, 0x20746d66, 16,  0x10001,
                             RATE,       2 * RATE,  0x100002,   0x61746164, Size}; // RIFF, WAVE, fmt, data
    WriteBytes(Name, std::string(reinterpret_cast<const char*>(Header), sizeof(Header)) +
                         std::string(reinterpret_cast<const char*>(Mono.data()), Size));
}

// A page per packet, so that damage in one place leaves the rest.
void WriteOgg(const std::string& Name, const std::vector<CSamples>& Channels) {
    vorbis_info Info;
    vorbis_comment Comment = {};
    vorbis_dsp_state Dsp;
    vorbis_block Block;
    ogg_stream_state Stream;
    ogg_packet Packets[3];
    std::string Bytes;
    const auto Put = [&](ogg_packet& Packet) {
        ogg_stream_packetin(&Stream, &Packet);
        for (ogg_page Page; ogg_stream_flush(&Stream, &Page) != 0;) {
            Bytes.append(reinterpret_cast<char*>(Page.header), Page.header_len);
            Bytes.append(reinterpret_cast<char*>(Page.body), Page.body_len);
        }
    };
    vorbis_info_init(&Info);
    vorbis_encode_init_vbr(&Info, static_cast<long>(Channels.size()), RATE, 0.6f);
    vorbis_analysis_init(&Dsp, &Info);
    vorbis_block_init(&Dsp, &Block);
    ogg_stream_init(&Stream, 1);
    vorbis_analysis_headerout(&Dsp, &Comment, &Packets[0], &Packets[1], &Packets[2]);
    std::for_each_n(Packets, 3, Put);
    const int Count = static_cast<int>(Channels[0].size());
    float** Buffer = vorbis_analysis_buffer(&Dsp, Count);
    for (std::size_t i = 0; i < Channels.size(); ++i) {
        std::transform(Channels[i].begin(), Channels[i].end(), Buffer[i], [](int Sample) { return Sample / 32767.0f; });
    }
    for (const int Written : {Count, 0}) { // 0 ends the stream
        vorbis_analysis_wrote(&Dsp, Written);
        while (vorbis_analysis_blockout(&Dsp, &Block) == 1) {
            vorbis_analysis(&Block, Packets);
            Put(Packets[0]);
        }
    }
    ogg_stream_clear(&Stream);
    vorbis_block_clear(&Block);
    vorbis_dsp_clear(&Dsp);
    vorbis_info_clear(&Info);
    WriteBytes(Name, Bytes);
}

struct STestEmitter : SEmitter {
    explicit STestEmitter(const char* Name) { EXPECT_EQ(EmitterLoad(Name, *this), 1u); }
    ~STestEmitter() { EmitterRelease(*this); }
    ALint Ask(ALenum What) const {
        ALint Value = -1;
        alGetSourcei(Source, What, &Value);
        return Value;
    }
};

// Fatal errors are thrown as a string. Every case works in an empty folder.
class SoundTest : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(Folder / "heard");
        fs::current_path(Folder);
        // Read once per process, before the first sound.
        WriteBytes("alsoft.conf", "[general]\ndrivers=wave\nchannels=stereo\nsample-type=int16\nstereo-mode=speakers\n"
                                  "hrtf=false\n[wave]\nfile=heard/out.wav\n");
        setenv("ALSOFT_CONF", "alsoft.conf", 1);
        unsetenv("ALSOFT_DRIVERS");
        GPlatform.ShowError = [](const char*, const char* Text) { throw std::string(Text); };
        ASSERT_EQ(SoundInit(), 1u);
    }
    void TearDown() override {
        SoundShutdown();
        PlatformRestore();
        fs::current_path("/");
        fs::remove_all(Folder);
    }

    static void Run(double Seconds) {
        for (int i = 0; i < Seconds * 200; ++i) {
            SoundUpdate(0.005f);
            usleep(5000);
        }
    }

    // Closes the device. From the first sound on.
    static CSamples Heard() {
        SoundShutdown();
        const std::string Bytes = ReadBytes("heard/out.wav");
        CSamples Samples(Bytes.size() / 4 * 2);
        std::memcpy(Samples.data(), Bytes.data(), 2 * Samples.size());
        const auto First = std::find_if(Samples.begin() + 40, Samples.end(), [](int Sample) { return Sample > 100; });
        Samples.erase(Samples.begin(), First - (First - Samples.begin()) % 2);
        return Samples;
    }

    // What a fatal error shows, or an empty text if there is none.
    static std::string FatalTextOf(const std::function<void()>& Call) {
        try {
            Call();
            return "";
        } catch (const std::string& Text) {
            return Text;
        }
    }

    const fs::path Folder = fs::temp_directory_path() / ("sloperush-sound-" + std::to_string(getpid()));
};

// Plain, with a gain that a fade leads to, with two halved volumes out of three, and four times as far away as where
// the loudness is full.
TEST_F(SoundTest, TonesAreHeardAtTheirPitchWithGainVolumesAndDistance) {
    const double Pitches[] = {400, 900, 1500, 2300, 3000}, Expected[] = {1, 0.5, 0.25, 0.25, 0};
    SEmitter Emitters[4];
    std::fill_n(GSound.Volumes, 3, 0.5f);
    for (int i = 0; i < 4; ++i) {
        WriteWave("a.WAV", Tone(Pitches[i], 0.1));
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
    Run(0.5);
    EXPECT_EQ(GSound.Fades.Size(), 0u);
    std::for_each_n(Emitters, 4, EmitterRelease);
    const CSamples Sound = Heard();
    const double Plain = Loudness(Sound, 0, 400, 0.2, 0.4); // as the speakers are laid out
    EXPECT_NEAR(Plain, 0.7, 0.2);
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(Loudness(Sound, 0, Pitches[i], 0.2, 0.4) / Plain, Expected[i], 0.02) << Pitches[i];
    }
}

TEST_F(SoundTest, EmittersShareAWaveBufferAndKnowWhetherTheyAreLoaded) {
    WriteWave("wav", Tone(440, 0.1)); // without a dot the name is the extension
    alSourcePlay(12345);              // leaves an error behind, which is none of the loader's
    STestEmitter First("wav"), Second("wav");
    EXPECT_NE(First.Source, Second.Source);
    EXPECT_EQ(First.Ask(AL_BUFFER), Second.Ask(AL_BUFFER));
    EXPECT_EQ(EmitterLoad("wav", First), 0u);
    EXPECT_EQ(GSound.BuffersById[static_cast<UINT32>(First.Ask(AL_BUFFER))]->RefCount, 3);
    EXPECT_EQ(GSound.Emitters.Size(), 2u);
    SEmitter Unloaded;
    EXPECT_EQ(FatalTextOf([&] { EmitterRelease(Unloaded); }),
              "Damaged Sound Emitter found or emitter is released twice...\n");
}

TEST_F(SoundTest, StreamsAreHeardAndLoopPastTheirEndWithoutAGapOrEndWithAnEmptyQueue) {
    WriteOgg("loop.ogg", {Tone(440, 1.4)});                 // whole waves, two chunks
    WriteOgg("end.ogg", {Tone(900, 0.3), Tone(1500, 0.3)}); // one chunk: the second buffer stays empty
    STestEmitter Loop("loop.ogg"), End("end.ogg");
    EmitterSetLoop(Loop);
    EmitterPlay(Loop);
    EmitterPlay(End);
    Run(2.2);
    EXPECT_EQ(End.Ask(AL_SOURCE_STATE), AL_STOPPED);
    EXPECT_EQ(End.Ask(AL_BUFFERS_QUEUED), 0);
    const CSamples Sound = Heard();
    for (const int Side : {0, 1}) {
        EXPECT_NEAR(Loudness(Sound, Side, 900, 0.1, 0.2), Side ? 0 : 1, 0.05);
        EXPECT_NEAR(Loudness(Sound, Side, 1500, 0.1, 0.2), Side ? 1 : 0, 0.05);
    }
    const double Whole = Loudness(Sound, 0, 440, 0.5, 1.3);
    EXPECT_NEAR(Whole, 0.7, 0.2); // as the speakers are laid out
    for (double Time = 0.5; Time < 2.0; Time += 0.01) {
        EXPECT_NEAR(Loudness(Sound, 0, 440, Time, Time + 0.01), Whole, 0.2 * Whole) << Time;
    }
}

// A source that is stopped has played all that is queued, so no time needs to pass.
TEST_F(SoundTest, AReadErrorQueuesTheOldChunkAndTheStreamGoesOnBehindTheDamage) {
    WriteOgg("a.ogg", {Tone(440, 3)}); // four chunks and a little
    std::string Bytes = ReadBytes("a.ogg");
    Bytes[Bytes.size() - 800] ^= 1;
    WriteBytes("a.ogg", Bytes);
    STestEmitter Music("a.ogg");
    EmitterPlay(Music);
    EmitterPlay(Music); // starts over
    EXPECT_EQ(ov_pcm_tell(&Music.Vorbis), STREAM_CHUNK);
    testing::internal::CaptureStdout();
    for (const auto& [Result, Queued] : {std::pair{1, 2}, {-1, 2}, {1, 2}, {0, 1}}) {
        alSourceStop(Music.Source);
        EXPECT_EQ(StreamUpdate(Music), Result);
        EXPECT_EQ(Music.Ask(AL_BUFFERS_QUEUED), Queued);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Ogg stream read error -3\n");
}

void PlayThrough(SEmitter& E) {
    EmitterSetLoop(E);
    EmitterPlay(E);
    for (int Update = 0; Update < 4; ++Update) {
        alSourceStop(E.Source);
        SoundUpdate(0);
    }
    EmitterRelease(E);
}

// Cut at every place in the first part, then anywhere; then with bytes changed, near the beginning in turn.
TEST_F(SoundTest, DamagedFilesGiveTheirWordsOrPlayAndOtherFilesTheirs) {
    const std::string Cannot[] = {
        "Ogg loader could not parse the file (x.ogg) - it is either damaged or too new for the format to read or is "
        "not an ogg file\n",
        "Trying to load a bad wave file - x.wav\nEither it doesn't exist, or it's in wrong format, or it's damaged.\n"};
    WriteOgg("a.ogg", {Tone(440, 0.2)});
    WriteWave("a.wav", Tone(440, 0.01));
    std::mt19937 Random(11);
    for (int i = 0, Fatal = 0; i < 800; ++i) {
        const std::string Kind = i % 2 ? "wav" : "ogg";
        std::string Bytes = ReadBytes("a." + Kind);
        if (i < 500) {
            Bytes.resize(i < 300 ? i / 2 : Random() % Bytes.size());
        }
        for (int k = 0; i >= 500 && k < 3; ++k) {
            Bytes[Random() % (i % 4 < 2 ? 60 : Bytes.size())] = static_cast<char>(Random());
        }
        WriteBytes("x." + Kind, Bytes);
        SEmitter E;
        const std::string Said = FatalTextOf([&] { EmitterLoad(("x." + Kind).c_str(), E); });
        WaveBuffersForget();
        if (Said.empty()) {
            PlayThrough(E);
        } else {
            EXPECT_EQ(Said, Cannot[i % 2]);
            alDeleteSources(1, &E.Source);
            ++Fatal;
        }
        EXPECT_TRUE(i < 799 || (Fatal > 400 && Fatal < 750)) << Fatal;
    }
    const char* const Others[][2] = {{"no.ogg", "Ogg file no.ogg is not found or accessible\n"},
                                     {"a.mp3", "Unknown file format - file cannot be loaded - a.mp3\n"},
                                     {"a.jpeg", "-ASSERT-\nThis test expression is false:\next.Size() == 3\n"}};
    for (const auto& [Name, Words] : Others) {
        SEmitter E;
        EXPECT_EQ(FatalTextOf([&] { EmitterLoad(Name, E); }), Words);
    }
}

TEST_F(SoundTest, WithoutADeviceItAsksAndRunsSilentAndStartsLaterAllTheSame) {
    static std::string Asked;
    GPlatform.AskYesNo = [](const char* Title, const char* Text, bool Default) {
        Asked = std::string(Title) + "|" + Text + (Default ? "|yes" : "|no");
        return false;
    };
    SoundShutdown();
    fs::remove_all("heard");
    EXPECT_EQ(SoundInit(), 0u);
    EXPECT_EQ(GSoundRefused, 1u);
    EXPECT_EQ(Asked, "|alcOpenDevice failed - default device could not be opened\n\n"
                     "Do you want to continue without sound?|yes");
    STestEmitter Wave("no.wav"), Music("no.ogg");
    EXPECT_EQ(EmitterLoad("no.ogg", Wave), 0u);
    EmitterSetGain(Wave);
    PlayThrough(Wave);
    EXPECT_EQ(EmitterLoad("no.wav", Wave), 1u);
    fs::create_directory("heard");
    EXPECT_EQ(SoundInit(), 1u);
    EXPECT_EQ(GSoundRefused, 0u);
}

} // namespace
