// The drags of the cube by its faces: what a pick ray makes of it.
#include "editor/TransformMenu.h"
#include "foundation/GCheck.h"
#include "scene/DrawHelpers.h"

#include <cfloat>

namespace {

constexpr float PLANE_TOLERANCE = 0.0001f; // world units, near the origin

// What single precision may add to a point's distance from a plane, for each unit of the point's coordinates.
constexpr float ROUNDING = 4 * FLT_EPSILON;

// Nearer to the centre, in world units, a grab belongs to neither half of the cube.
constexpr float HALF_TOLERANCE = 0.00001f;

bool MeetPlane(const Plane& P, const Ray& R, bool AllowBehind, Vec3& Out) {
    float t;
    if (!M_RayPlane(P, R, 0, AllowBehind, &t)) {
        return false;
    }
    Out = R.Origin + R.Dir * t;
    return true;
}

bool IsInside(const Vec3& p, const Plane Planes[CUBE_FACES]) {
    const float Tolerance = PLANE_TOLERANCE + ROUNDING * (M_Abs(p.x) + M_Abs(p.y) + M_Abs(p.z));
    for (INT32 i = 0; i < CUBE_FACES; ++i) {
        if (M_PlaneDistance(Planes[i], p) > Tolerance) {
            return false;
        }
    }
    return true;
}

// Seen along the plane's normal, by the matrix that turns +Z into it.
float AngleInPlane(const GArray<Vec2>& Points, UINT32 From, UINT32 To) {
    const Vec2 Arm = Points[To] - Points[From];
    return M_Atan2(Arm.y, Arm.x);
}

// A grab in the middle of the cube, or across an axis without extent, has no multiples and changes nothing.
float Multiple(float Now, float AtPress) {
    return AtPress == 0 ? 1 : Now / AtPress;
}

} // namespace

void SMenu_Transform::BuildPlanes(Plane Out[CUBE_FACES]) const {
    for (int Axis = 0; Axis < 3; ++Axis) {
        Vec3 Arm;
        Arm[Axis] = HalfSize[Axis];
        M_QuatRotate(Rotation, Arm, Arm);
        const Vec3 Normal = M_Normalized(Arm);
        Out[2 * Axis] = {Normal, M_Dot(Centre + Arm, Normal)};
        Out[2 * Axis + 1] = {-Normal, M_Dot(Centre - Arm, -Normal)};
    }
}

INT32 SMenu_Transform::PickFace(const Ray& Pick, const Plane Planes[CUBE_FACES]) {
    float Best = FLT_MAX;
    INT32 Face = -1;
    for (INT32 i = 0; i < CUBE_FACES; ++i) {
        float t;
        if (M_RayPlane(Planes[i], Pick, 1, 0, &t) && t < Best && IsInside(Pick.Origin + Pick.Dir * t, Planes)) {
            Best = t;
            Face = i;
        }
    }
    return Face;
}

void SMenu_Transform::Drag(const SDragInput& Input) {
    if (DragFace < 0) {
        Plane Planes[CUBE_FACES];
        BuildPlanes(Planes);
        const INT32 Face = PickFace(Input.Pick, Planes);
        if (Face >= 0 && Input.Pressed) {
            BeginDrag(Face, Planes, Input);
        }
    } else if (Input.Held) {
        FollowDrag(Input);
    } else if (Input.Released) {
        DragFace = -1;
    }
}

// Everything is noted whatever the mode, as mode and form of scale may change while the button is held.
void SMenu_Transform::BeginDrag(INT32 Face, const Plane Planes[CUBE_FACES], const SDragInput& Input) {
    const bool AlongNormal = Mode == TRANSFORM_MOVE && (Input.Keys & DRAG_SHIFT);
    DragKeys = Input.Keys;
    DragPlane = Planes[AlongNormal ? (Face + 2) % CUBE_FACES : Face];
    DragAxis = Planes[Face].Normal;
    for (INT32 i = 0; i < CUBE_FACES; ++i) {
        StartPlanes[i] = Planes[i];
    }
    StartCentre = Centre;
    StartHalfSize = HalfSize;
    StartRotation = Rotation;
    // A side of the cube, unlike the face that was picked, may lie behind the eye or along the ray.
    const bool Is = MeetPlane(DragPlane, Input.Pick, AlongNormal, GrabPoint);
    GCHECK_IN("GameLevel", Is || AlongNormal, "is");
    DragFace = Is ? Face : -1;
}

