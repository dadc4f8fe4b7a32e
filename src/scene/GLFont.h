// Text on the screen: one bitmap font, a grid of 16 by 16 characters in one texture with a width for each.
//
// A draw wraps the text to a rectangle, aligns it, makes a quad of each character and sends all of them in one call. It
// stands beside the draw helpers, which it calls, and not with the other graphics resources below them.
//
// The caller has made a program current (as a rule GUI), set its matrices, set its sampler "Texture" to unit 0 and
// switched blending on. Coordinates are those of the projection, y downward; text is made for the 1024 by 576 screen.
// A line is 15 * Scale units high, and a full cell of the grid is as wide as a line is high.
//
// Ownership: the font owns its texture; GFont is made and deleted by the shell. Draws can't overlap.
// Cost: one texture bind and one draw call for each text. Both buffers keep their memory, so drawing soon allocates
// nothing.
// Bad input: a Font.dat that is missing, cut off or without usable sizes leaves the font unloaded, and every draw then
// returns -1. A picture that can't be read fails a check. Character codes outside of 0 to 127 have no width and are
// left out. A size that is not positive, or a text of null, draws nothing.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "scene/DrawHelpers.h"

constexpr UINT32 FONT_SINGLELINE = 1; // one line at most, however high the rectangle is
constexpr UINT32 FONT_RIGHT = 2;      // lines end at the right edge
constexpr UINT32 FONT_BOTTOM = 4;     // the block of lines ends at the bottom edge
constexpr UINT32 FONT_CENTERX = 8;
constexpr UINT32 FONT_CENTERY = 16;
constexpr UINT32 FONT_WRAP = 64; // break before a word that would cross the right edge; nothing if no line fits

class GLFont {
public:
    static constexpr float LINE_HEIGHT = 15.0f; // units at scale 1, and the size that draws at the natural scale

    explicit GLFont(float Scale);
    ~GLFont();
    GLFont(const GLFont&) = delete;
    GLFont& operator=(const GLFont&) = delete;

    // Size is the height of a line while Scale is 1. Color is packed as by M_PackColor. 0, or -1 if not Loaded.
    INT32 Draw(const char* Text, UINT32 Color, UINT32 Flags, float Left, float Right, float Top, float Bottom,
               float Size);

    // The part of Draw that needs no OpenGL: fills Wrapped and Vertices.
    void Layout(const char* Text, UINT32 Color, UINT32 Flags, float Left, float Right, float Top, float Bottom,
                float Size);

    float ImageWidth = 0, ImageHeight = 0, CellWidth = 0, CellHeight = 0; // pixels
    signed char StartChar = 0;                                            // the code of the grid's first cell
    float Widths[256] = {};                                               // by code, units at scale 1
    float Scale;                                                          // multiplies all sizes; any draw restores it
    UINT32 Texture = 0;
    bool Loaded = false;
    GString Wrapped;            // the text of the draw in progress, with a line feed at each break
    GArray<SVertex24> Vertices; // of the draw in progress, four to a character

private:
    struct SWrap;

    bool ReadTable();
    void LoadPicture();
    float WidthOf(char Character) const;
    float WidthUpTo(const char* Text, char End) const;
    INT32 Wrap(const char* Text, UINT32 Flags, float Width, INT32 Limit);
    void AddLine(const char* Line, float x, float y, UINT32 Color);
    void AddCharacter(char Character, float x, float y, UINT32 Color);
};

// Null outside of the shell's run.
extern GLFont* GFont;

// Makes the program GUI current for two-dimensional work: its sampler "Texture" on unit 0, and an identity view and the
// 1024 by 576 screen as GViewMatrix and GProjectionMatrix.
void UseGuiProgram();
