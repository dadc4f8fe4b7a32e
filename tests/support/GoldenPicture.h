// Comparison of a drawn picture with one that was looked at and kept: tests/golden/<name>.png.
//
// The gate is the mean absolute difference over all channels of all pixels, 0 to 255, against a limit of the case's
// own: drivers round differently, a wrong picture differs by far more. A picture that fails is stored with the expected
// one and their difference, made stronger, in golden-failures/ of the build folder. Goldens are written only by
// tools/renew_goldens, which sets SLOPERUSH_RENEW_GOLDEN=1; look at each before keeping it. Needs ilInit.
#pragma once

#include "support/GlFixture.h"

struct SGoldenPlace {
    std::string Goldens;
    std::string Failures;
    bool Renew = false;
};

SGoldenPlace DefaultGoldenPlace();

::testing::AssertionResult MatchesGolden(const SPicture& Actual, const std::string& Name, double MaxMeanDifference,
                                         const SGoldenPlace& Place = DefaultGoldenPlace());

// Of a channel, 0 to 255; more for pictures of different size or none.
double MeanDifference(const SPicture& A, const SPicture& B);

// Means of blocks of 4 by 4 pixels, so that a kept picture is small.
SPicture Shrunk(const SPicture& Big);

// Lossless. False for an empty picture, one of width 0 for a missing file.
bool WritePng(const std::string& Path, const SPicture& Picture);
SPicture ReadPng(const std::string& Path);
