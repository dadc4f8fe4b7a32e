#include "Picture.h"

#include "BinaryFile.h"
#include "Noise.h"

#include <IL/il.h>

namespace {

UINT8 ToByte(float Value) {
    return static_cast<UINT8>(Clamp01(Value) * 255.0f + 0.5f);
}

UINT8 LowByte(UINT32 Value) {
    return static_cast<UINT8>(Value & 255);
}

} // namespace

CPicture::CPicture(UINT32 Width, UINT32 Height, UINT32 Channels) : Width(Width), Height(Height), Channels(Channels) {
    Bytes.Resize(Width * Height * Channels);
}

void CPicture::SetColour(UINT32 x, UINT32 y, float Red, float Green, float Blue, float Alpha) {
    const float Values[4] = {Red, Green, Blue, Alpha};
    for (UINT32 i = 0; i < Channels; ++i) {
        Bytes[(y * Width + x) * Channels + i] = ToByte(Values[i]);
    }
}

bool CPicture::SavePng(const char* File) const {
    ilInit();
    const ILuint Image = ilGenImage();
    ilBindImage(Image);
    const ILenum Format = Channels == 1 ? IL_LUMINANCE : Channels == 3 ? IL_RGB : IL_RGBA;
    ilTexImage(Width, Height, 1, static_cast<ILubyte>(Channels), Format, IL_UNSIGNED_BYTE, Bytes.Data);
    ilRegisterOrigin(IL_ORIGIN_UPPER_LEFT);
    ilEnable(IL_FILE_OVERWRITE);
    const bool Saved = ilSave(IL_PNG, File) == IL_TRUE;
    ilDeleteImage(Image);
    return Saved;
}

bool CPicture::SaveTga(const char* File) const {
    constexpr UINT8 TRUE_COLOUR = 2;
    constexpr UINT8 ALPHA_BITS = 8;
    CBinaryFile Tga;
    const UINT8 Head[18] = {0,
                            0,
                            TRUE_COLOUR,
                            0,
                            0,
                            0,
                            0,
                            0,
                            0,
                            0,
                            0,
                            0,
                            LowByte(Width),
                            LowByte(Width >> 8),
                            LowByte(Height),
                            LowByte(Height >> 8),
                            static_cast<UINT8>(8 * Channels),
                            ALPHA_BITS};
    for (const UINT8 Byte : Head) {
        Tga.AddByte(Byte);
    }
    for (UINT32 y = Height; y-- > 0;) {
        for (UINT32 x = 0; x < Width; ++x) {
            const UINT32 Pixel = (y * Width + x) * Channels;
            for (const UINT32 Channel : {2u, 1u, 0u, 3u}) { // blue first
                Tga.AddByte(Bytes[Pixel + Channel]);
            }
        }
    }
    return Tga.Save(File);
}
