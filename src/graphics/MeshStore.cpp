#include "foundation/Diagnostics.h"
#include "graphics/Mesh.h"
#include "graphics/MeshFile.h"

#include <cstdint>

GMap<GString, SMeshRec*> GMeshByName;
GMap<SMesh*, SMeshRec*> GMeshByPtr;

namespace {

// Enters a new empty mesh with one owner into both maps.
SMesh* NewMesh(const GString& Name) {
    SMeshRec* Record = new SMeshRec;
    Record->Mesh = new SMesh;
    Record->RefCount = 1;
    GMeshByName.Insert(Name, Record);
    GMeshByPtr.Insert(Record->Mesh, Record);
    return Record->Mesh;
}

} // namespace

SMesh* MeshLoad(const GString& Path) {
    if (auto* Found = GMeshByName.Find(Path)) {
        ++Found->value->RefCount;
        return Found->value->Mesh;
    }
    SMesh* Mesh = NewMesh(Path);
    if (!MeshLoadDescriptor(Path.CStr(), *Mesh)) {
        FatalError("Mesh failed to load: %s\n", Path.CStr());
    }
    return Mesh;
}

void MeshAdd(const GString& Name, const SMesh& Source) {
    if (GMeshByName.Find(Name)) {
        FatalError("Mesh already exists at \"%s\"\n", Name.CStr());
    }
    SMesh* Mesh = NewMesh(Name);
    Mesh->Copy(Source);
    Mesh->Name = Name;
}

void MeshRelease(SMesh* Mesh) {
    auto* Found = GMeshByPtr.Find(Mesh);
    if (!Found) {
        FatalError("Mesh 0x%08x with name: %s is not found in the storage.\n",
                   static_cast<UINT32>(reinterpret_cast<std::uintptr_t>(Mesh)), Mesh ? Mesh->Name.CStr() : "");
    }
    SMeshRec* Record = Found->value;
    if (--Record->RefCount > 0) {
        return;
    }
    // The name goes first: it may be the mesh's own.
    const GString Name = Mesh->Name;
    GMeshByName.Remove(Name);
    GMeshByPtr.Remove(Mesh);
    delete Mesh;
    delete Record;
}
