#include "game/IGame.h"

char GameName[GAME_NAME_SIZE];
IGame* GGame;
