#include "tests/support/options.h"

#include "fs/encoding.h"

namespace launcher::test {
namespace {

std::string Text(bool value) {
    return value ? "yes" : "no";
}

std::string Text(const std::vector<std::string>& values) {
    std::string text;
    for (const std::string& value : values)
        text += "[" + value + "]";
    return text;
}

}  // namespace

Fields FieldsOf(const LaunchOptions& options) {
    return {{"wait", Text(options.wait)},
            {"useGui", Text(options.useGui)},
            {"interactiveSession", Text(options.interactiveSession)},
            {"lastMessageWasProblem", Text(options.lastMessageWasProblem)},
            {"installerArgs", Text(options.installerArgs)},
            {"installerPath", options.installerPath},
            {"softMgt", Text(options.softMgt)},
            {"softMgtReadOnly", Text(options.softMgtReadOnly)},
            {"skipTemporaryCopy", Text(options.skipTemporaryCopy)},
            {"temporaryCopyMade", Text(options.temporaryCopyMade)},
            {"uninstall", Text(options.uninstall)},
            {"softMgtAction", options.softMgtAction},
            {"mediaDir", options.mediaDir.Text()},
            {"mediaInstDir", options.mediaInstDir},
            {"installerExeName", options.installerExeName},
            {"installerExePath", options.installerExePath},
            {"osFolder", options.osFolder}};
}

LaunchOptions ParseOptions(const std::vector<std::string>& arguments, bool useGui, bool wait) {
    std::vector<std::wstring> wide = {L"setup.exe"};
    for (const std::string& argument : arguments)
        wide.push_back(ToWide(argument));
    std::vector<const wchar_t*> argv;
    for (const std::wstring& argument : wide)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    return LaunchOptions(static_cast<int>(wide.size()), argv.data(), "ZEPInsAppliGUI.exe", useGui,
                         wait);
}

}  // namespace launcher::test
