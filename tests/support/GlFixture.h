// A test fixture with an OpenGL context: the game's window of 1024 by 576, the state that the program starts with, and
// a working directory of the test's own.
//
// The window is made once per process and stays to its end; every case begins with the same state, no bound target, no
// program, no OpenGL error, the view, projection and world matrices at identity, and an empty folder "Data" with
// "Shaders" and "Textures" in the working directory, which is removed after the case. Without a display the cases are
// skipped; with one that gives no context they fail.
//
// Fatal errors print their text on standard error instead of showing a box. Death tests run in a fresh process (style
// "threadsafe") that gets a context of its own but works in the same directory, so a case can prepare files before it
// and look at error.log behind it. EXPECT_FATAL expects the exit of FatalError with a text.
//
// Pictures have 8 bits a channel and their top row first.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "foundation/Types.h"

struct SRgb {
    int R = 0;
    int G = 0;
    int B = 0;
    bool operator==(const SRgb&) const = default;
};

std::ostream& operator<<(std::ostream& Out, const SRgb& Color);

struct SPicture {
    int Width = 0;
    int Height = 0;
    std::vector<UINT8> Rgb; // Width * Height * 3, top row first

    SRgb At(int X, int Y) const; // Y downward
};

class GlFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The first folder of the path must exist; the others are made.
    static void WriteText(const std::string& Path, const std::string& Text);
    static std::string ReadText(const std::string& Path);

    // Data/Shaders/<VertexName>.vsh and <PixelName>.psh.
    static void WriteShaders(const std::string& VertexName, const std::string& VertexText, const std::string& PixelName,
                             const std::string& PixelText);

    // An uncompressed TGA file. Channels: 1 is grey, 3 is RGB, 4 is RGBA; Pixels in that order, top row first.
    static void WriteTga(const std::string& Path, int Width, int Height, int Channels,
                         const std::vector<UINT8>& Pixels);

    // From whatever is bound for reading: the window or a target. Y counts downward from Height's top.
    static SPicture ReadPicture(int Width, int Height);
    static SPicture ReadWindow();

    // RGBA of level 0.
    static std::vector<UINT8> ReadTexture(UINT32 Texture, int Width, int Height);

    static void ClearWindow(float R, float G, float B);

private:
    std::string StartDir;
    bool OwnsDir = false;
};

// What exit(0xBADDC0DE) comes out as.
constexpr int FATAL_EXIT_STATUS = 222;

#define EXPECT_FATAL(Statement, Text) EXPECT_EXIT(Statement, ::testing::ExitedWithCode(FATAL_EXIT_STATUS), Text)
