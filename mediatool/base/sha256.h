#pragma once

#include <string>
#include <string_view>

#include "mediatool/base/owners.h"

namespace launcher::mediatool {

// A SHA-256 checksum, by Windows' own cryptography (bcrypt.dll). Throws std::runtime_error when
// that is not to be had.
class Sha256 {
  public:
    Sha256();

    void Add(std::string_view bytes);
    // Of all that was added, as 64 hexadecimal digits in lower case. To be asked once.
    std::string Digits();

  private:
    HashHandle hash_;
};

}  // namespace launcher::mediatool
