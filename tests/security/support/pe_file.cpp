#include "tests/security/support/pe_file.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

template <class T>
T PeFile::Read(std::size_t offset) const {
    if (offset > bytes_.size() || bytes_.size() - offset < sizeof(T))
        throw std::out_of_range("a part of the program lies outside its file");
    T value;
    std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
}

PeFile::PeFile(const std::filesystem::path& path) : bytes_(ReadFile(path)) {
    std::size_t offset = static_cast<std::size_t>(Read<IMAGE_DOS_HEADER>(0).e_lfanew);
    if (Read<DWORD>(offset) != IMAGE_NT_SIGNATURE) throw std::runtime_error("no Windows program");
    header_ = Read<IMAGE_FILE_HEADER>(offset += sizeof(DWORD));
    offset += sizeof header_;
    is64Bit_ = Read<WORD>(offset) == IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    if (is64Bit_)
        TakeOptionalHeader<IMAGE_OPTIONAL_HEADER64>(offset);
    else
        TakeOptionalHeader<IMAGE_OPTIONAL_HEADER32>(offset);
    offset += header_.SizeOfOptionalHeader;
    for (int i = 0; i < header_.NumberOfSections; ++i, offset += sizeof(IMAGE_SECTION_HEADER))
        sections_.push_back(Read<IMAGE_SECTION_HEADER>(offset));
}

template <class OptionalHeader>
void PeFile::TakeOptionalHeader(std::size_t offset) {
    const auto header = Read<OptionalHeader>(offset);
    subsystem_ = header.Subsystem;
    dllCharacteristics_ = header.DllCharacteristics;
    directories_.assign(std::begin(header.DataDirectory), std::end(header.DataDirectory));
}

// The place in the file of what is loaded to this address.
std::size_t PeFile::Offset(std::uint32_t address) const {
    for (const auto& section : sections_)
        if (address >= section.VirtualAddress &&
            address - section.VirtualAddress < section.SizeOfRawData)
            return section.PointerToRawData + (address - section.VirtualAddress);
    throw std::out_of_range("an address lies in no section");
}

std::string PeFile::Text(std::uint32_t address) const {
    const std::size_t offset = Offset(address);
    return bytes_.substr(offset, bytes_.find('\0', offset) - offset);
}

std::vector<PeFile::Section> PeFile::Sections() const {
    std::vector<Section> sections;
    for (const auto& section : sections_) {
        const auto* name = reinterpret_cast<const char*>(section.Name);
        sections.push_back(
            {std::string(name, strnlen(name, sizeof section.Name)), section.Characteristics});
    }
    return sections;
}

template <class Thunk>
void PeFile::AddFunctions(const std::string& library, std::size_t offset,
                          std::set<Import>& imports) const {
    constexpr Thunk kByNumber = Thunk{1} << (8 * sizeof(Thunk) - 1);
    while (const auto thunk = Read<Thunk>(offset)) {
        offset += sizeof(Thunk);
        const auto value = static_cast<std::uint32_t>(thunk & ~kByNumber);
        imports.insert({library, (thunk & kByNumber) != 0 ? "#" + std::to_string(value)
                                                          : Text(value + sizeof(WORD))});
    }
}

std::set<PeFile::Import> PeFile::Imports() const {
    std::set<Import> imports;
    std::size_t offset = Offset(directories_.at(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
    for (;; offset += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto descriptor = Read<IMAGE_IMPORT_DESCRIPTOR>(offset);
        if (descriptor.Name == 0) return imports;
        const std::string library = Lower(Text(descriptor.Name));
        const std::size_t thunks = Offset(descriptor.OriginalFirstThunk);
        if (is64Bit_)
            AddFunctions<std::uint64_t>(library, thunks, imports);
        else
            AddFunctions<std::uint32_t>(library, thunks, imports);
    }
}

}  // namespace launcher::test
