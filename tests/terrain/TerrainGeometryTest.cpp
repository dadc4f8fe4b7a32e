#include "terrain/TerrainFixture.h"

TEST(TerrainGeometryTest, NormalsOfATwistedGround) {
    // As fractions a cell: along X, along Y, and the twist, which adds to either slope along the other axis.
    constexpr double X = 0.006, Y = -0.004, TWIST = 0.0004;
    STerrain Terrain;
    MakeGround(Terrain, 33, [](double x, double y) { return 0.4 + X * x + Y * y + TWIST * x * y; }, {330, 660, 40});
    UINT32 Normals[32 * 32];
    Terrain.FillNormals(Normals);
    for (UINT32 i = 0; i < 32 * 32; i++) {
        // Of the middle of the cell, in a square of 2 by 2. The bytes cut off less than one step.
        const double SlopeX = (X + TWIST * (i / 32 + 0.5)) * 33 / 2;
        const double SlopeY = (Y + TWIST * (i % 32 + 0.5)) * 33 / 2;
        const double n[3] = {-SlopeX, -SlopeY, 1};
        for (int c = 0; c < 3; c++) {
            EXPECT_NEAR((Normals[i] >> 8 * c & 255) / 255.0 * 2 - 1, n[c] / std::hypot(SlopeX, SlopeY, 1), 2.0 / 255);
        }
    }
}
