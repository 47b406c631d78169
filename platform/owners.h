#pragma once

// The owners of this layer's resources (fs/owners.h).

#include <windows.h>

#include "fs/owners.h"

namespace launcher {

struct TokenTraits {
    using Value = HANDLE;
    static Value None() { return nullptr; }
    static void Release(Value value) { CloseHandle(value); }
};

struct SidTraits {
    using Value = PSID;
    static Value None() { return nullptr; }
    static void Release(Value value) { FreeSid(value); }
};

struct LibraryTraits {
    using Value = HMODULE;
    static Value None() { return nullptr; }
    static void Release(Value value) { FreeLibrary(value); }
};

using TokenHandle = Owner<TokenTraits>;  // OpenProcessToken
using Sid = Owner<SidTraits>;            // AllocateAndInitializeSid
using Library = Owner<LibraryTraits>;    // LoadLibraryExW

}  // namespace launcher
