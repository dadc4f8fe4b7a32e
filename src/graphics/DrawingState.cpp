#include "graphics/DrawingState.h"

#include <GL/glew.h>

void SetDrawingState() {
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glFrontFace(GL_CW);
    glEnable(GL_CULL_FACE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glClearColor(0.2f, 0.3f, 0.4f, 1.0f);
    glClearDepth(1.0);
}
