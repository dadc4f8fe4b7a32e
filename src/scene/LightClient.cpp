#include "scene/LightClient.h"

#include <algorithm>
#include <cmath>

namespace {

// How far a cone of unit length goes along an axis, with the axis' share of its direction and half its angle in
// radians: all the way if the axis runs inside the cone, else as far as the rim of its cap, and never behind its tip.
float ReachAlong(float Share, float HalfAngle) {
    const float FromDirection = std::acos(std::clamp(Share, -1.0f, 1.0f));
    return std::max(std::cos(std::max(FromDirection - HalfAngle, 0.0f)), 0.0f);
}

} // namespace

void SLightClient::GetBounds(::BBox* Out) const {
    const Vec3 Unit = M_Normalized(Dir);
    const float HalfAngle = Angle * DEGREES / 2;
    const auto Reach = [&](float Share) { return Range * ReachAlong(Share, HalfAngle); };
    Out->Min = Pos - Vec3{Reach(-Unit.x), Reach(-Unit.y), Reach(-Unit.z)};
    Out->Max = Pos + Vec3{Reach(Unit.x), Reach(Unit.y), Reach(Unit.z)};
}
