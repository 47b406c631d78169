#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tools/mediatool/commands.h"

int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(launcher::ToNarrow(argv[i]));
    return launcher::mediatool::RunMediatool(arguments);
}
