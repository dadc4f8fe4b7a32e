// The sun of a level: its place in the sky, its light, the camera of its shadow map and its picture.
#include "graphics/ShaderLib.h"
#include "scene/DrawHelpers.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

namespace {

// Side of the square that the shadow map covers round the eye, in world units.
constexpr float SHADOW_VIEW_SIZE = 1000.0f;

// The sun's pictures stand this far from the eye, in world units; being pinned to the far plane, only their angle
// counts.
constexpr float SUN_DISTANCE = 200.0f;
constexpr float SUN_SIZE = 16.0f;    // half width
constexpr float FLARE_SIZE = 128.0f; // half width

} // namespace

Quat CLevel::GravityRotation() const {
    return M_QuatFromEuler({Params.Gravity_Angle, Params.Gravity_Pitch - PI, 0});
}

Vec3 CLevel::SunDirection() const {
    Vec3 Direction;
    M_QuatRotate(GravityRotation(), M_Spherical({Params.LightDir_Angle, Params.LightDir_Pitch, 1}), Direction);
    return Direction;
}

Vec3 CLevel::UpDirection() const {
    return M_Spherical({Params.Gravity_Angle, Params.Gravity_Pitch - PI, 1});
}

// The view looks at the present eye from the sun's side. Its up vector comes from the angles, so that it stays well
// defined with the sun straight above.
void CLevel::SetSunCamera() const {
    Vec3 ToSun = SunDirection();
    M_Normalize(ToSun);
    Vec3 Across;
    M_QuatRotate(GravityRotation(),
                 M_Spherical({Params.LightDir_Angle + PI / 2, Params.LightDir_Pitch + PI / 2, Params.LightIntensity}),
                 Across);
    M_Normalize(Across);

    GCamera.Target = GCamera.Eye;
    GCamera.Eye += ToSun * Params.ClipDist;
    GCamera.Up = M_Cross(ToSun, Across);
    GCamera.Fov = SHADOW_VIEW_SIZE;
    GCamera.Aspect = SHADOW_VIEW_SIZE;
    GCamera.Near = -Params.ClipDist;
    GCamera.Far = 2 * Params.ClipDist;
}

// What stands beyond a side of the view that the light travels away from shades nothing that is in view.
void CLevel::FindCasterPlanes() {
    Frustum View;
    M_CameraFrustum(View);
    const Vec3 ToSun = SunDirection();
    CasterPlanes.Resize(0);
    for (const Plane& Side : View.Planes) {
        if (M_Dot(Side.Normal, ToSun) <= 0) {
            CasterPlanes.Add(Side);
        }
    }
}

void CLevel::SetSunLight() {
    GCurLight = LIGHT_AMBDIR;
    GLightDir = -SunDirection();
    GLightDirW = Params.CloudAmount;
    GProjTexture = 0;
    GLightColor = {Params.LightColor_R, Params.LightColor_G, Params.LightColor_B};
    GAmbientColor = {Params.AmbientColor_R, Params.AmbientColor_G, Params.AmbientColor_B};
    GShadowTexture = ShadowRT.DepthTex;

    const CameraState Saved = GCamera;
    SetSunCamera();
    Mat4 View;
    M_CameraLookAt(View);
    Mat4 Projection;
    M_CameraOrtho(Projection);
    M_Mat4Mul(GSMMatrix, Projection, View);
    GCamera = Saved;
}

void CLevel::DrawSun() const {
    const UINT32 Program = ShaderGetProgram("Sprite", "Sprite");
    glUseProgram(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    ShaderSetUniform1i(0, Program, "Texture");
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glActiveTexture(GL_TEXTURE0);

    Vec3 Up = GCamera.Up;
    M_Normalize(Up);
    const Vec3 Centre = GCamera.Eye + SunDirection() * SUN_DISTANCE;
    const Vec3 Color = {M_Sqrt(Params.LightColor_R), M_Sqrt(Params.LightColor_G), M_Sqrt(Params.LightColor_B)};
    glBindTexture(GL_TEXTURE_2D, SunTexture);
    DrawBillboard(Centre, SUN_SIZE, 0, 0, Up, Color.x, Color.y, Color.z, 1);
    glBindTexture(GL_TEXTURE_2D, FlareTexture);
    DrawBillboard(Centre, FLARE_SIZE, 0, 0, Up, Color.x, Color.y, Color.z, 1);

    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_BLEND);
    glDepthMask(GL_TRUE);
}
