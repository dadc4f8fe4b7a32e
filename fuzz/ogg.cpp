// An Ogg Vorbis file: any bytes are refused, or decoded chunk by chunk, over read errors and from the beginning again.
//
// There is no device. Pages with a wrong checksum never reach the decoder, as in the game.
#include "sound/Stream.h"

#include <cstddef>
#include <cstdint>

constexpr int CHUNKS = 6; // of each pass; a small input can stand for hours of silence

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    SEmitter E;
    E.File = fmemopen(const_cast<std::uint8_t*>(Bytes), Size, "rb");
    if (!E.File) {
        return 0;
    }
    const bool Opened = StreamOpen(E);
    for (int i = 0; Opened && i < 2 * CHUNKS; ++i) {
        if (StreamFill(E, E.StreamBuffers[0]) == 0 || i == CHUNKS) {
            ov_pcm_seek(&E.Vorbis, 0);
        }
    }
    ov_clear(&E.Vorbis);
    std::fclose(E.File);
    return 0;
}
