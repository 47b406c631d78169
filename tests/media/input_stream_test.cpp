#include "media/input_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

namespace launcher {
namespace {

// A stream whose bytes come in blocks of one size.
class BlockStream : public InputStream {
  public:
    BlockStream(std::string_view bytes, std::size_t blockSize)
        : bytes_(bytes), blockSize_(blockSize) {}

  private:
    std::string_view NextBlock() override {
        const std::string_view block = bytes_.substr(0, blockSize_);
        bytes_.remove_prefix(block.size());
        return block;
    }

    std::string_view bytes_;
    std::size_t blockSize_;
};

// Reads one line after the other from both, two more than there are.
void ExpectSameLines(InputStream& input, const std::string& content) {
    std::istringstream expected(content);
    std::string line = "from before";
    std::string expectedLine = line;
    for (std::ptrdiff_t i = std::ranges::count(content, '\n') + 3; i > 0; --i) {
        const bool read = static_cast<bool>(input.ReadLine(line));
        const bool expectedRead = static_cast<bool>(std::getline(expected, expectedLine));
        ASSERT_EQ(read, expectedRead);
        ASSERT_EQ(line, expectedLine);
    }
}

// Every short text of these bytes, in one piece and in blocks.
TEST(InputStream, ReadsAsTheStandardLibraryDoes) {
    constexpr std::string_view kBytes("a\n\r\0", 4);
    for (unsigned length = 0; length <= 5; ++length) {
        for (unsigned number = 0; number < 1u << 2 * length; ++number) {
            std::string content;
            for (unsigned i = 0; i < length; ++i)
                content += kBytes[number >> 2 * i & 3];
            SCOPED_TRACE(testing::PrintToString(content));
            InputStream whole(content);
            ExpectSameLines(whole, content);
            for (const std::size_t blockSize : {1u, 2u, 3u}) {
                BlockStream blocks(content, blockSize);
                ExpectSameLines(blocks, content);
            }
        }
    }
}

// Where the standard library's streams go bad, too.
TEST(InputStream, FailsOnALineThatTheMemoryCannotHold) {
    class EndlessStream : public InputStream {
        std::string_view NextBlock() override {
            if (++blocks_ == 3) throw std::bad_alloc();
            return "bytes";
        }
        int blocks_ = 0;
    } input;
    std::string line;
    EXPECT_FALSE(input.ReadLine(line));
    EXPECT_EQ(line, "bytesbytes");
    EXPECT_FALSE(input.ReadLine(line));
    EXPECT_EQ(line, "bytesbytes");
}

}  // namespace
}  // namespace launcher
