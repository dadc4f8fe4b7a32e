// The scenery: rocks, wood, gates, flags, signs and a hut, as Wavefront .obj files with +Z up, and the two textures
// that they share.
//
// The origin is at the ground; everything reaches some units below it, so that it stands on a slope without a gap.
#include "Asset.h"
#include "Lettering.h"
#include "Noise.h"
#include "Picture.h"
#include "Shape.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

enum ECell {
    WOOD,
    PLANK,
    START_RIGHT,
    SNOW,
    ROCK,
    RED,
    BLUE,
    CHEQUER,
    START_LEFT,
    FINISH_LEFT,
    WINDOW,
    ARROW_LEFT,
    DARK,
    STRAW,
    ARROW_RIGHT,
    FINISH_RIGHT
};

constexpr Vec3 X = {1, 0, 0};
constexpr Vec3 Y = {0, 1, 0};
constexpr Vec3 Z = {0, 0, 1};

void AddPost(CShape& Shape, const Vec3& From, const Vec3& To, float Radius, int Cell = WOOD) {
    GArray<SSection> Sections;
    Sections.Add({From, Radius, Radius});
    Sections.Add({From + (To - From) * 0.97f, Radius * 0.94f, Radius * 0.94f});
    Sections.Add({To, Radius * 0.75f, Radius * 0.75f});
    const Vec3 Along = To - From;
    Shape.AddLoft(Sections, std::fabs(Along.x) > std::fabs(Along.z) ? Z : X, 6, Cell);
}

// Snow that lies on something: a flat cushion.
void AddSnow(CShape& Shape, const Vec3& Centre, float HalfX, float HalfY, float Height) {
    GArray<SSection> Sections;
    Sections.Add({Centre - Z * 0.1f, HalfX, HalfY});
    Sections.Add({Centre + Z * (Height * 0.6f), HalfX * 0.95f, HalfY * 0.92f});
    Sections.Add({Centre + Z * Height, HalfX * 0.6f, HalfY * 0.6f});
    Shape.AddLoft(Sections, X, 8, SNOW, 0.5f);
}

// A ball that noise has bent; what of it faces upward is painted as snow.
void AddRock(CShape& Shape, const Vec3& Centre, const Vec3& Size, UINT32 Seed) {
    CShape Ball;
    GArray<SSection> Sections;
    constexpr int RINGS = 6;
    for (int i = 0; i < RINGS; ++i) {
        const float Angle = 3.1415927f * (0.06f + 0.88f * static_cast<float>(i) / (RINGS - 1));
        const float Ring = std::sin(Angle);
        Sections.Add({Centre - Z * (Size.z * std::cos(Angle)), Size.x * Ring, Size.y * Ring});
    }
    Ball.AddLoft(Sections, X, 9, ROCK, 0.35f);
    RoughenShape(Ball, 0.42f * Size.z, 1.3f / Size.z, Seed);
    const UINT32 First = Shape.Vertices.count;
    for (UINT32 i = 0; i < Ball.Indices.count; i += 3) {
        const Vec3& a = Ball.Vertices[Ball.Indices[i]].Position;
        const Vec3 Normal = M_Normalized(
            M_Cross(Ball.Vertices[Ball.Indices[i + 1]].Position - a, Ball.Vertices[Ball.Indices[i + 2]].Position - a));
        const bool Snowy = Normal.z > 0.66f;
        for (UINT32 k = i; k < i + 3; ++k) {
            SShapeVertex Vertex = Ball.Vertices[Ball.Indices[k]];
            Vertex.Normal = M_Normalized(Snowy ? Vertex.Normal + Z : Normal * 2 + Vertex.Normal);
            if (Snowy) {
                Vertex.UV = {(SNOW % ATLAS_CELLS + 0.3f + 0.4f * (Vertex.UV.x * ATLAS_CELLS - ROCK % ATLAS_CELLS)) /
                                 ATLAS_CELLS,
                             (SNOW / ATLAS_CELLS + 0.3f + 0.4f * (Vertex.UV.y * ATLAS_CELLS - ROCK / ATLAS_CELLS)) /
                                 ATLAS_CELLS};
            }
            Shape.Vertices.Add(Vertex);
            Shape.Indices.Add(First + k);
        }
    }
}

