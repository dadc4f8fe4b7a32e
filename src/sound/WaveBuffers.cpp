#include "sound/WaveBuffers.h"

#include "foundation/Diagnostics.h"

#include <AL/alut.h>

namespace {

ALuint ReadWaveFile(const char* FileName) {
    // ALUT refuses to work while an error of somebody else's call stands.
    alGetError();
    alcGetError(GSound.Device);
    return alutCreateBufferFromFile(FileName);
}

} // namespace

ALuint WaveBufferLoad(const char* FileName) {
    if (auto* Found = GSound.BuffersByName.Find(FileName)) {
        ++Found->value->RefCount;
        return Found->value->Buffer;
    }
    const ALuint Buffer = ReadWaveFile(FileName);
    if (Buffer == AL_NONE) {
        FatalError("Trying to load a bad wave file - %s\nEither it doesn't exist, or it's in wrong format, or it's "
                   "damaged.\n",
                   FileName);
    }
    SWaveBuffer* Record = new SWaveBuffer{FileName, Buffer, 1};
    GSound.BuffersByName.Insert(Record->Name, Record);
    GSound.BuffersById.Insert(Buffer, Record);
    return Buffer;
}

void WaveBuffersForget() {
    for (GMap<UINT32, SWaveBuffer*>::Iterator It(GSound.BuffersById); It.Valid(); It.Next()) {
        delete It.Value();
    }
    GSound.BuffersByName.Clear();
    GSound.BuffersById.Clear();
}
