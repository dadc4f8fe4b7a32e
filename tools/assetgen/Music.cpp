// The music: a score, played by the band and coded.
#include "Asset.h"
#include "sound/Mixer.h"
#include "sound/SoundFile.h"

bool MakeMusic(const char*, const char* File) {
    SSong Song;
    return ReadScore(RUSH, Song) && SaveVorbis(PlaySong(Song), File);
}
