#include "fs/exceptions.h"

#include <windows.h>

#include <cstring>

#include "fs/encoding.h"
#include "fs/errno_code.h"
#include "fs/owners.h"

namespace launcher {

std::string FormatSystemMessage(std::uint32_t code, std::uint32_t flags) {
    LocalMemory<wchar_t> text;
    // With FORMAT_MESSAGE_ALLOCATE_BUFFER the buffer argument is really a pointer to a pointer.
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | flags, nullptr,
                       code, 0, reinterpret_cast<wchar_t*>(text.Put()), 0, nullptr);
    return length == 0 ? std::string() : ToNarrow(text.Get());
}

std::string SystemErrorText(std::uint32_t code) {
    if (code == 0) return {};
    std::string text = FormatSystemMessage(code, FORMAT_MESSAGE_IGNORE_INSERTS);
    if (text.ends_with("\r\n")) text.resize(text.size() - 2);
    return text;
}

std::string ErrnoText(int value) {
    return std::strerror(value);
}

ZEPInsException::ZEPInsException(const std::string& message) : runtime_error(message + "\n") {}

ZEPInsException::ZEPInsException(const std::string& message, std::uint32_t code)
    : runtime_error(message + " - " + SystemErrorText(code) + "\n") {}

ZEPInsExceptionErrno::ZEPInsExceptionErrno(const std::string& message, int value)
    : runtime_error(message + " - " + ErrnoText(value) + "\n") {}

void ThrowLastError(std::string_view text, std::string_view object) {
    const DWORD error = GetLastError();
    throw ZEPInsException(std::string(text).append(object), error);
}

void ThrowLastErrorAsErrno(std::string_view text, std::string_view object) {
    const DWORD error = GetLastError();
    throw ZEPInsExceptionErrno(std::string(text).append(object), ErrnoFromWindowsError(error));
}

}  // namespace launcher
