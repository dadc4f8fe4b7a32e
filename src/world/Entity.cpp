#include "world/Entity.h"

#include "foundation/GArchive.h"
#include "foundation/Scan.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

SEntityClass* GEntityClasses = nullptr;
UINT32 GEntityClassCount = 0;

namespace {

void ReadCoordinate(const GProperties& Props, const char* Key, float& Out) {
    if (const auto* Found = Props.Find(Key)) {
        Out = static_cast<float>(std::atof(Found->value.CStr()));
    }
}

} // namespace

CEntity::CEntity(const GProperties& Props) {
    if (const auto* Found = Props.Find("_POS")) {
        INT32 Pos = 0;
        Position = F_ReadVec3(Pos, Found->value);
        return;
    }
    ReadCoordinate(Props, "x", Position.x);
    ReadCoordinate(Props, "y", Position.y);
    ReadCoordinate(Props, "z", Position.z);
}

void CEntity::Serialize(FArchive& Ar) {
    Ar << Position.x << Position.y << Position.z;
}

void CEntity::SaveProperties(GProperties& Props) {
    constexpr int NUMBER_LENGTH = 32;
    Props["x"].Format(NUMBER_LENGTH, "%f", Position.x);
    Props["y"].Format(NUMBER_LENGTH, "%f", Position.y);
    Props["z"].Format(NUMBER_LENGTH, "%f", Position.z);
}

CEntity* CreateEntity(const char* ClassName, const GProperties& Props) {
    for (SEntityClass* Record = GEntityClasses; Record; Record = Record->Next) {
        if (std::strcmp(Record->Name, ClassName) == 0) {
            return Record->Create(Props);
        }
    }
    return nullptr;
}

void RegisterEntityClass(SEntityClass& Record, const char* Name, CEntity* (*Create)(const GProperties&)) {
    Record = {};
    std::snprintf(Record.Name, sizeof(Record.Name), "%s", Name);
    Record.Create = Create;
    Record.Next = GEntityClasses;
    GEntityClasses = &Record;
    ++GEntityClassCount;
}
