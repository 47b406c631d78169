#include "mediatool/run/outbox.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <utility>

#include "mediatool/base/owners.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kPiece = 1 << 16;  // bytes, so that a slow taker is seen to take

class Lock {
  public:
    explicit Lock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { ReleaseSRWLockExclusive(&lock_); }

  private:
    SRWLOCK& lock_;
};

// The size of the first piece: lines as a whole, or, of a line that is longer, characters.
std::size_t FirstPiece(std::string_view text) {
    if (text.size() <= kPiece) return text.size();
    const std::size_t lineEnd = text.rfind('\n', kPiece - 1);
    if (lineEnd != std::string_view::npos) return lineEnd + 1;
    const std::string_view rest = text.substr(kPiece);
    const auto isInCharacter = [](char byte) { return (byte & 0xC0) == 0x80; };
    return kPiece +
           static_cast<std::size_t>(std::ranges::find_if_not(rest, isInCharacter) - rest.begin());
}

}  // namespace

class Outbox::Queue {
  public:
    void Add(const Take& take, std::string_view text) {
        const Lock lock(lock_);
        while (!text.empty()) {
            const std::size_t size = FirstPiece(text);
            pieces_.emplace_back(take, text.substr(0, size));
            waiting_ += size;
            text.remove_prefix(size);
        }
        WakeAllConditionVariable(&changed_);
    }

    std::size_t Waiting() {
        const Lock lock(lock_);
        return waiting_;
    }

    // Until Close, and what is there then.
    void TakeAll() {
        for (;;) {
            std::pair<Take, std::string> piece;
            {
                const Lock lock(lock_);
                while (pieces_.empty() && !closed_)
                    SleepConditionVariableSRW(&changed_, &lock_, INFINITE, 0);
                if (pieces_.empty()) return;
                piece = pieces_.front();
            }
            piece.first(piece.second);
            const Lock lock(lock_);
            pieces_.pop_front();  // now it is taken
            waiting_ -= piece.second.size();
            WakeAllConditionVariable(&changed_);
        }
    }

    std::size_t Finish(DWORD patience) {
        const Lock lock(lock_);
        while (!pieces_.empty() && SleepConditionVariableSRW(&changed_, &lock_, patience, 0)) {
        }
        std::size_t lines = 0;
        for (const auto& piece : pieces_)
            lines += static_cast<std::size_t>(std::ranges::count(piece.second, '\n'));
        return lines;
    }

    void Close() {
        const Lock lock(lock_);
        closed_ = true;
        WakeAllConditionVariable(&changed_);
    }

    static DWORD WINAPI Thread(void* queue) {
        const std::unique_ptr<std::shared_ptr<Queue>> own(
            static_cast<std::shared_ptr<Queue>*>(queue));
        (*own)->TakeAll();
        return 0;
    }

  private:
    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE changed_ = CONDITION_VARIABLE_INIT;
    std::deque<std::pair<Take, std::string>> pieces_;
    std::size_t waiting_ = 0;  // bytes of all pieces
    bool closed_ = false;
};

Outbox::Outbox() : queue_(std::make_shared<Queue>()) {
    auto threads = std::make_unique<std::shared_ptr<Queue>>(queue_);
    const KernelObject thread(CreateThread(nullptr, 0, &Queue::Thread, threads.get(), 0, nullptr));
    hasThread_ = static_cast<bool>(thread);
    if (thread) static_cast<void>(threads.release());  // the thread's now
}

Outbox::~Outbox() {
    queue_->Close();
}

void Outbox::Add(const Take& take, const std::string& text) {
    if (hasThread_)
        queue_->Add(take, text);
    else
        take(text);
}

std::size_t Outbox::Waiting() const {
    return queue_->Waiting();
}

std::size_t Outbox::Finish(DWORD patience) {
    return queue_->Finish(patience);
}

}  // namespace launcher::mediatool
