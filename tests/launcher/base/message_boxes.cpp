#include "tests/launcher/base/message_boxes.h"

#include <cstdio>

#include "fs/encoding.h"

namespace launcher::test {

MessageBoxRecorder* MessageBoxRecorder::active_ = nullptr;

MessageBoxRecorder::MessageBoxRecorder() {
    active_ = this;
}

MessageBoxRecorder::~MessageBoxRecorder() {
    active_ = nullptr;
}

int WINAPI MessageBoxRecorder::RecordMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption,
                                                UINT style) {
    active_->boxes_.push_back({owner, text, caption != nullptr, style});
    return active_->answer_;
}

int WINAPI MessageBoxPrinter::PrintMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption,
                                              UINT style) {
    const bool usual = MessageBox{owner, text, caption != nullptr, style} == LauncherBox(text);
    std::fprintf(stderr, "%s: %s\n", usual ? "box" : "unusual box", ToNarrow(text).c_str());
    return IDOK;
}

}  // namespace launcher::test
