#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace launcher::fuzz {

// Takes the bytes of one input apart. Reading past the end gives zeros and empty texts, so that
// every input means something.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool AtEnd() const { return rest_.empty(); }
    unsigned Byte();
    // A number below `limit`.
    unsigned Below(unsigned limit) { return Byte() % limit; }
    // A text made mostly of the characters of `alphabet`, those that matter to the code at hand:
    // one byte for each, up to a byte 0xFF. The byte after 0xFE stands for itself.
    std::string Text(std::string_view alphabet);
    // All that is left, as it is.
    std::string Rest();

  private:
    std::string_view rest_;
};

// The target: one input, the launcher's answers against the models'.
void TestOneInput(Input input);

}  // namespace launcher::fuzz
