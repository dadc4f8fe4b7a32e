// The engine's own binary formats: 32-bit values with their most significant byte first, texts with their length.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

#include <bit>
#include <cstdio>
#include <cstring>

class CBinaryFile {
public:
    void Add(UINT32 Value) {
        for (int Shift = 24; Shift >= 0; Shift -= 8) {
            Bytes.Add(static_cast<UINT8>(Value >> Shift));
        }
    }
    void Add(float Value) { Add(std::bit_cast<UINT32>(Value)); }
    void AddByte(UINT8 Value) { Bytes.Add(Value); }
    void AddMagic(const char* Four) {
        for (int i = 0; i < 4; ++i) {
            Bytes.Add(static_cast<UINT8>(Four[i]));
        }
    }
    void AddText(const char* Text) {
        Add(static_cast<UINT32>(std::strlen(Text)));
        for (; *Text; ++Text) {
            Bytes.Add(static_cast<UINT8>(*Text));
        }
    }

    bool Save(const char* Name) const {
        FILE* File = std::fopen(Name, "wb");
        if (!File) {
            return false;
        }
        const bool Written = std::fwrite(Bytes.Data, 1, Bytes.count, File) == Bytes.count;
        return std::fclose(File) == 0 && Written;
    }

private:
    GArray<UINT8> Bytes;
};
