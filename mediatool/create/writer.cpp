#include "mediatool/create/writer.h"

#include <windows.h>

#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"

namespace launcher::mediatool {
namespace {

[[noreturn]] void Fail(const Path& path, const std::string& what) {
    const std::string reason = LastErrorText();
    throw Refused("\"" + path.Text() + "\" cannot be " + what + ": " + reason + ".");
}

bool WriteWhole(const Path& file, const std::string& content) {
    const FileHandle handle(CreateFileW(Extended(file.Text()).c_str(), GENERIC_WRITE,
                                        FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return handle && WriteFile(handle.Get(), content.data(), static_cast<DWORD>(content.size()),
                               &written, nullptr);
}

}  // namespace

Writer::~Writer() {
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) {
        const std::wstring name = Extended(path->Text());
        if (!DeleteFileW(name.c_str())) RemoveDirectoryW(name.c_str());
    }
}

void Writer::MakeFolder(const Path& folder) {
    if (IsEmpty(folder) || IsFolder(folder)) return;
    MakeFolder(Parent(folder));
    if (!CreateDirectoryW(Extended(folder.Text()).c_str(), nullptr)) Fail(folder, "made");
    made_.push_back(folder);
}

void Writer::Write(const Path& file, const std::string& content) {
    MakeFolder(Parent(file));
    if (!Look(file)) made_.push_back(file);
    if (!WriteWhole(file, content)) Fail(file, "written");
}

void Writer::Copy(const Path& source, const Path& destination) {
    MakeFolder(Parent(destination));
    if (!Look(destination)) made_.push_back(destination);
    if (!CopyFileW(Extended(source.Text()).c_str(), Extended(destination.Text()).c_str(), FALSE))
        Fail(source, "copied");
}

}  // namespace launcher::mediatool
