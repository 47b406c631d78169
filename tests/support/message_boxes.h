#pragma once

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tests/support/hook.h"

namespace launcher::test {

// While it lives, message boxes are not shown but recorded, each as if closed at once: "TEXT", with
// " (unusual)" after it for one that is not as the launcher's are: no owner, no caption, the error
// icon. With `print`, they are also written to the standard error stream, "box: TEXT" and a line
// end: for tests of a process that ends.
class MessageBoxes {
  public:
    explicit MessageBoxes(bool print = false, int answer = IDOK)
        : hook_("MessageBoxW",
                [this, print, answer](auto, HWND owner, LPCWSTR text, LPCWSTR caption, UINT style) {
                    const bool usual = owner == nullptr && caption == nullptr && style == 0x10;
                    texts.push_back(ToNarrow(text) + (usual ? "" : " (unusual)"));
                    if (print) std::fprintf(stderr, "box: %s\n", texts.back().c_str());
                    return answer;
                }) {}

    std::vector<std::string> texts;

  private:
    Hook<decltype(&MessageBoxW)> hook_;
};

}  // namespace launcher::test
