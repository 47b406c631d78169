// Files beside the launcher by which Windows can be told to take libraries from elsewhere.

#include <string>

#include "tests/security/support/attacked.h"
#include "tests/security/support/hostile_libraries.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::Contains;
using testing::IsEmpty;

class Redirection : public AttackedTest {
  protected:
    // The bare control program shows what Wine does with such files.
    AttackedRun RunBoxOfControl() const { return RunControl({"restrict", "box"}); }
    AttackedRun RunBoxOfLauncher() const {
        const AttackedRun attacked = RunAttackedLauncher({"-env"});
        EXPECT_THAT(attacked.run, IsRefusedWith("Bad -env argument"));
        return attacked;
    }
    void AddBesideBoth(const std::string& extension, const std::string& content) {
        for (const auto& program : {media.Launcher(), control})
            WriteFile(program.native() + FromUtf8(extension).native(), content);
    }
    void AddManifestBesideBoth() {
        PlantHostileLibraries(media.Root(), {"uxtheme"});
        AddBesideBoth(".manifest", R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <file name="uxtheme.dll"/>
</assembly>
)");
    }

    NativeFirst launcherSettings{ToUtf8(media.Launcher().filename()), UsualNames()};
    NativeFirst controlSettings{ToUtf8(control.filename()), UsualNames()};
};

TEST_F(Redirection, FolderForLocalLibrariesIsIgnored) {
    if (IsWine()) GTEST_SKIP() << "Wine knows no such folder, whatever the program";
    PlantHostileLibraries(media.Launcher().native() + L".local", UsualNames());
    EXPECT_THAT(RunBoxOfLauncher().loaded, IsEmpty());
}

// The launcher has a manifest inside, which counts instead.
TEST_F(Redirection, ManifestBesideTheLauncherIsIgnored) {
    AddManifestBesideBoth();
    EXPECT_THAT(RunBoxOfLauncher().loaded, IsEmpty());
}

// A program without one obeys.
class ObeyedManifest : public Redirection {};

TEST_F(ObeyedManifest, LiesBesideAProgramWithoutOne) {
    AddManifestBesideBoth();
    EXPECT_THAT(RunBoxOfControl().loaded, Contains("uxtheme"));
}

TEST_F(Redirection, ConfigurationBesideTheLauncherIsIgnored) {
    if (IsWine()) GTEST_SKIP() << "Wine knows no such file, whatever the program";
    PlantHostileLibraries(media.Root() / "hostile", UsualNames());
    AddBesideBoth(".config", R"(<?xml version="1.0" encoding="UTF-8"?>
<configuration>
  <windows>
    <assemblyBinding xmlns="urn:schemas-microsoft-com:asm.v1">
      <probing privatePath="hostile"/>
    </assemblyBinding>
  </windows>
</configuration>
)");
    EXPECT_THAT(RunBoxOfLauncher().loaded, IsEmpty());
}

}  // namespace
}  // namespace launcher::test
