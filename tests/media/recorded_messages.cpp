#include "tests/media/recorded_messages.h"

#include <stdexcept>
#include <utility>

namespace launcher {
namespace {

std::vector<test::Message>& Record() {
    static std::vector<test::Message> record;
    return record;
}

}  // namespace

// In place of launcher/message.cpp, which the linker leaves out because all it defines is here.

void ReportMessage(const LaunchOptions&, const std::string& text, Severity severity, bool noBox) {
    using Kind = test::Message::Kind;
    Record().push_back({severity, text, noBox ? Kind::NeverBoxed : Kind::MayBeBoxed});
}

void TraceMessage(const LaunchOptions&, const std::string& text, Severity severity) {
    Record().push_back({severity, text});
}

void ReportErrorAndExit(const LaunchOptions&, const std::string& text) {
    throw std::logic_error("the process would end: " + text);
}

void ReportLastErrorAndExit(const LaunchOptions&, std::string_view, std::string_view text) {
    throw std::logic_error("the process would end: " + std::string(text));
}

namespace test {

void PrintTo(const Message& message, std::ostream* out) {
    constexpr const char* kSeverities[] = {"Plain", "Info", "Warning", "Error"};
    constexpr const char* kKinds[] = {"", " (may be boxed)", " (never boxed)"};
    *out << kSeverities[static_cast<unsigned>(message.severity)]
         << kKinds[static_cast<unsigned>(message.kind)] << " \"" << message.text << '"';
}

std::vector<Message> TakeMessages() {
    return std::exchange(Record(), {});
}

}  // namespace test
}  // namespace launcher
