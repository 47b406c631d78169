#include "tests/e2e/support/launcher_run.h"

#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/support/repeats.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

constexpr DWORD kPollInterval = 10;        // milliseconds
constexpr ULONGLONG kLongestRun = 120000;  // milliseconds

FileHandle InheritableFile(const stdfs::path& path) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return FileHandle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &attributes, CREATE_ALWAYS, 0, nullptr));
}

// The only handles that a new process inherits: nothing of this process's own, nor of what started
// it.
class InheritedHandles {
  public:
    explicit InheritedHandles(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        list_.resize(size);
        if (!InitializeProcThreadAttributeList(List(), 1, 0, &size) ||
            !UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                       handles_.data(), handles_.size() * sizeof(HANDLE), nullptr,
                                       nullptr))
            throw std::runtime_error("no list of handles");
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;
    ~InheritedHandles() { DeleteProcThreadAttributeList(List()); }

    LPPROC_THREAD_ATTRIBUTE_LIST List() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(list_.data());
    }

  private:
    std::vector<HANDLE> handles_;
    std::vector<char> list_;
};

// All that is started in it ends with it.
HANDLE NewJob() {
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

void AppendQuoted(std::string& line, std::string_view argument) {
    line += '"';
    std::size_t backslashes = 0;
    for (const char c : argument) {
        // Backslashes count only in front of a quote.
        if (c == '"') line.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, '\\');
    line += '"';
}

}  // namespace

std::string QuoteArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) line += ' ';
        AppendQuoted(line, argument);
    }
    return line;
}

std::vector<std::string> LauncherRun::BoxTexts() const {
    std::vector<std::string> texts;
    for (const Box& box : boxes)
        texts.push_back(box.text);
    return texts;
}

const InstallerReport& LauncherRun::Installer() const {
    if (report) return *report;
    std::ostringstream situation;
    PrintTo(*this, &situation);
    throw std::runtime_error(situation.str());
}

std::vector<std::string> LauncherRun::LeftInTemp() const {
    std::vector<std::string> names;
    for (const auto& entry : stdfs::directory_iterator(temp))
        names.push_back(ToUtf8(entry.path().filename()));
    return names;
}

void PrintTo(const LauncherRun& run, std::ostream* stream) {
    *stream << "exit code " << run.exitCode << ", installer "
            << (run.report ? "started" : "not started");
    for (const Box& box : run.boxes)
        *stream << "; box: " << box.text;
    for (const std::string& dialog : run.dialogs)
        *stream << "; dialog: " << dialog;
    *stream << "; errors: " << run.errors;
}

LauncherRun RunToEnd(const LauncherStart& start) {
    for (Repeats repeats;;) {
        LauncherRun run = LauncherProcess(start).Finish();
        if (!repeats.AreWorthIt(StumbledOverWine(run.BoxTexts()))) return run;
    }
}

LauncherProcess::LauncherProcess(const LauncherStart& start)
    : start_(start), temp_(start.workFolder / "temp"), job_(NewJob()) {
    RemoveAll(temp_);
    stdfs::create_directories(temp_);
    stdfs::remove(start_.workFolder / "report");
    GetDesktopWindow();  // what Wine starts for the desktop is not to be part of the job
    Start();
    watcher_.emplace(process_.dwProcessId, start_.workFolder / "output");
}

LauncherProcess::~LauncherProcess() {
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    TerminateJobObject(job_, 1);
    CloseHandle(job_);
}

void LauncherProcess::Start() {
    const FileHandle output = InheritableFile(start_.workFolder / "output");
    const FileHandle errors = InheritableFile(start_.workFolder / "errors");
    InheritedHandles inherited({output.Get(), errors.Get()});
    STARTUPINFOEXW startup{};
    startup.lpAttributeList = inherited.List();
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdOutput = output.Get();
    startup.StartupInfo.hStdError = start_.oneStream ? output.Get() : errors.Get();
    std::map<std::string, std::string> variables = start_.variables;
    variables.insert({{"TEMP", ToUtf8(temp_)},
                      {"TMP", ToUtf8(temp_)},
                      {"STANDIN_REPORT", ToUtf8(start_.workFolder / "report")}});
    std::wstring environment = EnvironmentBlock(variables);
    std::vector<std::string> line = {ToUtf8(start_.program)};
    line.insert(line.end(), start_.arguments.begin(), start_.arguments.end());
    std::wstring commandLine = ToWide(QuoteArguments(line));
    const auto create = [&] {
        return CreateProcessW(
            nullptr, commandLine.data(), nullptr, nullptr, TRUE,
            CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT,
            environment.data(), start_.workFolder.c_str(), &startup.StartupInfo, &process_);
    };
    for (Repeats repeats; !create();) {
        const DWORD error = GetLastError();
        if (!repeats.AreWorthIt(IsWine() && error == ERROR_INTERNAL_ERROR))
            throw std::runtime_error("cannot start the launcher: " + std::to_string(error));
    }
    AssignProcessToJobObject(job_, process_.hProcess);
    ResumeThread(process_.hThread);
}

bool LauncherProcess::EndsWithin(DWORD milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    do {
        if (WaitForSingleObject(process_.hProcess, kPollInterval) == WAIT_OBJECT_0) return true;
        watcher_->Poll();
    } while (GetTickCount64() < end);
    return false;
}

bool LauncherProcess::AllEnded() const {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION accounting{};
    QueryInformationJobObject(job_, JobObjectBasicAccountingInformation, &accounting,
                              sizeof accounting, nullptr);
    return accounting.ActiveProcesses == 0;
}

std::string LauncherProcess::Situation() {
    std::string situation =
        EndsWithin(0) ? "the installer does not end" : "the launcher does not end";
    for (const Box& box : watcher_->Boxes())
        situation += "; box: " + box.text;
    return situation;
}

LauncherRun LauncherProcess::Finish() {
    const ULONGLONG end = GetTickCount64() + kLongestRun;
    while (!EndsWithin(0) || !AllEnded())
        if (GetTickCount64() > end) throw std::runtime_error(Situation());
    LauncherRun run;
    GetExitCodeProcess(process_.hProcess, &run.exitCode);
    run.boxes = watcher_->Boxes();
    run.dialogs = watcher_->Dialogs();
    run.output = ReadFile(start_.workFolder / "output");
    run.errors = ReadFile(start_.workFolder / "errors");
    run.report = ReadInstallerReport(start_.workFolder / "report");
    run.temp = temp_;
    return run;
}

}  // namespace launcher::test
