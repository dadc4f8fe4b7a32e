#include "scene/GLFont.h"

#include "foundation/Camera.h"
#include "foundation/GCheck.h"
#include "foundation/Scan.h"
#include "foundation/Screen.h"
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <cstring>

GLFont* GFont;

namespace {

const char* const TABLE_FILE = "Data/Engine/Font.dat";
const char* const PICTURE_FILE = "Data/Engine/Font.tga";

constexpr UINT32 SIZE_BYTES = 4; // each of the four sizes that the table begins with
constexpr UINT32 START_AT = 4 * SIZE_BYTES;
constexpr UINT32 WIDTHS_AT = START_AT + 1;
constexpr UINT32 TABLE_BYTES = WIDTHS_AT + 256;

constexpr INT32 LARGEST_IMAGE = 65536; // pixels; no driver takes more

constexpr INT32 GRID = 16; // cells in a row and in a column
constexpr float GRID_STEP = 1.0f / GRID;

// The sizes stand with their least significant byte first, unlike those of the engine's other binary files.
INT32 ReadSize(const GArray<UINT8>& Bytes, UINT32 Index) {
    UINT32 Value = 0;
    for (UINT32 i = 0; i < SIZE_BYTES; ++i) {
        Value |= static_cast<UINT32>(Bytes[Index * SIZE_BYTES + i]) << (8 * i);
    }
    return static_cast<INT32>(Value);
}

bool SizesFit(INT32 Image, INT32 Cell) {
    return Cell > 0 && Cell <= Image && Image <= LARGEST_IMAGE;
}

bool IsBlank(char Character) {
    return Character == ' ';
}

// How many lines a rectangle of that height may get. The order of the arguments keeps what is not a number out.
INT32 LineLimit(UINT32 Flags, float Height, float LineHeight) {
    constexpr float MANY = 1e6f; // more than any text has
    if (!(LineHeight > 0)) {
        return 0;
    }
    const float Least = Flags & FONT_WRAP ? 0.0f : 1.0f;
    return Flags & FONT_SINGLELINE
               ? 1
               : static_cast<INT32>(std::min(MANY, std::max(Least, std::floor(Height / LineHeight))));
}

} // namespace

GLFont::GLFont(float Scale) : Scale(Scale) {
    if (ReadTable()) {
        LoadPicture();
        Loaded = true;
    }
}

GLFont::~GLFont() {
    if (Loaded) {
        glDeleteTextures(1, &Texture);
    }
}

bool GLFont::ReadTable() {
    GArray<UINT8> Bytes;
    if (!F_ReadFile(TABLE_FILE, Bytes) || Bytes.Size() < TABLE_BYTES) {
        return false;
    }
    const INT32 Sizes[4] = {ReadSize(Bytes, 0), ReadSize(Bytes, 1), ReadSize(Bytes, 2), ReadSize(Bytes, 3)};
    if (!SizesFit(Sizes[0], Sizes[2]) || !SizesFit(Sizes[1], Sizes[3])) {
        return false;
    }
    ImageWidth = static_cast<float>(Sizes[0]);
    ImageHeight = static_cast<float>(Sizes[1]);
    CellWidth = static_cast<float>(Sizes[2]);
    CellHeight = static_cast<float>(Sizes[3]);
    StartChar = static_cast<signed char>(Bytes[START_AT]);
    for (UINT32 i = 0; i < 256; ++i) {
        Widths[i] = static_cast<signed char>(Bytes[WIDTHS_AT + i]) * LINE_HEIGHT / CellWidth;
    }
    return true;
}

