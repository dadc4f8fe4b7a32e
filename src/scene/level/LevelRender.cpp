// One picture of a level: shadow maps, the scene into SceneRT, and one full-screen draw into the window.
#include "graphics/ShaderLib.h"
#include "physics/Physics.h"
#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <btBulletDynamicsCommon.h>

// The game has cleared the window. All decisions by distance, in every pass, are taken from the picture's own eye.
void CLevel::Render(float BlendDelta) {
    SceneRT.Bind();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    GFogColor = {Params.FogColor_R, Params.FogColor_G, Params.FogColor_B};
    GFogData = {Params.SkyFog, Params.SkyFogExp};
    glUseProgram(Sky.Program);
    ShaderSendFog(Sky.Program);
    GFogData = {Params.FogDist, Params.FogExp};

    if (EditMode) {
        SetEditorCamera(BlendDelta);
    }
    GLodCameraPos = GCamera.Eye;
    RenderSunShadow(BlendDelta);
    CollectLights();
    RenderLightShadows(BlendDelta);

    M_CameraLookAt(GViewMatrix);
    M_CameraPerspective(GProjectionMatrix);
    RenderScene(BlendDelta, false);
    SceneRT.Unbind();
    PostProcess();
    if (EditMode) {
        DrawEditorOverlay();
    }
}

void CLevel::RenderSunShadow(float BlendDelta) {
    const CameraState Saved = GCamera;
    ShadowRT.Bind();
    glClear(GL_DEPTH_BUFFER_BIT);
    FindCasterPlanes();
    SetSunCamera();
    M_CameraLookAt(GViewMatrix);
    M_CameraOrtho(GProjectionMatrix);
    glUseProgram(ShadowProgram);
    ShaderSendViewMatrix(ShadowProgram);
    ShaderSendProjectionMatrix(ShadowProgram);
    BuildDrawList(true, BlendDelta, false, true);
    RenderScene(BlendDelta, true);
    ShadowRT.Unbind();
    GCamera = Saved;
}

// Opaque ground lays down depth first, the sky fills only what is left at depth 1, and the sun is tested against the
// finished depth at the far plane.
void CLevel::RenderScene(float BlendDelta, bool ShadowPass) {
    if (ShadowPass) {
        ShaderSetUniform1i(0, ShadowProgram, "Texture");
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, 0);
        RenderTerrainShadow(true, GLodCameraPos);
        DrawList(false, true, false);
        return;
    }
    SetSunLight();
    BuildDrawList(false, BlendDelta, false, false);
    Terrain->Draw();
    DrawList(false, false, false);
    glDepthRange(1.0, 1.0);
    Sky.Draw(GravityRotation());
    DrawSun();
    glDepthRange(0.0, 1.0);
    RenderLightPasses(BlendDelta);
    if (GPhyShowDebug) {
        DrawPhysicsLines();
    }
}

void CLevel::RenderTerrainShadow(bool OrthoPlanes, const Vec3& LodFrom) {
    if (!Terrain->Visible(OrthoPlanes)) {
        return;
    }
    Terrain->SetLods(LodFrom, Params.ClipDist);
    Terrain->Bind(true, true);
    ShaderSendWorldMatrix(ShadowProgram);
    Terrain->DrawLeaves();
    Terrain->Unbind();
}

// The wires of all bodies near the eye, hidden where the scene stands before them.
void CLevel::DrawPhysicsLines() {
    UseColorProgram();
    GPhyWorld->debugDrawWorld();
}

void CLevel::PostProcess() {
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, SceneRT.ColorTex);
    glEnable(GL_TEXTURE_2D);
    glGenerateMipmap(GL_TEXTURE_2D);
    glUseProgram(PostProgram);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, SceneRT.DepthTex);
    ShaderSetUniform1i(0, PostProgram, "FSTex");
    ShaderSetUniform1i(1, PostProgram, "DTex");
    DrawQuad(-1, 1, 1, -1, 0);
}
