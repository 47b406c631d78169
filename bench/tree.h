#pragma once

#include <cstdint>
#include <filesystem>

namespace launcher::bench {

struct TreeShape {
    unsigned files;
    unsigned folders;        // side by side, the files spread evenly over them
    std::uint32_t smallest;  // bytes
    std::uint32_t largest;
};

// Makes a new tree, the same for the same shape every time.
void MakeTree(const std::filesystem::path& root, const TreeShape& shape);

struct TreeSize {
    std::uintmax_t files = 0;
    std::uintmax_t bytes = 0;
    bool operator==(const TreeSize&) const = default;
};

TreeSize MeasureTree(const std::filesystem::path& root);

}  // namespace launcher::bench
