#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace launcher::mediatool {

// A message of the launcher that is known, why it comes, and what to do about it.
struct Remedy {
    std::string message;  // its beginning; "..." stands for any text
    std::string cause;
    std::string remedy;
};

// The tables of docs/messages.md; CMake makes the text from that page.
extern const char kMessagesPage[];

// The remedies in the tables of a page like docs/messages.md: the messages stand in `code` in the
// first of three columns, the causes in the second, the remedies in the third.
std::vector<Remedy> RemediesOn(std::string_view page);

// What that page says of a message, which is its full text; nothing for one that it does not have.
std::optional<Remedy> KnownMessage(const std::string& message);
std::optional<std::string> RemedyFor(const std::string& message);

}  // namespace launcher::mediatool
