#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher::mediatool {
namespace {

Rehearsal* current = nullptr;

}  // namespace

Rehearsal* CurrentRehearsal() {
    return current;
}

bool IsTooLong(std::size_t length, std::size_t limit) {
    if (length <= limit) return false;
    current->journal.metLongPaths = true;
    return !current->machine.longPaths.value_or(false);
}

RehearsalScope::RehearsalScope(Rehearsal& rehearsal) {
    current = &rehearsal;
}

RehearsalScope::~RehearsalScope() {
    current = nullptr;
}

}  // namespace launcher::mediatool
