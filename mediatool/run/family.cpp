#include "mediatool/run/family.h"

#include <algorithm>
#include <utility>

#include "mediatool/base/files.h"
#include "mediatool/run/processes.h"

namespace launcher::mediatool {
namespace {

constexpr DWORD kPatience = 10000;   // milliseconds for processes to end that were told to
constexpr DWORD kBetweenLooks = 10;  // milliseconds
constexpr char kCrashReporter[] = "WerFault.exe";

// With fewer rights, when not all are to be had: to be waited for at least.
KernelObject OpenMember(DWORD id) {
    constexpr DWORD kAsked = SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION;
    KernelObject process(OpenProcess(kAsked | PROCESS_TERMINATE, FALSE, id));
    return process ? std::move(process) : KernelObject(OpenProcess(kAsked, FALSE, id));
}

}  // namespace

Family::Family(Member launcher) {
    members_.push_back(std::move(launcher));
}

// Who wants out of the job may go: an installer that asks for it would fail otherwise.
void Family::BindTogether() {
    KernelObject job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_BREAKAWAY_OK;
    if (SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits,
                                sizeof limits) &&
        AssignProcessToJobObject(job.Get(), Launcher()))
        job_ = std::move(job);
}

// Holds the running children of those held, and theirs. True when there was a new one.
bool Family::AdoptChildren() {
    const std::vector<ProcessEntry> processes = RunningProcesses();
    const std::size_t before = members_.size();
    for (std::size_t i = 0; i < members_.size(); ++i)
        for (const ProcessEntry& entry : processes) {
            if (entry.parent != members_[i].id || SameName(entry.program, kCrashReporter) ||
                std::ranges::find(members_, entry.id, &Member::id) != members_.end())
                continue;
            KernelObject process = OpenMember(entry.id);
            if (process && CanBeChildOf(process.Get(), members_[i].process.Get()))
                members_.push_back({entry.id, std::move(process)});
        }
    return members_.size() > before;
}

bool Family::LookForInstaller() {
    if (members_.size() == 1) AdoptChildren();
    return members_.size() > 1;
}

SeenProcess Family::Seen(const Member& member) {
    const bool runs = IsRunning(member.process.Get());
    return {member.id, runs, member.wasToldToEnd && !runs};
}

std::optional<SeenProcess> Family::Installer() const {
    if (members_.size() == 1) return std::nullopt;
    return Seen(members_[1]);
}

void Family::EndLauncher(UINT exitCode) {
    Tell(members_.front(), exitCode);
    WaitForSingleObject(Launcher(), kPatience);
}

// Whether it obeys shows when it is looked at again.
void Family::Tell(Member& member, UINT exitCode) {
    if (IsRunning(member.process.Get())) member.wasToldToEnd = true;
    TerminateProcess(member.process.Get(), exitCode);
}

void Family::EndAll(UINT exitCode) {
    const ULONGLONG end = GetTickCount64() + kPatience;
    AdoptChildren();
    for (Member& member : members_)
        member.wasToldToEnd = IsRunning(member.process.Get());
    if (job_) TerminateJobObject(job_.Get(), exitCode);
    // Without a job, and for those that left it. One that ends may just have started another.
    do {
        for (Member& member : members_)
            Tell(member, exitCode);
    } while (AdoptChildren() && GetTickCount64() < end);
    while (AnyRuns() && GetTickCount64() < end)
        Sleep(kBetweenLooks);
}

bool Family::AnyRuns() const {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION counts{};
    QueryInformationJobObject(job_.Get(), JobObjectBasicAccountingInformation, &counts,
                              sizeof counts, nullptr);
    return (job_ && counts.ActiveProcesses > 0) ||
           std::ranges::any_of(
               members_, [](const Member& member) { return IsRunning(member.process.Get()); });
}

// Windows starts the report with the number of the process that it is about.
std::vector<DWORD> Family::CrashReporters() const {
    std::vector<DWORD> reporters;
    const std::string option = " -p " + std::to_string(LauncherId()) + " ";
    for (const ProcessEntry& entry : RunningProcesses()) {
        if (!SameName(entry.program, kCrashReporter)) continue;
        const KernelObject process = OpenMember(entry.id);
        if (process && (StartedWith(process.Get()) + " ").find(option) != std::string::npos)
            reporters.push_back(entry.id);
    }
    return reporters;
}

}  // namespace launcher::mediatool
