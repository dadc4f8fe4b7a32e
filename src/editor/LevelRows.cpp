// The rows of the editor: a label, and a widget that changes a value.
#include "editor/Rows.h"
#include "foundation/Camera.h"
#include "gui/Gui.h"
#include "scene/DrawHelpers.h"
#include "scene/GLFont.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

static float RowTop(UINT32 Row) {
    return ROWS_TOP + ROW_HEIGHT * static_cast<float>(Row);
}

void CLevel::DrawRowLabel(const char* Label) {
    constexpr Vec4 WHITE = {1, 1, 1, 1};
    constexpr float LABEL_SIZE = 16.0f;
    const float Top = RowTop(MenuRow), Bottom = RowTop(MenuRow + 1);
    UseColorProgram();
    DrawRect(ROW_LEFT, ROW_RIGHT, Top, Bottom, 1.0f);
    UseGuiProgram();
    GuiText(Label, WHITE, FONT_RIGHT, {ROW_LEFT, Top, ROW_MIDDLE, Bottom}, LABEL_SIZE);
}

void CLevel::FloatRow(UINT32 Id, const char* Label, float* Value, float Min, float Max) {
    DrawRowLabel(Label);
    GuiDragFloat(Value, Id, ROW_MIDDLE, RowTop(MenuRow), ROW_RIGHT - ROW_MIDDLE, ROW_HEIGHT, Min, Max);
    ++MenuRow;
}

void CLevel::CheckRow(UINT32 Id, const char* Label, UINT32* Value) {
    DrawRowLabel(Label);
    GuiCheckBox(Value, Id, ROW_MIDDLE, RowTop(MenuRow), ROW_RIGHT - ROW_MIDDLE, ROW_HEIGHT);
    ++MenuRow;
}

// The borders belong to the rows.
UINT32 CLevel::MouseOffRows(UINT32 Count) const {
    return GMousePos.x < ROW_LEFT || GMousePos.x > ROW_RIGHT || GMousePos.y < RowTop(MenuRow - Count) ||
           GMousePos.y > RowTop(MenuRow);
}

UINT32 CLevel::BrushRows() {
    glDisable(GL_DEPTH_TEST);
    FloatRow(3412, "Brush size", &BrushSize, 0.01f, 100);
    FloatRow(3413, "Brush curve", &BrushCurve, 0.01f, 10);
    FloatRow(3414, "Brush strength", &BrushStrength, -100, 100);
    FloatRow(3415, "Brush down off.", &BrushDownOffset, -NO_LIMIT, NO_LIMIT);
    CheckRow(3416, "Use 3D dist.", &BrushUse3D);
    glEnable(GL_DEPTH_TEST);
    return MouseOffRows(5);
}
