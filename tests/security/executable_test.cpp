// The launcher's executable, read as a file: what an inspector of it sees.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>

#include "tests/security/support/launcher_file.h"
#include "tests/security/support/pe_file.h"

namespace launcher::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsSubsetOf;
using testing::Not;
using testing::UnorderedElementsAre;

class Executable : public testing::Test {
  protected:
    PeFile file{LauncherFile()};
};

// The text as bytes of UTF-16, for ASCII texts.
std::string Wide(const std::string& text) {
    std::string wide;
    for (const char c : text)
        wide.append(1, c).append(1, '\0');
    return wide;
}

bool IsInFileNames(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_';
}

// The names of libraries among the texts of a file, in lower case. A character of the texts takes
// `width` bytes and begins at multiples of that from `start` on.
std::set<std::string> LibraryNames(const std::string& bytes, std::size_t width, std::size_t start) {
    std::set<std::string> names;
    std::string text;
    for (std::size_t i = start; i + width <= bytes.size(); i += width) {
        if (IsInFileNames(bytes[i]) && (width == 1 || bytes[i + 1] == '\0')) {
            text += static_cast<char>(std::tolower(bytes[i]));
        } else {
            if (text.ends_with(".dll")) names.insert(text);
            text.clear();
        }
    }
    return names;
}

TEST_F(Executable, HasNoConsole) {
    EXPECT_EQ(file.Subsystem(), IMAGE_SUBSYSTEM_WINDOWS_GUI);
}

TEST_F(Executable, IsForTheProcessorThatItWasBuiltFor) {
    const bool for64Bit = sizeof(void*) == 8;
    EXPECT_EQ(file.Is64Bit(), for64Bit);
    EXPECT_EQ(file.Header().Machine, for64Bit ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386);
}

TEST_F(Executable, IsLoadedAtARandomAddress) {
    EXPECT_TRUE(file.DllCharacteristics() & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE);
    EXPECT_EQ((file.DllCharacteristics() & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA) != 0,
              file.Is64Bit());
    // Without relocations Windows cannot move it.
    EXPECT_FALSE(file.Header().Characteristics & IMAGE_FILE_RELOCS_STRIPPED);
    EXPECT_GT(file.DirectorySize(IMAGE_DIRECTORY_ENTRY_BASERELOC), 0u);
}

TEST_F(Executable, RunsNoData) {
    EXPECT_TRUE(file.DllCharacteristics() & IMAGE_DLLCHARACTERISTICS_NX_COMPAT);
    bool hasCode = false;
    for (const PeFile::Section& section : file.Sections()) {
        const bool executable = (section.flags & IMAGE_SCN_MEM_EXECUTE) != 0;
        EXPECT_FALSE(executable && (section.flags & IMAGE_SCN_MEM_WRITE) != 0) << section.name;
        hasCode = hasCode || executable;
    }
    EXPECT_TRUE(hasCode);
}

// A disc or a network that goes away must not crash it.
TEST_F(Executable, RunsFromTheSwapFile) {
    EXPECT_TRUE(file.Header().Characteristics & IMAGE_FILE_REMOVABLE_RUN_FROM_SWAP);
    EXPECT_TRUE(file.Header().Characteristics & IMAGE_FILE_NET_RUN_FROM_SWAP);
}

// Microsoft's linker puts a hash of the contents in its place, which tells no time either.
TEST_F(Executable, CarriesNoTime) {
#ifdef _MSC_VER
    GTEST_SKIP() << "the linker's hash cannot be told from a time";
#else
    EXPECT_EQ(file.Header().TimeDateStamp, 0u);
#endif
}

TEST_F(Executable, ExportsNothing) {
    EXPECT_EQ(file.DirectorySize(IMAGE_DIRECTORY_ENTRY_EXPORT), 0u);
}

// These are open in every process from its start, or looked for in the system's folder only: on
// all versions of Windows. A library with the C runtime of a compiler would have to be installed.
const std::set<std::string> kImportedLibraries = {"advapi32.dll", "kernel32.dll", "msvcrt.dll",
                                                  "shell32.dll",  "shlwapi.dll",  "user32.dll"};

// MinGW with the Universal C Runtime: parts of Windows 10 and newer, of an older Windows with an
// update. Such a build is not for Windows 7.
bool HasUniversalRuntime() {
#if defined(__MINGW32__) && defined(_UCRT)
    return true;
#else
    return false;
#endif
}

bool IsOfUniversalRuntime(const std::string& library) {
    return HasUniversalRuntime() && library.find("api-ms-win-crt-") != std::string::npos;
}

// The libraries that a program imports from, without those of the runtime that it was built for.
std::set<std::string> LibrariesOf(const PeFile& file) {
    std::set<std::string> libraries;
    for (const PeFile::Import& import : file.Imports())
        if (!IsOfUniversalRuntime(import.library)) libraries.insert(import.library);
    return libraries;
}

TEST_F(Executable, ImportsFromTheSystemOnly) {
    const std::set<std::string> libraries = LibrariesOf(file);
    EXPECT_THAT(libraries, IsSubsetOf(kImportedLibraries));
    EXPECT_THAT(libraries, testing::IsSupersetOf({"kernel32.dll", "shell32.dll", "user32.dll"}));
}

// mediatool is likely to lie on a medium or in a folder of downloads, too.
TEST(Companion, ImportsFromTheSystemOnly) {
    const std::set<std::string> libraries = LibrariesOf(PeFile(BuiltFile(MEDIATOOL_PROGRAM)));
    EXPECT_THAT(libraries, IsSubsetOf(kImportedLibraries));
    EXPECT_THAT(libraries, Contains("kernel32.dll"));
}

