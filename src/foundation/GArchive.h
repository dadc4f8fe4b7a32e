// FArchive: one primitive, Serialize, that moves bytes between an object and a file, and stream operators over it that
// fix the byte order. FByteReader: the archive that reads from an array of bytes.
//
// The same operators serve reading and writing, so that an object's serialise function is written once.
// Byte order: 32-bit values stand with their most significant byte first, on any machine.
// Ownership: a reader does not own its bytes; the array must outlive it.
// Cost: a stream operator is four calls of Serialize; Serialize of a reader is one copy.
// Bad input: a read past the end gives the bytes that are there and is silent; at the very end it gives nothing and
// what it should fill keeps its old bytes. AtEnd tells. Typical use: F_ReadFile(Name, Bytes); FByteReader
// Reader(Bytes); Reader << Magic << Count;
#pragma once

#include "foundation/GArray.h"
#include "foundation/GString.h"
#include "foundation/Types.h"

class FArchive {
public:
    FArchive() : m_bIsReader(0), m_bIsWriter(0) {}
    virtual ~FArchive() = default;

    // Moves Size bytes: into Data if the archive is a reader, out of it if it is a writer.
    virtual void Serialize(void* Data, UINT32 Size) = 0;

    virtual void Seek(UINT32 Position);

    // Position and number of bytes; -1 where the archive has no such thing.
    virtual INT32 Tell();
    virtual INT32 Size();
    virtual bool AtEnd();

    // Appends all bytes that Src holds.
    virtual void operator<<(FArchive& Src);

    UINT32 m_bIsReader : 1;
    UINT32 m_bIsWriter : 1;
};

FArchive& operator<<(FArchive& Archive, UINT32& Value);
FArchive& operator<<(FArchive& Archive, INT32& Value);
FArchive& operator<<(FArchive& Archive, float& Value);

class FByteReader : public FArchive {
public:
    explicit FByteReader(GArray<UINT8>& Source);

    void Serialize(void* Data, UINT32 Size) override;
    INT32 Tell() override;
    INT32 Size() override;

    // Takes all bytes of Src in place of the present ones. The position stays.
    void operator<<(FArchive& Src) override;

    // Bytes after the position: what a count that a file names is checked against before memory is taken for it.
    UINT32 Left() const { return Bytes->count > Position ? Bytes->count - Position : 0; }

    // Appends a text that stands as its length in bytes (a word), then its characters. False, and nothing appended, if
    // the bytes end before it does.
    bool ReadText(GString& Text);

    GArray<UINT8>* Bytes;
    UINT32 Position = 0;
};
