// "Probe", an entity class for tests: it writes down what happens to it.
#pragma once

#include "world/GameLevel.h"

#include <functional>
#include <string>
#include <vector>

class CProbe : public CEntity {
public:
    explicit CProbe(const GProperties& Props) : CEntity(Props) {
        if (const auto* Found = Props.Find("Name")) {
            Name = Found->value.CStr();
        }
        ClassInConstructor = Class;
        BuiltOnGround = GLevel && GLevel->Terrain && GLevel->Grid;
    }
    ~CProbe() override {
        Log.push_back("end " + Name);
        if (OnEnd) {
            OnEnd();
        }
    }
    void Update(float Delta) override {
        Log.push_back("update " + Name);
        LastDelta = Delta;
        if (OnUpdate) {
            OnUpdate(*this);
        }
    }

    std::string Name;
    SEntityClass* ClassInConstructor = nullptr;
    bool BuiltOnGround = false;
    float LastDelta = 0;

    static inline std::vector<std::string> Log;
    static inline std::function<void(CProbe&)> OnUpdate;
    static inline std::function<void()> OnEnd;

    static void Reset() {
        Log.clear();
        OnUpdate = nullptr;
        OnEnd = nullptr;
    }
};
