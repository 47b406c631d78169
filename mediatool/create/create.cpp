#include "mediatool/create/create.h"

#include <sstream>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/create/plan.h"
#include "mediatool/create/writer.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/media/markers.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {
namespace {

constexpr int kMostVolumes = 99;

// What validate says of an identifier, create refuses.
void CheckId(const std::string& id, const std::string& option) {
    if (id.empty()) throw BadInput(option + " is empty.");
    if (HasControlCharacter(id) || Trimmed(id).find('\t') != std::string::npos)
        throw BadInput(option + " has a control character in it.");
    if (id != Trimmed(id)) throw BadInput(option + " begins or ends with a blank.");
    Findings findings;
    CheckIdentifier(id, Path(), findings);
    const std::vector<Finding> found = findings.Sorted();
    if (!found.empty()) throw BadInput(option + " cannot be used: " + found.front().what);
}

// A folder below another: names between backslashes. Empty for the other folder itself.
bool IsFolderBelow(const std::string& text) {
    std::istringstream names(text);
    for (std::string name; std::getline(names, name, '\\');)
        if (!IsUsableName(name)) return false;
    return true;
}

void CheckRequest(const CreateRequest& request) {
    CheckId(request.id, "--id");
    if (request.volumes < 1 || request.volumes > kMostVolumes)
        throw BadInput("--volumes takes a number from 1 to 99.");
    if (request.layout == Layout::Outer) {
        if (!request.outerId.empty()) CheckId(request.outerId, "--outer-id");
        if (request.outerId == request.id) throw BadInput("--outer-id has to differ from --id.");
        if (request.firstOuter < 1 || request.firstOuter > kMostVolumes)
            throw BadInput("--first-outer takes a number from 1 to 99.");
        if (!IsFolderBelow(Path(request.inner).Text()))
            throw BadInput("--inner takes the name of a folder in each outer volume, not \"" +
                           request.inner + "\".");
    }
    const auto given = static_cast<int>(request.from.size());
    if (request.layout == Layout::OneFolder ? given > request.volumes
                                            : given != 0 && given != request.volumes)
        throw BadInput("--from takes one folder for each of the " +
                       std::to_string(request.volumes) + " volumes.");
}

// The folder to write into. Throws BadInput when there can be no such folder.
Path CheckedOut(const std::string& text) {
    Path out = FullPath(text);
    const std::string quoted = "\"" + (IsEmpty(out) ? text : out.Text()) + "\"";
    if (IsEmpty(out) || out.Text().starts_with("\\\\.\\"))
        throw BadInput(quoted + " is no folder.");
    Path there = out;
    for (; !IsEmpty(there) && !Look(there); there = Parent(there))
        if (!IsEmpty(Parent(there)) && !IsUsableName(FileName(there)))
            throw BadInput(quoted + " cannot be the name of a folder.");
    if (IsEmpty(there)) throw BadInput(quoted + " is on a drive that is not there.");
    if (IsFile(there))
        throw BadInput(IsEmpty(RelativePath(out, there))
                           ? quoted + " is a file, not a folder."
                           : quoted + " is below \"" + there.Text() + "\", which is a file.");
    return out;
}

Path VolumeFolder(const CreateRequest& request, const Path& out, int k) {
    const std::string number = std::to_string(k);
    switch (request.layout) {
        case Layout::Siblings:
            return Join(out, number);
        case Layout::Outer: {
            const Path outer = Join(out, std::to_string(request.firstOuter + k - 1));
            return Join(Join(outer, request.inner), number);
        }
        default:
            return out;
    }
}

std::string OuterId(const CreateRequest& request) {
    if (request.layout != Layout::Outer) return {};
    return request.outerId.empty() ? request.id + "-outer" : request.outerId;
}

void PlanMarkers(const CreateRequest& request, Plan& plan) {
    const Path& out = plan.out;
    for (int k = 1; k <= request.volumes; ++k)
        plan.folders.push_back(VolumeFolder(request, out, k));
    plan.texts.push_back({CountFileIn(plan.folders.front()), CountFileText(request.volumes)});
    for (int k = 1; k <= request.volumes; ++k)
        plan.texts.push_back(
            {MarkerIn(plan.folders[static_cast<std::size_t>(k) - 1], k), MarkerText(request.id)});
    if (request.layout != Layout::Outer) return;
    for (int k = 1; k <= request.volumes; ++k) {
        const int number = request.firstOuter + k - 1;
        plan.texts.push_back(
            {MarkerIn(Join(out, std::to_string(number)), number), MarkerText(OuterId(request))});
    }
}

void RefuseOverwriting(const Plan& plan) {
    const auto refuse = [](const Path& file) {
        if (Look(file))
            throw Refused("\"" + file.Text() + "\" is there already; --force writes over it.");
    };
    for (const TextFile& text : plan.texts)
        refuse(text.path);
    for (const CopiedFile& copy : plan.copies)
        refuse(copy.destination);
}

Creation Carry(const Plan& plan, const CreateRequest& request) {
    Creation result;
    result.layout = request.layout;
    result.outerId = OuterId(request);
    Writer writer;
    for (const Path& folder : plan.folders) {
        writer.MakeFolder(folder);
        result.folders.push_back(folder.Text());
    }
    for (const Path& folder : plan.emptyFolders)
        writer.MakeFolder(folder);
    for (const CopiedFile& copy : plan.copies) {
        writer.Copy(copy.source, copy.destination);
        ++result.copiedFiles;
        result.copiedBytes += copy.size;
        if (request.progress) request.progress(result.copiedFiles);
    }
    for (const TextFile& text : plan.texts) {
        writer.Write(text.path, text.content);
        result.written.push_back(text.path.Text());
    }
    writer.Keep();
    return result;
}

}  // namespace

Creation Create(const CreateRequest& request) {
    CheckRequest(request);
    Plan plan;
    plan.out = CheckedOut(request.out);
    PlanMarkers(request, plan);
    PlanContent(request, plan);
    RefuseObstacles(request, plan);
    RefuseStaleMarkers(request, plan);
    if (!request.force) RefuseOverwriting(plan);
    return Carry(plan, request);
}

std::string NextStep(const Creation& creation) {
    const std::string first = creation.folders.front();
    if (Look(Join(Path(first), kLauncherName))) return {};
    return "Still missing: the launcher (setup.exe), the installer and the other content. Add "
           "them, "
           "then check with:\n  mediatool validate " +
           (first.find(' ') == std::string::npos ? first : "\"" + first + "\"") + "\n";
}

}  // namespace launcher::mediatool
