#include "tools/mediatool/create.h"

#include <algorithm>

#include "tools/mediatool/files.h"
#include "tools/mediatool/findings.h"
#include "tools/mediatool/marker_bytes.h"
#include "tools/mediatool/markers.h"
#include "tools/mediatool/writer.h"

namespace launcher::mediatool {
namespace {

constexpr int kMostVolumes = 99;

struct TextFile {
    Path path;
    std::string content;
};

struct CopiedFile {
    Path source;
    Path destination;
    std::uint64_t size;
};

// All that is going to be written.
struct Plan {
    std::vector<Path> folders;  // of the volumes
    std::vector<TextFile> texts;
    std::vector<Path> emptyFolders;
    std::vector<CopiedFile> copies;
};

void CheckIdentifier(const std::string& id, const char* option) {
    const std::string name = option;
    if (id.empty()) throw BadInput(name + " is empty.");
    if (HasControlCharacter(id) || id != Trimmed(id))
        throw BadInput(name + " begins or ends with a blank, or has a control character in it.");
}

void CheckRequest(const CreateRequest& request) {
    CheckIdentifier(request.id, "--id");
    if (request.volumes < 1 || request.volumes > kMostVolumes)
        throw BadInput("--volumes takes a number from 1 to 99.");
    if (request.layout == Layout::Outer) {
        if (!request.outerId.empty()) CheckIdentifier(request.outerId, "--outer-id");
        if (request.outerId == request.id) throw BadInput("--outer-id has to differ from --id.");
        if (request.firstOuter < 1 || request.firstOuter > kMostVolumes)
            throw BadInput("--first-outer takes a number from 1 to 99.");
        if (request.inner.find(':') != std::string::npos ||
            request.inner.find("..") != std::string::npos)
            throw BadInput("--inner takes the name of a folder in each outer volume.");
    }
    const auto given = static_cast<int>(request.from.size());
    if (request.layout == Layout::OneFolder ? given > request.volumes
                                            : given != 0 && given != request.volumes)
        throw BadInput("--from takes one folder for each of the " +
                       std::to_string(request.volumes) + " volumes.");
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

void PlanMarkers(const CreateRequest& request, const Path& out, Plan& plan) {
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

bool IsOneInOther(const Path& left, const Path& right) {
    const std::string a = InLowerCase(left.Text()) + "\\";
    const std::string b = InLowerCase(right.Text()) + "\\";
    return a.starts_with(b) || b.starts_with(a);
}

void PlanCopy(const Path& source, const Path& destination, Plan& plan) {
    const auto entries = List(source);
    if (!entries) {
        const std::string reason = LastErrorText();
        throw BadInput("\"" + source.Text() + "\" cannot be listed: " + reason + ".");
    }
    if (entries->empty()) plan.emptyFolders.push_back(destination);
    for (const Entry& entry : *entries) {
        const Path from = Join(source, entry.name);
        const Path to = Join(destination, entry.name);
        if (entry.isFolder)
            PlanCopy(from, to, plan);
        else
            plan.copies.push_back({from, to, entry.size});
    }
}

void PlanContent(const CreateRequest& request, const Path& out, Plan& plan) {
    for (std::size_t i = 0; i < request.from.size(); ++i) {
        const Path source = FullPath(request.from[i]);
        if (!IsFolder(source)) throw BadInput("\"" + request.from[i] + "\" is no folder.");
        if (IsOneInOther(source, out))
            throw BadInput("\"" + source.Text() +
                           "\" and the folder to write into are in one "
                           "another.");
        PlanCopy(source, plan.folders[i], plan);
    }
    // A marker that comes with the content gives way to the one that is written.
    std::erase_if(plan.copies, [&plan](const CopiedFile& copy) {
        return std::ranges::any_of(plan.texts, [&copy](const TextFile& text) {
            return SameName(text.path.Text(), copy.destination.Text());
        });
    });
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
    const Path out = FullPath(request.out);
    if (IsEmpty(out)) throw BadInput("\"" + request.out + "\" is no folder.");
    if (IsFile(out)) throw BadInput("\"" + out.Text() + "\" is a file, not a folder.");
    Plan plan;
    PlanMarkers(request, out, plan);
    PlanContent(request, out, plan);
    if (!request.force) RefuseOverwriting(plan);
    return Carry(plan, request);
}

}  // namespace launcher::mediatool
