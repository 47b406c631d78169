// Which functions a process enters: linked into every program of a build in which each function
// calls __sanitizer_cov_trace_pc as it begins. It sets a byte in a file that is mapped into memory,
// so that nothing is lost when the process is killed. The file is in the folder that the variable
// REACHED_FOLDER names and has a byte for every 16 of the program's addresses; its name is the
// program's size in memory, whatever copies of the program are called.

#include <windows.h>

#include <cstdint>

namespace {

constexpr int kAddressesOfAByte = 16;  // functions begin at multiples of it

std::uintptr_t Image() {
    return reinterpret_cast<std::uintptr_t>(GetModuleHandleW(nullptr));
}

DWORD SizeOfImage() {
    const auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(Image());
    return reinterpret_cast<const IMAGE_NT_HEADERS*>(Image() + static_cast<DWORD>(dos->e_lfanew))
        ->OptionalHeader.SizeOfImage;
}

// Null when nobody asked. The handles live as long as the process.
unsigned char* Map() {
    wchar_t path[MAX_PATH + 20];
    const DWORD length = GetEnvironmentVariableW(L"REACHED_FOLDER", path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return nullptr;
    }
    wsprintfW(path + length, L"\\%u", SizeOfImage());
    const HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    const HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0,
                                              SizeOfImage() / kAddressesOfAByte, nullptr);
    return static_cast<unsigned char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
}

unsigned char* const reached = Map();
const std::uintptr_t image = Image();

}  // namespace

// Called by every function as it begins; it returns into that function.
extern "C" void __sanitizer_cov_trace_pc() {
    if (reached != nullptr) {
        const auto function = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
        reached[(function - image) / kAddressesOfAByte] = 1;
    }
}