void GLFont::LoadPicture() {
    Texture = TextureLoadFile(PICTURE_FILE);
    GCHECK_IN("GLFont", Texture != 0, "FontTex");
    glBindTexture(GL_TEXTURE_2D, Texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
}

// What has no width of its own must not be looked up: char may be signed.
float GLFont::WidthOf(char Character) const {
    const UINT8 Code = static_cast<UINT8>(Character);
    return Code < 128 ? Widths[Code] * Scale : 0.0f;
}

// The width of all characters in front of the next End or the end of the text.
float GLFont::WidthUpTo(const char* Text, char End) const {
    float Width = 0;
    for (; *Text && *Text != End; ++Text) {
        Width += WidthOf(*Text);
    }
    return Width;
}

// Where the line being filled stands, and the rule that breaks it.
struct GLFont::SWrap {
    bool Breaks(char c) const {
        return c == '\n' || (Whole && WordWidth < Limit && LineWidth + WordWidth > Limit) || LineWidth > Limit;
    }

    const float Limit;
    const bool Whole;    // words that still fit on a line of their own move to it
    float LineWidth = 0; // what stands on the line in front of the word in progress
    float WordWidth = 0;
};

// Fills Wrapped. The result is the number of lines that the block is aligned by: one more than Limit if the text was
// cut off there. A line feed is no blank: it stands inside a word.
INT32 GLFont::Wrap(const char* Text, UINT32 Flags, float Width, INT32 Limit) {
    SWrap State = {Width, (Flags & FONT_WRAP) != 0};
    INT32 Line = 1;
    Wrapped.Left(0);
    for (const char* p = Text; *p && Line <= Limit; ++p) {
        if (IsBlank(*p)) {
            State.LineWidth += WidthOf(*p);
        } else if (p == Text || IsBlank(p[-1])) {
            State.LineWidth += State.WordWidth;
            State.WordWidth = WidthUpTo(p, ' ');
        }
        if (!State.Breaks(*p)) {
            Wrapped.Append(p, 1);
            continue;
        }
        Wrapped += "\n";
        if (!IsBlank(*p) && *p != '\n' && Line < Limit) {
            Wrapped.Append(p, 1);
        }
        ++Line;
        State.LineWidth = 0;
    }
    return Line;
}

void GLFont::AddCharacter(char Character, float x, float y, UINT32 Color) {
    const INT32 Cell = Character - StartChar;
    const float w = WidthOf(Character);
    const float uLeft = static_cast<float>(Cell % GRID) * GRID_STEP;
    const float uRight = uLeft + Widths[static_cast<UINT8>(Character)] / LINE_HEIGHT * (CellWidth / ImageWidth);
    const float vTop = 1.0f - static_cast<float>(Cell / GRID) * GRID_STEP;
    const float vBottom = vTop - CellHeight / ImageHeight;
    const float Height = LINE_HEIGHT * Scale;
    Vertices.Add({{x, y, 0}, {uLeft, vTop}, Color});
    Vertices.Add({{x + w, y, 0}, {uRight, vTop}, Color});
    Vertices.Add({{x + w, y + Height, 0}, {uRight, vBottom}, Color});
    Vertices.Add({{x, y + Height, 0}, {uLeft, vBottom}, Color});
}

void GLFont::AddLine(const char* Line, float x, float y, UINT32 Color) {
    for (; *Line && *Line != '\n'; ++Line) {
        if (static_cast<UINT8>(*Line) < 128) {
            AddCharacter(*Line, x, y, Color);
            x += WidthOf(*Line);
        }
    }
}

void GLFont::Layout(const char* Text, UINT32 Color, UINT32 Flags, float Left, float Right, float Top, float Bottom,
                    float Size) {
    const float SavedScale = Scale;
    Scale *= Size / LINE_HEIGHT;
    const float LineHeight = LINE_HEIGHT * Scale;
    const float Width = Right - Left;
    const float Height = Bottom - Top;
    Vertices.Resize(0);
    const INT32 Lines = Wrap(Text, Flags, Width, LineLimit(Flags, Height, LineHeight));
    const float Room = Height - static_cast<float>(Lines) * LineHeight;
    float y = Top;
    y += Flags & FONT_BOTTOM ? Room : 0;
    y += Flags & FONT_CENTERY ? Room * 0.5f : 0;
    const char* Line = Wrapped.CStr();
    for (INT32 k = 0; *Line; ++k) {
        const float LineRoom = Width - WidthUpTo(Line, '\n');
        float x = Left;
        x += Flags & FONT_RIGHT ? LineRoom : 0;
        x += Flags & FONT_CENTERX ? LineRoom * 0.5f : 0;
        AddLine(Line, x, y + static_cast<float>(k) * LineHeight, Color);
        Line += std::strcspn(Line, "\n");
        Line += *Line == '\n';
    }
    Scale = SavedScale;
}

INT32 GLFont::Draw(const char* Text, UINT32 Color, UINT32 Flags, float Left, float Right, float Top, float Bottom,
                   float Size) {
    if (!Loaded) {
        return -1;
    }
    if (!Text || !*Text) {
        return 0;
    }
    Layout(Text, Color, Flags, Left, Right, Top, Bottom, Size);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, Texture);
    if (Vertices.Size() > 3) {
        DrawQuads24(Vertices.Data, static_cast<INT32>(Vertices.Size()));
    }
    Vertices.Resize(0);
    glBindTexture(GL_TEXTURE_2D, 0);
    return 0;
}

void UseGuiProgram() {
    const UINT32 Program = ShaderGetProgram("GUI", "GUI");
    glUseProgram(Program);
    ShaderSetUniform1i(0, Program, "Texture");
    M_Mat4Identity(GViewMatrix);
    M_Mat4Ortho(GProjectionMatrix, 0, WINDOW_WIDTH, 0, WINDOW_HEIGHT, -1, 1);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
}
