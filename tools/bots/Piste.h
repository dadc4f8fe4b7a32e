// The marked way down a level: pairs of flags, at its left and its right edge.
#pragma once

#include "foundation/Vector.h"

#include <vector>

class CPiste {
public:
    // Of the level that is loaded. One without flags is all piste.
    CPiste();

    // World units from the place to the marked way, 0 on it.
    float Stray(const Vec3& Place) const;

private:
    struct SGate {
        float y, Middle, HalfWidth;
    };
    std::vector<SGate> Gates; // from the start down
};
