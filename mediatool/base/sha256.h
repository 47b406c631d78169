#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace launcher::mediatool {

// A SHA-256 checksum, by Windows' own cryptography (bcrypt.dll). Throws std::runtime_error when
// that is not to be had.
class Sha256 {
  public:
    Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    ~Sha256();

    void Add(std::string_view bytes);
    // Of all that was added, as 64 hexadecimal digits in lower case. To be asked once.
    std::string Digits();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace launcher::mediatool
