#include "mediatool/run/screen.h"

#include <windows.h>

#include <algorithm>
#include <deque>
#include <utility>

#include "mediatool/base/console.h"
#include "mediatool/run/owners.h"

namespace launcher::mediatool {
namespace {

constexpr DWORD kReaderTime = 10000;     // milliseconds
constexpr std::size_t kPiece = 1 << 14;  // bytes at a time, so that a slow reader is seen to read

class Lock {
  public:
    explicit Lock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { ReleaseSRWLockExclusive(&lock_); }

  private:
    SRWLOCK& lock_;
};

}  // namespace

class Screen::Queue {
  public:
    using Print = void (*)(const std::string&);

    void Add(Print print, const std::string& text) {
        const Lock lock(lock_);
        for (std::size_t start = 0; start < text.size();) {
            // Not in the middle of a character.
            std::size_t end = std::min(start + kPiece, text.size());
            while (end < text.size() && (text[end] & 0xC0) == 0x80)
                ++end;
            pieces_.emplace_back(print, text.substr(start, end - start));
            start = end;
        }
        WakeAllConditionVariable(&changed_);
    }

    // Prints until End, and what is there then.
    void PrintAll() {
        for (;;) {
            std::pair<Print, std::string> piece;
            {
                const Lock lock(lock_);
                while (pieces_.empty() && !ended_)
                    SleepConditionVariableSRW(&changed_, &lock_, INFINITE, 0);
                if (pieces_.empty()) return;
                piece = pieces_.front();
            }
            piece.first(piece.second);
            const Lock lock(lock_);
            pieces_.pop_front();  // now it is written
            WakeAllConditionVariable(&changed_);
        }
    }

    void End() {
        const Lock lock(lock_);
        ended_ = true;
        WakeAllConditionVariable(&changed_);
        while (!pieces_.empty() && SleepConditionVariableSRW(&changed_, &lock_, kReaderTime, 0)) {
        }
    }

    static DWORD WINAPI Thread(void* queue) {
        const std::unique_ptr<std::shared_ptr<Queue>> own(
            static_cast<std::shared_ptr<Queue>*>(queue));
        (*own)->PrintAll();
        return 0;
    }

  private:
    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE changed_ = CONDITION_VARIABLE_INIT;
    std::deque<std::pair<Print, std::string>> pieces_;
    bool ended_ = false;
};

Screen::Screen() : queue_(std::make_shared<Queue>()) {
    auto threads = std::make_unique<std::shared_ptr<Queue>>(queue_);
    const KernelObject thread(CreateThread(nullptr, 0, &Queue::Thread, threads.get(), 0, nullptr));
    if (thread) static_cast<void>(threads.release());  // the thread's now
}

Screen::~Screen() {
    queue_->End();
}

void Screen::Out(const std::string& text) {
    queue_->Add(&PrintOut, text);
}

void Screen::Error(const std::string& text) {
    queue_->Add(&PrintError, text);
}

}  // namespace launcher::mediatool
