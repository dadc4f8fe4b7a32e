// The player's side of the display: starts the game, finds its window, looks at it, presses real keys and clicks.
//
// Works through the shell and the programs xdotool and import, on the display in DISPLAY, which needs a window manager.
// Keys go to the window with the focus, so only one such test may run on a display at a time. Waiting is bounded.
#pragma once

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

// Red, green and blue in rows from the top.
using CPixels = std::vector<std::uint8_t>;

inline void Wait(double Seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(Seconds));
}

// Standard output of a shell command; what it says on standard error is dropped.
inline std::string Shell(const std::string& Command) {
    std::string Output;
    FILE* Pipe = popen(("exec 2>/dev/null; " + Command).c_str(), "r");
    for (int Byte; Pipe && (Byte = std::fgetc(Pipe)) != EOF;) {
        Output += static_cast<char>(Byte);
    }
    if (Pipe) {
        pclose(Pipe);
    }
    return Output;
}

// The whole file, or an empty text if there is none.
inline std::string ReadText(const fs::path& Path) {
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), {}};
}

// A program with a working directory of /. What it prints and its exit code go into files of the folder. The destructor
// ends it if it still runs, so a test that fails leaves nothing behind.
class CProgram {
public:
    CProgram(const fs::path& Folder, const std::string& Executable, const std::string& Variables) : Folder(Folder) {
        const std::string Command = "cd /; " + Variables + " ./" + (Folder / Executable).relative_path().string();
        const std::string Out = Folder.string() + "/output.txt", Code = Folder.string() + "/code.txt";
        fs::remove(Code);
        Group = std::atoi(
            Shell("setsid sh -c '" + Command + " >" + Out + " 2>&1; echo $? >" + Code + "' >/dev/null & echo $!")
                .c_str());
    }
    ~CProgram() {
        if (Group > 0 && !WaitForEnd(0)) {
            kill(-Group, SIGKILL);
        }
    }
    CProgram(const CProgram&) = delete;
    CProgram& operator=(const CProgram&) = delete;

    // The exit code, or 128 plus the signal's number; nothing if it still runs after that time.
    std::optional<int> WaitForEnd(double Seconds) const {
        for (; ReadText(Folder / "code.txt").empty() && Seconds > 0; Seconds -= 0.05) {
            Wait(0.05);
        }
        const std::string Code = ReadText(Folder / "code.txt");
        return Code.empty() ? std::nullopt : std::optional(std::atoi(Code.c_str()));
    }
    bool IsRunning() const { return !WaitForEnd(0); }

    // What it has written so far.
    std::string Output() const { return ReadText(Folder / "output.txt"); }

private:
    fs::path Folder;
    int Group = 0; // of processes
};

// The visible window with exactly that title, once there is one; empty after that time.
inline std::string FindWindow(const std::string& Title, int Seconds) {
    const std::string Id = Shell("timeout " + std::to_string(Seconds) +
                                 " xdotool search --sync --onlyvisible --name '^" + Title + "$' | head -n 1");
    return Id.substr(0, Id.find('\n'));
}

// Left and top edge, width and height of a part of a window.
struct SPart {
    int X = 0, Y = 0, Width = 1024, Height = 576;
};

// What a part of a window shows; empty if the window is gone.
inline CPixels PictureOf(const std::string& Window, const SPart& Part = {}) {
    char Crop[80];
    std::snprintf(Crop, sizeof(Crop), " -crop %dx%d+%d+%d +repage", Part.Width, Part.Height, Part.X, Part.Y);
    const std::string Bytes = Shell("import -window " + Window + Crop + " -depth 8 rgb:-");
    return {Bytes.begin(), Bytes.end()};
}

inline void MoveMouse(const std::string& Window, int X, int Y) {
    Shell("xdotool mousemove --window " + Window + " " + std::to_string(X) + " " + std::to_string(Y));
}

// A key by X's name, as "w" or "Escape", or a button of the mouse by its number, down as long as this lives. Keys go to
// the window with the focus, buttons to the one under the mouse.
class CHeld {
public:
    CHeld(const std::string& Kind, const std::string& Name) : Kind(Kind), Name(Name) {
        Shell("xdotool " + Kind + "down " + Name);
    }
    ~CHeld() { Shell("xdotool " + Kind + "up " + Name); }
    CHeld(const CHeld&) = delete;
    CHeld& operator=(const CHeld&) = delete;

private:
    std::string Kind, Name;
};

// The mean difference of a channel, 0 to 255. Pictures of different size differ by 255.
inline double MeanDifference(const CPixels& A, const CPixels& B) {
    double Sum = A.size() != B.size() || A.empty() ? INFINITY : 0.0;
    for (std::size_t i = 0; i < A.size() && i < B.size(); ++i) {
        Sum += std::abs(A[i] - B[i]);
    }
    return std::min(255.0, Sum / static_cast<double>(A.size()));
}
