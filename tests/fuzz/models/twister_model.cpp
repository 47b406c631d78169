#include "tests/fuzz/models/twister_model.h"

namespace launcher::fuzz {

Twister::Twister(std::uint32_t seed) {
    for (std::uint32_t i = 0; i < kSize; ++i) {
        last_[i] = seed;
        seed = 1812433253u * (seed ^ seed >> 30) + i + 1;
    }
}

std::uint32_t Twister::Next() {
    constexpr std::uint32_t kTop = 0x80000000u;
    const std::uint32_t mixed = (last_[oldest_] & kTop) | (last_[(oldest_ + 1) % kSize] & ~kTop);
    const std::uint32_t matrix = mixed % 2 != 0 ? 0x9908B0DFu : 0;
    std::uint32_t number = last_[(oldest_ + 397) % kSize] ^ mixed >> 1 ^ matrix;
    last_[oldest_] = number;
    oldest_ = (oldest_ + 1) % kSize;
    number ^= number >> 11;
    number ^= number << 7 & 0x9D2C5680u;
    number ^= number << 15 & 0xEFC60000u;
    return number ^ number >> 18;
}

}  // namespace launcher::fuzz
