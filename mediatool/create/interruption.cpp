#include "mediatool/create/interruption.h"

#include <windows.h>

#include <atomic>

#include "mediatool/base/failures.h"

namespace launcher::mediatool {
namespace {

std::atomic<bool> asked = false;

// Runs in a thread of its own.
BOOL WINAPI Ask(DWORD event) {
    asked = true;
    // Windows ends the process as soon as this returns, and a few seconds later in any case: the
    // main thread ends it when it has put things right.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

Interruption::Interruption() {
    asked = false;
    SetConsoleCtrlHandler(Ask, TRUE);
}

Interruption::~Interruption() {
    SetConsoleCtrlHandler(Ask, FALSE);
}

void Interruption::ThrowIfAsked() const {
    if (asked) throw Refused("Interrupted; what was new is taken back.");
}

}  // namespace launcher::mediatool
