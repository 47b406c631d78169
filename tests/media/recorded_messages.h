#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "launcher/base/message.h"

namespace launcher::test {

// A test program that links recorded_messages.cpp shows nothing: its messages are kept here, in
// order, with what a console line or a box alone would not tell.
struct Message {
    enum class Kind {
        Trace,       // TraceMessage
        MayBeBoxed,  // ReportMessage, in a box when boxes are on
        NeverBoxed,  // ReportMessage with `noBox`
    };

    Severity severity;
    std::string text;
    Kind kind = Kind::Trace;

    bool operator==(const Message&) const = default;
};

void PrintTo(const Message& message, std::ostream* out);

// The three forms of trace message.
inline Message Plain(std::string text) {
    return {Severity::Plain, std::move(text)};
}
inline Message Info(std::string text) {
    return {Severity::Info, std::move(text)};
}
inline Message Warning(std::string text) {
    return {Severity::Warning, std::move(text)};
}

// The messages since the last call.
std::vector<Message> TakeMessages();

}  // namespace launcher::test