void MakeTrunk(CShape& Shape) {
    GArray<SSection> Sections;
    Sections.Add({{-17, 0, 0.6f}, 1.9f, 1.9f});
    Sections.Add({{-6, 0.8f, 1.4f}, 1.7f, 1.7f});
    Sections.Add({{6, 0.2f, 1.6f}, 1.4f, 1.4f});
    Sections.Add({{17, -1, 1.2f}, 1.0f, 1.0f});
    Shape.AddLoft(Sections, Z, 8, WOOD);
    AddPost(Shape, {-2, 0.8f, 1.5f}, {-4, 5.5f, 4.5f}, 0.35f);
    AddPost(Shape, {5, 0.4f, 1.6f}, {6.5f, -3.5f, 5}, 0.32f);
    AddPost(Shape, {10, 0, 1.4f}, {13, 4, 3}, 0.3f);
    AddSnow(Shape, {-9, 0.4f, 2.7f}, 6.2f, 1.1f, 0.8f);
    AddSnow(Shape, {6, 0.1f, 2.7f}, 7.5f, 0.9f, 0.7f);
}

void MakeFence(CShape& Shape) {
    for (const float x : {-10.0f, 10.0f}) {
        AddPost(Shape, {x, 0, -4}, {x, 0, 7}, 0.6f);
        AddSnow(Shape, {x, 0, 6.9f}, 0.75f, 0.75f, 0.6f);
    }
    AddPost(Shape, {-11, 0.3f, 2.2f}, {11, -0.2f, 2.6f}, 0.42f);
    AddPost(Shape, {-11, -0.3f, 5.1f}, {11, 0.3f, 4.8f}, 0.42f);
    AddSnow(Shape, {0, 0, 5.3f}, 8.5f, 0.5f, 0.45f);
}

void MakeGate(CShape& Shape, int Left, int Right, int Wing) {
    constexpr float HALF = 42;
    for (const float Side : {-1.0f, 1.0f}) {
        AddPost(Shape, {Side * HALF, 0, -8}, {Side * HALF, 0, 44}, 1.5f);
        AddPost(Shape, {Side * HALF, -9, -6}, {Side * HALF, -0.5f, 24}, 0.8f);
        AddPost(Shape, {Side * HALF, 9, -6}, {Side * HALF, 0.5f, 24}, 0.8f);
        AddSnow(Shape, {Side * HALF, 0, 44}, 1.9f, 1.9f, 1.4f);
    }
    AddPost(Shape, {-HALF - 3, 0, 41}, {HALF + 3, 0, 41}, 1.1f);
    AddPost(Shape, {-HALF - 3, 0, 29.5f}, {HALF + 3, 0, 29.5f}, 0.7f);
    AddSnow(Shape, {0, 0, 42}, HALF - 3, 1.0f, 0.9f);
    // The writing faces the riders, who come from +Y. The cloth laps over both beams: a slit between them would be
    // narrower than a texel of the shadow map, which makes a row of dots of it.
    constexpr float LOW = 28.9f, HIGH = 41.2f, AHEAD = 1.15f;
    const auto Hang = [&](float From, float To, int Cell, int CellBehind) {
        Shape.AddSheet({From, AHEAD, LOW}, {To, AHEAD, LOW}, {To, AHEAD, HIGH}, {From, AHEAD, HIGH}, Cell, CellBehind);
    };
    Hang(40, 22, Wing, Wing);
    Hang(22, 0, Left, Right);
    Hang(0, -22, Right, Left);
    Hang(-22, -40, Wing, Wing);
}

// Few enough triangles that it is drawn whole at any distance: reduced, a pole and its cloth would be a lump.
void MakeFlag(CShape& Shape, int Cell) {
    Shape.AddBox({0, 0, 5.5f}, X * 0.28f, Y * 0.28f, Z * 9.5f, DARK);
    Shape.AddSheet({0, 0, 8.5f}, {-7, 0.8f, 8.2f}, {-7, 0.8f, 14.2f}, {0, 0, 14.4f}, Cell);
}

