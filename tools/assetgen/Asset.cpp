#include "Asset.h"

#define ASSET(Kind, Name, Path) bool Make##Kind(const char*, const char*);
#include "Assets.def"
#undef ASSET

#define ASSET(Kind, Name, Path) {#Kind, #Name, Path, Make##Kind},
const SAsset ASSETS[] = {
#include "Assets.def"
};
#undef ASSET

const int ASSET_COUNT = sizeof(ASSETS) / sizeof(ASSETS[0]);
