// "Probe", an entity class for tests: it writes down what happens to it.
#pragma once

#include "world/GameLevel.h"

#include <functional>
#include <string>
#include <vector>

class CProbe : public CEntity {
public:
    explicit CProbe(const GProperties& Props) : CEntity(Props) {
        const auto* Found = Props.Find("Name");
        Name = Found ? Found->value.CStr() : "";
        BuiltOnGround = GLevel && GLevel->Terrain && GLevel->Grid;
    }
    ~CProbe() override {
        Log.push_back("end " + Name);
        OnEnd();
    }
    void Update(float Delta) override {
        Log.push_back("update " + Name);
        OnUpdate(*this, Delta);
    }

    std::string Name;
    bool BuiltOnGround = false;

    static inline std::vector<std::string> Log;
    static inline std::function<void(CProbe&, float)> OnUpdate = [](CProbe&, float) {};
    static inline std::function<void()> OnEnd = [] {};
};
