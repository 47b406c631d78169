#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace launcher::test {

// What stands in the headers and the import table of a Windows program, of 64 or 32 bits. All reads
// are checked: std::out_of_range tells of a file that points outside itself.
// https://learn.microsoft.com/windows/win32/debug/pe-format
class PeFile {
  public:
    struct Section {
        std::string name;
        std::uint32_t flags;  // IMAGE_SCN_...
    };
    struct Import {
        std::string library;   // in lower case
        std::string function;  // "#" and the number for one without a name
        auto operator<=>(const Import&) const = default;
    };

    // Throws std::runtime_error for a file that is no Windows program.
    explicit PeFile(const std::filesystem::path& path);

    const std::string& Bytes() const { return bytes_; }
    bool Is64Bit() const { return is64Bit_; }
    const IMAGE_FILE_HEADER& Header() const { return header_; }
    std::uint16_t Subsystem() const { return subsystem_; }
    std::uint16_t DllCharacteristics() const { return dllCharacteristics_; }
    // The size of the data of one kind (IMAGE_DIRECTORY_ENTRY_...).
    std::uint32_t DirectorySize(std::size_t kind) const { return directories_.at(kind).Size; }
    std::vector<Section> Sections() const;
    // What Windows loads at the start.
    std::set<Import> Imports() const;

  private:
    template <class T>
    T Read(std::size_t offset) const;
    template <class OptionalHeader>
    void TakeOptionalHeader(std::size_t offset);
    std::size_t Offset(std::uint32_t address) const;
    std::string Text(std::uint32_t address) const;
    template <class Thunk>
    void AddFunctions(const std::string& library, std::size_t offset,
                      std::set<Import>& imports) const;

    std::string bytes_;
    IMAGE_FILE_HEADER header_{};
    bool is64Bit_ = false;
    std::uint16_t subsystem_ = 0;
    std::uint16_t dllCharacteristics_ = 0;
    std::vector<IMAGE_DATA_DIRECTORY> directories_;
    std::vector<IMAGE_SECTION_HEADER> sections_;
};

}  // namespace launcher::test
