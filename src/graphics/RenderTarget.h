// An off-screen drawing surface: a framebuffer object with an optional colour texture and an optional depth texture or
// depth renderbuffer.
//
// A target owns its OpenGL objects from Create to Free; the destructor frees, so it must run while the context lives.
// A target is not copied: GLastFBOs holds its address while it is bound, so it must not move then either.
//
// Targets nest: Bind pushes on GLastFBOs, Unbind returns to the target beneath with its viewport, or to the window with
// its fixed size when there is none. Nothing is cleared and no other state is kept; mipmaps of the
// colour texture are the caller's to generate. The textures may be sampled while the target is not bound.
//
// Create allocates video memory and belongs into loading; it leaves the window's framebuffer bound, so it must not be
// called between a Bind and its Unbind. Bind and Unbind are cheap. Sizes are pixels.
//
// Bad input: Create with neither colour nor depth, and Unbind of a target that is not the one last bound, fail an
// assertion. A target that the driver refuses ends the program with a message.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Screen.h"
#include "foundation/Types.h"

// The values of Create's DepthFormat: the pixel type that goes with the empty depth texture.
constexpr INT32 DEPTH_FORMAT_BYTE = 11;
constexpr INT32 DEPTH_FORMAT_FLOAT = 12;

class GameRT {
public:
    UINT32 ColorTex = 0; // each 0 if there is none
    UINT32 DepthTex = 0;
    UINT32 DepthRB = 0;
    UINT32 FBO = 0; // 0 before Create and after Free
    INT32 Width = 0;
    INT32 Height = 0;

    GameRT() = default;
    ~GameRT() { Free(); }
    GameRT(const GameRT&) = delete;
    GameRT& operator=(const GameRT&) = delete;

    // DepthAsTexture counts only with DepthRequired: a texture that can be sampled instead of a renderbuffer.
    // Mips gives the colour texture a mipmap filter. A target that exists is freed first.
    void Create(INT32 NewWidth, INT32 NewHeight, bool DepthRequired, bool DepthAsTexture, INT32 DepthFormat,
                bool ColorRequired, bool Mips);

    void Bind();
    void Unbind();

    // Also takes a bound target off GLastFBOs. Harmless on a target that was never created, and twice.
    void Free();

private:
    void MakeColor(bool Mips);
    void MakeDepth(bool AsTexture, INT32 DepthFormat);
    void Attach();
    void MakeCurrent();
    void LeaveStack();
};

// Every target that is bound now, oldest first. Empty: the window is drawn into.
extern GStack<GameRT*> GLastFBOs;
