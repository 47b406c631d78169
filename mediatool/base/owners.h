#pragma once

// The owners of this folder's resources (fs/owners.h).

#include <windows.h>
// windows.h first: its types are used there.
#include <bcrypt.h>

#include "fs/owners.h"
#include "platform/owners.h"

namespace launcher::mediatool {

struct KernelObjectTraits {
    using Value = HANDLE;
    static Value None() { return nullptr; }
    static void Release(Value value) { CloseHandle(value); }
};

// OpenProcess, CreateJobObjectW, CreateEventW, CreateFileMappingW
using KernelObject = Owner<KernelObjectTraits>;

// The functions of bcrypt.dll. It is loaded from the system's folder and not linked, so that a
// library of its name beside mediatool.exe is never taken for it.
struct Cryptography {
    Cryptography();

    Library library;
    decltype(&BCryptOpenAlgorithmProvider) openProvider;
    decltype(&BCryptCreateHash) createHash;
    decltype(&BCryptHashData) hashData;
    decltype(&BCryptFinishHash) finishHash;
    decltype(&BCryptDestroyHash) destroyHash;
};
const Cryptography& TheCryptography();

struct HashTraits {
    using Value = BCRYPT_HASH_HANDLE;
    static Value None() { return nullptr; }
    static void Release(Value value) { TheCryptography().destroyHash(value); }
};

using HashHandle = Owner<HashTraits>;  // BCryptCreateHash

}  // namespace launcher::mediatool
