#include "graphics/RenderTarget.h"

#include <GL/glew.h>

#include "foundation/Diagnostics.h"
#include "foundation/GCheck.h"
#include "foundation/Screen.h"

GStack<GameRT*> GLastFBOs;

namespace {

// There is one colour format; the failure message calls it by this number.
constexpr INT32 COLOR_FORMAT = 1;

constexpr const char* REFUSED =
    "Requested frame buffer is not supported, game will not run on your PC.\n\n\t\t\t\t\t If the game might have "
    "failed "
    "instead, here's the GL FBO status code: %d\n\t\t\t\t\t If you think you can convince the developer to change the "
    "code for you, here's the buffer request data:\t\t\t\t\t Width: %d, Height: %d, Format: %d, DepthRequired: %d, "
    "DepthAsTexture: %d, DepthFormat: %d, ColorRequired: %d, Mips: %d";

UINT32 MakeTexture(INT32 MagFilter, INT32 MinFilter) {
    UINT32 Id = 0;
    glGenTextures(1, &Id);
    glBindTexture(GL_TEXTURE_2D, Id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, MagFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, MinFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return Id;
}

void SetColorBuffer(UINT32 Buffer) {
    glDrawBuffer(Buffer);
    glReadBuffer(Buffer);
}

void DeleteTexture(UINT32& Id) {
    if (Id) {
        glDeleteTextures(1, &Id);
    }
    Id = 0;
}

} // namespace

void GameRT::Create(INT32 NewWidth, INT32 NewHeight, bool DepthRequired, bool DepthAsTexture, INT32 DepthFormat,
                    bool ColorRequired, bool Mips) {
    GCHECK_IN("GameRT", ColorRequired || DepthRequired, "FB || Depth");
    Free();
    Width = NewWidth;
    Height = NewHeight;
    if (ColorRequired) {
        MakeColor(Mips);
    }
    if (DepthRequired) {
        MakeDepth(DepthAsTexture, DepthFormat);
    }
    Attach();

    const UINT32 Status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (Status != GL_FRAMEBUFFER_COMPLETE) {
        FatalError(REFUSED, Status, Width, Height, COLOR_FORMAT, DepthRequired, DepthAsTexture, DepthFormat,
                   ColorRequired, Mips);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    if (!ColorTex) {
        SetColorBuffer(GL_BACK);
    }
}

void GameRT::MakeColor(bool Mips) {
    ColorTex = MakeTexture(GL_LINEAR, Mips ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, Width, Height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void GameRT::MakeDepth(bool AsTexture, INT32 DepthFormat) {
    if (AsTexture) {
        const UINT32 Type = DepthFormat == DEPTH_FORMAT_FLOAT ? GL_FLOAT : GL_UNSIGNED_BYTE;
        DepthTex = MakeTexture(GL_NEAREST, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, 0);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, Width, Height, 0, GL_DEPTH_COMPONENT, Type, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        return;
    }
    glGenRenderbuffers(1, &DepthRB);
    glBindRenderbuffer(GL_RENDERBUFFER, DepthRB);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT, Width, Height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

void GameRT::Attach() {
    glGenFramebuffers(1, &FBO);
    glBindFramebuffer(GL_FRAMEBUFFER, FBO);
    if (ColorTex) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, ColorTex, 0);
    } else {
        SetColorBuffer(GL_NONE);
    }
    if (DepthTex) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, DepthTex, 0);
    }
    if (DepthRB) {
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, DepthRB);
    }
}

void GameRT::MakeCurrent() {
    glBindFramebuffer(GL_FRAMEBUFFER, FBO);
    glViewport(0, 0, Width, Height);
    if (!ColorTex) {
        SetColorBuffer(GL_NONE);
    }
}

void GameRT::Bind() {
    GLastFBOs.Push(this);
    MakeCurrent();
}

void GameRT::Unbind() {
    GCHECK_IN("GameRT", !GLastFBOs.Empty() && GLastFBOs.Top() == this, "GLastFBOs.Top() == this");
    GLastFBOs.Pop();
    if (!GLastFBOs.Empty()) {
        GLastFBOs.Top()->MakeCurrent();
        return;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
}

void GameRT::LeaveStack() {
    if (!GLastFBOs.Empty() && GLastFBOs.Top() == this) {
        Unbind();
        return;
    }
    for (auto* Node = GLastFBOs.first; Node; Node = Node->next) {
        if (Node->obj == this) {
            GLastFBOs.Unlink(Node);
            return;
        }
    }
}

void GameRT::Free() {
    if (FBO) {
        LeaveStack();
        glDeleteFramebuffers(1, &FBO);
        FBO = 0;
    }
    if (DepthRB) {
        glDeleteRenderbuffers(1, &DepthRB);
    }
    DepthRB = 0;
    DeleteTexture(DepthTex);
    DeleteTexture(ColorTex);
    Width = 0;
    Height = 0;
}
