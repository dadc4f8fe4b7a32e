// SMenu: one menu of the level editor. The editor is a mode of the running level; this is its manual for who writes a
// menu.
//
// A level keeps a stack of menus (CLevel::Menus) whose root is an SMenu_Base; only the top one is alive to keys and
// mouse. A menu is a numbered list of operations, which the panel shows and the number keys start, and, if it likes,
// rows of values and tools in the scene. While CLevel::EditMode is set the top menu gets, in this order:
//   Update   once a fixed step, with OverlayRT bound: it draws its rows with CLevel::FloatRow and CheckRow, which also
//            change the values, asks CLevel::MouseOffRows whether a click is meant for the scene, and runs its tools
//   DoOp     for each number key that went down in the step; an operation may push another menu
//   Draw3D   once a picture, over the finished scene, with GCamera, GViewMatrix and GProjectionMatrix those of the free
//            camera, blending on and the depth test off
// Each draw makes its own program current. Rows stack down the right edge in the order in which they are drawn, each
// with an id of its own in GButtons.
//
// Ownership: CLevel::PushMenu takes a menu made with new; the key "0", the end of the level or a selected client that
// vanishes deletes it. Level outlives the menu. Pointers to clients hold as long as CLevel::Selection has them.
// Operations count from 1; one out of range has the text "<OP NAME NOT DEFINED>" and does nothing.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

class CLevel;

// The text of an operation that a menu doesn't have.
constexpr const char* NO_OP_NAME = "<OP NAME NOT DEFINED>";

struct SMenu {
    explicit SMenu(CLevel* TheLevel) : Level(TheLevel) {}
    virtual ~SMenu() = default;
    SMenu(const SMenu&) = delete;
    SMenu& operator=(const SMenu&) = delete;

    virtual UINT32 GetOpCount() { return 0; }
    virtual void GetOpName(GString* Out, INT32) { *Out = "<undefined>"; }
    virtual void DoOp(INT32) {}
    virtual void Update(float) {}
    virtual void Draw3D() {}

    CLevel* Level;
};