// A library that is loaded later has its name in the file too. Those here are all that it asks for,
// now or later; "ole32.dll" is for the dialog, and "wininet.dll" is looked at.
TEST_F(Executable, NamesNoOtherLibrary) {
    std::set<std::string> allowed = kImportedLibraries;
    allowed.insert({"ole32.dll", "wininet.dll"});
#ifdef _MSC_VER
    // Named by the static runtime: to look whether the first is loaded, and for newer locks.
    allowed.insert({"mscoree.dll", "api-ms-win-core-synch-l1-2-0.dll"});
#endif
    std::set<std::string> named = LibraryNames(file.Bytes(), 1, 0);
    named.merge(LibraryNames(file.Bytes(), 2, 0));
    named.merge(LibraryNames(file.Bytes(), 2, 1));
    // Other bytes in front of a text can look like a part of it.
    for (const std::string& name : named)
        EXPECT_TRUE(
            IsOfUniversalRuntime(name) ||
            std::ranges::any_of(
                allowed, [&](const std::string& library) { return name.ends_with(library); }))
            << name;
    EXPECT_THAT(named, Contains(testing::EndsWith("ole32.dll")));
    EXPECT_THAT(named, Contains(testing::EndsWith("wininet.dll")));
}

// Windows 7 exports the function by its number alone.
TEST_F(Executable, ImportsTheInterfaceHelperByItsNumber) {
    std::set<std::string> functions;
    for (const PeFile::Import& import : file.Imports())
        if (import.library == "shlwapi.dll") functions.insert(import.function);
    EXPECT_THAT(functions, UnorderedElementsAre("#219"));
}

// Windows 7 refuses to start a program that imports one of these. They are what newer headers and
// the libraries of compilers are known to bring into a program unasked; each came with Windows 8 or
// later, or with an update of Windows 7.
const std::set<std::string> kNewerThanWindows7 = {"AddDllDirectory",
                                                  "CopyFile2",
                                                  "CreateFile2",
                                                  "GetCurrentPackageId",
                                                  "GetCurrentThreadStackLimits",
                                                  "GetDpiForSystem",
                                                  "GetDpiForWindow",
                                                  "GetProcessMitigationPolicy",
                                                  "GetSystemTimePreciseAsFileTime",
                                                  "GetTempPath2A",
                                                  "GetTempPath2W",
                                                  "GetThreadDescription",
                                                  "IsWow64Process2",
                                                  "MapViewOfFile3",
                                                  "PrefetchVirtualMemory",
                                                  "QueryInterruptTimePrecise",
                                                  "RemoveDllDirectory",
                                                  "SetDefaultDllDirectories",
                                                  "SetProcessDpiAwarenessContext",
                                                  "SetProcessMitigationPolicy",
                                                  "SetThreadDescription",
                                                  "VirtualAlloc2",
                                                  "WaitOnAddress",
                                                  "WakeByAddressAll",
                                                  "WakeByAddressSingle"};

TEST_F(Executable, ImportsNothingThatWindows7Lacks) {
    if (HasUniversalRuntime()) GTEST_SKIP() << "a build with this runtime is for Windows 10";
    for (const PeFile::Import& import : file.Imports())
        EXPECT_THAT(kNewerThanWindows7, Not(Contains(import.function)));
}

// The ways in which a process restricts itself and, unasked, the processes that it starts: neither
// imported nor looked up by name. Installers may need what these forbid.
TEST_F(Executable, KnowsNoRestrictionThatChildrenInherit) {
    for (const char* function : {"SetDllDirectory", "SetProcessMitigationPolicy",
                                 "UpdateProcThreadAttribute", "SetErrorMode", "SetSearchPathMode"})
        EXPECT_THAT(file.Bytes(), Not(HasSubstr(function)));
    EXPECT_THAT(file.Bytes(), HasSubstr("SetDefaultDllDirectories"));
}

// tools/check.sh holds the launchers of a release to the same.
TEST_F(Executable, IsSmall) {
    if (IS_DEBUG_BUILD) GTEST_SKIP() << "a debug build carries what a debugger needs";
#if defined(__MINGW32__) && !defined(__clang__) && !defined(_UCRT)
    EXPECT_LE(file.Bytes().size(), 240'000u);
#else  // not optimised across files, or with a larger runtime
    EXPECT_LE(file.Bytes().size(), 950'000u);
#endif
}

// True when `bytes` holds an absolute path that begins with `folder`. The end of a longer path,
// such as the runtime's own "winpthreads/src", is none.
bool HoldsPathBelow(const std::string& bytes, const std::string& folder) {
    for (std::size_t at = bytes.find(folder); at != std::string::npos;
         at = bytes.find(folder, at + 1)) {
        if (at == 0 || !IsInFileNames(bytes[at - 1])) return true;
    }
    return false;
}

// Names of folders of the machine that built it, in texts of either kind.
TEST_F(Executable, TellsNothingOfTheBuildMachine) {
    for (const std::string folder : {SOURCE_FOLDER, BUILD_FOLDER}) {
        EXPECT_FALSE(HoldsPathBelow(file.Bytes(), folder)) << folder;
        EXPECT_FALSE(HoldsPathBelow(file.Bytes(), Wide(folder))) << folder;
    }
    EXPECT_TRUE(HoldsPathBelow("at " SOURCE_FOLDER "/fs/path.cpp", SOURCE_FOLDER));
}

}  // namespace
}  // namespace launcher::test
