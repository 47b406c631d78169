#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace launcher {

// The system's text for a Windows error code, in UTF-8 and in the system's language, without its
// trailing line break. Empty for code 0 and for a code without a system text.
// https://learn.microsoft.com/windows/win32/api/winbase/nf-winbase-formatmessagew
std::string SystemErrorText(std::uint32_t code);

// As SystemErrorText, but as the system gives it, line break included, and requested with `flags`
// (FORMAT_MESSAGE_...) besides those for a system text in an allocated buffer.
std::string FormatSystemMessage(std::uint32_t code, std::uint32_t flags);

// The C runtime's strerror text for an errno value.
std::string ErrnoText(int value);

// A failure whose explanation, if any, is a Windows error code. what() names the operation and the
// object and always ends in a line feed, which message boxes show unchanged.
class ZEPInsException : public std::runtime_error {
  public:
    explicit ZEPInsException(const std::string& message);  // message + "\n"
    ZEPInsException(const std::string& message,
                    std::uint32_t code);  // message + " - " + text + "\n"
};

// A failure explained by an errno value: message + " - " + ErrnoText(value) + "\n".
class ZEPInsExceptionErrno : public std::runtime_error {
  public:
    ZEPInsExceptionErrno(const std::string& message, int value);
};

// Throw what the Windows call just before failed with, named `text` + `object`. The thread's last
// error is read before anything else can change it, so the message comes in two pieces: to join
// them would allocate. The second one gives the errno value of the error (fs/errno_code.h).
[[noreturn]] void ThrowLastError(std::string_view text, std::string_view object = {});
[[noreturn]] void ThrowLastErrorAsErrno(std::string_view text, std::string_view object);

}  // namespace launcher
