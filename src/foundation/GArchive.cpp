#include "foundation/GArchive.h"

#include "foundation/GCheck.h"

#include <bit>
#include <cstring>

namespace {

// Moves the four bytes of a value, the most significant first.
void SerializeWord(FArchive& Archive, void* Value) {
    UINT8* Bytes = static_cast<UINT8*>(Value);
    for (int i = 0; i < 4; ++i) {
        Archive.Serialize(Bytes + (std::endian::native == std::endian::little ? 3 - i : i), 1);
    }
}

// The bytes to copy from a source; one that doesn't know its size counts as empty.
UINT32 BytesIn(FArchive& Src) {
    const INT32 Size = Src.Size();
    return Size > 0 ? static_cast<UINT32>(Size) : 0;
}

} // namespace

void FArchive::Seek(UINT32) {}

INT32 FArchive::Tell() {
    return -1;
}

INT32 FArchive::Size() {
    return -1;
}

bool FArchive::AtEnd() {
    return Tell() == Size();
}

void FArchive::operator<<(FArchive& Src) {
    GCHECK_IN("GArchive", Src.m_bIsReader && m_bIsWriter, "src.m_bIsReader && m_bIsWriter");
    GArray<UINT8> Bytes;
    Bytes.Resize(BytesIn(Src));
    Src.Serialize(Bytes.Data, Bytes.count);
    Serialize(Bytes.Data, Bytes.count);
}

FArchive& operator<<(FArchive& Archive, UINT32& Value) {
    SerializeWord(Archive, &Value);
    return Archive;
}

FArchive& operator<<(FArchive& Archive, INT32& Value) {
    SerializeWord(Archive, &Value);
    return Archive;
}

FArchive& operator<<(FArchive& Archive, float& Value) {
    SerializeWord(Archive, &Value);
    return Archive;
}

FByteReader::FByteReader(GArray<UINT8>& Source) : Bytes(&Source) {
    m_bIsReader = 1;
}

void FByteReader::Serialize(void* Data, UINT32 Size) {
    const UINT32 Moved = Size < Left() ? Size : Left();
    if (Moved == 0) {
        return;
    }
    std::memmove(Data, Bytes->Data + Position, Moved);
    Position += Moved;
}

INT32 FByteReader::Tell() {
    return static_cast<INT32>(Position);
}

INT32 FByteReader::Size() {
    return static_cast<INT32>(Bytes->count);
}

void FByteReader::operator<<(FArchive& Src) {
    GCHECK_IN("GArchive", Src.m_bIsReader, "src.m_bIsReader");
    Bytes->Resize(BytesIn(Src));
    Src.Serialize(Bytes->Data, Bytes->count);
}

bool FByteReader::ReadText(GString& Text) {
    UINT32 Length = 0;
    if (Left() < sizeof(Length)) {
        return false;
    }
    *this << Length;
    if (Length > Left()) {
        return false;
    }
    Text.Append(reinterpret_cast<const char*>(Bytes->Data) + Position, Length);
    Position += Length;
    return true;
}
