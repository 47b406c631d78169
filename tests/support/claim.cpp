#include "tests/support/claim.h"

#include <windows.h>

#include <stdexcept>

#include "fs/encoding.h"

namespace launcher::test {
namespace {

constexpr DWORD kClaimPatience = 180000;  // milliseconds

std::wstring MutexName(const std::wstring& thing) {
    return L"launcher-test-" + thing;
}

}  // namespace

Claim::Claim(const std::wstring& thing)
    : mutex_(CreateMutexW(nullptr, FALSE, MutexName(thing).c_str())) {
    const DWORD result = WaitForSingleObject(mutex_, kClaimPatience);
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) return;
    CloseHandle(mutex_);
    throw std::runtime_error("another test keeps " + ToNarrow(thing.c_str()));
}

Claim::~Claim() {
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
}

bool Claim::Exists(const std::wstring& thing) {
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, MutexName(thing).c_str());
    if (mutex == nullptr) return false;
    CloseHandle(mutex);
    return true;
}

}  // namespace launcher::test
