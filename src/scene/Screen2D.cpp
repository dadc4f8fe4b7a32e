#include "scene/Screen2D.h"

#include "foundation/Camera.h"
#include "foundation/Screen.h"
#include "graphics/ShaderLib.h"

#include <GL/glew.h>

UINT32 UseScreenProgram() {
    const UINT32 Program = ShaderGetProgram("GUI", "GUI");
    glUseProgram(Program);
    ShaderSetUniform1i(0, Program, "Texture");
    M_Mat4Identity(GViewMatrix);
    M_Mat4Ortho(GProjectionMatrix, 0, WINDOW_WIDTH, 0, WINDOW_HEIGHT, -1, 1);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    return Program;
}
