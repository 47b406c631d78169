// How boxes are answered, with boxes of this process.

#include "mediatool/run/box_watcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <iterator>
#include <thread>
#include <utility>

#include "tests/e2e/support/launcher_test.h"
#include "tests/support/hook.h"

namespace launcher::mediatool {
namespace {

// A message box in a thread of its own, and what it will be answered.
std::future<int> ShowOwnBox(UINT style) {
    std::packaged_task<int()> show(
        [style] { return MessageBoxW(nullptr, L"one\ntwo", L"a box", style); });
    std::future<int> answer = show.get_future();
    std::thread(std::move(show)).detach();
    return answer;
}

bool IsAnswered(const std::future<int>& answer) {
    return answer.wait_for(std::chrono::milliseconds(20)) == std::future_status::ready;
}

// 0 for none. Looks again: a person presses again as well.
int AnswerTo(std::future<int>& answer, BoxWatcher& watcher, std::vector<SeenBox>& boxes) {
    for (int i = 0; i < 500 && !IsAnswered(answer); ++i)
        std::ranges::move(watcher.Look({}), std::back_inserter(boxes));
    return IsAnswered(answer) ? answer.get() : 0;
}

struct ButtonRow : test::Row {
    UINT buttons;
    int pressed;
};
class ButtonOfABox : public testing::TestWithParam<ButtonRow> {};

TEST_P(ButtonOfABox, IsTheOnlyOneOrTheOneThatEndsTheProgram) {
    BoxWatcher watcher(GetCurrentProcessId());
    std::vector<SeenBox> boxes;
    std::future<int> answer = ShowOwnBox(GetParam().buttons);
    EXPECT_EQ(AnswerTo(answer, watcher, boxes), GetParam().pressed);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "one\ntwo");
    EXPECT_FALSE(boxes[0].dialog);
}

INSTANTIATE_TEST_SUITE_P(Table, ButtonOfABox,
                         testing::Values(ButtonRow{{"Ok"}, MB_OK, IDOK},
                                         ButtonRow{{"Abort"}, MB_ABORTRETRYIGNORE, IDABORT},
                                         ButtonRow{{"Cancel"}, MB_RETRYCANCEL, IDCANCEL}),
                         test::RowName);

// A box that is hung leaves a question for its text open: how long it is, or what it is.
class SilentBox : public testing::TestWithParam<UINT> {};

TEST_P(SilentBox, IsGivenTimeAndThenAnsweredAllTheSame) {
    BoxWatcher watcher(GetCurrentProcessId());
    std::vector<SeenBox> boxes;
    std::future<int> answer = ShowOwnBox(MB_OK);
    bool asked = false;
    ULONGLONG later = 0;
    {
        const test::Hook<decltype(&SendMessageTimeoutW)> silence(
            "SendMessageTimeoutW", [&](auto real, HWND window, UINT message, auto... rest) {
                if (message != GetParam()) return real(window, message, rest...);
                asked = true;
                SetLastError(ERROR_TIMEOUT);
                return LRESULT{0};
            });
        const test::Hook<decltype(&GetTickCount64)> clock(
            "GetTickCount64", [&later](auto real) { return real() + later; });
        for (int i = 0; i < 500 && !asked; ++i) {
            Sleep(20);
            EXPECT_TRUE(watcher.Look({}).empty());
        }
        later = 5000;
        boxes = watcher.Look({});
    }
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "(a box that does not tell its text)");
    EXPECT_EQ(AnswerTo(answer, watcher, boxes), IDOK);
    EXPECT_EQ(boxes.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Questions, SilentBox, testing::Values(WM_GETTEXTLENGTH, WM_GETTEXT),
                         [](const auto& row) {
                             return std::string(row.param == WM_GETTEXT ? "Text" : "Length");
                         });

// Windows' report of a crash is no message box.
TEST(ReportWithoutButtons, IsTakenDownAndClosed) {
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"The program has stopped", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                        0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr);
    constexpr DWORD kOther = 1;
    const std::vector<SeenBox> boxes = BoxWatcher(kOther).Look({GetCurrentProcessId()});
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageW(&message);
    EXPECT_FALSE(IsWindow(window));
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "The program has stopped");
    EXPECT_FALSE(boxes[0].dialog);
}

}  // namespace
}  // namespace launcher::mediatool
