#include "mediatool/run/run_log.h"

#include <atomic>

#include "fs/owners.h"
#include "fs/text.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

struct RunLog::File {
    FileHandle handle;
    std::atomic<DWORD> error = ERROR_SUCCESS;  // after which nothing more is written

    // The file gets CR LF.
    void Write(std::string text) {
        if (error != ERROR_SUCCESS) return;
        ReplaceAll(text, "\n", "\r\n", 0);
        DWORD written = 0;
        if (WriteFile(handle.Get(), text.data(), static_cast<DWORD>(text.size()), &written,
                      nullptr) &&
            written == text.size())
            return;
        const DWORD reason = GetLastError();
        error = reason != ERROR_SUCCESS ? reason : ERROR_WRITE_FAULT;
    }
};

RunLog::RunLog(const std::string& path) : name_(path), file_(std::make_shared<File>()) {
    file_->handle =
        FileHandle(CreateFileW(Extended(FullPath(path).Text()).c_str(),
                               FILE_APPEND_DATA | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_ALWAYS, FILE_FLAG_WRITE_THROUGH, nullptr));
    if (file_->handle) return;
    const std::string reason = LastErrorText();
    throw BadInput("The log " + Quoted(name_) + " cannot be written: " + reason + ".");
}

void RunLog::Begin(const std::string& heading) {
    outbox_.Add([file = file_](const std::string& text) { file->Write(text); }, heading + "\n");
    const bool isStuck = outbox_.Finish() > 0;
    if (isStuck)
        throw BadInput("The log " + Quoted(name_) +
                       " cannot be written: its disk does not answer.");
    if (file_->error != ERROR_SUCCESS)
        throw BadInput("The log " + Quoted(name_) +
                       " cannot be written: " + ErrorText(file_->error) + ".");
}

void RunLog::Add(const std::string& lines) {
    const std::string number = std::to_string(GetCurrentProcessId()) + "  ";
    std::string numbered;  // in one pass: these may be megabytes
    for (std::size_t begin = 0, end = 0; begin < lines.size(); begin = end) {
        end = lines.find('\n', begin) + 1;
        numbered.append(number).append(lines, begin, end - begin);
    }
    outbox_.Add([file = file_](const std::string& text) { file->Write(text); }, numbered);
}

bool RunLog::IsFull() const {
    return outbox_.Waiting() > kMostWaiting;
}

std::optional<std::string> RunLog::NewFailure() {
    if (failureIsTold_ || file_->error == ERROR_SUCCESS) return std::nullopt;
    failureIsTold_ = true;
    return "The log " + Quoted(name_) + " can no longer be written: " + ErrorText(file_->error) +
           ".";
}

std::optional<std::string> RunLog::Finish() {
    const std::size_t lines = outbox_.Finish();
    if (lines == 0) return NewFailure();
    return "The log " + Quoted(name_) + " did not take everything: its disk does not answer; " +
           Counted(lines, "line") + " may be missing.";
}

}  // namespace launcher::mediatool
