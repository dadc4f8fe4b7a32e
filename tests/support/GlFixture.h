// A test fixture with an OpenGL context: the game's window, the state that the program starts with, and a working
// directory of the test's own.
//
// The window is made once per process. Every case begins with that state, identity matrices, neither program nor
// target bound, and the empty folders Data/Shaders and Data/Textures in a directory that goes behind the case. Without
// a display the cases are skipped; with one that gives no context they fail. Start and Finish are for derived fixtures
// and run only where there is a context. Fatal errors print on standard error. Death tests run in a process with a
// context of its own but in the same directory: files made before one are there, and so is its error.log behind it.
#pragma once

#include "support/Common.h"

struct SRgb {
    int R = 0, G = 0, B = 0;
    bool operator==(const SRgb&) const = default;
};

inline std::ostream& operator<<(std::ostream& Out, const SRgb& Color) {
    return Out << "(" << Color.R << ", " << Color.G << ", " << Color.B << ")";
}

struct SPicture {
    int Width = 0, Height = 0;
    std::vector<UINT8> Rgb; // lowest row first, as OpenGL and the picture library have it

    SRgb At(int X, int Y) const; // Y downward
};

class GlFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    virtual void Start() {}
    virtual void Finish() {}
    bool Ready = false;

    // Data/Shaders/<VertexName>.vsh and <PixelName>.psh.
    static void WriteShaders(const std::string& VertexName, const std::string& VertexText, const std::string& PixelName,
                             const std::string& PixelText);

    // Uncompressed. Channels: 1 is grey, 3 is RGB, 4 is RGBA; Pixels in that order, top row first.
    static void WriteTga(const std::string& Path, int Width, int Height, int Channels,
                         const std::vector<UINT8>& Pixels);

    static SPicture ReadWindow();
    static std::vector<UINT8> ReadTexture(UINT32 Texture, int Width, int Height); // RGBA of level 0
    static void ClearWindow(float R, float G, float B);

    static INT32 GetInteger(UINT32 Name);
    static INT32 TextureParameter(UINT32 Texture, UINT32 Name);

private:
    std::string StartDir; // empty if the case has no directory
};
