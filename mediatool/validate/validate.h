#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "mediatool/base/amounts.h"
#include "mediatool/base/json.h"
#include "mediatool/media/launcher_view.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

struct ValidateRequest {
    std::vector<std::string> folders;
    // The temporary folder of the users that the medium is for, a full path; nothing for the
    // longest usual one.
    std::optional<std::string> temp;
    bool isStrict = false;  // warnings count as errors do
    bool content = true;    // verify it where there are lists of checksums
    std::function<void(std::size_t entries)> progress;
    TellAmounts verifying = [](const Amounts&) {};
};

struct Validation {
    std::vector<std::string> media;  // the folders, absolute
    LauncherView view;
    Amounts verified;  // by lists of checksums
    Findings findings;
    bool isStrict = false;

    bool IsClean() const;
};

// Looks for mistakes in a medium. Throws BadInput.
Validation Validate(const ValidateRequest& request);

// What it has found, for people and for programs.
std::string TextOf(const Validation& validation);
Json JsonOf(const Validation& validation);

}  // namespace launcher::mediatool
