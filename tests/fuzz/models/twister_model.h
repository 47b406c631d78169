#pragma once

#include <array>
#include <cstdint>

namespace launcher::fuzz {

// The 32-bit Mersenne Twister, number by number as its recurrence has it.
// http://www.math.sci.hiroshima-u.ac.jp/m-mat/MT/ARTICLES/mt.pdf
class Twister {
  public:
    explicit Twister(std::uint32_t seed);
    std::uint32_t Next();

  private:
    static constexpr std::size_t kSize = 624;

    std::array<std::uint32_t, kSize> last_{};  // the last numbers of the sequence, as a ring
    std::size_t oldest_ = 0;
};

}  // namespace launcher::fuzz
