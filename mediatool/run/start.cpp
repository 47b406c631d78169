#include "mediatool/run/start.h"

#include <array>
#include <utility>
#include <vector>

#include "fs/encoding.h"
#include "fs/text.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/run/run.h"

namespace launcher::mediatool {
namespace {

using Streams = std::array<HANDLE, 3>;

// The handles that a new process inherits, all others that are inheritable left out.
// https://learn.microsoft.com/windows/win32/api/processthreadsapi/nf-processthreadsapi-updateprocthreadattribute
class InheritedHandles {
  public:
    explicit InheritedHandles(Streams& handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        InitializeProcThreadAttributeList(List(), 1, 0, &size);
        UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                  sizeof handles, nullptr, nullptr);
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;
    ~InheritedHandles() { DeleteProcThreadAttributeList(List()); }

    LPPROC_THREAD_ATTRIBUTE_LIST List() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    }

  private:
    std::vector<char> memory_;
};

FileHandle NoInput() {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    return FileHandle(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &inheritable, OPEN_EXISTING, 0, nullptr));
}

// Some of the system's texts have a place for the program's name: "%1 is not a valid ...".
std::string ReasonText(const std::string& program, DWORD error) {
    std::string reason = ErrorText(error);
    ReplaceAll(reason, "%1", FileName(Path(program)), 0);
    return reason;
}

[[noreturn]] void ThrowNotStarted(const std::string& program, DWORD error) {
    throw NotStarted("Windows cannot start " + Quoted(program) + ": " + ReasonText(program, error) +
                         " (error " + std::to_string(error) + ").",
                     kCannotStart);
}

}  // namespace

void CheckProgram(const std::string& program) {
    const auto entry = Look(Path(program));
    const DWORD error = entry ? ERROR_SUCCESS : GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)
        throw NotStarted("There is no launcher " + Quoted(program) + ".", kNoLauncher);
    if (!entry) ThrowNotStarted(program, error);
    if (entry->isFolder) throw NotStarted(Quoted(program) + " is a folder.", kCannotStart);
}

Family StartFamily(const std::string& program, const std::string& commandLine, HANDLE output,
                   HANDLE errors, bool bound) {
    const FileHandle input = NoInput();
    Streams streams = {input.Get(), output, errors};
    InheritedHandles handles(streams);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.Get();
    startup.StartupInfo.hStdOutput = output;
    startup.StartupInfo.hStdError = errors;
    startup.lpAttributeList = handles.List();
    const std::wstring path = ToWide(program);
    std::wstring line = ToWide(commandLine);  // Windows may write into it
    // Windows gives a program with windows no console. Wine would give it this one, and Ctrl+C.
    constexpr DWORD kFlags = EXTENDED_STARTUPINFO_PRESENT | DETACHED_PROCESS;
    PROCESS_INFORMATION created{};
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, kFlags, nullptr, nullptr,
                        &startup.StartupInfo, &created))
        ThrowNotStarted(program, GetLastError());
    const KernelObject thread(created.hThread);
    Family family({created.dwProcessId, KernelObject(created.hProcess)});
    // Not suspended until then: if this process were killed now, nobody would let it go on.
    if (bound) family.BindTogether();
    return family;
}

}  // namespace launcher::mediatool
