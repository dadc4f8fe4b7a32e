// The editor's root menu, from which the others are reached.
#pragma once

#include "editor/Menu.h"

struct SMenu_Base : SMenu {
    using SMenu::SMenu;

    UINT32 GetOpCount() override;
    void GetOpName(GString* Out, INT32 Op) override;
    void DoOp(INT32 Op) override;
};
