// The rider: a figure on a board with a sword in the right hand, and the texture it is painted with.
//
// The mesh file has two parts: the board with the boots, which is small since the game makes the body's hull of it, and
// everything else. The figure stands across the board, its left side to the front, and looks the way it goes.
#include "Asset.h"
#include "BinaryFile.h"
#include "Noise.h"
#include "Picture.h"
#include "RiderBones.h"
#include "Shape.h"

#include <cmath>
#include <cstring>

namespace {

// Cells of the texture.
enum ECell {
    JACKET,
    TROUSERS,
    DECK,
    BOOT,
    GLOVE,
    HELMET,
    GOGGLES,
    SKIN,
    SCARF,
    STEEL,
    LEATHER,
    BRASS,
    PACK,
    SLEEVE,
    STRAP
};

Vec3 Joint(ERiderBone Bone) {
    return RIDER_SKELETON[Bone].Joint;
}

// A row of sections, written like a table.
class CLoft {
public:
    CLoft& Add(const Vec3& Centre, float Width, float Height, UINT8 BoneA, UINT8 BoneB, float PartB = 0) {
        Sections.Add({Centre, Width, Height, BoneA, BoneB, PartB});
        return *this;
    }
    CLoft& Add(const Vec3& Centre, float Width, float Height, UINT8 Bone) {
        return Add(Centre, Width, Height, Bone, Bone);
    }

