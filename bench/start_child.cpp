// What the launchers start: it ends at once, with an exit code that they must hand back.

#include <windows.h>

#include "bench/start_exit_code.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    return launcher::bench::kChildExitCode;
}
