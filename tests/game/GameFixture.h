// Levels with a rider, driven by keys as the input pump would set them.
#pragma once

#include "bots/Keys.h"
#include "game/GameState.h"
#include "game/Rider.h"
#include "game/Tree.h"
#include "game/Wood.h"
#include "world/LevelFixture.h"

class GameFixture : public LevelFixture {
protected:
    void Start() override {
        LevelFixture::Start();
        GGameState = GAME_PLAYING;
    }
    void Finish() override {
        DropLevel();
        ReleaseKeys();
        LevelFixture::Finish();
    }

    // A rider high above the ground, weightless unless Scene says otherwise.
    static CRider& FlyingRider(const std::string& More = "", const std::string& Scene = "gravr=0") {
        ReleaseKeys();
        LoadText("WLMF\n" + FlatGround(0) + "scene " + Scene + "\nentity Rider Position=10;20;500\n" + More);
        return *static_cast<CRider*>(GLevel->Entities[0]);
    }

    // One step of the input and the level with exactly these keys down.
    static void Step(std::initializer_list<UINT32> Keys = {}) { StepLevel(std::span(Keys.begin(), Keys.size())); }

    static Vec3 VelocityOf(const CRider& Rider) {
        const btVector3& v = Rider.Body->getLinearVelocity();
        return {v.x(), v.y(), v.z()};
    }
};
