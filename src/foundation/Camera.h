// The camera of the pass being drawn, the three matrices that every draw sends, and what is built from them.
//
// All of it is global state of the one thread. Whoever changes GCamera for a pass of its own (a shadow map, the sky)
// copies it first and puts it back. GMousePos is written by the input pump, GLodCameraPos by the frame.
// Units: world units, but Fov is the full vertical angle in degrees. In an orthographic set-up the same two members
// hold something else: Fov the full width and Aspect the full height of the view volume in world units. Who sets the
// camera decides which meaning holds. The planes and rays are built from GCamera at the time of the call; their normals
// point out of the volume. Cost: a few dozen operations each. Bad input: an Up along the line of sight gives degenerate
// axes of zero length.
#pragma once

#include "foundation/Geometry.h"
#include "foundation/Matrix.h"

struct CameraState {
    Vec3 Eye;
    Vec3 Target = {0, 1, 0};
    Vec3 Up = {0, 0, 1};
    float Fov = 90;
    float Aspect = 1.333f;
    float Near = 1;
    float Far = 2000;
};

extern CameraState GCamera;

// Sent to the shaders unchanged. Identity at the start.
extern Mat4 GViewMatrix;
extern Mat4 GProjectionMatrix;
extern Mat4 GWorldMatrix;

// On the virtual screen of 1024 by 576, y downward.
extern Vec2 GMousePos;

// From here the distances are measured that choose a level of detail: the eye of the frame, in every pass.
extern Vec3 GLodCameraPos;

void M_CameraGet(CameraState& Out);
void M_CameraSet(const CameraState& In);

// Sets GCamera to the mean of every single float of the two: t = 0 gives b and t = 1 gives a, as in M_Lerp3.
void M_CameraLerp(const CameraState& a, const CameraState& b, float t);

void M_CameraLookAt(Mat4& Out);
void M_CameraPerspective(Mat4& Out);
void M_CameraOrtho(Mat4& Out);

// Far, near, top, bottom, left, right.
void M_CameraFrustum(Frustum& Out);

// For an orthographic set-up: far, near, left, right, bottom, top.
void M_CameraOrthoFrustum(Frustum& Out);

// From the eye through GMousePos.
void M_CameraPickRay(Ray& Out);

// The part of the view volume whose picture lies in the rectangle between Corner and GMousePos, in any order.
void M_CameraRectFrustum(const Vec2& Corner, Frustum& Out);