    GArray<SSection> Sections;
};

// A limb of two bones with a bend in the middle, where the weights pass from one to the other.
void AddLimb(CShape& Shape, ERiderBone Parent, ERiderBone Upper, ERiderBone Lower, const Vec3& End, const float (&R)[5],
             int Cell) {
    const Vec3 a = Joint(Upper);
    const Vec3 b = Joint(Lower);
    const auto On = [](const Vec3& From, const Vec3& To, float t) { return From + (To - From) * t; };
    CLoft Loft;
    Loft.Add(On(a, b, -0.22f), R[0] * 0.75f, R[0] * 0.75f, Parent, Upper, 0.35f);
    Loft.Add(a, R[0], R[0], Parent, Upper, 0.6f);
    Loft.Add(On(a, b, 0.3f), R[1] * 1.02f, R[1] * 1.02f, Upper, Upper);
    Loft.Add(On(a, b, 0.6f), R[1], R[1], Upper, Upper);
    Loft.Add(On(a, b, 0.87f), R[2], R[2], Upper, Lower, 0.25f);
    Loft.Add(b, R[2] * 1.05f, R[2] * 1.05f, Upper, Lower, 0.5f);
    Loft.Add(On(b, End, 0.15f), R[2], R[2], Upper, Lower, 0.8f);
    Loft.Add(On(b, End, 0.5f), R[3], R[3], Lower, Lower);
    Loft.Add(On(b, End, 0.88f), R[4] * 1.12f, R[4] * 1.12f, Lower, Lower);
    Loft.Add(End, R[4], R[4], Lower, Lower);
    Shape.AddLoft(Loft.Sections, {0.31f, 0.23f, 0.9f}, 10, Cell);
}

// The board lies along Y with both tips bent up.
void AddBoard(CShape& Shape) {
    CLoft Board;
    constexpr float HALF_LENGTH = 7.2f;
    constexpr int SECTIONS = 9;
    for (int i = 0; i < SECTIONS; ++i) {
        const float t = 2.0f * static_cast<float>(i) / (SECTIONS - 1) - 1;
        const float Tip = std::fabs(t);
        const float Rise = 1.1f * std::pow(Clamp01((Tip - 0.62f) / 0.38f), 2.0f);
        const float Width = 1.30f - 0.14f * (1 - Tip) - 0.75f * std::pow(Clamp01((Tip - 0.72f) / 0.28f), 2.0f);
        Board.Add({0, HALF_LENGTH * t, 0.16f + Rise}, Width, 0.13f, BONE_BOARD);
    }
    Shape.AddLoft(Board.Sections, {1, 0, 0}, 6, DECK, 0.8f);
}

void AddBoot(CShape& Shape, ERiderBone Foot) {
    const Vec3 Ankle = Joint(Foot);
    CLoft Boot;
    Boot.Add({Ankle.x + 0.75f, Ankle.y, 0.55f}, 0.42f, 0.24f, Foot);
    Boot.Add({Ankle.x + 0.45f, Ankle.y, 0.72f}, 0.56f, 0.46f, Foot);
    Boot.Add({Ankle.x - 0.45f, Ankle.y, 0.62f}, 0.56f, 0.38f, Foot);
    Boot.Add({Ankle.x - 1.25f, Ankle.y, 0.52f}, 0.40f, 0.22f, Foot);
    Shape.AddLoft(Boot.Sections, {0, 1, 0}, 7, BOOT, 0.4f);
}

// Above the boots' own feet, as wide cuffs.
void AddLegs(CShape& Shape) {
    constexpr float RADII[5] = {1.0f, 0.98f, 0.84f, 0.80f, 0.74f};
    AddLimb(Shape, BONE_HIPS, BONE_THIGH_L, BONE_SHIN_L, Joint(BONE_FOOT_L) + Vec3{-0.05f, 0, 0.1f}, RADII, TROUSERS);
    AddLimb(Shape, BONE_HIPS, BONE_THIGH_R, BONE_SHIN_R, Joint(BONE_FOOT_R) + Vec3{-0.05f, 0, 0.1f}, RADII, TROUSERS);
}

// A plate under each boot, a high back behind its heel and a strap over its toes. They belong to the body's part: the
// hull needs none of them.
void AddBindings(CShape& Shape) {
    for (const ERiderBone Foot : {BONE_FOOT_L, BONE_FOOT_R}) {
        const Vec3 At = {Joint(Foot).x, Joint(Foot).y, 0};
        const UINT8 Bone = static_cast<UINT8>(Foot);
        Shape.AddBox(At + Vec3{-0.2f, 0, 0.33f}, {1.18f, 0, 0}, {0, 0.66f, 0}, {0, 0, 0.06f}, STRAP, Bone);
        Shape.AddBox(At + Vec3{1.02f, 0, 1.05f}, {0.07f, 0, 0.02f}, {0, 0.46f, 0}, {-0.02f, 0, 0.72f}, STRAP, Bone);
        Shape.AddBox(At + Vec3{-0.72f, 0, 0.72f}, {0.17f, 0, 0.02f}, {0, 0.60f, 0}, {-0.03f, 0, 0.26f}, STRAP, Bone);
    }
}

// From the seat up to the collar; the jacket's hem flares over the hips, and the chest turns to the front.
void AddTorso(CShape& Shape) {
    const Vec3 Hips = Joint(BONE_HIPS);
    const Vec3 Spine = Joint(BONE_SPINE);
    const Vec3 Chest = Joint(BONE_CHEST);
    const Vec3 Neck = Joint(BONE_NECK);
    CLoft Seat;
    Seat.Add(Hips + Vec3{0.1f, 0, -0.95f}, 0.75f, 0.8f, BONE_HIPS);
    Seat.Add(Hips + Vec3{0.05f, 0, -0.45f}, 1.25f, 1.55f, BONE_HIPS);
    Seat.Add(Hips + Vec3{0, 0, 0.3f}, 1.2f, 1.5f, BONE_HIPS);
    Shape.AddLoft(Seat.Sections, {1, 0, 0}, 12, TROUSERS);

    CLoft Jacket;
    Jacket.Add(Hips + Vec3{0.05f, 0, -0.38f}, 1.36f, 1.72f, BONE_HIPS);
    Jacket.Add(Hips + Vec3{0.02f, 0, -0.30f}, 1.50f, 1.84f, BONE_HIPS);
    Jacket.Add(Hips + Vec3{0, 0, 0.35f}, 1.34f, 1.62f, BONE_HIPS, BONE_SPINE, 0.3f);
    Jacket.Add(Spine, 1.22f, 1.42f, BONE_HIPS, BONE_SPINE, 0.7f);
    Jacket.Add(Spine * 0.5f + Chest * 0.5f, 1.28f, 1.50f, BONE_SPINE, BONE_CHEST, 0.4f);
    Jacket.Add(Chest + Vec3{0, 0, 0.2f}, 1.38f, 1.70f, BONE_CHEST);
    Jacket.Add(Chest * 0.35f + Neck * 0.65f, 1.26f, 1.72f, BONE_CHEST);
    Jacket.Add(Neck + Vec3{0.02f, 0.02f, -0.35f}, 0.95f, 1.25f, BONE_CHEST);
    Jacket.Add(Neck + Vec3{0, 0, 0.05f}, 0.70f, 0.78f, BONE_CHEST, BONE_NECK, 0.4f);
    Jacket.Add(Neck + Vec3{0, 0, 0.35f}, 0.66f, 0.72f, BONE_NECK);
    // The shoulders stand half way between the board and the way ahead.
    Shape.AddLoft(Jacket.Sections, {0.75f, 0.66f, 0}, 16, JACKET);

    CLoft Pack;
    const Vec3 Back = {0.72f, 0.69f, 0};
    Pack.Add(Chest + Back * 1.35f + Vec3{0, 0, -1.2f}, 0.75f, 0.42f, BONE_CHEST);
    Pack.Add(Chest + Back * 1.50f + Vec3{0, 0, -0.95f}, 0.92f, 0.58f, BONE_CHEST);
    Pack.Add(Chest + Back * 1.48f + Vec3{0, 0, 0.75f}, 0.86f, 0.55f, BONE_CHEST);
    Pack.Add(Chest + Back * 1.25f + Vec3{0, 0, 1.15f}, 0.62f, 0.32f, BONE_CHEST);
    Shape.AddLoft(Pack.Sections, {0.69f, -0.72f, 0}, 10, PACK, 0.55f);
}

// A glove whose fingers bend towards Bend.
void AddHand(CShape& Shape, ERiderBone Hand, const Vec3& Towards, const Vec3& Bend) {
    const Vec3 Wrist = Joint(Hand);
    const Vec3 Way = M_Normalized(Towards);
    const Vec3 Curl = M_Normalized(Bend - Way * M_Dot(Bend, Way));
    const Vec3 Aside = M_Cross(Way, Curl);
    CLoft Glove;
    Glove.Add(Wrist - Way * 0.42f, 0.52f, 0.52f, Hand);
    Glove.Add(Wrist - Way * 0.12f, 0.50f, 0.50f, Hand);
    Glove.Add(Wrist + Way * 0.22f, 0.48f, 0.36f, Hand);
    Glove.Add(Wrist + Way * 0.62f, 0.44f, 0.26f, Hand);
    Shape.AddLoft(Glove.Sections, Aside, 8, GLOVE, 0.3f);
    const auto Finger = [&](const Vec3& Root, const Vec3& Middle, const Vec3& Tip, float Width) {
        CLoft Loft;
        Loft.Add(Root, Width, Width, Hand);
        Loft.Add(Middle, Width * 0.98f, Width * 0.98f, Hand);
        Loft.Add(Tip, Width * 0.72f, Width * 0.72f, Hand);
        Shape.AddLoft(Loft.Sections, Aside, 5, GLOVE);
    };
    for (int i = 0; i < 4; ++i) {
        const float Place = 0.22f * (static_cast<float>(i) - 1.5f);
        const float Reach = i == 1 || i == 2 ? 0.36f : 0.29f;
        const Vec3 Root = Wrist + Way * 0.52f + Aside * Place;
        const Vec3 Middle = Root + Way * Reach + Curl * 0.10f;
        Finger(Root, Middle, Middle + Way * 0.08f + Curl * 0.34f, 0.125f);
    }
    const Vec3 Thumb = Wrist + Way * 0.12f + Aside * 0.36f;
    const Vec3 Knuckle = Thumb + Way * 0.28f + Aside * 0.20f + Curl * 0.16f;
    Finger(Thumb, Knuckle, Knuckle + Way * 0.22f + Curl * 0.20f - Aside * 0.06f, 0.14f);
}

void AddArms(CShape& Shape) {
    constexpr float RADII[5] = {0.82f, 0.68f, 0.58f, 0.52f, 0.46f};
    const Vec3 HandL = Joint(BONE_HAND_L);
    const Vec3 HandR = Joint(BONE_HAND_R);
    AddLimb(Shape, BONE_CHEST, BONE_ARM_L, BONE_FOREARM_L, HandL, RADII, SLEEVE);
    AddLimb(Shape, BONE_CHEST, BONE_ARM_R, BONE_FOREARM_R, HandR, RADII, SLEEVE);
    AddHand(Shape, BONE_HAND_L, HandL - Joint(BONE_FOREARM_L), {0, -0.4f, -1});
    // Round the sword's grip.
    AddHand(Shape, BONE_HAND_R, HandR - Joint(BONE_FOREARM_R), {0.75f, -0.66f, 0.1f});
}

// A helmet over a face that looks along -Y, goggles with a broad glass.
void AddHead(CShape& Shape) {
    const Vec3 Base = Joint(BONE_HEAD);
    CLoft Face;
    Face.Add(Base + Vec3{0, 0.05f, -0.55f}, 0.42f, 0.45f, BONE_NECK, BONE_HEAD, 0.4f);
    Face.Add(Base + Vec3{0, -0.12f, -0.1f}, 0.56f, 0.66f, BONE_HEAD);
    Face.Add(Base + Vec3{0, -0.10f, 0.35f}, 0.70f, 0.84f, BONE_HEAD);
    Face.Add(Base + Vec3{0, -0.05f, 0.9f}, 0.72f, 0.86f, BONE_HEAD);
    Shape.AddLoft(Face.Sections, {1, 0, 0}, 12, SKIN);
    CLoft Nose;
    Nose.Add(Base + Vec3{0, -0.88f, 0.05f}, 0.15f, 0.10f, BONE_HEAD);
    Nose.Add(Base + Vec3{0, -0.98f, 0.13f}, 0.14f, 0.14f, BONE_HEAD);
    Nose.Add(Base + Vec3{0, -0.84f, 0.42f}, 0.08f, 0.08f, BONE_HEAD);
    Shape.AddLoft(Nose.Sections, {1, 0, 0}, 5, SKIN);
    CLoft Helmet;
    Helmet.Add(Base + Vec3{0, 0.32f, 0.12f}, 0.80f, 0.68f, BONE_HEAD);
    Helmet.Add(Base + Vec3{0, 0.24f, 0.45f}, 0.98f, 0.92f, BONE_HEAD);
    Helmet.Add(Base + Vec3{0, 0.12f, 0.95f}, 1.03f, 1.10f, BONE_HEAD);
    Helmet.Add(Base + Vec3{0, 0.08f, 1.35f}, 0.94f, 1.05f, BONE_HEAD);
    Helmet.Add(Base + Vec3{0, 0.08f, 1.68f}, 0.68f, 0.78f, BONE_HEAD);
    Helmet.Add(Base + Vec3{0, 0.10f, 1.86f}, 0.30f, 0.36f, BONE_HEAD);
    Shape.AddLoft(Helmet.Sections, {1, 0, 0}, 14, HELMET);
    CLoft Goggles;
    Goggles.Add(Base + Vec3{0, -0.42f, 0.28f}, 0.52f, 0.46f, BONE_HEAD);
    Goggles.Add(Base + Vec3{0, -0.46f, 0.40f}, 0.74f, 0.56f, BONE_HEAD);
    Goggles.Add(Base + Vec3{0, -0.46f, 0.74f}, 0.76f, 0.56f, BONE_HEAD);
    Goggles.Add(Base + Vec3{0, -0.42f, 0.86f}, 0.56f, 0.46f, BONE_HEAD);
    Shape.AddLoft(Goggles.Sections, {1, 0, 0}, 12, GOGGLES, 0.35f);
}

// Wound round the neck, with a tail that the wind carries behind.
void AddScarf(CShape& Shape) {
    const Vec3 Neck = Joint(BONE_NECK);
    CLoft Ring;
    Ring.Add(Neck + Vec3{0, 0.02f, -0.28f}, 0.92f, 1.0f, BONE_CHEST, BONE_NECK, 0.5f);
    Ring.Add(Neck + Vec3{0, 0, -0.10f}, 1.14f, 1.20f, BONE_NECK);
    Ring.Add(Neck + Vec3{0, -0.02f, 0.20f}, 1.10f, 1.16f, BONE_NECK);
    Ring.Add(Neck + Vec3{0, -0.02f, 0.45f}, 0.78f, 0.86f, BONE_NECK);
    Shape.AddLoft(Ring.Sections, {1, 0, 0}, 14, SCARF);
    CLoft Tail;
    const Vec3 a = Joint(BONE_SCARF_1);
    const Vec3 b = Joint(BONE_SCARF_2);
    const Vec3 c = Joint(BONE_SCARF_3);
    Tail.Add(a + Vec3{-0.2f, -0.3f, -0.1f}, 0.44f, 0.26f, BONE_NECK, BONE_SCARF_1, 0.3f);
    Tail.Add(a * 0.5f + b * 0.5f, 0.55f, 0.21f, BONE_SCARF_1);
    Tail.Add(b, 0.58f, 0.19f, BONE_SCARF_1, BONE_SCARF_2, 0.5f);
    Tail.Add(b * 0.5f + c * 0.5f + Vec3{0, 0, 0.08f}, 0.61f, 0.18f, BONE_SCARF_2);
    Tail.Add(c, 0.63f, 0.17f, BONE_SCARF_2, BONE_SCARF_3, 0.5f);
    Tail.Add(c + Vec3{0.1f, 0.9f, -0.15f}, 0.65f, 0.16f, BONE_SCARF_3);
    Tail.Add(c + Vec3{0.15f, 1.6f, -0.2f}, 0.62f, 0.13f, BONE_SCARF_3);
    Shape.AddLoft(Tail.Sections, {0.9f, 0, 0.45f}, 6, SCARF, 0.6f);
}

// Held upright and outward, so that its blade shows beside the figure from behind.
void AddSword(CShape& Shape) {
    const Vec3 Grip = Joint(BONE_SWORD);
    const Vec3 Up = M_Normalized({-0.42f, -0.30f, 0.86f});
    const Vec3 Edge = M_Normalized(M_Cross(Up, {0.75f, -0.66f, 0}));
    const Vec3 Flat = M_Cross(Up, Edge);
    CLoft Handle;
    Handle.Add(Grip - Up * 0.95f, 0.20f, 0.20f, BONE_SWORD);
    Handle.Add(Grip - Up * 0.75f, 0.15f, 0.15f, BONE_SWORD);
    Handle.Add(Grip + Up * 0.55f, 0.16f, 0.16f, BONE_SWORD);
    Shape.AddLoft(Handle.Sections, Edge, 7, LEATHER);
    Shape.AddBox(Grip + Up * 0.65f, Edge * 1.05f, Flat * 0.16f, Up * 0.13f, BRASS, BONE_SWORD);
    CLoft Pommel;
    Pommel.Add(Grip - Up * 1.25f, 0.14f, 0.14f, BONE_SWORD);
    Pommel.Add(Grip - Up * 1.08f, 0.27f, 0.27f, BONE_SWORD);
    Pommel.Add(Grip - Up * 0.92f, 0.14f, 0.14f, BONE_SWORD);
    Shape.AddLoft(Pommel.Sections, Edge, 7, BRASS);
    CLoft Blade;
    Blade.Add(Grip + Up * 0.70f, 0.36f, 0.09f, BONE_SWORD);
    Blade.Add(Grip + Up * 4.6f, 0.33f, 0.08f, BONE_SWORD);
    Blade.Add(Grip + Up * 6.6f, 0.27f, 0.06f, BONE_SWORD);
    Blade.Add(Grip + Up * 7.5f, 0.02f, 0.02f, BONE_SWORD);
    Shape.AddLoft(Blade.Sections, Edge, 4, STEEL);
}

void WriteVertices(CBinaryFile& File, const CShape& Shape) {
    for (const SShapeVertex& Vertex : Shape.Vertices) {
        // The texture's second axis runs down the figure; where it stands on its head any other direction does.
        const Vec3 Down = {0, 0, -1};
        const Vec3 Tangent = M_Normalized(Down - Vertex.Normal * M_Dot(Vertex.Normal, Down));
        for (const float Value :
             {Vertex.Position.x, Vertex.Position.y, Vertex.Position.z, Vertex.UV.x, Vertex.UV.y, Vertex.Normal.x,
              Vertex.Normal.y, Vertex.Normal.z, Tangent.x, Tangent.y, Tangent.z, 1.0f}) {
            File.Add(Value);
        }
        File.Add(UINT32{0});
        for (const float Weight : {1 - Vertex.PartB, Vertex.PartB, 0.0f, 0.0f}) {
            File.Add(Weight);
        }
        for (const UINT8 Bone : {Vertex.BoneA, Vertex.BoneB, UINT8{0}, UINT8{0}}) {
            File.AddByte(Bone);
        }
    }
}

// Front faces are clockwise.
void WriteIndices(CBinaryFile& File, const CShape& Shape) {
    for (UINT32 i = 0; i < Shape.Indices.count; i += 3) {
        for (const UINT32 Corner : {i, i + 2, i + 1}) {
            File.Add(Shape.Indices[Corner]);
        }
    }
}

void WriteBones(CBinaryFile& File) {
    File.Add(static_cast<UINT32>(RIDER_BONES));
    for (const SRiderBone& Bone : RIDER_SKELETON) {
        File.AddText(Bone.Name);
        File.AddText(Bone.Parent);
        const float Rest[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, Bone.Joint.x, Bone.Joint.y, Bone.Joint.z, 1};
        for (const float Element : Rest) {
            File.Add(Element);
        }
    }
}

bool WriteMesh(const char* Name, const CShape& Board, const CShape& Body) {
    CBinaryFile File;
    File.AddMagic("WLAM");
    File.Add(Board.Vertices.count + Body.Vertices.count);
    WriteVertices(File, Board);
    WriteVertices(File, Body);
    File.Add(Board.Indices.count + Body.Indices.count);
    WriteIndices(File, Board);
    WriteIndices(File, Body);
    File.Add(UINT32{2});
    File.AddText("Board");
    for (const UINT32 Value : {0u, 0u, Board.Vertices.count, Board.Indices.count / 3}) {
        File.Add(Value);
    }
    File.AddText("Body");
    for (const UINT32 Value :
         {Board.Vertices.count, Board.Indices.count, Body.Vertices.count, Body.Indices.count / 3}) {
        File.Add(Value);
    }
    WriteBones(File);
    return File.Save(Name);
}

// --- the texture ---

struct SColour {
    float r, g, b;
};

SColour operator*(const SColour& c, float Factor) {
    return {c.r * Factor, c.g * Factor, c.b * Factor};
}

SColour Blend(const SColour& a, const SColour& b, float t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// Folds across a limb, deeper at its bend, and the weave of the cloth.
float Cloth(float u, float v, UINT32 Seed) {
    const float Fold = NoiseFbm(u * 5, v * 11 + 1.5f * NoiseFbm(u * 4, v * 4, 2, Seed + 1), 3, Seed);
    const float Weave = 0.04f * (NoiseCell(static_cast<INT32>(u * 128), static_cast<INT32>(v * 128), Seed + 2) - 0.5f);
    return 0.93f + 0.22f * Fold + Weave;
}

// Bands of a second colour with stitched edges.
float Band(float v, float At, float HalfWidth) {
    return 1 - SmoothStep(HalfWidth - 0.01f, HalfWidth + 0.01f, std::fabs(v - At));
}

SColour JacketColour(float u, float v) {
    SColour c = Blend({0.74f, 0.10f, 0.07f}, {0.95f, 0.86f, 0.74f}, Band(v, 0.66f, 0.045f));
    c = Blend(c, {0.16f, 0.05f, 0.06f}, 0.85f * (Band(v, 0.06f, 0.05f) + Band(v, 0.96f, 0.03f)));
    const float Seam = std::fmod(u * 4, 1.0f);
    const float Stitch = Seam < 0.03f ? 0.78f : 1.0f;
    return c * (Cloth(u, v, 300) * Stitch);
}

// From the shoulder to the cuff.
SColour SleeveColour(float u, float v) {
    SColour c = Blend({0.74f, 0.10f, 0.07f}, {0.95f, 0.86f, 0.74f}, Band(v, 0.66f, 0.045f));
    c = Blend(c, {0.16f, 0.05f, 0.06f}, 0.85f * SmoothStep(0.93f, 0.94f, v));
    return c * Cloth(u, v, 305);
}

// Red cheeks and a mouth; the face looks to where u is three quarters.
SColour FaceColour(float u, float v) {
    const float Ahead = std::fabs(u - 0.75f);
    const SColour Skin = SColour{0.82f, 0.60f, 0.48f} * (0.95f + 0.1f * NoiseFbm(u * 6, v * 6, 2, 330));
    const SColour Red = Blend(Skin, {0.85f, 0.40f, 0.34f}, 0.6f * Band(Ahead, 0.10f, 0.05f) * Band(v, 0.55f, 0.18f));
    return Blend(Red, {0.45f, 0.18f, 0.16f}, Band(v, 0.34f, 0.03f) * SmoothStep(0.07f, 0.05f, Ahead));
}

SColour DeckColour(float u, float v) {
    // Rays that run out from the middle to both tips, on a dark ground.
    const float Along = std::fabs(v - 0.5f) * 2;
    const float Ray = std::fmod(u * 6 + 1.4f * Along + 10.0f, 1.0f);
    const SColour Ground = Blend({0.07f, 0.10f, 0.18f}, {0.05f, 0.32f, 0.42f}, Along);
    const SColour c = Blend(Ground, {0.97f, 0.62f, 0.12f}, SmoothStep(0.55f, 0.62f, Ray) * (0.35f + 0.65f * Along));
    return Blend(c, {0.95f, 0.95f, 0.92f}, Band(Along, 0.80f, 0.035f));
}

SColour ScarfColour(float u, float v) {
    const float Stripe = std::fmod(v * 7, 1.0f);
    const SColour c = Stripe < 0.5f ? SColour{0.98f, 0.74f, 0.16f} : SColour{0.10f, 0.36f, 0.42f};
    const float Knit = 0.88f + 0.12f * std::sin(u * 180) * std::sin(v * 160);
    return c * (Knit * Cloth(u, v, 340));
}

SColour HelmetColour(float u, float v) {
    const SColour c =
        Blend({0.90f, 0.91f, 0.90f}, {0.10f, 0.36f, 0.42f}, Band(u, 0.25f, 0.05f) + Band(u, 0.75f, 0.05f));
    return Blend(c, {0.12f, 0.12f, 0.14f}, Band(v, 0.0f, 0.14f));
}

SColour GoggleColour(float u, float v) {
    const SColour Glass = Blend({0.95f, 0.45f, 0.08f}, {0.35f, 0.10f, 0.30f}, v);
    const float Shine = std::pow(Clamp01(1 - std::fabs(u - 0.78f - 0.15f * v) * 9), 2.0f);
    return Blend(Blend(Glass, {1, 0.95f, 0.8f}, 0.8f * Shine), {0.08f, 0.08f, 0.09f},
                 Band(v, 0, 0.16f) + Band(v, 1, 0.16f));
}

SColour CellColour(int Cell, float u, float v) {
    switch (Cell) {
    case JACKET:
        return JacketColour(u, v);
    case TROUSERS:
        return Blend({0.13f, 0.15f, 0.20f}, {0.30f, 0.33f, 0.38f}, Band(v, 0.62f, 0.10f)) * Cloth(u, v, 310);
    case DECK:
        return DeckColour(u, v);
    case BOOT:
        return Blend({0.10f, 0.10f, 0.11f}, {0.55f, 0.30f, 0.12f}, Band(v, 0.35f, 0.06f) + Band(v, 0.68f, 0.06f));
    case GLOVE:
        return Blend({0.12f, 0.11f, 0.11f}, {0.82f, 0.44f, 0.10f}, Band(v, 0.12f, 0.12f)) * Cloth(u, v, 320);
    case HELMET:
        return HelmetColour(u, v);
    case GOGGLES:
        return GoggleColour(u, v);
    case SKIN:
        return FaceColour(u, v);
    case SLEEVE:
        return SleeveColour(u, v);
    case STRAP:
        return Blend({0.13f, 0.13f, 0.14f}, {0.97f, 0.62f, 0.12f}, Band(v, 0.5f, 0.10f) * Band(u, 0.5f, 0.36f));
    case SCARF:
        return ScarfColour(u, v);
    case STEEL:
        return SColour{0.78f, 0.82f, 0.88f} *
               (0.8f + 0.25f * std::fabs(std::sin(u * 6.2831853f)) + 0.05f * NoiseFbm(u * 30, v * 4, 2, 350));
    case LEATHER:
        return SColour{0.30f, 0.17f, 0.09f} * (std::fmod(v * 9 + u, 1.0f) < 0.75f ? 1.0f : 0.5f);
    case BRASS:
        return SColour{0.86f, 0.64f, 0.22f} * (0.85f + 0.25f * NoiseFbm(u * 8, v * 8, 2, 360));
    case PACK:
        return Blend({0.16f, 0.22f, 0.20f}, {0.45f, 0.33f, 0.16f},
                     Band(u, 0.3f, 0.025f) + Band(u, 0.7f, 0.025f) + Band(v, 0.55f, 0.04f)) *
               Cloth(u, v, 370);
    default:
        return {0.5f, 0.5f, 0.5f};
    }
}

bool PaintTexture(const char* File) {
    constexpr int SIDE = 1024;
    constexpr int CELL_SIDE = SIDE / ATLAS_CELLS;
    CPicture Picture(SIDE, SIDE, 3);
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x) {
            const int Cell = y / CELL_SIDE * ATLAS_CELLS + x / CELL_SIDE;
            const SColour c = CellColour(Cell, (static_cast<float>(x % CELL_SIDE) + 0.5f) / CELL_SIDE,
                                         (static_cast<float>(y % CELL_SIDE) + 0.5f) / CELL_SIDE);
            Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), c.r, c.g, c.b);
        }
    }
    return Picture.SavePng(File);
}

} // namespace

bool MakeRider(const char* Name, const char* File) {
    if (std::strcmp(Name, "RiderTexture") == 0) {
        return PaintTexture(File);
    }
    CShape Board;
    AddBoard(Board);
    AddBoot(Board, BONE_FOOT_L);
    AddBoot(Board, BONE_FOOT_R);
    CShape Body;
    AddLegs(Body);
    AddBindings(Body);
    AddTorso(Body);
    AddArms(Body);
    AddHead(Body);
    AddScarf(Body);
    AddSword(Body);
    return WriteMesh(File, Board, Body);
}
