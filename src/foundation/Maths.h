// The whole of the maths in one include.
#pragma once

#include "foundation/Camera.h"
#include "foundation/Geometry.h"
#include "foundation/Matrix.h"
#include "foundation/Polygon.h"
#include "foundation/Quaternion.h"
#include "foundation/Vector.h"
