// The game: one level at a time and a two-dimensional layer laid over its picture.
//
// The class holds no data of its own; its state is a handful of globals, since there is one game. Init loads the first
// level and Free deletes it; Update runs one fixed step, Render draws one picture into the window.
// A GL context, the shader library and the physics world must exist from Init to Free.
#pragma once

#include "game/IGame.h"

// The mesh that all trees of all levels share.
constexpr const char* TREE_MESH = "[tree00]";

// Grows the tree by its script and stores it under TREE_MESH; ReleaseTrees gives it back.
void GrowTrees();
void ReleaseTrees();

class SlopeRush : public IGame {
public:
    void Init() override;
    void Free() override;
    void Update(float Time, float Delta) override;
    void Render(float BlendDelta) override;
};