void MakeHut(CShape& Shape) {
    constexpr float HALF_X = 17;
    constexpr float HALF_Y = 13;
    for (int i = 0; i < 9; ++i) {
        const float z = -5.0f + 2.9f * static_cast<float>(i);
        for (const float Side : {-1.0f, 1.0f}) {
            AddPost(Shape, {-HALF_X - 2, Side * HALF_Y, z}, {HALF_X + 2, Side * HALF_Y, z}, 1.5f);
            AddPost(Shape, {Side * HALF_X, -HALF_Y - 2, z + 1.4f}, {Side * HALF_X, HALF_Y + 2, z + 1.4f}, 1.5f);
        }
    }
    for (const float Side : {-1.0f, 1.0f}) {
        // Gables, roof and the snow on it.
        Shape.AddSheet({Side * HALF_X, -HALF_Y, 17}, {Side * HALF_X, HALF_Y, 17}, {Side * HALF_X, 0.2f, 29},
                       {Side * HALF_X, -0.2f, 29}, PLANK);
        const Vec3 Slope = M_Normalized({0, Side * 15.5f, -12});
        const Vec3 Up = M_Cross(Slope, X) * (Side > 0 ? -1.0f : 1.0f);
        const Vec3 Middle = {0, Side * 8.2f, 23.6f};
        const Vec3 Out = Up.z > 0 ? Up : -Up;
        Shape.AddBox(Middle, X * 21, M_Cross(Out, X) * 10.6f, Out * 0.7f, PLANK);
        Shape.AddBox(Middle + Out * 1.9f, X * 21.6f, M_Cross(Out, X) * 11.0f, Out * 1.3f, SNOW);
    }
    Shape.AddBox({9, -5, 30}, X * 2, Y * 2, Z * 6, ROCK);
    AddSnow(Shape, {9, -5, 36}, 2.4f, 2.4f, 1.3f);
    Shape.AddBox({-4, HALF_Y + 1.4f, 5}, X * 3.2f, Y * 0.4f, Z * 6.2f, PLANK);
    for (const float x : {6.0f, -12.0f}) {
        Shape.AddBox({x, HALF_Y + 1.5f, 8}, X * 3, Y * 0.4f, Z * 2.6f, WINDOW);
    }
    AddSnow(Shape, {0, HALF_Y + 3, -1}, 16, 4, 2.2f);
}

void MakeSign(CShape& Shape, int Arrow) {
    AddPost(Shape, {0, 0, -4}, {0, 0, 13}, 0.55f);
    Shape.AddBox({0, 0.7f, 10}, X * 4.6f, Y * 0.35f, Z * 1.9f, PLANK);
    // The riders come from +Y; to them +X is on the left.
    Shape.AddSheet({4.2f, 1.1f, 8.4f}, {-4.2f, 1.1f, 8.4f}, {-4.2f, 1.1f, 11.6f}, {4.2f, 1.1f, 11.6f}, Arrow);
    AddSnow(Shape, {0, 0.5f, 11.9f}, 4.6f, 0.7f, 0.6f);
}

void MakeBales(CShape& Shape) {
    for (const float x : {-8.0f, 0.0f, 8.0f}) {
        Shape.AddBox({x, 0, 1}, X * 3.5f, Y * 2.2f, Z * 2.4f, STRAW);
        AddSnow(Shape, {x, 0, 3.3f}, 3.2f, 2.0f, 0.8f);
    }
}

bool WriteObj(const char* Name, const CShape& Shape) {
    FILE* File = std::fopen(Name, "w");
    if (!File) {
        return false;
    }
    for (const SShapeVertex& Vertex : Shape.Vertices) {
        const Vec3& p = Vertex.Position;
        const Vec3& n = Vertex.Normal;
        // The format's v runs upward.
        std::fprintf(File, "v %.4f %.4f %.4f\nvt %.5f %.5f\nvn %.4f %.4f %.4f\n", p.x, p.y, p.z, Vertex.UV.x,
                     1 - Vertex.UV.y, n.x, n.y, n.z);
    }
    for (UINT32 i = 0; i < Shape.Indices.count; i += 3) {
        const UINT32 a = Shape.Indices[i] + 1;
        const UINT32 b = Shape.Indices[i + 1] + 1;
        const UINT32 c = Shape.Indices[i + 2] + 1;
        std::fprintf(File, "f %u/%u/%u %u/%u/%u %u/%u/%u\n", a, a, a, b, b, b, c, c, c);
    }
    return std::fclose(File) == 0;
}

// --- the texture ---

struct SColour {
    float r, g, b;
};

