// Noise for the makers of assets: functions of place and seed alone, made of integer hashes, so that the same input
// gives the same bytes in every run and on every machine with the same floating point.
//
// Space: lattice units; a feature is about one unit wide. Seeds are any number; two seeds have nothing in common.
// Tiled forms repeat exactly after Period units in x and y; Period is a positive whole number, and each octave doubles
// it. Ranges: hashes and cells 0 to 1, the others about -1 to 1, ridges 0 to 1. Cost: one octave of gradient noise is
// some twenty operations.
#pragma once

#include "foundation/Types.h"

// 32 well mixed bits of three whole numbers.
UINT32 NoiseHash(INT32 X, INT32 Y, UINT32 Seed);

// The hash as a fraction, 0 to 1.
float NoiseCell(INT32 X, INT32 Y, UINT32 Seed);

float NoiseGradient(float X, float Y, UINT32 Seed);
float NoiseGradientTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, UINT32 Seed);

// Sums of octaves, each of twice the frequency and half the height of the one before.
float NoiseFbm(float X, float Y, INT32 Octaves, UINT32 Seed);
float NoiseFbmTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, INT32 Octaves, UINT32 Seed);

// Sharp crests on wide valleys, as of mountains: finer octaves grow on the crests of the coarser ones only.
float NoiseRidged(float X, float Y, INT32 Octaves, UINT32 Seed);

// Distance to the nearest and the second nearest of one random point per cell, repeating after Period cells.
void NoiseWorleyTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, UINT32 Seed, float& Nearest, float& Second);

// Scalar helpers that every maker needs.
float Clamp01(float Value);
float SmoothStep(float From, float To, float Value);
float Mix(float A, float B, float Part);
