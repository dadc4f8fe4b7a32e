// Painting in layers, for pictures that are drawn and not computed point by point: fields of numbers, distances to the
// edge of a shape, and a canvas that takes one layer over the other.
//
// Space: pixels, x to the right, y downward, the middle of the first pixel at (0, 0). Coverage runs from 0 to 1.
// Cost: a distance field takes some 40 operations a pixel.
// Bad input: places outside of a field read as its nearest edge; writing there fails a check in the array underneath.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "foundation/Vector.h"

// One number for each pixel.
class CField {
public:
    CField(INT32 Width, INT32 Height, float Value = 0);

    float At(INT32 x, INT32 y) const;
    float& Ref(INT32 x, INT32 y) { return Values[static_cast<UINT32>(y * Width + x)]; }

    // Half the difference of the neighbours on both sides.
    Vec2 Slope(INT32 x, INT32 y) const;

    INT32 Width;
    INT32 Height;

private:
    GArray<float> Values;
};

// Distance in pixels to the edge of a shape given by its coverage, positive inside; partly covered pixels place the
// edge within them.
CField SignedDistance(const CField& Coverage);

// Means over 5 by 5 pixels, which take the steps out of a distance's slope.
CField Smoothed(const CField& Field);

// Coverage of what lies within Distance's edge moved out by Grow.
float CoverageOf(float Distance, float Grow = 0);

// Colours with alpha; starts transparent.
class CCanvas {
public:
    CCanvas(INT32 Width, INT32 Height);

    void Over(INT32 x, INT32 y, const Vec3& Colour, float Alpha);
    float Alpha(INT32 x, INT32 y) const { return Alphas.At(x, y); }

    // Where nothing was painted the file has the colour Rim, which filters mix into the outline.
    bool SavePng(const char* File, const Vec3& Rim) const;

    const INT32 Width;
    const INT32 Height;

private:
    GArray<Vec3> Colours; // not multiplied by alpha
    CField Alphas;
};

Vec3 MixColour(const Vec3& A, const Vec3& B, float Part);
