// Choosing a file with the desktop's dialog, or from a list in the terminal where there is none.
#include "platform/Platform.h"
#include "platform/Process.h"

#include <algorithm>
#include <dirent.h>
#include <string>
#include <vector>

namespace {

constexpr int EXIT_CHOSEN = 0;
constexpr int EXIT_CANCELLED = 1;

bool EndsWith(const std::string& Text, const std::string& End) {
    return Text.size() > End.size() && Text.compare(Text.size() - End.size(), End.size(), End) == 0;
}

std::vector<std::string> FilesIn(const std::string& Folder, const std::string& Suffix) {
    std::vector<std::string> Names;
    DIR* Directory = opendir(Folder.c_str());
    for (const dirent* Entry = nullptr; Directory && (Entry = readdir(Directory));) {
        if (EndsWith(Entry->d_name, Suffix)) {
            Names.emplace_back(Entry->d_name);
        }
    }
    if (Directory) {
        closedir(Directory);
    }
    std::sort(Names.begin(), Names.end());
    return Names;
}

EFileChoice Answer(const std::string& Path, char* Buffer, int Size) {
    if (Path.empty()) {
        return EFileChoice::Cancelled;
    }
    if (Path.size() >= static_cast<std::size_t>(Size)) {
        return EFileChoice::Failed;
    }
    std::snprintf(Buffer, static_cast<std::size_t>(Size), "%s", Path.c_str());
    return EFileChoice::Chosen;
}

// The exit code of the dialog; what it printed is the path and a line feed.
int RunDialog(const char* Title, const char* FilterName, const std::string& Suffix, const std::string& Start,
              std::string& Path) {
    const std::string Name = FilterName, Pattern = "*" + Suffix;
    int Code = RunProgram({"zenity", "--file-selection", "--title", Title, "--filename", Start.c_str(), "--file-filter",
                           (Name + " | " + Pattern).c_str()},
                          &Path);
    if (Code == EXIT_NO_SUCH_PROGRAM) {
        Code = RunProgram(
            {"kdialog", "--title", Title, "--getopenfilename", Start.c_str(), (Pattern + "|" + Name).c_str()}, &Path);
    }
    Path = Path.substr(0, Path.find('\n'));
    return Code;
}

// Nobody waits for an answer here: each call takes the file behind the present one.
EFileChoice TakeNext(const std::string& Folder, const std::string& Suffix, char* Buffer, int Size) {
    const std::vector<std::string> Names = FilesIn(Folder, Suffix);
    std::printf("There is no zenity or kdialog to choose a file with; this takes the next one in %s\n", Folder.c_str());
    if (Names.empty()) {
        std::printf("No file there ends in %s\n", Suffix.c_str());
        return EFileChoice::Cancelled;
    }
    const std::string Present = Buffer;
    auto Next = std::find_if(Names.begin(), Names.end(),
                             [&](const std::string& Name) { return EndsWith(Present, "/" + Name); });
    Next = Next == Names.end() || Next + 1 == Names.end() ? Names.begin() : Next + 1;
    for (const std::string& Name : Names) {
        std::printf("%s %s\n", Name == *Next ? ">" : " ", Name.c_str());
    }
    return Answer(Folder + *Next, Buffer, Size);
}

} // namespace

EFileChoice PlatChooseFile(const char* Title, const char* FilterName, const char* Suffix, const char* Folder,
                           char* Buffer, int Size) {
    std::string Path;
    const int Code =
        PlatHasDisplay() ? RunDialog(Title, FilterName, Suffix, *Buffer ? Buffer : Folder, Path) : EXIT_NO_SUCH_PROGRAM;
    switch (Code) {
    case EXIT_NO_SUCH_PROGRAM:
        return TakeNext(Folder, Suffix, Buffer, Size);
    case EXIT_CHOSEN:
        return Answer(Path, Buffer, Size);
    case EXIT_CANCELLED:
        return EFileChoice::Cancelled;
    default:
        return EFileChoice::Failed;
    }
}
