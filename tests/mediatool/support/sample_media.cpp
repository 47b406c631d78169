#include "tests/mediatool/support/sample_media.h"

#include <windows.h>

#include <cstring>
#include <filesystem>
#include <utility>

#include "mediatool/media/markers.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;
using mediatool::Layout;

std::string ProgramBytes(std::uint16_t machine, bool isLibrary) {
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof dos;
    const DWORD signature = IMAGE_NT_SIGNATURE;
    IMAGE_FILE_HEADER header{};
    header.Machine = machine;
    header.Characteristics = isLibrary ? IMAGE_FILE_DLL : 0;
    std::string bytes(sizeof dos + sizeof signature + sizeof header, '\0');
    std::memcpy(bytes.data(), &dos, sizeof dos);
    std::memcpy(bytes.data() + sizeof dos, &signature, sizeof signature);
    std::memcpy(bytes.data() + sizeof dos + sizeof signature, &header, sizeof header);
    return bytes;
}

const std::string& LauncherBytes() {
    static const std::string bytes = ReadFile(BuiltFile(SETUP_PROGRAM));
    return bytes;
}

std::string LauncherWithoutSymbols() {
    std::string bytes = LauncherBytes();
    IMAGE_DOS_HEADER dos{};
    std::memcpy(&dos, bytes.data(), sizeof dos);
    char* const header = bytes.data() + dos.e_lfanew + sizeof(DWORD);
    IMAGE_FILE_HEADER file{};
    std::memcpy(&file, header, sizeof file);
    const DWORD symbols = std::exchange(file.PointerToSymbolTable, 0);
    file.NumberOfSymbols = 0;
    std::memcpy(header, &file, sizeof file);
    if (symbols != 0) bytes.resize(symbols);
    return bytes;
}

std::string OtherLauncherBytes() {
    std::string bytes = LauncherBytes();
    const std::wstring_view name = L"ProductVersion";
    const std::string nameBytes(reinterpret_cast<const char*>(name.data()),
                                name.size() * sizeof(wchar_t));
    const std::size_t version =
        bytes.find_first_not_of('\0', bytes.find(nameBytes) + nameBytes.size());
    bytes.at(version) = kOtherVersion.front();
    return bytes;
}

SampleMedia::SampleMedia(Layout layout, int volumes)
    : folder_(std::make_unique<TemporaryFolder>()),
      first_(layout == Layout::Outer ? "set/7/media/1" : "set/1") {
    WriteBasics();
    WriteVolumes(layout, volumes);
}

void SampleMedia::WriteBasics() {
    for (const char* name : {"meta.TOCxml", "media.xml", "media.db"})
        Write(name, name);
    for (const char* name :
         {"StartTUI.exe", "setup_noUAC.exe", "inst/win_b64/code/bin/ZEPInsAppliGUI.exe"})
        Write(name, ProgramBytes(kX64));
    Write("setup.exe", LauncherBytes());
    Write("inst/common/win_b64.installos");
}

void SampleMedia::WriteVolumes(Layout layout, int volumes) {
    if (layout == Layout::NotSplit) return;
    Write("inst/volumes.txt", mediatool::CountFileText(volumes));
    Marker("1.txt");
    if (layout == Layout::Outer) Marker("../../7.txt", "OUTER");
    for (int k = 2; k <= volumes; ++k) {
        const std::string name = std::to_string(k);
        const std::string outer = std::to_string(6 + k);
        if (layout == Layout::OneFolder) Marker(name + ".txt");
        if (layout == Layout::OneFolder) continue;
        const bool isOuter = layout == Layout::Outer;
        const std::string folder = (isOuter ? "../../../" + outer + "/media/" : "../") + name;
        Marker(folder + "/" + name + ".txt").Write(folder + "/content.bin", "content of " + name);
        if (isOuter) Marker("../../../" + outer + "/" + outer + ".txt", "OUTER");
    }
}

SampleMedia& SampleMedia::Write(std::string_view relative, std::string_view content) {
    folder_->Write(first_ + "/" + std::string(relative), content);
    return *this;
}

SampleMedia& SampleMedia::Remove(std::string_view relative) {
    stdfs::remove_all(FromUtf8(Text(relative)));
    return *this;
}

SampleMedia& SampleMedia::Rename(std::string_view relative, std::string_view to) {
    test::Rename(FromUtf8(Text(relative)), FromUtf8(Text(to)));
    return *this;
}

SampleMedia& SampleMedia::MakeDir(std::string_view relative) {
    folder_->MakeDir(first_ + "/" + std::string(relative));
    return *this;
}

SampleMedia& SampleMedia::Marker(std::string_view relative, std::string_view id) {
    return Write(relative, mediatool::MarkerText(std::string(id)));
}

std::string SampleMedia::Text(std::string_view relative) const {
    const stdfs::path first = folder_->Dir() / FromUtf8(first_);
    return ToUtf8((relative.empty() ? first : first / FromUtf8(relative)).lexically_normal());
}

mediatool::Validation SampleMedia::Validate(const std::vector<std::string>& others) const {
    mediatool::ValidateRequest request;
    request.folders = {Text()};
    for (const std::string& other : others)
        request.folders.push_back(Text(other));
    return mediatool::Validate(request);
}

}  // namespace launcher::test
