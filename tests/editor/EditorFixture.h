// A level on flat ground, 100 high, in the editor: seen from above, driven by mouse and keys as the input pump would
// set them.
#pragma once

#include "editor/Menu.h"
#include "gui/Gui.h"
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"
#include "world/MeshEntity.h"

class EditorFixture : public LevelFixture {
protected:
    static constexpr float GROUND = 100;
    static constexpr Vec2 ROW = {974, 110}, NEXT_ROW = {0, 20}; // the middle of the first value, and the way down

    void Start() override {
        LevelFixture::Start();
        Edit("");
    }
    void Finish() override {
        DropLevel();
        GuiFree();
        LevelFixture::Finish();
    }
    static void Edit(const std::string& Entities) {
        LoadText("WLMF\n" + FlatGround(100) + Entities);
        LookFrom({0, -60, 220}, {0, 0, GROUND});
        GLevel->ToggleEditor();
        StepAt({20, 500});
    }

    // A step with exactly these keys down.
    static void StepAt(const Vec2& Mouse, bool Left = false, const std::vector<UINT32>& Keys = {}) {
        InputBeginStep();
        std::memset(GKeys, 0, sizeof(GKeys));
        for (const UINT32 Key : Keys) {
            GKeys[Key] = 1;
        }
        GMousePos = Mouse;
        GMouseLeft = Left;
        GLevel->Update(STEP);
    }
    static void Press(const std::vector<UINT32>& Keys) {
        for (const UINT32 Key : Keys) {
            StepAt(GMousePos, false, {Key});
            StepAt(GMousePos);
        }
    }
    static void Click(const Vec2& At, const std::vector<UINT32>& Keys = {}) {
        StepAt(At, true, Keys);
        StepAt(At, false, Keys);
        StepAt(At);
    }
    template <class TMenu = SMenu>
    static TMenu& Top() {
        return *static_cast<TMenu*>(GLevel->Menus.last->obj);
    }
    // Where the free camera, looking as it does now, sees a point.
    static Vec2 OnScreen(const Vec3& p) {
        GLevel->SetEditorCamera(1);
        const Vec3 Forward = M_Normalized(GCamera.Target - GCamera.Eye), Way = p - GCamera.Eye;
        const float Scale = 288 / M_Dot(Way, Forward); // 90 degrees over 576 pixels
        return {512 + M_Dot(Way, M_Cross(Forward, GCamera.Up)) * Scale, 288 - M_Dot(Way, GCamera.Up) * Scale};
    }
};
