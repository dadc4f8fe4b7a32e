// Rows for the light, the fog, the wind and the gravity of a level. They change SLevelParams in place, and what reads
// those reads them in every picture or step.
#pragma once

#include "editor/Menu.h"

struct SMenu_Scene : SMenu {
    using SMenu::SMenu;

    UINT32 GetOpCount() override { return 1; }
    void GetOpName(GString* Out, INT32 Op) override;
    void Update(float Delta) override;
};
