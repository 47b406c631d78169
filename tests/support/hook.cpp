#include "tests/support/hook.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace launcher::test {
namespace {

template <class T>
T* At(std::size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr)) + offset);
}

// The first place in this program's import table that holds the address of `function`.
void** FindSlot(std::string_view function) {
    void** found = nullptr;
    ForEachImport([&](std::string_view name, void** slot) {
        if (found == nullptr && name == function) found = slot;
    });
    if (found == nullptr)
        throw std::runtime_error("this program does not import " + std::string(function));
    return found;
}

}  // namespace

void ForEachImport(const std::function<void(std::string_view, void**)>& visit) {
    const auto* headers =
        At<IMAGE_NT_HEADERS>(static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress); dll->Name != 0;
         ++dll) {
        const auto* names = At<IMAGE_THUNK_DATA>(dll->OriginalFirstThunk);
        auto* slots = At<void*>(dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import =
                At<IMAGE_IMPORT_BY_NAME>(static_cast<std::size_t>(names->u1.AddressOfData));
            visit(reinterpret_cast<const char*>(import->Name), slots);
        }
    }
}

void WriteImport(void** slot, void* value) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

ImportPatch::ImportPatch(const char* function, void* replacement)
    : slot_(FindSlot(function)), original_(*slot_) {
    WriteImport(slot_, replacement);
}

ImportPatch::~ImportPatch() {
    WriteImport(slot_, original_);
}

}  // namespace launcher::test
