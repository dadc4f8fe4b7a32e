#include "sound/Stream.h"

#include "foundation/Diagnostics.h"
#include "platform/Platform.h"

namespace {

constexpr int LITTLE_ENDIAN_SAMPLES = 0;
constexpr int BYTES_PER_SAMPLE = 2;
constexpr int SIGNED_SAMPLES = 1;
constexpr int CURRENT_SECTION = -1;

// Hands the first Bytes of Data to the buffer, in the stream's format.
void SetData(const SEmitter& E, ALuint Buffer, const char* Data, int Bytes) {
    const ALenum Format = E.Info->channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16;
    alBufferData(Buffer, Format, Data, Bytes, static_cast<ALsizei>(E.Info->rate));
}

void PlayUnlessPlaying(ALuint Source) {
    ALint State = 0;
    alGetSourcei(Source, AL_SOURCE_STATE, &State);
    if (State != AL_PLAYING) {
        alSourcePlay(Source);
    }
}

} // namespace

void StreamLoad(const char* FileName, SEmitter& E) {
    E.System = &GSound;
    alGenSources(1, &E.Source);
    E.File = PlatOpenFile(FileName, "rb");
    if (!E.File) {
        FatalError("Ogg file %s is not found or accessible\n", FileName);
    }
    if (!StreamOpen(E)) {
        std::fclose(E.File);
        E.File = nullptr;
        FatalError("Ogg loader could not parse the file (%s) - it is either damaged or too new for the format to read "
                   "or is not an ogg file\n",
                   FileName);
    }
    alGenBuffers(STREAM_BUFFERS, E.StreamBuffers);
    // A queue takes buffers of one format only, those too that stay empty since the stream is shorter than a chunk.
    for (const ALuint Buffer : E.StreamBuffers) {
        SetData(E, Buffer, nullptr, 0);
    }
    GSound.Streaming.Add(&E);
}

UINT32 StreamOpen(SEmitter& E) {
    // ov_open would have ov_clear close the file, which is ours.
    if (ov_open_callbacks(E.File, &E.Vorbis, nullptr, 0, OV_CALLBACKS_NOCLOSE) < 0) {
        return 0;
    }
    E.Info = ov_info(&E.Vorbis, CURRENT_SECTION);
    E.Comment = ov_comment(&E.Vorbis, CURRENT_SECTION);
    return 1;
}

void StreamRelease(SEmitter& E) {
    alDeleteBuffers(STREAM_BUFFERS, E.StreamBuffers);
    ov_clear(&E.Vorbis);
    std::fclose(E.File);
    E.File = nullptr;
    E.Info = nullptr;
    E.Comment = nullptr;
    GArray<SEmitter*>& Streaming = GSound.Streaming;
    INT32 i = 0;
    while (i < INT32(Streaming.Size()) && Streaming[i] != &E) {
        ++i;
    }
    G_ASSERT(i < INT32(Streaming.Size()));
    Streaming.Remove(i, i);
}

INT32 StreamFill(SEmitter& E, ALuint Buffer) {
    char Data[STREAM_CHUNK];
    int n = 0;
    while (n < STREAM_CHUNK) {
        int Section = 0;
        const long Result = ov_read(&E.Vorbis, Data + n, STREAM_CHUNK - n, LITTLE_ENDIAN_SAMPLES, BYTES_PER_SAMPLE,
                                    SIGNED_SAMPLES, &Section);
        if (Result < 0) {
            LogPrintf("Ogg stream read error %d\n", static_cast<int>(Result));
            return -1;
        }
        if (Result == 0) {
            break;
        }
        n += static_cast<int>(Result);
    }
    if (n == 0) {
        return 0;
    }
    SetData(E, Buffer, Data, n);
    return 1;
}

void StreamStart(SEmitter& E) {
    // A stream that is playing still has its buffers queued, and they could not be filled.
    alSourceStop(E.Source);
    alSourcei(E.Source, AL_BUFFER, AL_NONE);
    ov_pcm_seek(&E.Vorbis, 0);
    for (const ALuint Buffer : E.StreamBuffers) {
        StreamFill(E, Buffer);
    }
    alSourceQueueBuffers(E.Source, STREAM_BUFFERS, E.StreamBuffers);
    E.Started = 1;
}

INT32 StreamUpdate(SEmitter& E) {
    ALint Processed = 0;
    alGetSourcei(E.Source, AL_BUFFERS_PROCESSED, &Processed);
    INT32 Result = 1;
    for (; Processed > 0; --Processed) {
        ALuint Buffer = 0;
        alSourceUnqueueBuffers(E.Source, 1, &Buffer);
        if (Buffer == 0) {
            break;
        }
        Result = StreamFill(E, Buffer);
        if (Result == 0) {
            if (!E.Loop) {
                break;
            }
            ov_pcm_seek(&E.Vorbis, 0);
            Result = StreamFill(E, Buffer);
        }
        alSourceQueueBuffers(E.Source, 1, &Buffer);
        if (E.Started) {
            PlayUnlessPlaying(E.Source);
        }
    }
    return Result;
}
