// The four screens of the game: what each does in a fixed step and draws into the level's OverlayRT, and how they
// follow on each other.
//
//   logo -> menu            Space, or the logo's time is over
//   menu -> playing         "Start"
//   playing -> end          the rider passes the end of the slope, or the time is out (SlopeRush.cpp)
//   playing, end -> menu    "Back to menu"
//   end -> playing          the first button: the same level again, the next, or the first after the last
//
// Every step expects OverlayRT bound. A step that changes the level unbinds the old one's first and leaves nothing
// bound. LoadTitlePictures and ReleaseTitlePictures frame the game's life.
#pragma once

#include "foundation/Types.h"

extern float GLogoTime;  // seconds of the logo's clock, from -2 on
extern float GLogoDelta; // of the last step of the logo
extern UINT32 GLogoTexture;
extern UINT32 GTitleTexture;

void LoadTitlePictures();
void ReleaseTitlePictures();

void LogoStep(float Delta);
void MenuStep();
void PlayStep();
void EndStep();

// The maker's mark over the menu level, in world space: into the window, after the level. BlendDelta is the part of a
// step since the last one.
void DrawLogo(float BlendDelta);
