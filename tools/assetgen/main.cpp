// assetgen: makes the game's binary data.
//
//   assetgen FOLDER PATH     makes the asset with that path of the table below FOLDER
//   assetgen FOLDER          makes all of them
//   assetgen                 prints the table: kind, name and path of each
//
// A file appears under its name only when it is whole: it is written beside its place and then renamed, so that an
// interrupted or parallel run leaves no half of one. The exit code is 0 if everything asked for was made.
#include "Asset.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

bool MakeAsset(const SAsset& Asset, const char* Folder) {
    const std::filesystem::path Place = std::filesystem::path(Folder) / Asset.Path;
    char Ending[32];
    std::snprintf(Ending, sizeof(Ending), ".%ld.part", static_cast<long>(getpid()));
    std::filesystem::path Unfinished = Place;
    Unfinished += Ending;

    std::error_code Error;
    std::filesystem::create_directories(Place.parent_path(), Error);
    bool Made = Asset.Make(Asset.Name, Unfinished.c_str());
    if (Made) {
        std::filesystem::rename(Unfinished, Place, Error);
        Made = !Error;
    }
    if (!Made) {
        std::filesystem::remove(Unfinished, Error);
        std::fprintf(stderr, "assetgen: can't make \"%s\"\n", Place.c_str());
    }
    return Made;
}

void PrintTable() {
    for (int i = 0; i < ASSET_COUNT; ++i) {
        std::printf("%s %s %s\n", ASSETS[i].Kind, ASSETS[i].Name, ASSETS[i].Path);
    }
}

// Path null makes all; false if one could not be made or Path is not in the table.
bool MakeAssets(const char* Folder, const char* Path) {
    bool Known = Path == nullptr;
    bool Made = true;
    for (int i = 0; i < ASSET_COUNT; ++i) {
        if (!Path || std::strcmp(Path, ASSETS[i].Path) == 0) {
            Known = true;
            Made = MakeAsset(ASSETS[i], Folder) && Made;
        }
    }
    if (!Known) {
        std::fprintf(stderr, "assetgen: no asset has the path \"%s\"\n", Path);
    }
    return Known && Made;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        PrintTable();
        return 0;
    }
    return MakeAssets(argv[1], argc > 2 ? argv[2] : nullptr) ? 0 : 1;
}
