#include "SoundFile.h"

#include <algorithm>
#include <cstdio>
#include <vorbis/vorbisenc.h>

namespace {

constexpr float QUALITY = 0.4f;
constexpr int SERIAL = 1; // of the stream in its file; any number will do, but always the same
constexpr INT32 PIECE = 4096;

void AddLittleEndian(GArray<UINT8>& Bytes, UINT32 Value, INT32 Count) {
    for (INT32 i = 0; i < Count; ++i) {
        Bytes.Add(static_cast<UINT8>(Value >> (8 * i)));
    }
}

void AddText(GArray<UINT8>& Bytes, const char* Text) {
    for (; *Text; ++Text) {
        Bytes.Add(static_cast<UINT8>(*Text));
    }
}

// The coder with all its states, in the order in which they must come and go.
class CVorbisFile {
public:
    CVorbisFile(FILE* NewFile, int Channels) : File(NewFile) {
        vorbis_info_init(&Info);
        Good = vorbis_encode_init_vbr(&Info, Channels, RATE, QUALITY) == 0;
        if (Good) {
            vorbis_comment_init(&Comment);
            vorbis_analysis_init(&Coder, &Info);
            vorbis_block_init(&Coder, &Block);
            ogg_stream_init(&Stream, SERIAL);
        }
    }
    ~CVorbisFile() {
        if (Coder.vi) {
            ogg_stream_clear(&Stream);
            vorbis_block_clear(&Block);
            vorbis_dsp_clear(&Coder);
            vorbis_comment_clear(&Comment);
        }
        vorbis_info_clear(&Info);
    }
    CVorbisFile(const CVorbisFile&) = delete;
    CVorbisFile& operator=(const CVorbisFile&) = delete;

    bool Good;

    // The three headers fill pages of their own, as the format wants it.
    void WriteHeaders() {
        ogg_packet Headers[3];
        vorbis_analysis_headerout(&Coder, &Comment, &Headers[0], &Headers[1], &Headers[2]);
        for (ogg_packet& Header : Headers) {
            ogg_stream_packetin(&Stream, &Header);
        }
        WritePages(ogg_stream_flush);
    }

    // A Count of 0 ends the stream.
    void Write(const SStereo& Sound, INT32 Start, INT32 Count) {
        if (Count > 0) {
            float** Room = vorbis_analysis_buffer(&Coder, Count);
            for (INT32 i = 0; i < Count * Info.channels; ++i) {
                const INT32 Side = i / Count, At = i % Count;
                Room[Side][At] = (Side == 0 ? Sound.Left : Sound.Right)[Start + At];
            }
        }
        vorbis_analysis_wrote(&Coder, Count);
        while (vorbis_analysis_blockout(&Coder, &Block) == 1) {
            vorbis_analysis(&Block, nullptr);
            vorbis_bitrate_addblock(&Block);
            for (ogg_packet Packet; vorbis_bitrate_flushpacket(&Coder, &Packet) == 1;) {
                ogg_stream_packetin(&Stream, &Packet);
                WritePages(ogg_stream_pageout);
            }
        }
    }

private:
    void WritePages(int (*Next)(ogg_stream_state*, ogg_page*)) {
        for (ogg_page Page; Next(&Stream, &Page) != 0;) {
            const size_t Head = static_cast<size_t>(Page.header_len), Body = static_cast<size_t>(Page.body_len);
            Good = std::fwrite(Page.header, 1, Head, File) == Head && Good;
            Good = std::fwrite(Page.body, 1, Body, File) == Body && Good;
        }
    }

    FILE* File;
    vorbis_info Info = {};
    vorbis_comment Comment = {};
    vorbis_dsp_state Coder = {};
    vorbis_block Block = {};
    ogg_stream_state Stream = {};
};

} // namespace

bool SaveWave(const CLoop& Sound, const char* File) {
    constexpr UINT32 HEAD = 36; // bytes between the two lengths
    const UINT32 Size = static_cast<UINT32>(Sound.Length()) * 2;
    GArray<UINT8> Bytes;
    AddText(Bytes, "RIFF");
    AddLittleEndian(Bytes, HEAD + Size, 4);
    AddText(Bytes, "WAVEfmt ");
    AddLittleEndian(Bytes, 16, 4);       // length of what follows
    AddLittleEndian(Bytes, 1, 2);        // plain numbers
    AddLittleEndian(Bytes, 1, 2);        // channels
    AddLittleEndian(Bytes, RATE, 4);     // samples a second
    AddLittleEndian(Bytes, RATE * 2, 4); // bytes a second
    AddLittleEndian(Bytes, 2, 2);        // bytes a sample
    AddLittleEndian(Bytes, 16, 2);       // bits a sample
    AddText(Bytes, "data");
    AddLittleEndian(Bytes, Size, 4);
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const float Sample = std::round(std::clamp(Sound[i], -1.0f, 1.0f) * 32767);
        AddLittleEndian(Bytes, static_cast<UINT32>(static_cast<INT32>(Sample)), 2);
    }
    FILE* Out = std::fopen(File, "wb");
    if (!Out) {
        return false;
    }
    const bool Written = std::fwrite(Bytes.Data, 1, Bytes.count, Out) == Bytes.count;
    return std::fclose(Out) == 0 && Written;
}

bool SaveVorbis(const SStereo& Sound, const char* File, int Channels) {
    FILE* Out = std::fopen(File, "wb");
    if (!Out) {
        return false;
    }
    CVorbisFile Vorbis(Out, Channels);
    if (Vorbis.Good) {
        Vorbis.WriteHeaders();
        for (INT32 Start = 0; Start < Sound.Length(); Start += PIECE) {
            Vorbis.Write(Sound, Start, std::min(PIECE, Sound.Length() - Start));
        }
        Vorbis.Write(Sound, 0, 0);
    }
    return std::fclose(Out) == 0 && Vorbis.Good;
}
