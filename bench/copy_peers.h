#pragma once

#include <functional>
#include <string>
#include <vector>

namespace launcher::bench {

// One way to copy a folder with all it holds to a new folder. Throws when that fails.
struct CopyPeer {
    const wchar_t* key;  // on the command line
    const char* name;    // in the tables
    std::function<void(const std::wstring& source, const std::wstring& destination)> copy;
};

// The launcher's own Copy first, then what anyone would use instead.
const std::vector<CopyPeer>& CopyPeers();

}  // namespace launcher::bench
