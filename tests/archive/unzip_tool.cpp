#include "archive/modUnzip.h"

#include <cstdio>

/// unzip_tool ARCHIVE [TARGET [PASSWORD]]: extracts (without TARGET lists) and prints the messages.
int main(int argc, char** argv) {
    if (argc < 2 || argc > 4)
        return 64;
    vesk::UnzipCallbacks callbacks;
    if (argc == 4)
        callbacks.password = [&](bool) { return std::string(argv[3]); };
    vesk::UnzipFile(argv[1], argc > 2 ? argv[2] : "", callbacks);
    std::fputs(vesk::UnzipMessages().c_str(), stdout);
}