SColour Blend(const SColour& a, const SColour& b, float t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// A word across two cells of the texture, as coverage; a banner is twice as long as its two cells are, against its
// height, so letters are drawn narrow.
class CBanner {
public:
    explicit CBanner(const char* Word) : Ink(WIDTH, HEIGHT) {
        constexpr float GAP = 12;
        const CLettering Type(196, false);
        const SLetterForm Form = {.ScaleX = 0.52f, .Weight = 2};
        float Length = -GAP;
        for (const char* c = Word; *c; ++c) {
            Length += Type.Advance(*c) * Form.ScaleX + GAP;
        }
        Type.DrawText(Ink, Word, (WIDTH - Length) / 2, 199, Form, GAP);
    }

    // At a place of the left (0) or right (1) cell. Models show a cell without its margin.
    SColour At(int Half, float u, float v, const SColour& Cloth, const SColour& Letter) const {
        const auto Shown = [](float t) { return (t - SHAPE_CELL_MARGIN) / (1 - 2 * SHAPE_CELL_MARGIN); };
        const float x = (Shown(u) + static_cast<float>(Half)) * 0.5f;
        const float y = Shown(v);
        const float Inked = Ink.At(static_cast<INT32>(x * WIDTH), static_cast<INT32>(y * HEIGHT));
        return Blend(Cloth, Letter, Inked);
    }

private:
    static constexpr INT32 WIDTH = 512;
    static constexpr INT32 HEIGHT = 256;

    CField Ink;
};

SColour WoodColour(float u, float v, float Boards) {
    const float Board = std::floor(v * Boards);
    const float Edge = std::fabs(v * Boards - Board - 0.5f) * 2;
    const float Grain = NoiseFbm(u * 5 + Board * 7, v * 40, 4, 400);
    const float Tone = 0.75f + 0.35f * Grain + 0.15f * NoiseCell(static_cast<INT32>(Board), 3, 401);
    const float Groove = Boards > 1 ? 1 - 0.6f * SmoothStep(0.88f, 1.0f, Edge) : 1;
    return {0.46f * Tone * Groove, 0.31f * Tone * Groove, 0.19f * Tone * Groove};
}

// Four panes in a frame.
bool IsGlass(float u, float v) {
    const auto Pane = [](float t) { return t > 0.12f && t < 0.88f && std::fabs(t - 0.5f) > 0.045f; };
    return Pane(u) && Pane(v);
}

SColour CellColour(int Cell, float u, float v) {
    const float Weave = 0.94f + 0.12f * NoiseFbm(u * 7, v * 5, 3, 410);
    switch (Cell) {
    case WOOD:
        return WoodColour(v, u * 0.6f, 1);
    case PLANK:
        return WoodColour(u, v, 6);
    case SNOW: {
        const float Shade = 0.90f + 0.06f * NoiseFbm(u * 6, v * 6, 3, 420);
        return {Shade * 0.97f, Shade * 0.99f, Shade * 1.03f};
    }
    case ROCK: {
        const float Tone = 0.42f + 0.22f * NoiseFbm(u * 5, v * 9, 5, 430);
        return {Tone, Tone * 0.96f, Tone * 0.93f};
    }
    case RED:
        return {0.80f * Weave, 0.09f * Weave, 0.08f * Weave};
    case BLUE:
        return {0.08f * Weave, 0.26f * Weave, 0.72f * Weave};
    case CHEQUER: {
        const bool White = (static_cast<int>(u * 8) + static_cast<int>(v * 4)) % 2;
        return White ? SColour{0.92f * Weave, 0.92f * Weave, 0.9f * Weave} : SColour{0.06f, 0.06f, 0.07f};
    }
    case START_LEFT:
    case START_RIGHT: {
        static const CBanner Banner("START");
        const SColour Cloth = {0.80f * Weave, 0.09f * Weave, 0.08f * Weave};
        return Banner.At(Cell == START_RIGHT, u, v, Cloth, {0.97f, 0.94f, 0.86f});
    }
    case FINISH_LEFT:
    case FINISH_RIGHT: {
        static const CBanner Banner("FINISH");
        const SColour Cloth = {0.94f * Weave, 0.93f * Weave, 0.88f * Weave};
        return Banner.At(Cell == FINISH_RIGHT, u, v, Cloth, {0.07f, 0.07f, 0.09f});
    }
    case WINDOW:
        return IsGlass(u, v) ? Blend({1.0f, 0.80f, 0.42f}, {0.96f, 0.58f, 0.22f}, v) : SColour{0.30f, 0.18f, 0.10f};
    case ARROW_RIGHT:
        return CellColour(ARROW_LEFT, 1 - u, v);
    case ARROW_LEFT: {
        const bool Shaft = std::fabs(v - 0.5f) < 0.14f && u > 0.3f && u < 0.9f;
        const bool Tip = u >= 0.06f && u <= 0.42f && std::fabs(v - 0.5f) < (u - 0.06f) * 1.1f;
        return Shaft || Tip ? SColour{0.82f, 0.16f, 0.08f} : SColour{0.93f, 0.90f, 0.80f};
    }
    case DARK:
        return {0.13f, 0.12f, 0.12f};
    case STRAW: {
        const float Tone = 0.75f + 0.4f * NoiseFbm(u * 6, v * 60, 3, 440);
        return {0.80f * Tone, 0.62f * Tone, 0.26f * Tone};
    }
    default:
        return WoodColour(u, v, 1);
    }
}

// Alpha is 1, and less where the surface shines by itself: the shader makes light of what is missing, and a hole of
// what is below a half.
bool PaintTexture(const char* File) {
    constexpr int SIDE = 1024;
    constexpr int CELL_SIDE = SIDE / ATLAS_CELLS;
    constexpr float SHINING = 0.6f;
    CPicture Picture(SIDE, SIDE, 4);
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x) {
            const int Cell = y / CELL_SIDE * ATLAS_CELLS + x / CELL_SIDE;
            const float u = (static_cast<float>(x % CELL_SIDE) + 0.5f) / CELL_SIDE;
            const float v = (static_cast<float>(y % CELL_SIDE) + 0.5f) / CELL_SIDE;
            const SColour c = CellColour(Cell, u, v);
            Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), c.r, c.g, c.b,
                              Cell == WINDOW && IsGlass(u, v) ? SHINING : 1.0f);
        }
    }
    return Picture.SavePng(File);
}

