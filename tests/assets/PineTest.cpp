// The shipped pine: cheap enough to draw by the hundred, and a pine in every level of detail and from every side.
#include "graphics/MeshLod.h"
#include "meshgen/TreeMeshGen.h"
#include "support/GlFixture.h"

namespace {

constexpr UINT32 MOST_TRIANGLES = 500;
constexpr float TOP = 60;        // at least that high
constexpr float LEAST_REACH = 9; // of the boughs from the trunk, on every side
constexpr int SECTORS = 6;

using Pine = GlFixture;

TEST_F(Pine, EveryLevelKeepsItsTopItsRoundnessAndNoEmptyTriangle) {
    if (!Ready) {
        return;
    }
    for (const char* Folder : {"Data/Generators", "Data/Textures/Trees"}) {
        fs::copy(std::string(SLOPERUSH_GAME_DIR "/") + Folder, Folder);
    }
    STreeMeshGen Generator;
    ASSERT_EQ(Generator.Generate("Data/Generators/PineTree0.mgn"), 1u);
    SMesh& Mesh = Generator.Mesh;
    ASSERT_EQ(Mesh.Parts.count, 2u);
    EXPECT_LE(Mesh.Indices.count, 3 * MOST_TRIANGLES);
    GArray<UINT32> Levels[MESH_LOD_COUNT - 1];
    MeshBuildLods(Mesh, Levels);
    for (UINT32 Level = 0; Level < MESH_LOD_COUNT; ++Level) {
        const GArray<UINT32>& Indices = Level ? Levels[Level - 1] : Mesh.Indices;
        float Reach[SECTORS] = {};
        float Height = 0;
        for (const SMeshPart& Part : Mesh.Parts) {
            for (UINT32 t = 0; t < Part.TriangleCount[Level]; ++t) {
                Vec3 p[3];
                for (UINT32 k = 0; k < 3; ++k) {
                    const UINT32 Index = Indices.Data[Part.IBOffset[Level] + 3 * t + k];
                    p[k] = Mesh.Vertices.Data[Part.VertexStart + Index].Position;
                    const float Turn = (std::atan2(p[k].y, p[k].x) / 6.2831853f + 0.5f) * SECTORS;
                    float& Far = Reach[static_cast<int>(Turn) % SECTORS];
                    Far = std::max(Far, std::hypot(p[k].x, p[k].y));
                    Height = std::max(Height, p[k].z);
                }
                EXPECT_GT(M_Length(M_Cross(p[1] - p[0], p[2] - p[0])), 1e-4f) << "level " << Level << ", " << t;
            }
        }
        EXPECT_GT(Height, TOP) << "level " << Level;
        for (const float Far : Reach) {
            EXPECT_GT(Far, LEAST_REACH) << "a bare side in level " << Level;
        }
    }
}

} // namespace
