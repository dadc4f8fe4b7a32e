#include <GL/glew.h>
#include <LinearMath/btVector3.h>

#include "physics/Physics.h"

namespace {

// World units from the camera, squared; lines that begin farther away would only clutter the picture.
constexpr float MAX_LINE_DISTANCE_SQUARED = 250000.0f;

struct SLineEnd {
    Vec3 Pos;
    UINT32 Color;
};

Vec3 ToWorld(const btVector3& Physics) {
    return Vec3{Physics.x(), Physics.y(), Physics.z()} * PhyWorldScale;
}

} // namespace

void PhyDebugDraw::drawLine(const btVector3& From, const btVector3& To, const btVector3& Color) {
    const Vec3 Start = ToWorld(From);
    const Vec3 Away = Start - GLodCameraPos;
    if (M_Dot(Away, Away) > MAX_LINE_DISTANCE_SQUARED) {
        return;
    }
    const UINT32 Packed = M_PackColor({Color.x(), Color.y(), Color.z(), 1.0f});
    const SLineEnd Ends[2] = {{Start, Packed}, {ToWorld(To), Packed}};
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SLineEnd), &Ends[0].Pos);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(SLineEnd), &Ends[0].Color);
    glDrawArrays(GL_LINES, 0, 2);
    glDisableClientState(GL_COLOR_ARRAY);
}

void PhyDebugDraw::drawContactPoint(const btVector3& Point, const btVector3& Normal, btScalar Distance, int,
                                    const btVector3& Color) {
    drawLine(Point, Point + Normal * Distance, Color);
}
