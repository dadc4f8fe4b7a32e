// The player's side of the display: finds the game's window, looks at it, and presses real keys.
//
// Works through the programs xdotool and import, on the display in DISPLAY, which needs a window manager. Keys go to
// the window with the focus, so only one such test may run on a display at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Red, green and blue in rows from the top.
using CPixels = std::vector<std::uint8_t>;

class CWindow {
public:
    // The visible window with exactly that title, once there is one; nothing after that time.
    static std::optional<CWindow> Find(const std::string& Title, int Seconds);

    // What it shows; empty if the window is gone.
    CPixels Picture() const;

    void Focus() const;

    // As a click on its close button: asks the program to end.
    void Close() const;

    const std::string& GetId() const { return Id; }

private:
    explicit CWindow(std::string Id) : Id(std::move(Id)) {}
    std::string Id;
};

// Keys by X's names, as "w" or "Escape", go to the window with the focus.
void HoldKey(const std::string& Key, double Seconds);

// Moves the mouse as a hand does, in small steps.
void MoveMouse(int X, int Y, int Steps);

void Wait(double Seconds);

// The mean difference of a channel, 0 to 255. Pictures of different size differ by 255.
double MeanDifference(const CPixels& A, const CPixels& B);

// How many different colours there are in it.
std::size_t CountColors(const CPixels& Pixels);
