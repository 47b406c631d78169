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
    ULONGLONG now = 1'000'000;
    {
        const test::Hook<decltype(&SendMessageTimeoutW)> silence(
            "SendMessageTimeoutW", [&](auto real, HWND window, UINT message, WPARAM first,
                                       LPARAM second, UINT flags, UINT time, auto* told) {
                EXPECT_EQ(flags, UINT{SMTO_ABORTIFHUNG});
                EXPECT_EQ(time, 500u);
                if (message != GetParam())
                    return real(window, message, first, second, flags, time, told);
                asked = true;
                SetLastError(ERROR_TIMEOUT);
                return LRESULT{0};
            });
        const test::Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                          [&now](auto) { return now; });
        for (int i = 0; i < 500 && !asked; ++i) {
            Sleep(20);
            EXPECT_TRUE(watcher.Look({}).empty());
        }
        now += 4999;
        EXPECT_TRUE(watcher.Look({}).empty());
        now += 1;
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

// What a box that a test has made was sent.
std::vector<std::string> sent;

LRESULT CALLBACK WriteDown(HWND box, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_CLOSE) sent.emplace_back("close");
    if (message == WM_COMMAND) {
        const int id = LOWORD(first);
        sent.push_back("press " + std::to_string(id));
        EXPECT_EQ(HIWORD(first), BN_CLICKED);
        EXPECT_EQ(reinterpret_cast<HWND>(second), GetDlgItem(box, id));
    }
    const bool isPress = message == WM_CLOSE || message == WM_COMMAND;
    return isPress ? 0 : DefWindowProcW(box, message, first, second);
}

// A window of this thread, which has no class of its own, and stays whatever it is sent.
class MadeBox {
  public:
    struct Control {
        int id;
        const wchar_t* kind = L"Button";
        DWORD style = WS_VISIBLE;
    };
    explicit MadeBox(const std::vector<Control>& controls, const wchar_t* kind = L"#32770",
                     DWORD style = WS_VISIBLE)
        : window_(CreateWindowExW(0, kind, L"The program has stopped", WS_OVERLAPPEDWINDOW | style,
                                  0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr)) {
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WriteDown));
        for (const Control& each : controls)
            CreateWindowExW(0, each.kind, L"a text", WS_CHILD | each.style, 0, 0, 20, 10, window_,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(each.id)), nullptr,
                            nullptr);
        sent.clear();
    }
    MadeBox(const MadeBox&) = delete;
    MadeBox& operator=(const MadeBox&) = delete;
    ~MadeBox() { DestroyWindow(window_); }

    HWND Child(int id) const { return GetDlgItem(window_, id); }
    // So far.
    static std::vector<std::string> Sent() {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
        return sent;
    }

  private:
    HWND window_;
};

const MadeBox::Control kText = {0xFFFF, L"STATIC"};  // of a message box

struct MadeRow : test::Row {
    std::vector<MadeBox::Control> controls;
    std::string sent;
    SeenBox seen = {"a text", false};
};
class MadeBoxTest : public testing::TestWithParam<MadeRow> {};

TEST_P(MadeBoxTest, IsAnsweredByItsButtons) {
    const MadeBox box(GetParam().controls);
    const std::vector<SeenBox> boxes = BoxWatcher(GetCurrentProcessId()).Look({});
    EXPECT_THAT(MadeBox::Sent(), testing::ElementsAre(GetParam().sent));
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, GetParam().seen.text);
    EXPECT_EQ(boxes[0].dialog, GetParam().seen.dialog);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MadeBoxTest,
    testing::Values(
        MadeRow{{"One"}, {kText, {7}}, "press 7"},
        MadeRow{{"OneIsShown"}, {kText, {IDABORT, L"Button", 0}, {7}}, "press 7"},
        MadeRow{{"Abort"}, {kText, {7}, {IDABORT}, {IDCANCEL}}, "press 3"},
        MadeRow{{"Cancel"}, {kText, {7}, {IDCANCEL}}, "press 2"},
        MadeRow{{"NoneThatEnds"}, {kText, {7}, {8}}, "close"},
        MadeRow{{"Dialog"}, {{IDOK}, {IDCANCEL}}, "press 2", {"The program has stopped", true}},
        MadeRow{{"NoDialog"}, {{IDOK}}, "close", {"The program has stopped", false}}),
    test::RowName);

TEST(MadeBox, IsAnsweredAgainEverySecond) {
    ULONGLONG now = 1'000'000;
    const test::Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                      [&now](auto) { return now; });
    const MadeBox box({kText, {7}});
    BoxWatcher watcher(GetCurrentProcessId());
    EXPECT_EQ(watcher.Look({}).size(), 1u);
    for (std::size_t answers = 1; answers < 4; ++answers) {
        EXPECT_EQ(MadeBox::Sent().size(), answers);
        now += 999;
        EXPECT_TRUE(watcher.Look({}).empty());
        EXPECT_EQ(MadeBox::Sent().size(), answers);
        now += 1;
        EXPECT_TRUE(watcher.Look({}).empty());
    }
}

// Windows gives the number of a box that is gone to another one.
TEST(MadeBox, IsANewOneAfterOneOfTheSameNumber) {
    const MadeBox box({kText, {7}});
    BoxWatcher watcher(GetCurrentProcessId());
    EXPECT_EQ(watcher.Look({}).size(), 1u);
    {
        const test::Hook<decltype(&IsWindow)> gone("IsWindow", [](auto, HWND) { return FALSE; });
        EXPECT_EQ(watcher.Look({}).size(), 0u);
    }
    EXPECT_EQ(watcher.Look({}).size(), 1u);
}

TEST(MadeBox, IsLeftAloneWhereItIsNone) {
    constexpr DWORD kOther = 1;
    {
        const MadeBox other({kText, {7}});
        EXPECT_TRUE(BoxWatcher(kOther).Look({}).empty());
        EXPECT_TRUE(MadeBox::Sent().empty());
    }
    {
        const MadeBox hidden({kText, {7}}, L"#32770", 0);
        EXPECT_TRUE(BoxWatcher(GetCurrentProcessId()).Look({GetCurrentProcessId()}).empty());
        EXPECT_TRUE(MadeBox::Sent().empty());
    }
    const MadeBox noBox({kText, {7}}, L"STATIC");
    EXPECT_TRUE(BoxWatcher(GetCurrentProcessId()).Look({}).empty());
    EXPECT_TRUE(MadeBox::Sent().empty());
}

LRESULT CALLBACK TellLess(HWND control, UINT message, WPARAM first, LPARAM second) {
    return message == WM_GETTEXTLENGTH ? 3 : DefWindowProcW(control, message, first, second);
}

TEST(MadeBox, IsTakenDownAsFarAsItSaidThatItGoes) {
    const MadeBox box({kText, {7}});
    SetWindowLongPtrW(box.Child(kText.id), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&TellLess));
    const std::vector<SeenBox> boxes = BoxWatcher(GetCurrentProcessId()).Look({});
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "a t");
}

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
