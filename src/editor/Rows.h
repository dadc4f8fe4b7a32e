// Where the editor's rows and its panel stand on the screen of 1024 by 576.
#pragma once

// The range of a row whose value has none: the largest float.
constexpr float NO_LIMIT = 3.4028235e38f;

// The label takes the left half of a row and the value the right one; the next row stands right below.
constexpr float ROWS_TOP = 100;
constexpr float ROW_HEIGHT = 20;
constexpr float ROW_LEFT = 824;
constexpr float ROW_MIDDLE = 924;
constexpr float ROW_RIGHT = 1024;
