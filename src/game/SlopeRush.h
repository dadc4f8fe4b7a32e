// The game: logo, menu, five levels, and the two-dimensional layer over their pictures.
//
// The class holds no data of its own; its state is a handful of globals (GameState.h), since there is one game. Init
// loads the menu level and Free deletes the level that is there; Update runs one fixed step, Render draws one picture
// into the window. What the screens do stands in Screens.h.
// A GL context, the shader library and the physics world must exist from Init to Free.
#pragma once

#include "game/IGame.h"

class SlopeRush : public IGame {
public:
    void Init() override;
    void Free() override;
    void Update(float Time, float Delta) override;
    void Render(float BlendDelta) override;
};
