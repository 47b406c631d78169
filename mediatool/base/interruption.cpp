#include "mediatool/base/interruption.h"

#include "mediatool/base/owners.h"

namespace launcher::mediatool {
namespace {

// Of the process, like the console itself. It outlives the object: the handler runs in a thread of
// its own, which may be late.
HANDLE TheEvent() {
    static const KernelObject event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return event.Get();
}

BOOL WINAPI OnControl(DWORD kind) {
    SetEvent(TheEvent());
    // Windows ends the process when the handler of these returns, or after some seconds.
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

Interruption::Interruption() {
    ResetEvent(TheEvent());
    SetConsoleCtrlHandler(&OnControl, TRUE);
}

Interruption::~Interruption() {
    SetConsoleCtrlHandler(&OnControl, FALSE);
}

HANDLE Interruption::Event() const {
    return TheEvent();
}

}  // namespace launcher::mediatool
