#include "foundation/Scan.h"

#include "platform/Platform.h"

#include <cstdint>
#include <cstdio>

namespace {

// A text file is read in pieces of this size; most files of the game are one piece.
constexpr std::size_t CHUNK_BYTES = 16 * 1024;

// Closes the file on every way out.
struct SOpenFile {
    SOpenFile(const GString& Name, const char* Mode) : File(PlatOpenFile(Name.CStr(), Mode)) {}
    ~SOpenFile() {
        if (File) {
            std::fclose(File);
        }
    }
    SOpenFile(const SOpenFile&) = delete;
    SOpenFile& operator=(const SOpenFile&) = delete;

    FILE* File;
};

// Appends a piece of a file with the carriage returns in front of line feeds left out. Held says that the piece before
// ended in one that is still waiting for what follows it.
void AppendLines(const char* Piece, std::size_t Bytes, bool& Held, GString& Text) {
    char Kept[CHUNK_BYTES + 1];
    std::size_t Count = 0;
    for (std::size_t i = 0; i < Bytes; ++i) {
        if (Held && Piece[i] != '\n') {
            Kept[Count++] = '\r';
        }
        Held = Piece[i] == '\r';
        if (!Held) {
            Kept[Count++] = Piece[i];
        }
    }
    Text.Append(Kept, static_cast<UINT32>(Count));
}

} // namespace

int F_ReadFile(const GString& Name, GArray<UINT8>& Bytes) {
    const SOpenFile Open(Name, "rb");
    if (!Open.File || std::fseek(Open.File, 0, SEEK_END) != 0) {
        return 0;
    }
    // A folder opens like a file here, and has no size or a senseless one.
    const long Size = std::ftell(Open.File);
    if (Size < 0 || Size > INT32_MAX) {
        return 0;
    }
    std::rewind(Open.File);
    Bytes.Resize(static_cast<UINT32>(Size));
    // A read that falls short leaves what the array held: the formats built on this see it as bad data.
    [[maybe_unused]] const std::size_t Read = std::fread(Bytes.Data, 1, Bytes.Size(), Open.File);
    return 1;
}

int F_ReadTextFile(const GString& Name, GString& Text) {
    Text = "";
    const SOpenFile Open(Name, "r");
    if (!Open.File) {
        return 0;
    }
    char Chunk[CHUNK_BYTES];
    bool HeldReturn = false;
    while (const std::size_t Read = std::fread(Chunk, 1, CHUNK_BYTES, Open.File)) {
        AppendLines(Chunk, Read, HeldReturn, Text);
    }
    if (HeldReturn) {
        Text += "\r";
    }
    return !std::ferror(Open.File);
}
