#pragma once

#include <stdexcept>

namespace launcher::mediatool {

// What the user gave cannot be worked on; what() is one sentence.
class BadInput : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What was asked for cannot be done; what() is one sentence.
class Refused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace launcher::mediatool
