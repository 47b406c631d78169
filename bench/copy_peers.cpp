#include "bench/copy_peers.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <cwchar>
#include <filesystem>
#include <stdexcept>

#include "bench/process.h"
#include "fs/copy.h"
#include "fs/encoding.h"
#include "fs/owners.h"

namespace launcher::bench {
namespace {

constexpr unsigned kBufferSize = 65536;

void Require(bool success) {
    if (!success) throw std::runtime_error("a copy failed");
}

void CopyWithLauncher(const std::wstring& source, const std::wstring& destination) {
    Copy(ToNarrow(source.c_str()), ToNarrow(destination.c_str()));
}

// The least that a tree copy can do: a listing and a new folder for each folder, `copyFile` for
// each file, and no question asked.
template <class CopyFile>
void CopyTree(const std::wstring& source, const std::wstring& destination, CopyFile copyFile) {
    Require(CreateDirectoryW(destination.c_str(), nullptr));
    WIN32_FIND_DATAW data;
    const FindHandle search(FindFirstFileW((source + L"\\*").c_str(), &data));
    Require(static_cast<bool>(search));
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring from = source + L'\\' + name;
        const std::wstring to = destination + L'\\' + name;
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            CopyTree(from, to, copyFile);
        else
            copyFile(from, to);
    } while (FindNextFileW(search.Get(), &data));
}

void CopyFileWithRuntime(const std::wstring& source, const std::wstring& destination) {
    int from = -1;
    int to = -1;
    Require(_wsopen_s(&from, source.c_str(), _O_RDONLY | _O_BINARY, _SH_DENYNO, 0) == 0);
    Require(_wsopen_s(&to, destination.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY,
                      _SH_DENYNO, _S_IREAD | _S_IWRITE) == 0);
    static char buffer[kBufferSize];
    int count = 0;
    while ((count = _read(from, buffer, kBufferSize)) > 0)
        Require(_write(to, buffer, static_cast<unsigned>(count)) == count);
    _close(from);
    _close(to);
}

void CopyFileWithReadFile(const std::wstring& source, const std::wstring& destination) {
    const FileHandle from(CreateFileW(source.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const FileHandle to(CreateFileW(destination.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    static char buffer[kBufferSize];
    DWORD count = 0;
    DWORD written = 0;
    for (;;) {
        Require(ReadFile(from.Get(), buffer, kBufferSize, &count, nullptr));
        if (count == 0) return;
        Require(WriteFile(to.Get(), buffer, count, &written, nullptr));
    }
}

void CopyFileWithSystem(const std::wstring& source, const std::wstring& destination) {
    Require(CopyFileW(source.c_str(), destination.c_str(), FALSE));
}

template <void copyFile(const std::wstring&, const std::wstring&)>
void CopyTreeWith(const std::wstring& source, const std::wstring& destination) {
    CopyTree(source, destination, copyFile);
}

void CopyWithFilesystem(const std::wstring& source, const std::wstring& destination) {
    std::filesystem::copy(source, destination, std::filesystem::copy_options::recursive);
}

void CopyWithXcopy(const std::wstring& source, const std::wstring& destination) {
    Require(RunProcess(L"xcopy \"" + source + L"\" \"" + destination + L"\" /E /I /H /Q /Y") == 0);
}

}  // namespace

const std::vector<CopyPeer>& CopyPeers() {
    static const std::vector<CopyPeer> peers = {
        {L"launcher", "the launcher's Copy", CopyWithLauncher},
        {L"runtime", "bare _read/_write loop", CopyTreeWith<CopyFileWithRuntime>},
        {L"readfile", "bare ReadFile/WriteFile loop", CopyTreeWith<CopyFileWithReadFile>},
        {L"copyfile", "CopyFileW", CopyTreeWith<CopyFileWithSystem>},
        {L"filesystem", "std::filesystem::copy", CopyWithFilesystem},
        {L"xcopy", "xcopy", CopyWithXcopy},
    };
    return peers;
}

}  // namespace launcher::bench