struct SModel {
    const char* Name;
    void (*Make)(CShape&);
};

constexpr SModel MODELS[] = {
    {"Boulder",
     [](CShape& Shape) {
         AddRock(Shape, {0, 0, 1}, {8, 7, 6}, 500);
     }},
    {"Crag",
     [](CShape& Shape) {
         AddRock(Shape, {0, 0, 4}, {9, 7, 15}, 510);
         AddRock(Shape, {9, 4, 0}, {6, 6, 7}, 511);
     }},
    {"Stones",
     [](CShape& Shape) {
         AddRock(Shape, {-6, 1, 0}, {5, 4, 3.6f}, 520);
         AddRock(Shape, {4, -2, 0}, {6, 5, 4.4f}, 521);
         AddRock(Shape, {0, 7, -0.4f}, {3.4f, 3.6f, 2.6f}, 522);
     }},
    {"FallenTrunk", MakeTrunk},
    {"Fence", MakeFence},
    {"StartGate", [](CShape& Shape) { MakeGate(Shape, START_LEFT, START_RIGHT, RED); }},
    {"FinishGate", [](CShape& Shape) { MakeGate(Shape, FINISH_LEFT, FINISH_RIGHT, CHEQUER); }},
    {"FlagRed", [](CShape& Shape) { MakeFlag(Shape, RED); }},
    {"FlagBlue", [](CShape& Shape) { MakeFlag(Shape, BLUE); }},
    {"Hut", MakeHut},
    {"SignLeft", [](CShape& Shape) { MakeSign(Shape, ARROW_LEFT); }},
    {"SignRight", [](CShape& Shape) { MakeSign(Shape, ARROW_RIGHT); }},
    {"HayBales", MakeBales},
};

} // namespace

bool MakeModels(const char* Name, const char* File) {
    if (std::strcmp(Name, "SceneryTexture") == 0) {
        return PaintTexture(File);
    }
    for (const SModel& Model : MODELS) {
        if (std::strcmp(Name, Model.Name) == 0) {
            CShape Shape;
            Model.Make(Shape);
            return WriteObj(File, Shape);
        }
    }
    return false;
}
