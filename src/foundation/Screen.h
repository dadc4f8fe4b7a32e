// The window's fixed size in pixels, which is also the virtual screen of the mouse and of all two-dimensional work:
// x to the right, y downward, (0, 0) at the upper left.
#pragma once

inline constexpr int WINDOW_WIDTH = 1024;
inline constexpr int WINDOW_HEIGHT = 576;
inline constexpr int WINDOW_CENTRE_X = WINDOW_WIDTH / 2;
inline constexpr int WINDOW_CENTRE_Y = WINDOW_HEIGHT / 2;
