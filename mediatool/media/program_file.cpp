#include "mediatool/media/program_file.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/base/owners.h"
#include "platform/architecture.h"

namespace launcher::mediatool {
namespace {

// The headers of any program end well before this.
constexpr std::size_t kHeaderBytes = std::size_t{64} * 1024;

// The structure at `offset`; nothing when the bytes end before it does.
template <class T>
std::optional<T> At(const std::string& bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <class Header>
std::uint64_t CertificatesEnd(const std::optional<Header>& header) {
    if (!header || header->NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_SECURITY) return 0;
    const IMAGE_DATA_DIRECTORY& place = header->DataDirectory[IMAGE_DIRECTORY_ENTRY_SECURITY];
    return place.Size == 0 ? 0 : std::uint64_t{place.VirtualAddress} + place.Size;
}

// Where in the file the certificates of a signature end; 0 without one.
std::uint64_t CertificatesEnd(const std::string& bytes, std::size_t offset) {
    if (At<WORD>(bytes, offset) == IMAGE_NT_OPTIONAL_HDR64_MAGIC)
        return CertificatesEnd(At<IMAGE_OPTIONAL_HEADER64>(bytes, offset));
    return CertificatesEnd(At<IMAGE_OPTIONAL_HEADER32>(bytes, offset));
}

// The headers of the sections follow the optional one; each says where in the file its part lies.
// The end of the last part; nothing when a header is not there.
std::optional<std::uint64_t> SectionsEnd(const std::string& bytes, std::size_t sections,
                                         std::size_t count) {
    std::uint64_t end = sections + count * sizeof(IMAGE_SECTION_HEADER);
    for (std::size_t i = 0; i < count; ++i) {
        const auto section =
            At<IMAGE_SECTION_HEADER>(bytes, sections + i * sizeof(IMAGE_SECTION_HEADER));
        if (!section) return std::nullopt;
        const std::uint64_t start = section->PointerToRawData;
        if (start != 0) end = std::max(end, start + section->SizeOfRawData);
    }
    return end;
}

// The text of this name in a version resource; empty when there is none. Each text is a header, its
// name, and from the next multiple of two characters on its value; both end in a zero.
std::string VersionText(std::wstring_view resource, const std::wstring& name) {
    const std::size_t found = resource.find(name + L'\0');
    if (found == std::wstring_view::npos) return {};
    const std::size_t end = found + name.size() + 1;
    const std::wstring value(resource.substr(std::min(end + end % 2, resource.size())));
    return ToNarrow(value.c_str());
}

// A program that is only looked at.
Library OpenResources(const Path& path) {
    return Library(LoadLibraryExW(ToWide(path.Text()).c_str(), nullptr,
                                  LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
}

// Its first resource of a type, in characters of one size or the other.
template <class Character>
std::basic_string_view<Character> FirstResource(const Library& program, const wchar_t* type) {
    const HRSRC found = FindResourceW(program.Get(), MAKEINTRESOURCEW(1), type);
    if (found == nullptr) return {};
    const HGLOBAL loaded = LoadResource(program.Get(), found);
    if (loaded == nullptr) return {};
    return {static_cast<const Character*>(LockResource(loaded)),
            SizeofResource(program.Get(), found) / sizeof(Character)};
}

// A script is started by way of the command processor.
bool IsScript(const Path& file) {
    const std::string name = InLowerCase(FileName(file));
    return name.ends_with(".bat") || name.ends_with(".cmd");
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
    const std::optional<Entry> entry = Look(path);
    if (!bytes || !entry) return std::nullopt;
    const auto dos = At<IMAGE_DOS_HEADER>(*bytes, 0);
    if (!dos || dos->e_magic != IMAGE_DOS_SIGNATURE) return std::nullopt;
    // A negative one is beyond the end of any file.
    const auto start = static_cast<std::size_t>(dos->e_lfanew);
    const auto signature = At<DWORD>(*bytes, start);
    const auto header = At<IMAGE_FILE_HEADER>(*bytes, start + sizeof(DWORD));
    if (signature != DWORD{IMAGE_NT_SIGNATURE} || !header) return std::nullopt;
    const std::size_t optional = start + sizeof(DWORD) + sizeof(IMAGE_FILE_HEADER);
    const std::uint64_t certificates = CertificatesEnd(*bytes, optional);
    const auto sections =
        SectionsEnd(*bytes, optional + header->SizeOfOptionalHeader, header->NumberOfSections);
    const std::uint64_t end = std::max(sections.value_or(0), certificates);
    // Symbols, which only a program under development has, lie behind all else.
    const bool hasSymbols = header->PointerToSymbolTable != 0;
    return ProgramFile{header->Machine, (header->Characteristics & IMAGE_FILE_DLL) != 0,
                       certificates != 0, !sections || *sections > entry->size,
                       entry->size > end && !hasSymbols ? entry->size - end : 0};
}

std::string ProgramKind(const Path& path) {
    if (IsFolder(path)) return "folder";
    if (!ReadStart(path, kHeaderBytes)) return "unreadable";
    const auto program = ReadProgramFile(path);
    if (!program) return "no program";
    if (program->isCutOff) return "cut off";
    if (program->isLibrary) return "library";
    if (program->Is64Bit()) return "64-bit";
    return program->Is32Bit() ? "32-bit" : "other machine";
}

// Whether it can be an image, Windows decides here too: an image that is only mapped runs nothing.
std::uint32_t ImageError(const std::wstring& name) {
    const FileHandle file(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_EXECUTE,
                                      FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return GetLastError();
    const Path path = FullPath(ToNarrow(name.c_str()));
    if (IsScript(path)) return ERROR_SUCCESS;
    const auto program = ReadProgramFile(path);
    if (!program || program->isLibrary || program->isCutOff) return ERROR_BAD_EXE_FORMAT;
    if (!program->Is32Bit() && !(program->Is64Bit() && Is64BitWindows()))
        return ERROR_EXE_MACHINE_TYPE_MISMATCH;
    const KernelObject image(
        CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY | SEC_IMAGE, 0, 0, nullptr));
    return image ? ERROR_SUCCESS : GetLastError();
}

AskedRights RightsAskedBy(const Path& path) {
    const Library program = OpenResources(path);
    if (!program) return AskedRights::Users;
    const auto manifest = FirstResource<char>(program, RT_MANIFEST);
    const auto asksFor = [&manifest](const std::string& level) {
        return manifest.find("\"" + level + "\"") != std::string_view::npos ||
               manifest.find("'" + level + "'") != std::string_view::npos;
    };
    if (asksFor("requireAdministrator")) return AskedRights::Administrators;
    return asksFor("highestAvailable") ? AskedRights::Highest : AskedRights::Users;
}

// Without the system's library for versions: one of its name beside this program would run.
ProgramVersion ReadProgramVersion(const Path& path) {
    const Library program = OpenResources(path);
    if (!program) return {};
    const auto resource = FirstResource<wchar_t>(program, RT_VERSION);
    return {VersionText(resource, L"ProductName"), VersionText(resource, L"ProductVersion")};
}

std::string WhyNotThisLauncher(const Path& path) {
    if (!ReadProgramFile(path)) return "setup.exe is no Windows program.";
    const ProgramVersion version = ReadProgramVersion(path);
    if (version.product != kLauncherProduct)
        return "setup.exe is not this launcher" +
               (version.product.empty() ? "." : " but \"" + version.product + "\".");
    if (version.version != LAUNCHER_VERSION)
        return "setup.exe is version " + version.version +
               " of the launcher, not " LAUNCHER_VERSION ".";
    return {};
}

}  // namespace launcher::mediatool
