#include "tools/mediatool/program_file.h"

#include <windows.h>

#include <cstring>
#include <vector>

#include "fs/encoding.h"
#include "tools/mediatool/files.h"

namespace launcher::mediatool {
namespace {

// The headers of any program end well before this.
constexpr std::size_t kHeaderBytes = 64 * 1024;

// The structure at `offset`; nothing when the bytes end before it does.
template <class T>
std::optional<T> At(const std::string& bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <class Optional>
bool HasSignature(const Optional& header) {
    return header.NumberOfRvaAndSizes > IMAGE_DIRECTORY_ENTRY_SECURITY &&
           header.DataDirectory[IMAGE_DIRECTORY_ENTRY_SECURITY].Size != 0;
}

bool IsSigned(const std::string& bytes, std::size_t offset) {
    const auto magic = At<WORD>(bytes, offset);
    if (magic == IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
        const auto header = At<IMAGE_OPTIONAL_HEADER64>(bytes, offset);
        return header && HasSignature(*header);
    }
    const auto header = At<IMAGE_OPTIONAL_HEADER32>(bytes, offset);
    return header && HasSignature(*header);
}

std::string VersionText(const std::vector<char>& block, const wchar_t* name) {
    const std::wstring key = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), key.c_str(), &value, &length) || length == 0) return {};
    return ToNarrow(static_cast<const wchar_t*>(value));
}

}  // namespace

bool ProgramFile::Is64Bit() const {
    return machine == IMAGE_FILE_MACHINE_AMD64;
}

bool ProgramFile::Is32Bit() const {
    return machine == IMAGE_FILE_MACHINE_I386;
}

std::optional<ProgramFile> ReadProgramFile(const Path& path) {
    const std::optional<std::string> bytes = ReadStart(path, kHeaderBytes);
    if (!bytes) return std::nullopt;
    const auto dos = At<IMAGE_DOS_HEADER>(*bytes, 0);
    if (!dos || dos->e_magic != IMAGE_DOS_SIGNATURE || dos->e_lfanew < 0) return std::nullopt;
    const auto start = static_cast<std::size_t>(dos->e_lfanew);
    const auto signature = At<DWORD>(*bytes, start);
    const auto header = At<IMAGE_FILE_HEADER>(*bytes, start + sizeof(DWORD));
    if (signature != DWORD{IMAGE_NT_SIGNATURE} || !header) return std::nullopt;
    return ProgramFile{header->Machine, (header->Characteristics & IMAGE_FILE_DLL) != 0,
                       IsSigned(*bytes, start + sizeof(DWORD) + sizeof(IMAGE_FILE_HEADER))};
}

ProgramVersion ReadProgramVersion(const Path& path) {
    const std::wstring name = ToWide(path.Text());
    const DWORD size = GetFileVersionInfoSizeW(name.c_str(), nullptr);
    std::vector<char> block(size);
    if (size == 0 || !GetFileVersionInfoW(name.c_str(), 0, size, block.data())) return {};
    return {VersionText(block, L"ProductName"), VersionText(block, L"ProductVersion")};
}

}  // namespace launcher::mediatool
