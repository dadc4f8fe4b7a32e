// The table of assets and the promise that each maker keeps.
//
// A maker writes the asset called Name to File and nothing else, and returns whether it could. It depends on its name
// and its own source alone: no time, no environment, no other asset. Makers run one per process, many at once.
#pragma once

struct SAsset {
    const char* Kind;
    const char* Name;
    const char* Path; // below the data folder, with forward slashes
    bool (*Make)(const char* Name, const char* File);
};

extern const SAsset ASSETS[];
extern const int ASSET_COUNT;
