// Animation and weights files: any bytes are read or refused, and what was read can be played.
//
// The first byte says how many of the next bytes are the text of a weights file; the rest is the animation. A file that
// a check of the reader stops on purpose, since a count in it is 0 or a key lies outside, is not given to it.
#include "anim/AnimInstance.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace {

// Whether the file's fields pass the checks that stop the program, as far as the bytes reach.
bool PassesChecks(const std::uint8_t* Bytes, std::size_t Size) {
    std::size_t At = 4;
    const auto Ended = [&] { return At > Size; };
    const auto Word = [&] {
        const std::uint8_t* b = Bytes + At;
        At += 4;
        return Ended() ? 0 : UINT32{b[0]} << 24 | UINT32{b[1]} << 16 | UINT32{b[2]} << 8 | b[3];
    };
    const float Length = std::bit_cast<float>(Word());
    const UINT32 Tracks = Word();
    bool Good = Tracks != 0 || Ended();
    for (UINT32 i = 0; Good && !Ended() && i < Tracks; ++i) {
        const UINT32 NameLength = Word();
        At += NameLength;
        const UINT32 Keys = Word();
        Good = Keys != 0 || Ended();
        for (UINT32 k = 0; Good && !Ended() && k < Keys; ++k) {
            const float Time = std::bit_cast<float>(Word());
            Good = Ended() || (Time >= 0 && Time <= Length);
            At += 16;
        }
    }
    return Good;
}

void Play(SAnimation& First, SAnimation& Second) {
    SAnimChannel Channel;
    for (const float Step : {0.3f, 1e30f, 0.01f}) {
        Channel.Start(&First, 2, 0);
        Channel.Advance(Step);
        Channel.Start(&Second, 0.5f, 0);
        for (GMap<GString, SAnimTrack>::Iterator It(First.Tracks); It.Valid(); It.Next()) {
            Quat q;
            float Weight = 0;
            Channel.Sample(It.Key(), 0.5f, q, Weight);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    if (Size == 0) {
        return 0;
    }
    const std::size_t TextSize = Bytes[0] < Size - 1 ? Bytes[0] : Size - 1;
    GString Text;
    Text.Append(reinterpret_cast<const char*>(Bytes + 1), static_cast<UINT32>(TextSize));
    const std::uint8_t* File = Bytes + 1 + TextSize;
    const std::size_t FileSize = Size - 1 - TextSize;
    GArray<UINT8> Content;
    for (std::size_t i = 0; i < FileSize; ++i) {
        Content.Add(File[i]);
    }
    SAnimation Anim;
    if (PassesChecks(File, FileSize) && AnimRead(Content, Anim)) {
        AnimReadWeights(Text, Anim);
        SAnimation Still;
        Play(Anim, Anim);
        Play(Anim, Still);
    }
    return 0;
}
