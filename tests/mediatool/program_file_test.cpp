// What a file says of itself as a program, by its headers and resources.

#include "mediatool/media/program_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <filesystem>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "tests/e2e/support/media.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/hook.h"
#include "tests/support/wine.h"

namespace launcher::mediatool {
namespace {

using test::kArm64;
using test::kX64;
using test::kX86;
using test::ProgramBytes;

template <class T>
std::string Bytes(const T& value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

// As a resource has it.
std::string Wide(const std::string& text) {
    std::string bytes;
    for (const char c : text)
        bytes += {c, '\0'};
    return bytes;
}

// The place of a section or of the certificates.
struct Part {
    DWORD start;
    DWORD size;
};

// The headers of a program: with an optional one when there are certificates to name in it.
template <class Optional>
std::string HeadersWith(WORD machine, WORD magic, DWORD directories, Part certificates,
                        const std::vector<Part>& sections) {
    IMAGE_FILE_HEADER file{};
    file.Machine = machine;
    file.SizeOfOptionalHeader = sizeof(Optional);
    file.NumberOfSections = static_cast<WORD>(sections.size());
    Optional optional{};
    optional.Magic = magic;
    optional.NumberOfRvaAndSizes = directories;
    optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_SECURITY] = {certificates.start,
                                                              certificates.size};
    std::string bytes = ProgramBytes(machine);
    bytes.replace(bytes.size() - sizeof file, sizeof file, Bytes(file));
    bytes += Bytes(optional);
    for (const Part& part : sections) {
        IMAGE_SECTION_HEADER section{};
        section.PointerToRawData = part.start;
        section.SizeOfRawData = part.size;
        bytes += Bytes(section);
    }
    return bytes;
}

std::string HeadersOf64(DWORD directories, Part certificates, const std::vector<Part>& sections) {
    return HeadersWith<IMAGE_OPTIONAL_HEADER64>(kX64, IMAGE_NT_OPTIONAL_HDR64_MAGIC, directories,
                                                certificates, sections);
}

std::string HeadersOf32(DWORD directories, Part certificates) {
    return HeadersWith<IMAGE_OPTIONAL_HEADER32>(kX86, IMAGE_NT_OPTIONAL_HDR32_MAGIC, directories,
                                                certificates, {});
}

class ProgramFileTest : public testing::Test {
  protected:
    Path File(const std::string& content) const { return Path(folder_.Write("file.exe", content)); }
    std::string Kind(const std::string& content) const { return ProgramKind(File(content)); }
    std::optional<ProgramFile> Read(const std::string& content) const {
        return ReadProgramFile(File(content));
    }
    // A program that Windows starts.
    std::string StandIn() const {
        const std::string name = folder_.Text("stand in.exe");
        test::CopyStandIn(test::FromUtf8(name));
        return test::ReadFile(test::FromUtf8(name));
    }
    std::uint32_t Error(const std::string& name) const { return ImageError(ToWide(name)); }

