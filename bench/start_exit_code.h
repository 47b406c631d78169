#pragma once

namespace launcher::bench {

// Of the child that the launchers start, and so of the launchers.
inline constexpr int kChildExitCode = 7;

}  // namespace launcher::bench
