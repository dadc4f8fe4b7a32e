// What a level draws with: its render targets, the programs of whole passes and the sun's pictures.
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

// Texels along each side; with a view of 1000 world units this is about half a unit a texel.
static constexpr INT32 SHADOW_MAP_SIZE = 2048;

// The post-process reads the whole picture and this level; smaller ones need not be made.
static constexpr INT32 SMALLEST_LEVEL = 5;

static void LimitMipmaps(UINT32 Texture) {
    glBindTexture(GL_TEXTURE_2D, Texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, SMALLEST_LEVEL);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CLevel::InitDrawing() {
    OverlayRT.Create(WINDOW_WIDTH, WINDOW_HEIGHT, false, false, DEPTH_FORMAT_BYTE, true, false);
    OverlayRT.Bind();
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    OverlayRT.Unbind();
    SceneRT.Create(WINDOW_WIDTH, WINDOW_HEIGHT, true, true, DEPTH_FORMAT_BYTE, true, true);
    LimitMipmaps(SceneRT.ColorTex);
    PostProgram = ShaderGetProgram("PostProcess", "FSQuad");
    ShadowProgram = ShaderGetProgram("RenderShadow", "RenderShadow");
    ShadowRT.Create(SHADOW_MAP_SIZE, SHADOW_MAP_SIZE, true, true, DEPTH_FORMAT_FLOAT, false, false);
    SunTexture = TextureLoad("Data/Textures/FX/Sun.png");
    FlareTexture = TextureLoad("Data/Textures/FX/SunFlare.png");
}

void CLevel::FreeSun() {
    TextureRelease(SunTexture);
    TextureRelease(FlareTexture);
    SunTexture = FlareTexture = 0;
}

void CLevel::FreeTargets() {
    SceneRT.Free();
    OverlayRT.Free();
    ShadowRT.Free();
}
