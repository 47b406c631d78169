#include "bench/tree.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace launcher::bench {
namespace {

using Random = std::mt19937;

// Random words, so that no file system can store less than it is given.
void WriteFile(const std::filesystem::path& path, std::uint32_t size, Random& random) {
    std::ofstream file(path, std::ios::binary);
    std::array<Random::result_type, 16384> block;
    for (std::uint32_t left = size; left > 0;) {
        std::generate(block.begin(), block.end(), std::ref(random));
        const std::uint32_t count = std::min<std::uint32_t>(left, sizeof block);
        file.write(reinterpret_cast<const char*>(block.data()),
                   static_cast<std::streamsize>(count));
        left -= count;
    }
    file.close();
    if (!file) throw std::runtime_error("a file of the tree cannot be written");
}

}  // namespace

void MakeTree(const std::filesystem::path& root, const TreeShape& shape) {
    Random random(20240229);
    for (unsigned i = 0; i < shape.files; ++i) {
        const auto folder = root / ("folder" + std::to_string(i % shape.folders));
        std::filesystem::create_directories(folder);
        const std::uint32_t size = shape.smallest + random() % (shape.largest - shape.smallest + 1);
        WriteFile(folder / ("file" + std::to_string(i) + ".bin"), size, random);
    }
}

TreeSize MeasureTree(const std::filesystem::path& root) {
    TreeSize size;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        ++size.files;
        size.bytes += entry.file_size();
    }
    return size;
}

}  // namespace launcher::bench
