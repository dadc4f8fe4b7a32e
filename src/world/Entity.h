// Entities: everything in a level that has behaviour, and the registry that makes one from a class name and text.
//
// Ownership: the level owns every entity in its lists and deletes it through the virtual destructor. An entity's
// destructor gives back what the entity added to other systems (clients, bodies, bindings). The property map exists
// only while an entity is constructed or saved; a class copies what it needs into members.
// Units: positions are world units. Property values are text; vectors are written x;y;z.
// Cost: CreateEntity walks the classes, of which there are a handful.
// Bad input: an unknown class name gives null without a message; a malformed number in a property leaves what the
// scanners return for it.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"

class FArchive;
struct SEntityClass;

using GProperties = GMap<GString, GString>;

class CEntity {
public:
    // Position comes from "_POS" (x;y;z), without it from "x", "y" and "z", without those it is zero. A derived class
    // with a key of its own overwrites it.
    explicit CEntity(const GProperties& Props);
    virtual ~CEntity() = default;

    CEntity(const CEntity&) = delete;
    CEntity& operator=(const CEntity&) = delete;

    // Once per fixed step, after the physics step. Delta is in seconds.
    virtual void Update(float Delta) = 0;

    // Moves the entity's state through an archive, in either direction.
    virtual void Serialize(FArchive& Ar);

    // Writes what a level file needs to make this entity again.
    virtual void SaveProperties(GProperties& Props);

    SEntityClass* Class = nullptr; // set by Create, after the constructor has run
    Vec3 Position;
};

// One static record per class.
struct SEntityClass {
    char Name[32];
    CEntity* (*Create)(const GProperties& Props);
    SEntityClass* Next;
};

// Head of the list of all records, and their number. Written only before main.
extern SEntityClass* GEntityClasses;
extern UINT32 GEntityClassCount;

// Makes an entity of the class with exactly this name; null if there is none. The caller owns the result.
CEntity* CreateEntity(const char* ClassName, const GProperties& Props);

void RegisterEntityClass(SEntityClass& Record, const char* Name, CEntity* (*Create)(const GProperties&));

// A static object of this type registers T under a name. It stands in a source file that the linker keeps for another
// reason as well: an object file of a static library that nothing refers to is dropped, registration included.
template <class T>
struct TEntityRegistration {
    explicit TEntityRegistration(const char* Name) { RegisterEntityClass(Record, Name, &Create); }

    static CEntity* Create(const GProperties& Props) {
        T* Entity = new T(Props);
        Entity->Class = &Record;
        return Entity;
    }

    static inline SEntityClass Record = {};
};
