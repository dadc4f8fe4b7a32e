#include "foundation/FileDialog.h"

#include "foundation/Diagnostics.h"
#include "platform/Platform.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* MODEL_FOLDER = "Data/Models/";

// A level file ends a value at a blank.
bool CanNameAMesh(const char* Path) {
    return std::strpbrk(Path, " \t\n") == nullptr;
}

} // namespace

UINT32 C_SysFileOpen(const char* InitialFolder, char* Buffer, UINT32 BufferSize) {
    switch (GPlatform.ChooseFile("Choose mesh", "Model data descriptor", ".mdd", InitialFolder, Buffer,
                                 static_cast<int>(BufferSize))) {
    case EFileChoice::Chosen:
        return 1;
    case EFileChoice::Cancelled:
        return 0;
    case EFileChoice::Failed:
        break;
    }
    FatalBox("C_SysFileOpen error\n");
}

UINT32 C_SysOpenModelFile(GString& RelPath) {
    char Directory[PLAT_MAX_PATH], File[PLAT_MAX_PATH] = "";
    if (!PlatGetDir(Directory, PLAT_MAX_PATH)) {
        return 0;
    }
    GString Base = Directory;
    Base += "/";
    GString Folder = Base;
    Folder += MODEL_FOLDER;
    if (!RelPath.Empty()) {
        std::snprintf(File, sizeof(File), "%s%s", Base.CStr(), RelPath.CStr());
    }
    if (!C_SysFileOpen(Folder.CStr(), File, PLAT_MAX_PATH)) {
        return 0;
    }
    if (std::strncmp(File, Folder.CStr(), Folder.count) != 0) {
        LogPrintf("The mesh must lie below %s, but this one does not: %s\n", Folder.CStr(), File);
        return 0;
    }
    if (!CanNameAMesh(File + Base.count)) {
        LogPrintf("A mesh that a level names has no blank in its path, but this one has: %s\n", File);
        return 0;
    }
    RelPath = File + Base.count;
    return 1;
}
