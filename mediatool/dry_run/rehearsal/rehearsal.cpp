#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher::mediatool {
namespace {

Rehearsal* current = nullptr;

}  // namespace

Rehearsal* CurrentRehearsal() {
    return current;
}

RehearsalScope::RehearsalScope(Rehearsal& rehearsal) {
    current = &rehearsal;
}

RehearsalScope::~RehearsalScope() {
    current = nullptr;
}

}  // namespace launcher::mediatool
