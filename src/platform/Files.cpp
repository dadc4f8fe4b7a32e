#include "platform/Platform.h"

#include <cstring>
#include <unistd.h>

namespace {

// A copy of a path with slashes only. Empty if it does not fit, which no call of the system accepts.
struct SNativePath {
    explicit SNativePath(const char* Path) {
        const std::size_t Length = std::strlen(Path);
        if (Length >= sizeof(Text)) {
            return;
        }
        for (std::size_t i = 0; i < Length; ++i) {
            Text[i] = Path[i] == '\\' ? '/' : Path[i];
        }
        Text[Length] = 0;
    }

    char Text[PLAT_MAX_PATH] = "";
};

} // namespace

FILE* PlatOpenFile(const char* Path, const char* Mode) {
    return std::fopen(SNativePath(Path).Text, Mode);
}

bool PlatChangeDir(const char* Path) {
    return chdir(SNativePath(Path).Text) == 0;
}

bool PlatGetDir(char* Buffer, int Size) {
    return getcwd(Buffer, static_cast<std::size_t>(Size)) != nullptr;
}

void PlatExecutablePath(char* Buffer, int Size, const char* Fallback) {
    const ssize_t Length = readlink("/proc/self/exe", Buffer, static_cast<std::size_t>(Size - 1));
    if (Length > 0) {
        Buffer[Length] = 0;
    } else {
        std::snprintf(Buffer, static_cast<std::size_t>(Size), "%s", Fallback);
    }
}
