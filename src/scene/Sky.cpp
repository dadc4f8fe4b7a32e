#include "scene/Sky.h"

#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"

#include <GL/glew.h>

namespace {

constexpr int BANDS = 16;    // from pole to pole
constexpr int SEGMENTS = 16; // round the horizon
constexpr float RADIUS = 100.0f;

SVertex20 SpherePoint(int Band, int Segment) {
    const float Pitch = PI * Band / BANDS - PI / 2;
    const float Angle = 2 * PI * Segment / SEGMENTS;
    SVertex20 Vertex;
    Vertex.Pos = {RADIUS * M_Cos(Pitch) * M_Cos(Angle), RADIUS * M_Cos(Pitch) * M_Sin(Angle), RADIUS * M_Sin(Pitch)};
    Vertex.Tex = {static_cast<float>(Segment) / SEGMENTS, static_cast<float>(Band) / BANDS};
    return Vertex;
}

} // namespace

void SSky::Load(const GString& TextureName) {
    Free();
    if (TextureName.Length() > 0) {
        Texture = TextureLoad(TextureName);
        HoldsTexture = true;
    }
    Vertices.Reserve(BANDS * SEGMENTS * 6);
    for (int Band = 0; Band < BANDS; ++Band) {
        for (int Segment = 0; Segment < SEGMENTS; ++Segment) {
            const int Corners[6][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 1}, {1, 0}, {0, 0}};
            for (const int* Corner : Corners) {
                Vertices.Add(SpherePoint(Band + Corner[0], Segment + Corner[1]));
            }
        }
    }
    Program = ShaderGetProgram("Sky", "Sky");
}

void SSky::Free() {
    if (HoldsTexture) {
        TextureRelease(Texture);
    }
    HoldsTexture = false;
    Texture = 0;
    Vertices.Clear();
}

void SSky::Draw(const Quat& Rotation) const {
    if (Texture == 0) {
        return;
    }
    glUseProgram(Program);
    TextureDisableUnits();
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, Texture);
    ShaderSetUniform1i(0, Program, "SkyTex");

    const Mat4 Saved = GViewMatrix;
    Mat4 EyeCentred = Saved;
    EyeCentred[12] = EyeCentred[13] = EyeCentred[14] = 0;
    Mat4 Turn;
    M_Mat4FromQuat(Turn, Rotation);
    M_Mat4Mul(GViewMatrix, EyeCentred, Turn);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    DrawVertices20(Vertices.Data, static_cast<INT32>(Vertices.count), GL_TRIANGLES);
    GViewMatrix = Saved;
}
