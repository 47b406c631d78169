// Every media that can be: each of the three installers and of the three markers there or not.

#include "fs/environment.h"
#include "tests/launcher/fake_machine.h"
#include "tests/launcher/journal.h"

namespace launcher {
namespace {

using test::machine;

// What comes of a media: an installer in it, or the last line of the journal.
struct Outcome {
    std::string exe;
    std::string osFolder;
    std::string refusal;

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << outcome.exe << ", " << outcome.osFolder << ", " << outcome.refusal;
}

bool Has(const char* file) {
    return machine.files.contains(file);
}

Outcome InstallerByTheRules() {
    if (machine.is64Bit && Has(test::kB64Exe)) return {test::kB64Exe, "win_b64", ""};
    if (machine.is64Bit && Has(test::kCsa64Exe)) return {test::kCsa64Exe, "win_csa64", ""};
    if (Has(test::kIntelExe)) return {test::kIntelExe, "intel_a", ""};
    if (machine.is64Bit) return {};
    const bool only64BitMarkers =
        !Has(test::kIntelMarker) && (Has(test::kB64Marker) || Has(test::kCsa64Marker));
    if (Has(test::kB64Exe) || Has(test::kCsa64Exe) || only64BitMarkers)
        return {"", "", test::kNotFor32Bit};
    return {};
}

Outcome OutcomeByTheRules(bool external) {
    Outcome outcome = InstallerByTheRules();
    if (!outcome.refusal.empty()) return outcome;
    if (!outcome.exe.empty() && !external) return outcome;
    outcome.exe = "";
    outcome.refusal = test::kNotFoundNoDialog;
    if (machine.is64Bit && Has(test::kB64Marker))
        outcome.osFolder = "win_b64";
    else if (machine.is64Bit && Has(test::kCsa64Marker))
        outcome.osFolder = "win_csa64";
    else if (Has(test::kIntelMarker))
        outcome.osFolder = "intel_a";
    else
        outcome.refusal = test::kNotForWindows;
    return outcome;
}

class ChooseInstallerModel : public test::ChooseInstallerTest {
  protected:
    Outcome OutcomeForReal() {
        Restart();
        const bool found = Find();
        return {options_.installerExePath, options_.osFolder, found ? "" : test::Journal().back()};
    }
};

TEST_F(ChooseInstallerModel, AgreesOnEveryMedia) {
    const char* const files[] = {test::kIntelExe,    test::kB64Exe,    test::kCsa64Exe,
                                 test::kIntelMarker, test::kB64Marker, test::kCsa64Marker};
    for (const bool external : {false, true}) {
        SetEnvVar("ZEP_UseExternalInstaller", external ? "1" : "");
        for (unsigned media = 0; media < 64; ++media) {
            machine.files.clear();
            for (unsigned i = 0; i < 6; ++i)
                if ((media >> i & 1) != 0) machine.files.insert(files[i]);
            for (const bool is64Bit : {false, true}) {
                machine.is64Bit = is64Bit;
                EXPECT_EQ(OutcomeForReal(), OutcomeByTheRules(external))
                    << testing::PrintToString(machine.files) << (is64Bit ? " 64-bit" : " 32-bit")
                    << (external ? " external" : "");
            }
        }
    }
}

}  // namespace
}  // namespace launcher
