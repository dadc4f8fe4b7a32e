#include "scene/Renderable.h"

Vec3* IRenderable::GetPosition(Vec3* Out) {
    *Out = Pos;
    return Out;
}

void IRenderable::SetPosition(const Vec3& NewPos) {
    Pos = PrevPos = NewPos;
}

Quat* IRenderable::GetRotation(Quat* Out) {
    *Out = Rot;
    return Out;
}

void IRenderable::SetRotation(const Quat& NewRot) {
    Rot = PrevRot = NewRot;
}

Vec3* IRenderable::GetScale(Vec3* Out) {
    *Out = Scale;
    return Out;
}

void IRenderable::SetScale(const Vec3& NewScale) {
    Scale = PrevScale = NewScale;
}
