// The launcher's resources, as Windows finds them in the file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "platform/owners.h"
#include "tests/security/support/launcher_file.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Resources : public testing::Test {
  protected:
    // The bytes of a resource; empty when there is none.
    std::string Find(const wchar_t* type, WORD id) const {
        const HRSRC entry = FindResourceW(file.Get(), MAKEINTRESOURCEW(id), type);
        if (entry == nullptr) return {};
        const auto* bytes = static_cast<const char*>(LockResource(LoadResource(file.Get(), entry)));
        return {bytes, SizeofResource(file.Get(), entry)};
    }
    std::string Manifest() const { return Find(RT_MANIFEST, 1); }

    Library file{LoadLibraryExW(LauncherFile().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)};
};

TEST_F(Resources, ManifestHasTheVersionOfTheProject) {
    EXPECT_THAT(Manifest(), HasSubstr(" version=\"" PRODUCT_VERSION ".0\" "));
}

TEST_F(Resources, ManifestAsksForNoElevation) {
    EXPECT_THAT(Manifest(), HasSubstr(R"(level="asInvoker" uiAccess="false")"));
}

class SupportedWindows : public Resources, public testing::WithParamInterface<const char*> {};

TEST_P(SupportedWindows, IsNamedInTheManifest) {
    EXPECT_THAT(Manifest(), HasSubstr(std::string("<supportedOS Id=\"{") + GetParam() + "}\"/>"));
}

// Windows 7, 8, 8.1, and 10 with 11: without its own, a Windows poses as an older one.
INSTANTIATE_TEST_SUITE_P(Versions, SupportedWindows,
                         testing::Values("35138b9a-5d96-4fbd-8e2d-a2440225f93a",
                                         "4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38",
                                         "1f676c76-80e1-4239-95bb-83d0f6d0da78",
                                         "8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a"));

// Old versions of Windows read the first of the two settings for the resolution.
TEST_F(Resources, ManifestDeclaresSharpTextAndLongPaths) {
    EXPECT_THAT(Manifest(), HasSubstr(">true/pm</dpiAware>"));
    EXPECT_THAT(Manifest(), HasSubstr(">PerMonitorV2, PerMonitor</dpiAwareness>"));
    EXPECT_THAT(Manifest(), HasSubstr(">true</longPathAware>"));
}

// What a manifest asks for in this way is looked for beside the program as well.
TEST_F(Resources, ManifestAsksForNoOtherAssembly) {
    ASSERT_THAT(Manifest(), HasSubstr("</assembly>"));
    EXPECT_THAT(Manifest(), Not(HasSubstr("<dependency")));
    EXPECT_THAT(Manifest(), Not(HasSubstr("<file")));
}

// The directory of an icon: three words, the last of which is the count, and 14 bytes for each
// image, the first of which is its width and the last two its number.
constexpr std::size_t kIconHeader = 6;
constexpr std::size_t kIconEntry = 14;

class Icon : public Resources {
  protected:
    int ByteAt(std::size_t offset) const { return static_cast<unsigned char>(group_.at(offset)); }
    // The images' bytes by their widths in pixels, as the directory has them.
    std::map<int, std::string> Images() const {
        std::map<int, std::string> images;
        for (int i = 0; i < ByteAt(4); ++i) {
            const std::size_t entry = kIconHeader + static_cast<std::size_t>(i) * kIconEntry;
            const int number = ByteAt(entry + 12) + 256 * ByteAt(entry + 13);
            const int width = ByteAt(entry) == 0 ? 256 : ByteAt(entry);
            images[width] = Find(RT_ICON, static_cast<WORD>(number));
        }
        return images;
    }
    static bool IsCompressed(const std::string& image) { return image.starts_with("\x89PNG\r\n"); }

  private:
    std::string group_ = Find(RT_GROUP_ICON, 1);
};

// Small, large and extra large ones, and the sizes between for screens of finer resolution.
TEST_F(Icon, HasEverySizeThatWindowsAsksFor) {
    std::vector<int> widths;
    for (const auto& [width, image] : Images())
        widths.push_back(width);
    EXPECT_THAT(widths, ElementsAre(16, 20, 24, 32, 40, 48, 64, 256));
}

// Compressed ones are for the two largest sizes only: in others, not every program reads them.
TEST_F(Icon, ImagesAreOfTheSizeThatTheDirectoryNames) {
    for (const auto& [width, image] : Images()) {
        ASSERT_GT(image.size(), sizeof(BITMAPINFOHEADER)) << width;
        EXPECT_EQ(IsCompressed(image), width >= 64) << width;
        if (IsCompressed(image)) {
            // Width and height, big-endian, after the signature and the name of the first part;
            // then 8 bits for each of red, green, blue and opacity.
            const std::string side = {'\0', '\0', static_cast<char>(width / 256),
                                      static_cast<char>(width % 256)};
            EXPECT_EQ(image.substr(16, 10), side + side + "\x08\x06") << width;
            continue;
        }
        BITMAPINFOHEADER header;
        std::memcpy(&header, image.data(), sizeof header);
        EXPECT_EQ(header.biWidth, width);
        EXPECT_EQ(header.biHeight, 2 * width);  // with the mask
        EXPECT_EQ(header.biBitCount, 32) << width;
    }
}

class VersionResource : public testing::Test {
  protected:
    void SetUp() override {
        const std::wstring file = LauncherFile().native();
        DWORD ignored = 0;
        block_.resize(GetFileVersionInfoSizeW(file.c_str(), &ignored));
        ASSERT_TRUE(
            GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block_.size()), block_.data()));
    }
    std::string Text(const wchar_t* name) {
        return ToNarrow(Query<wchar_t>(std::wstring(L"\\StringFileInfo\\040904B0\\") + name));
    }
    template <class T>
    const T* Query(const std::wstring& name) {
        void* value = nullptr;
        UINT size = 0;
        EXPECT_TRUE(VerQueryValueW(block_.data(), name.c_str(), &value, &size))
            << ToNarrow(name.c_str());
        return static_cast<const T*>(value);
    }

  private:
    std::vector<char> block_;
};

TEST_F(VersionResource, DescribesTheProgram) {
    EXPECT_EQ(Text(L"FileDescription"), "Installation media launcher");
    EXPECT_EQ(Text(L"OriginalFilename"), "setup.exe");
}

TEST_F(VersionResource, HasTheVersionOfTheProject) {
    EXPECT_EQ(Text(L"ProductVersion"), PRODUCT_VERSION ".0");
    EXPECT_EQ(Text(L"FileVersion"), PRODUCT_VERSION ".0");
    const auto* numbers = Query<VS_FIXEDFILEINFO>(L"\\");
    EXPECT_EQ(std::to_string(HIWORD(numbers->dwFileVersionMS)) + "." +
                  std::to_string(LOWORD(numbers->dwFileVersionMS)) + "." +
                  std::to_string(HIWORD(numbers->dwFileVersionLS)),
              PRODUCT_VERSION);
    EXPECT_EQ(numbers->dwFileVersionMS, numbers->dwProductVersionMS);
    EXPECT_EQ(numbers->dwFileVersionLS, numbers->dwProductVersionLS);
}

}  // namespace
}  // namespace launcher::test