    test::TemporaryFolder folder_;
};

TEST_F(ProgramFileTest, IsOfAKind) {
    EXPECT_EQ(ProgramKind(Path(folder_.Text())), "folder");
    EXPECT_EQ(ProgramKind(Path(folder_.Text("none"))), "unreadable");
    EXPECT_EQ(Kind(""), "no program");
    EXPECT_EQ(Kind("text"), "no program");
    EXPECT_EQ(Kind(ProgramBytes(kX64)), "64-bit");
    EXPECT_EQ(Kind(ProgramBytes(kX86)), "32-bit");
    EXPECT_EQ(Kind(ProgramBytes(kArm64)), "other machine");
    EXPECT_EQ(Kind(ProgramBytes(0)), "other machine");
    EXPECT_EQ(Kind(ProgramBytes(kX64, true)), "library");
    const std::string cutOff = HeadersOf64(0, {}, {{10, 5000}});
    EXPECT_EQ(Kind(cutOff), "cut off");
    EXPECT_EQ(Kind(cutOff + std::string(5000, 'x')), "64-bit");
}

TEST_F(ProgramFileTest, IsNoneWithoutItsHeaders) {
    const std::string whole = ProgramBytes(kX64);
    EXPECT_TRUE(Read(whole));
    EXPECT_TRUE(Read(whole)->Is64Bit());
    EXPECT_FALSE(Read(whole)->Is32Bit());
    EXPECT_TRUE(Read(ProgramBytes(kX86))->Is32Bit());
    EXPECT_FALSE(Read(ProgramBytes(kX86))->Is64Bit());
    for (const std::size_t size :
         {std::size_t{1}, sizeof(IMAGE_DOS_HEADER) - 1, sizeof(IMAGE_DOS_HEADER),
          sizeof(IMAGE_DOS_HEADER) + 3, sizeof(IMAGE_DOS_HEADER) + 4, whole.size() - 1})
        EXPECT_FALSE(Read(whole.substr(0, size))) << size;
    std::string other = whole;
    other[0] = 'X';
    EXPECT_FALSE(Read(other));
    other = whole;
    other[sizeof(IMAGE_DOS_HEADER)] = 'X';
    EXPECT_FALSE(Read(other));
    for (const LONG headers : {-1, 0, 1 << 20}) {
        IMAGE_DOS_HEADER dos{};
        std::memcpy(&dos, whole.data(), sizeof dos);
        dos.e_lfanew = static_cast<decltype(dos.e_lfanew)>(headers);
        EXPECT_FALSE(Read(Bytes(dos) + whole.substr(sizeof dos))) << headers;
    }
    EXPECT_FALSE(ReadProgramFile(Path(folder_.Text("none"))));
}

// In the first 64 KiB of the file.
TEST_F(ProgramFileTest, HasItsHeadersAtTheBeginning) {
    const std::string whole = ProgramBytes(kX64);
    const std::string headers = whole.substr(sizeof(IMAGE_DOS_HEADER));
    for (const auto& [end, isProgram] : {std::pair(65536, true), std::pair(65537, false)}) {
        IMAGE_DOS_HEADER dos{};
        std::memcpy(&dos, whole.data(), sizeof dos);
        const std::size_t start = static_cast<std::size_t>(end) - headers.size();
        dos.e_lfanew = static_cast<decltype(dos.e_lfanew)>(start);
        std::string bytes = Bytes(dos);
        bytes.resize(start);
        EXPECT_EQ(Read(bytes + headers).has_value(), isProgram) << end;
    }
    EXPECT_EQ(Kind(HeadersOf64(0, {}, std::vector<Part>(1000))), "64-bit");
    EXPECT_EQ(Kind(HeadersOf64(0, {}, std::vector<Part>(2000))), "cut off");
}

TEST_F(ProgramFileTest, IsUnreadableOnADiscWithAScratch) {
    const Path file = File(ProgramBytes(kX64));
    const test::Hook<decltype(&::ReadFile)> read("ReadFile", test::FailsWith(ERROR_CRC, FALSE));
    EXPECT_EQ(ProgramKind(file), "unreadable");
    EXPECT_FALSE(ReadProgramFile(file));
}

TEST_F(ProgramFileTest, EndsWithItsLastPart) {
    const DWORD headers = static_cast<DWORD>(HeadersOf64(0, {}, {{}, {}}).size());
    const auto read = [&](const std::vector<Part>& sections, std::size_t size) {
        std::string bytes = HeadersOf64(0, {}, sections);
        bytes.resize(size, 'x');
        return Read(bytes);
    };
    const std::vector<Part> twoParts = {{headers, 100}, {headers + 100, 50}};
    EXPECT_TRUE(read(twoParts, headers + 149)->isCutOff);
    EXPECT_EQ(read(twoParts, headers + 149)->trailingBytes, 0u);
    EXPECT_FALSE(read(twoParts, headers + 150)->isCutOff);
    EXPECT_EQ(read(twoParts, headers + 150)->trailingBytes, 0u);
    EXPECT_FALSE(read(twoParts, headers + 157)->isCutOff);
    EXPECT_EQ(read(twoParts, headers + 157)->trailingBytes, 7u);
    EXPECT_TRUE(read({{headers, 100}, {headers, 50}}, headers + 99)->isCutOff);
    EXPECT_FALSE(read({{headers, 100}, {headers, 50}}, headers + 100)->isCutOff);
    // One without bytes in the file may have a size.
    EXPECT_FALSE(read({{0, 100'000}, {0, 0}}, headers)->isCutOff);
    EXPECT_TRUE(read({{1, 100'000}, {0, 0}}, headers)->isCutOff);
    EXPECT_EQ(read({{0, 100'000}, {0, 0}}, headers + 3)->trailingBytes, 3u);
    // The header of the second is missing.
    EXPECT_TRUE(read({{}, {}}, headers - 1)->isCutOff);
    EXPECT_FALSE(read({{}, {}}, headers)->isCutOff);
}

TEST_F(ProgramFileTest, IsSignedWhenItHasCertificates) {
    const DWORD end64 = static_cast<DWORD>(HeadersOf64(5, {}, {}).size());
    const DWORD end32 = static_cast<DWORD>(HeadersOf32(5, {}).size());
    const std::string certificates(8, 'c');
    for (const auto& [headers, isSigned] :
         {std::pair(HeadersOf64(5, {end64, 8}, {}), true),
          std::pair(HeadersOf64(16, {end64, 8}, {}), true),
          std::pair(HeadersOf64(4, {end64, 8}, {}), false),
          std::pair(HeadersOf64(5, {end64, 0}, {}), false),
          std::pair(HeadersOf32(5, {end32, 8}), true), std::pair(HeadersOf32(4, {end32, 8}), false),
          std::pair(HeadersOf32(5, {end32, 0}), false)}) {
        const std::optional<ProgramFile> program = Read(headers + certificates);
        EXPECT_EQ(program->isSigned, isSigned);
        EXPECT_EQ(program->trailingBytes, isSigned ? 0u : 8u);
        EXPECT_EQ(Read(headers + certificates + "x")->trailingBytes, isSigned ? 1u : 9u);
        EXPECT_FALSE(program->isCutOff);
        EXPECT_FALSE(program->isLibrary);
    }
    EXPECT_FALSE(Read(ProgramBytes(kX64) + certificates)->isSigned);
}

// Which lie behind all else.
TEST_F(ProgramFileTest, HasNoTrailingBytesWithSymbols) {
    std::string bytes = ProgramBytes(kX64);
    EXPECT_EQ(Read(bytes + "abc")->trailingBytes, 3u);
    IMAGE_FILE_HEADER file{};
    std::memcpy(&file, bytes.data() + bytes.size() - sizeof file, sizeof file);
    file.PointerToSymbolTable = 1;
    bytes.replace(bytes.size() - sizeof file, sizeof file, Bytes(file));
    EXPECT_EQ(Read(bytes + "abc")->trailingBytes, 0u);
}

TEST_F(ProgramFileTest, IsStartedOrNot) {
    const std::string program = StandIn();
    const std::string file = folder_.Text("stand in.exe");
    EXPECT_EQ(Error(file), 0u);
    EXPECT_EQ(Error(folder_.Text("none.exe")), DWORD{ERROR_FILE_NOT_FOUND});
    for (const char* script : {"a.bat", "a.CMD", "a.cmd", "a.x.Bat"})
        EXPECT_EQ(Error(folder_.Write(script, "exit")), 0u) << script;
    for (const char* none : {".bat.txt", ".cmd.txt", "abat", "acmd"})
        EXPECT_EQ(Error(folder_.Write(none, "exit")), DWORD{ERROR_BAD_EXE_FORMAT}) << none;
    EXPECT_EQ(Error(folder_.Write("arm.exe", ProgramBytes(kArm64))),
              DWORD{ERROR_EXE_MACHINE_TYPE_MISMATCH});
    IMAGE_DOS_HEADER dos{};
    std::memcpy(&dos, program.data(), sizeof dos);
    const std::size_t place = static_cast<std::size_t>(dos.e_lfanew) + sizeof(DWORD);
    IMAGE_FILE_HEADER header{};
    std::memcpy(&header, program.data() + place, sizeof header);
    // Windows maps it.
    header.Characteristics |= IMAGE_FILE_DLL;
    std::string library = program;
    library.replace(place, sizeof header, Bytes(header));
    EXPECT_EQ(Error(folder_.Write("library.exe", library)), DWORD{ERROR_BAD_EXE_FORMAT});
    Rehearsal rehearsal;
    rehearsal.machine.is64Bit = false;
    const RehearsalScope scope(rehearsal);
    EXPECT_EQ(Error(file), header.Machine == kX64 ? DWORD{ERROR_EXE_MACHINE_TYPE_MISMATCH} : 0u);
}

// As Windows opens it: others may read it, and take its name away, but not write it.
TEST_F(ProgramFileTest, IsStartedWhileOthersReadIt) {
    StandIn();
    const std::string file = folder_.Text("stand in.exe");
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    for (const auto& [access, error] :
         {std::pair(DWORD{GENERIC_READ}, DWORD{0}), std::pair(DWORD{DELETE}, DWORD{0}),
          std::pair(DWORD{GENERIC_WRITE}, DWORD{ERROR_SHARING_VIOLATION})}) {
        const FileHandle other(CreateFileW(ToWide(file).c_str(), access, kShareAll, nullptr,
                                           OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(other);
        EXPECT_EQ(Error(file), error) << access;
    }
}

TEST_F(ProgramFileTest, AsksForRightsInItsManifest) {
    const std::string program = test::ReadFile(test::BuiltFile(ELEVATED_PROGRAM));
    const std::string asked = "\"requireAdministrator\"";
    const std::size_t place = program.find(asked);
    ASSERT_NE(place, std::string::npos);
    for (const auto& [text, rights] :
         {std::pair("\"requireAdministrator\"", AskedRights::Administrators),
          std::pair("'requireAdministrator'", AskedRights::Administrators),
          std::pair("\"highestAvailable\"    ", AskedRights::Highest),
          std::pair("'highestAvailable'    ", AskedRights::Highest),
          std::pair("\"asInvoker\"           ", AskedRights::Users),
          std::pair("xrequireAdministrator'", AskedRights::Users),
          std::pair("'requireAdministratorx", AskedRights::Users),
          std::pair("xrequireAdministrator\"", AskedRights::Users),
          std::pair("\"requireAdministratorx", AskedRights::Users),
          std::pair("xhighestAvailable'    ", AskedRights::Users),
          std::pair("\"highestAvailablex    ", AskedRights::Users)}) {
        std::string other = program;
        other.replace(place, asked.size(), text);
        EXPECT_EQ(RightsAskedBy(File(other)), rights) << text;
    }
    EXPECT_EQ(RightsAskedBy(File("text")), AskedRights::Users);
}

TEST_F(ProgramFileTest, IsTheLauncherByItsNameAndVersion) {
    const std::string& launcher = test::LauncherBytes();
    const ProgramVersion version = ReadProgramVersion(File(launcher));
    EXPECT_EQ(version.product, "Installation media launcher");
    EXPECT_EQ(version.version, LAUNCHER_VERSION);
    EXPECT_EQ(WhyNotThisLauncher(File(launcher)), "");
    EXPECT_EQ(ReadProgramVersion(File("text")).product, "");
    EXPECT_EQ(WhyNotThisLauncher(File("text")), "setup.exe is no Windows program.");
    EXPECT_EQ(WhyNotThisLauncher(File(ProgramBytes(kX64))), "setup.exe is not this launcher.");
    const std::string nameBytes = Wide("Installation media launcher");
    std::string other = launcher;
    for (std::size_t at = other.find(nameBytes); at != std::string::npos;
         at = other.find(nameBytes))
        other[at] = 'X';
    EXPECT_EQ(WhyNotThisLauncher(File(other)),
              "setup.exe is not this launcher but \"Xnstallation media launcher\".");
    EXPECT_EQ(WhyNotThisLauncher(File(test::OtherLauncherBytes())),
              "setup.exe is version " + test::kOtherVersion +
                  " of the launcher, not " LAUNCHER_VERSION ".");
}

// Neither of the bytes before it, nor of those after it.
TEST_F(ProgramFileTest, HasNoNameButThatInItsResource) {
    std::string bytes = test::LauncherBytes();
    bytes.at(bytes.find(Wide("ProductName"))) = 'X';
    EXPECT_EQ(WhyNotThisLauncher(File(bytes)), "setup.exe is not this launcher.");
    constexpr std::size_t kHeader = 6;  // bytes, of which the first two are the resource's length
    const std::size_t resource = bytes.find(Wide("VS_VERSION_INFO")) - kHeader;
    WORD length = 0;
    std::memcpy(&length, bytes.data() + resource, sizeof length);
    const std::string decoy = Wide(std::string("ProductName\0other\0other\0", 24));
    bytes.replace(resource + length, decoy.size(), decoy);
    EXPECT_EQ(ReadProgramVersion(File(bytes)).product, "");
}

TEST_F(ProgramFileTest, IsAskedForNoResourceThatItDoesNotHave) {
    StandIn();
    const Path file(folder_.Text("stand in.exe"));
    const test::Hook<decltype(&FindResourceW)> find("FindResourceW",
                                                    [](auto real, HMODULE program, auto... rest) {
                                                        EXPECT_NE(program, nullptr);
                                                        return real(program, rest...);
                                                    });
    const test::Hook<decltype(&LoadResource)> load("LoadResource",
                                                   [](auto real, HMODULE program, HRSRC found) {
                                                       EXPECT_NE(found, nullptr);
                                                       return real(program, found);
                                                   });
    EXPECT_EQ(ReadProgramVersion(file).product, "");
    EXPECT_EQ(ReadProgramVersion(File("text")).product, "");
    EXPECT_EQ(RightsAskedBy(File("text")), AskedRights::Users);
}

TEST_F(ProgramFileTest, HasNoResourceThatCannotBeLoaded) {
    const Path file = File(test::LauncherBytes());
    const test::Hook<decltype(&LoadResource)> load(
        "LoadResource", test::FailsWith(ERROR_NOT_ENOUGH_MEMORY, HGLOBAL{}));
    EXPECT_EQ(ReadProgramVersion(file).product, "");
    EXPECT_EQ(RightsAskedBy(file), AskedRights::Users);
}

}  // namespace
}  // namespace launcher::mediatool
