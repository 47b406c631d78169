#pragma once

#include <string>
#include <vector>

#include "mediatool/base/amounts.h"
#include "mediatool/base/json.h"

namespace launcher::mediatool {

struct ChecksumRequest {
    std::vector<std::string> folders;  // of a medium, or of its volumes
    bool force = false;                // write over lists that are there
    TellAmounts progress = [](const Amounts&) {};
};

struct Checksums {
    std::vector<std::string> written;  // the lists
    std::size_t files;
    std::uint64_t bytes;
};

// Writes the list of checksums of each volume of a medium: of those that the launcher finds and
// those that are given. Throws BadInput for what is no medium, and Refused when a list is there
// already, when the set is unfinished, and when a file cannot be read or a list not written;
// nothing is written then.
Checksums WriteChecksums(const ChecksumRequest& request);

std::string TextOf(const Checksums& checksums);
Json JsonOf(const Checksums& checksums);

}  // namespace launcher::mediatool