void SMenu_Transform::FollowDrag(const SDragInput& Input) {
    Vec3 p;
    if (!MeetPlane(DragPlane, Input.Pick, true, p)) {
        return;
    }
    if (Mode == TRANSFORM_MOVE) {
        DragMove(p);
    } else if (Mode == TRANSFORM_ROTATE) {
        DragRotate(p);
    } else if (ScalesUniformly() || Input.Alt) {
        DragScaleUniform(p);
    } else {
        DragScaleAxes(p);
    }
}

// In the plane of the face, or against the mouse along its normal.
void SMenu_Transform::DragMove(const Vec3& p) {
    const Vec3 Way = p - GrabPoint;
    Centre = DragKeys & DRAG_SHIFT ? StartCentre - DragAxis * M_Dot(Way, DragAxis) : StartCentre + Way;
}

void SMenu_Transform::DragRotate(const Vec3& p) {
    Mat4 Align;
    M_Mat4AlignZ(Align, DragPlane.Normal);
    GArray<Vec3> Points;
    Points.Add(FaceCentre());
    Points.Add(GrabPoint);
    Points.Add(p);
    GArray<Vec2> Flat;
    M_PolygonProject(Flat, Points, Align);
    const float Angle = AngleInPlane(Flat, 0, 2) - AngleInPlane(Flat, 0, 1);
    M_QuatMul(Rotation, QuatFromAxisAngle(DragPlane.Normal, Angle), StartRotation);
}

// The cube's centre, projected on the plane in which the mouse is followed.
Vec3 SMenu_Transform::FaceCentre() const {
    return Centre - DragPlane.Normal * M_PlaneDistance(DragPlane, Centre);
}

// How far the mouse is from the face's centre, in distances of the grabbed point.
float SMenu_Transform::PullRatio(const Vec3& p) const {
    const Vec3 c = FaceCentre();
    return Multiple(M_Length(p - c), M_Length(GrabPoint - c));
}

void SMenu_Transform::DragScaleUniform(const Vec3& p) {
    HalfSize = StartHalfSize * PullRatio(p);
}

void SMenu_Transform::DragScaleAxes(const Vec3& p) {
    if (DragKeys & DRAG_SHIFT) {
        const int Axis = DragFace / 2;
        const float Ratio = PullRatio(p);
        HalfSize[Axis] = StartHalfSize[Axis] * (DragKeys & DRAG_CONTROL ? Ratio : 0.5f * Ratio + 0.5f);
    } else {
        StretchInFace(p);
    }
    if (!(DragKeys & DRAG_CONTROL)) {
        KeepOtherSide();
    }
}

// Both axes that lie in the face, each as far as the mouse has gone along it. The planes of the press tell their
// directions: a cube that is flat at the moment, as snapping may leave it, has none of its own.
void SMenu_Transform::StretchInFace(const Vec3& p) {
    for (INT32 Step = 2; Step <= 4; Step += 2) {
        const INT32 Face = (DragFace + Step) % CUBE_FACES;
        const int Axis = Face / 2;
        const Vec3& n = StartPlanes[Face].Normal;
        const float Centred = M_Dot(StartCentre, n);
        HalfSize[Axis] = StartHalfSize[Axis] * Multiple(M_Dot(p, n) - Centred, M_Dot(GrabPoint, n) - Centred);
    }
}

// Growing by as much on either side, the cube moves by that towards the half that was grabbed.
void SMenu_Transform::KeepOtherSide() {
    Vec3 Growth;
    M_QuatRotate(Rotation, HalfSize - StartHalfSize, Growth);
    for (int Axis = 0; Axis < 3; ++Axis) {
        const Plane& Front = StartPlanes[2 * Axis];
        const float Grab = M_Dot(GrabPoint, Front.Normal) - (Front.D - StartPlanes[2 * Axis + 1].D) / 2;
        const float Sign = Grab < -HALF_TOLERANCE ? -1.0f : Grab > HALF_TOLERANCE ? 1.0f : 0.0f;
        Centre[Axis] = StartCentre[Axis] + Growth[Axis] * Sign;
    }
}
