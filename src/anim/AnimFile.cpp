#include "anim/Animation.h"
#include "foundation/Diagnostics.h"
#include "foundation/GArchive.h"
#include "foundation/Scan.h"

#include <cstring>

namespace {

constexpr char MAGIC[4] = {'A', 'N', 'F', 'L'};
constexpr UINT32 KEY_BYTES = 5 * 4;
constexpr UINT32 TRACK_BYTES = 2 * 4 + KEY_BYTES; // the fewest that a track can take

// One walk over a file's bytes. Each step gives false where the file ends early.
class CAnimReader {
public:
    CAnimReader(GArray<UINT8>& Bytes, SAnimation& Anim) : Reader(Bytes), Anim(Anim) {}

    bool Read() {
        char Magic[sizeof(MAGIC)] = {};
        Reader.Serialize(Magic, sizeof(Magic));
        if (std::memcmp(Magic, MAGIC, sizeof(MAGIC)) != 0 || Reader.Left() < 2 * sizeof(UINT32)) {
            return false;
        }
        UINT32 TrackCount = 0;
        Reader << Anim.Time << TrackCount;
        G_ASSERT(TrackCount != 0);
        bool Good = TrackCount <= Reader.Left() / TRACK_BYTES;
        for (UINT32 i = 0; Good && i < TrackCount; ++i) {
            Good = ReadTrack();
        }
        return Good;
    }

private:
    bool ReadTrack() {
        GString Name;
        UINT32 ValueCount = 0;
        if (!Reader.ReadText(Name) || Reader.Left() < sizeof(ValueCount)) {
            return false;
        }
        Reader << ValueCount;
        G_ASSERT(ValueCount != 0);
        if (ValueCount > Reader.Left() / KEY_BYTES) {
            return false;
        }
        SAnimTrack Track;
        Track.Time = Anim.Time;
        for (UINT32 i = 0; i < ValueCount; ++i) {
            SAnimKey Key;
            Reader << Key.Time << Key.Value.x << Key.Value.y << Key.Value.z << Key.Value.w;
            Track.AddKey(Key);
        }
        Track.ComputeControlPoints();
        Anim.Tracks[Name] = Track;
        return true;
    }

    FByteReader Reader;
    SAnimation& Anim;
};

// The path with its last three characters replaced.
GString WeightsFile(const char* File) {
    constexpr UINT32 EXTENSION = 3;
    GString Name = File;
    Name.Left(Name.Length() > EXTENSION ? Name.Length() - EXTENSION : 0);
    Name += "wts";
    return Name;
}

} // namespace

UINT32 AnimRead(GArray<UINT8>& Bytes, SAnimation& Anim) {
    return CAnimReader(Bytes, Anim).Read() ? 1 : 0;
}

void AnimReadWeights(const GString& Text, SAnimation& Anim) {
    for (INT32 Pos = 0; Pos < static_cast<INT32>(Text.Length());) {
        F_SkipBlanks(Pos, Text);
        const GString Name = F_ReadString(Pos, Text, F_IsName);
        const float Weight = F_ReadFloat(Pos, Text, true);
        if (auto* Found = Anim.Tracks.Find(Name)) {
            Found->value.Weight = Weight;
        }
        F_SkipLine(Pos, Text);
    }
}

UINT32 AnimLoad(const char* File, SAnimation& Anim) {
    GArray<UINT8> Bytes;
    if (!F_ReadFile(File, Bytes) || !AnimRead(Bytes, Anim)) {
        return 0;
    }
    GString Weights;
    if (F_ReadTextFile(WeightsFile(File), Weights)) {
        AnimReadWeights(Weights, Anim);
    }
    return 1;
}
