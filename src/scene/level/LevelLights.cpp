// The spot lights of a level: which are in view, their shadow maps, and the passes that add their light to the picture.
#include "graphics/ShaderLib.h"
#include "scene/LightClient.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

namespace {

// The near distance of a light's camera, as a part of its reach. The shaders count on it.
constexpr float NEAR_PART = 0.005f;

// Between these distances from the eye a light goes out: its reach once and twice, and this.
constexpr float FADE_MARGIN = 200.0f;

Vec3 BlendedDirection(const SLightClient& Light, float BlendDelta) {
    return M_Normalized(M_Lerp3(Light.Dir, Light.PrevDir, BlendDelta));
}

// The view of a light at its place between two steps. Up is the direction with its axes exchanged.
void SetLightCamera(const SLightClient& Light, float BlendDelta) {
    const Vec3 Dir = BlendedDirection(Light, BlendDelta);
    GCamera.Eye = M_Lerp3(Light.Pos, Light.PrevPos, BlendDelta);
    GCamera.Target = GCamera.Eye + Dir;
    GCamera.Up = {Dir.y, Dir.z, Dir.x};
    GCamera.Fov = Light.Angle;
    GCamera.Aspect = 1;
    GCamera.Near = Light.Range * NEAR_PART;
    GCamera.Far = Light.Range;
}

// What the shaders learn of the light whose camera is set.
void SetLight(const SLightClient& Light, float BlendDelta) {
    const Vec3 Pos = GCamera.Eye;
    GLightPos = {Pos.x, Pos.y, Pos.z, Light.Range};
    GLightDir = BlendedDirection(Light, BlendDelta);
    GLightDirW = Light.Angle;
    GLightColor = Light.Color;
    GAmbientColor = {};
    GProjTexture = Light.ProjTexture;
    GShadowTexture = Light.ShadowTarget.DepthTex;
    GLightTransDist = {Light.Range + FADE_MARGIN, 2 * Light.Range + FADE_MARGIN};

    Mat4 View;
    M_CameraLookAt(View);
    Mat4 Projection;
    M_CameraPerspective(Projection);
    M_Mat4Mul(GSMMatrix, Projection, View);
}

} // namespace

void CLevel::AddLight(SLightClient* Light) {
    Light->GetBounds(&Light->BBox);
    AddClient(Grid, Light);
    Lights.Add(Light);
}

void CLevel::RemoveLight(SLightClient* Light) {
    DeselectGone(Light);
    RemoveClient(Grid, Light);
    for (UINT32 i = 0; i < Lights.count; ++i) {
        if (Lights[i] == Light) {
            Lights.Remove(i, i);
            return;
        }
    }
}

void CLevel::CollectLights() {
    ++GSpatialStamp;
    Frustum View;
    M_CameraFrustum(View);
    VisibleLights.Resize(0);
    QueryLightClients(Grid->Root, &VisibleLights, View.Planes, MAX_QUERY_PLANES);
    UINT32 On = 0;
    for (SLightClient* Light : VisibleLights) {
        if (!(Light->Flags & LIGHT_FLAG_OFF)) {
            VisibleLights[On++] = Light;
        }
    }
    VisibleLights.Resize(On);
}

// Skinned meshes are drawn with a program of their own, so each light begins by making ShadowProgram current.
void CLevel::RenderLightShadows(float BlendDelta) {
    const CameraState Saved = GCamera;
    for (SLightClient* Light : VisibleLights) {
        Light->ShadowTarget.Bind();
        glClear(GL_DEPTH_BUFFER_BIT);
        SetLightCamera(*Light, BlendDelta);
        M_CameraLookAt(GViewMatrix);
        M_CameraPerspective(GProjectionMatrix);
        glUseProgram(ShadowProgram);
        ShaderSendViewMatrix(ShadowProgram);
        ShaderSendProjectionMatrix(ShadowProgram);
        RenderTerrainShadow(false, M_Lerp3(EditorPos, EditorPrevPos, BlendDelta));
        BuildDrawList(false, BlendDelta, true, false);
        DrawList(false, true, true);
        Light->ShadowTarget.Unbind();
    }
    GCamera = Saved;
}

// The frame list is that of the light that drew last: with several, each makes its own again.
void CLevel::RenderLightPasses(float BlendDelta) {
    if (VisibleLights.count == 0) {
        return;
    }
    glEnable(GL_BLEND);
    GCurLight = LIGHT_SPOT;
    const CameraState Saved = GCamera;
    for (const SLightClient* Light : VisibleLights) {
        SetLightCamera(*Light, BlendDelta);
        SetLight(*Light, BlendDelta);
        if (VisibleLights.count > 1) {
            BuildDrawList(false, BlendDelta, true, false);
        }
        GCamera = Saved;
        glBlendFunc(GL_ONE, GL_ONE); // for the ground; meshes have functions of their own
        Terrain->Draw();
        DrawList(true, false, false);
    }
    GCurLight = LIGHT_AMBDIR;
    glDisable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}
