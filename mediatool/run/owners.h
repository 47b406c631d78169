#pragma once

// The owners of this room's resources (fs/owners.h).

#include <windows.h>

#include "fs/owners.h"

namespace launcher::mediatool {

struct KernelObjectTraits {
    using Value = HANDLE;
    static Value None() { return nullptr; }
    static void Release(Value value) { CloseHandle(value); }
};

using KernelObject = Owner<KernelObjectTraits>;  // OpenProcess, CreateJobObjectW, CreateEventW
using Snapshot = Owner<FileTraits>;              // CreateToolhelp32Snapshot

}  // namespace launcher::mediatool
