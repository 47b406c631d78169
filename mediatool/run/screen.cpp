#include "mediatool/run/screen.h"

#include "mediatool/base/console.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kScreenKeeps = 8 << 20;  // bytes

}  // namespace

Screen::~Screen() {
    outbox_.Finish();
}

void Screen::Out(const std::string& text) {
    outbox_.Add(&PrintOut, text);
}

void Screen::Error(const std::string& text) {
    outbox_.Add(&PrintError, text);
}

bool Screen::IsFull() const {
    return outbox_.Waiting() > kScreenKeeps;
}

}  // namespace launcher::mediatool
