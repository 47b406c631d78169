#include "mediatool/create_command.h"

#include <charconv>
#include <map>
#include <nlohmann/json.hpp>

#include "mediatool/arguments.h"
#include "mediatool/base/console.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/json.h"
#include "mediatool/commands.h"
#include "mediatool/create/create.h"

namespace launcher::mediatool {
namespace {

const std::map<std::string, Layout> kLayouts = {
    {"one-folder", Layout::OneFolder}, {"siblings", Layout::Siblings}, {"outer", Layout::Outer}};

// CLI11 would only say that it cannot convert the text.
int NumberGiven(const std::string& option, const std::string& text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end)
        throw BadInput(option + " takes a number from 1 to 99, not \"" + text + "\".");
    return number;
}

}  // namespace

CreateCommand::CreateCommand(CLI::App& app)
    : command(app.add_subcommand("create", "Write the count file and markers of a disc set.")) {
    command->add_option("--id", request_.id, "The identifier of the media.")->required();
    command->add_option("--layout", layout_, "How the volumes lie.")
        ->required()
        ->check(OneOf({"one-folder", "siblings", "outer"}));
    command->add_option("--volumes", volumes_, "How many volumes: 1 to 99.")->required();
    MayBeGivenAgain(command->add_option(
                        "--from", request_.from,
                        "A folder with the content of a volume, once for each, volume 1 first."))
        ->type_name("FOLDER");
    ofOuter_ = {
        command->add_option("--outer-id", request_.outerId,
                            "The identifier of the outer volumes (default: ID-outer)."),
        command->add_option("--first-outer", firstOuter_,
                            "The number of the first outer volume (default: 1)."),
        command->add_option("--inner", request_.inner,
                            "The folder in each outer volume that the media is in (default: "
                            "media).")};
    command->add_flag("--force", request_.force, "Write over files that are there.");
    command->add_flag("--checksums", request_.checksums,
                      "Write a list of checksums, SHA256SUMS, into each volume.");
    command->add_flag("--dry-run", request_.isDry, "Only say what would be written.");
    command->add_flag("--json", json_, "Print JSON.");
    command->add_option("out", request_.out, "The folder to write into.")->required();
    command->footer(
        "Exit code: 0 written, 1 not written, 2 wrong use. When writing fails half-way, new "
        "files are taken back; with --force, files may have been written over before.");
}

int CreateCommand::Run() {
    request_.layout = kLayouts.at(layout_);
    request_.volumes = NumberGiven("--volumes", volumes_);
    for (const CLI::Option* option : ofOuter_)
        if (option->count() > 0 && request_.layout != Layout::Outer)
            throw BadInput(option->get_name() + " goes with --layout outer only.");
    if (ofOuter_[1]->count() > 0) request_.firstOuter = NumberGiven("--first-outer", firstOuter_);
    if (ofOuter_.front()->count() > 0 && request_.outerId.empty())
        throw BadInput("--outer-id is empty.");
    Progress line;
    request_.progress = ShownOn(line);
    const Creation creation = Create(request_);
    line.Clear();
    if (request_.isDry) {
        PrintOut(json_ ? Printed(JsonOfDry(creation, request_)) : TextOfDry(creation));
        return kSuccess;
    }
    PrintOut(json_ ? Printed(JsonOf(creation, request_)) : TextOf(creation) + NextStep(creation));
    return kSuccess;
}

ChecksumCommand::ChecksumCommand(CLI::App& app)
    : command(app.add_subcommand("checksum", "Write the checksums of a medium's files.")) {
    command
        ->add_option("media", request_.folders,
                     "The medium's folder; or the folders of its volumes.")
        ->required();
    command->add_flag("--force", request_.force, "Write over lists that are there.");
    command->add_flag("--json", json_, "Print JSON.");
    command->footer(
        "Writes a list SHA256SUMS, as sha256sum does, into the root of each volume.\n"
        "Exit code: 0 written, 1 not written, 2 wrong use.");
}

int ChecksumCommand::Run() {
    Progress line;
    request_.progress = ShownOn(line);
    const Checksums checksums = WriteChecksums(request_);
    line.Clear();
    PrintOut(json_ ? Printed(JsonOf(checksums)) : TextOf(checksums));
    return kSuccess;
}

}  // namespace launcher::mediatool
