#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// What a file says of itself as a Windows program.
struct ProgramFile {
    std::uint16_t machine;        // IMAGE_FILE_MACHINE_...
    bool isLibrary;               // a DLL
    bool isSigned;                // carries a signature, which nobody has looked at
    bool isCutOff;                // ends before its headers say: Windows does not start it
    std::uint64_t trailingBytes;  // after its end, which a signature's certificates are part of

    bool Is64Bit() const;
    bool Is32Bit() const;
};

// Nothing when the file cannot be read or is no Windows program.
std::optional<ProgramFile> ReadProgramFile(const Path& path);

// What kind of file it is: "64-bit", "32-bit", "library", "other machine", "no program", "cut off",
// "folder", "unreadable".
std::string ProgramKind(const Path& path);

// What Windows says of a file that is to be a process: the system's error code, 0 when it would
// start.
std::uint32_t ImageError(const std::wstring& name);

// The rights that a program's manifest asks for: those of whoever starts it, as without a manifest;
// the highest that this user can have; an administrator's.
enum class AskedRights { Users, Highest, Administrators };
AskedRights RightsAskedBy(const Path& path);

// The name and the version in a program's resources; empty when it has none.
struct ProgramVersion {
    std::string product;
    std::string version;
};
ProgramVersion ReadProgramVersion(const Path& path);

// The launcher's name in its resources.
inline constexpr char kLauncherProduct[] = "Installation media launcher";

// Why a file is not the launcher that mediatool is made for, as a sentence about setup.exe; empty
// when it is.
std::string WhyNotThisLauncher(const Path& path);

}  // namespace launcher::mediatool
