// A picture in the making and its way into a PNG or TGA file.
//
// Rows are stored top first; a PNG's first row becomes the texture's lowest v, since the engine uploads rows in file
// order. Samples are 8 bits; values given as floats run from 0 to 1 and are clamped and rounded.
// Channels: 1 (grey), 3 (red, green, blue) or 4 (and alpha).
// Bad input: a place outside the picture fails a check in the array underneath. The savers return false if the file
// can't be written; an incomplete file may then be left behind.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

class CPicture {
public:
    CPicture(UINT32 Width, UINT32 Height, UINT32 Channels);

    void SetGrey(UINT32 x, UINT32 y, UINT8 Value) { Bytes[y * Width + x] = Value; }
    void SetColour(UINT32 x, UINT32 y, float Red, float Green, float Blue, float Alpha = 1.0f);

    bool SavePng(const char* File) const;

    // Uncompressed and with its lowest row first, which so becomes the texture's lowest v. Needs 4 channels.
    bool SaveTga(const char* File) const;

    const UINT32 Width;
    const UINT32 Height;
    const UINT32 Channels;

private:
    GArray<UINT8> Bytes;
};
