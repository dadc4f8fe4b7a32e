#include "support/Desktop.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <thread>

namespace {

// Standard output of a shell command; what it says on standard error is dropped.
std::string Run(const std::string& Command) {
    std::string Output;
    FILE* Pipe = popen((Command + " 2>/dev/null").c_str(), "r");
    if (!Pipe) {
        return Output;
    }
    char Buffer[65536];
    std::size_t Bytes;
    while ((Bytes = std::fread(Buffer, 1, sizeof(Buffer), Pipe)) > 0) {
        Output.append(Buffer, Bytes);
    }
    pclose(Pipe);
    return Output;
}

} // namespace

std::optional<CWindow> CWindow::Find(const std::string& Title, int Seconds) {
    const std::string Id = Run("timeout " + std::to_string(Seconds) + " xdotool search --sync --onlyvisible --name '^" +
                               Title + "$' | head -n 1");
    if (Id.empty()) {
        return std::nullopt;
    }
    return CWindow(Id.substr(0, Id.find('\n')));
}

CPixels CWindow::Picture() const {
    const std::string Bytes = Run("import -window " + Id + " -depth 8 rgb:-");
    return CPixels(Bytes.begin(), Bytes.end());
}

void CWindow::Focus() const {
    Run("xdotool windowfocus --sync " + Id);
}

void CWindow::Close() const {
    Focus();
    // The window manager takes this key and asks the window to close, as its close button does.
    Run("xdotool key --clearmodifiers alt+F4");
}

void HoldKey(const std::string& Key, double Seconds) {
    Run("xdotool keydown " + Key);
    Wait(Seconds);
    Run("xdotool keyup " + Key);
}

void MoveMouse(int X, int Y, int Steps) {
    for (int i = 0; i < Steps; ++i) {
        Run("xdotool mousemove_relative -- " + std::to_string(X) + " " + std::to_string(Y));
        Wait(0.02);
    }
}

void Wait(double Seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(Seconds));
}

double MeanDifference(const CPixels& A, const CPixels& B) {
    if (A.size() != B.size() || A.empty()) {
        return 255.0;
    }
    double Sum = 0.0;
    for (std::size_t i = 0; i < A.size(); ++i) {
        Sum += std::abs(A[i] - B[i]);
    }
    return Sum / static_cast<double>(A.size());
}

std::size_t CountColors(const CPixels& Pixels) {
    std::set<std::uint32_t> Colors;
    for (std::size_t i = 0; i + 2 < Pixels.size(); i += 3) {
        Colors.insert(Pixels[i] << 16 | Pixels[i + 1] << 8 | Pixels[i + 2]);
    }
    return Colors.size();
}
