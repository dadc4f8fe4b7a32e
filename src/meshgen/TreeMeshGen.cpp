#include "meshgen/TreeMeshGen.h"

UINT32 SMeshGenBase::Generate(const char* File) {
    FileName = File;
    return 1;
}
