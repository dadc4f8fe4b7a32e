// Closed rings of points: the plane they lie in, tidying, projection.
//
// The caller owns the arrays. Space and units are those of the points.
// Cost: linear in the points, but M_PolygonClean, which compares every pair and starts over after each point that it
// removes: it is for outlines of a few dozen points.
// Bad input: too few points give 0, or an empty projection.
#pragma once

#include "foundation/GArray.h"
#include "foundation/Geometry.h"

// 1 if there are three points or more and all lie within 0.0001 of the plane of the first three; only then is Out
// written.
int M_PolygonPlane(const GArray<Vec3>& Points, Plane& Out);

// Takes out points that coincide and corners that are straight or fold back. 1 if three points or more are left.
int M_PolygonClean(GArray<Vec3>& Points);

// The points through a matrix, x and y kept. The result is the transformed z of the first point, or 3.4028235e38 if
// there is none.
float M_PolygonProject(GArray<Vec2>& Out, const GArray<Vec3>& Points, const Mat4& m);
