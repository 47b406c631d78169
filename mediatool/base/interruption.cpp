#include "mediatool/base/interruption.h"

#include <atomic>

#include "mediatool/base/owners.h"

namespace launcher::mediatool {
namespace {

std::atomic<bool> come = false;

// Of the process, like the console itself. It outlives the object: the handler runs in a thread of
// its own, which may be late.
HANDLE TheEvent() {
    static const KernelObject event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return event.Get();
}

BOOL WINAPI OnControl(DWORD kind) {
    come = true;
    SetEvent(TheEvent());
    // Windows ends the process when the handler of these returns, or after some seconds.
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

Interruption::Interruption() {
    come = false;
    ResetEvent(TheEvent());
    SetConsoleCtrlHandler(&OnControl, TRUE);
}

Interruption::~Interruption() {
    SetConsoleCtrlHandler(&OnControl, FALSE);
}

bool Interruption::HasCome() const {
    return come;
}

HANDLE Interruption::Event() const {
    return TheEvent();
}

}  // namespace launcher::mediatool
