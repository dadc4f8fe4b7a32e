// The font of all text on the screen: a grid of 16 by 16 cells and the table of widths.
//
// Everything is laid out for a height of 14 pixels, the smallest that is used: there a cell is exactly a quarter of its
// texels, so that the second mip level is drawn pixel by pixel. Advances are therefore whole fours of texels, and the
// outlines are those that are hinted for that size, four times enlarged. Each letter brings a dark rim of its own, in
// its colours and its alpha, so that light text reads on snow; the text's colour multiplies both.
#include "Asset.h"
#include "BinaryFile.h"
#include "Lettering.h"
#include "Noise.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 CELL = 56; // texels
constexpr INT32 GRID = 16;
constexpr INT32 FINE = 4; // texels to a pixel of the smallest text
constexpr INT32 FIRST = 32, LAST = 126;

constexpr float SIZE = 11;      // pixels per em of the smallest text
constexpr float NARROW = 0.95f; // of the typeface's width
constexpr float SPACING = 0.5f; // pixels of the smallest text that are added to an advance
constexpr INT32 BASELINE = 10;  // likewise, from the cell's upper edge

// The rim ends before the edges of a cell, and of the part that is drawn: it would be seen to be cut.
constexpr float RIM_WIDTH = 2.3f; // texels of full strength
constexpr float RIM_FADE = 2.0f;  // and behind them
constexpr float RIM_ALPHA = 0.85f;
constexpr float RIM_GREY = 0.03f;

// A letter in its cell, which is drawn from its left edge to Width.
struct SCell {
    SCell(const CLettering& Letters, INT32 Code) : Coverage(CELL, CELL) {
        if (Code < FIRST || Code > LAST) {
            return;
        }
        const char Letter = static_cast<char>(Code);
        const SLetterForm Form = {.ScaleX = FINE * NARROW, .ScaleY = FINE};
        const SInk Ink = Letters.InkOf(Letter, Form);
        const float Advance = Letters.Advance(Letter) * Form.ScaleX + SPACING * FINE;
        const float Least = Ink.Right - Ink.Left + 2 * (RIM_WIDTH + 0.5f * RIM_FADE);
        Width = std::min(static_cast<INT32>(std::round(std::max(Advance, Least) / FINE)) * FINE, CELL);
        // Letters that need room for their rim stand in the middle of it, the others keep their place in the advance.
        const float Shift = Advance >= Least ? (static_cast<float>(Width) - Advance + SPACING * FINE) * 0.5f
                                             : (static_cast<float>(Width) - Ink.Left - Ink.Right) * 0.5f;
        Letters.Draw(Coverage, Letter, Shift - 0.5f, BASELINE * FINE - 0.5f, Form);
    }

    INT32 Width = 0; // texels
    CField Coverage;
};

bool SaveTable(const CLettering& Letters, const char* File) {
    CBinaryFile Table;
    for (const UINT32 Value : {CELL * GRID, CELL * GRID, CELL, CELL}) {
        for (UINT32 Shift = 0; Shift < 32; Shift += 8) {
            Table.AddByte(static_cast<UINT8>(Value >> Shift & 255));
        }
    }
    Table.AddByte(FIRST);
    for (INT32 Code = 0; Code < 256; ++Code) {
        Table.AddByte(static_cast<UINT8>(SCell(Letters, Code).Width));
    }
    return Table.Save(File);
}

// White where the letter is, dark around it and, since filters reach there, also where nothing is.
void PaintLetter(CPicture& Picture, const CLettering& Letters, INT32 Code) {
    const SCell Cell(Letters, Code);
    const CField Distance = SignedDistance(Cell.Coverage);
    const UINT32 Left = static_cast<UINT32>((Code - FIRST) % GRID * CELL);
    const UINT32 Top = static_cast<UINT32>((Code - FIRST) / GRID * CELL);
    for (INT32 y = 0; y < CELL; ++y) {
        for (INT32 x = 0; x < CELL; ++x) {
            const float Inside = Cell.Coverage.At(x, y);
            // Filters reach into the next cell, so the outermost rows stay empty.
            const float Free = Clamp01(static_cast<float>(std::min(y, CELL - 1 - y)) * 0.5f);
            const float Rim = Free * RIM_ALPHA * SmoothStep(-RIM_WIDTH - RIM_FADE, -RIM_WIDTH, Distance.At(x, y));
            const float Alpha = Inside + Rim * (1 - Inside);
            const float Grey = Alpha > 0 ? Mix(RIM_GREY, 1, Inside / Alpha) : RIM_GREY;
            Picture.SetColour(Left + static_cast<UINT32>(x), Top + static_cast<UINT32>(y), Grey, Grey, Grey, Alpha);
        }
    }
}

bool SavePicture(const CLettering& Letters, const char* File) {
    CPicture Picture(CELL * GRID, CELL * GRID, 4);
    for (UINT32 i = 0; i < Picture.Width * Picture.Height; ++i) {
        Picture.SetColour(i % Picture.Width, i / Picture.Width, RIM_GREY, RIM_GREY, RIM_GREY, 0);
    }
    for (INT32 Code = FIRST; Code <= LAST; ++Code) {
        PaintLetter(Picture, Letters, Code);
    }
    return Picture.SaveTga(File);
}

} // namespace

bool MakeFont(const char* Name, const char* File) {
    const CLettering Letters(SIZE, true);
    if (!Letters.Good) {
        return false;
    }
    return std::strcmp(Name, "FontTable") == 0 ? SaveTable(Letters, File) : SavePicture(Letters, File);
}
