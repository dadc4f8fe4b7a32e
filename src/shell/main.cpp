#include "game/IGame.h"
#include "shell/Application.h"

int main(int ArgCount, char** Args) {
    return RunApplication(ArgCount, Args, CreateGame);
}
