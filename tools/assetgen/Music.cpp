// The music: a score, played by the band and coded.
#include "Asset.h"
#include "sound/Mixer.h"
#include "sound/SoundFile.h"

bool MakeMusic(const char*, const char* File) {
    SSong Song;
    if (!ReadScore(RUSH, Song)) {
        return false;
    }
    SStereo Sound(Song.Steps * Song.StepSamples);
    PlaySong(Song, Sound);
    return SaveVorbis(Sound, File);
}
