// Replays corpus files through a fuzz target's entry point, so that ctest keeps every input
// that once crashed a reader from crashing it again, under whatever sanitizers the build
// has. Arguments are files or folders (every file directly inside, in name order).
#include "FuzzSupport.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg(argv[i]);
        if (fs::is_directory(arg)) {
            std::vector<fs::path> inside;
            for (const auto& entry : fs::directory_iterator(arg))
                if (entry.is_regular_file())
                    inside.push_back(entry.path());
            std::sort(inside.begin(), inside.end());
            files.insert(files.end(), inside.begin(), inside.end());
        } else if (fs::is_regular_file(arg)) {
            files.push_back(arg);
        } else {
            std::fprintf(stderr, "%s: no such file or folder\n", argv[i]);
            return 2;
        }
    }
    if (files.empty()) {
        std::fprintf(stderr, "usage: %s FILE|FOLDER...; nothing to replay\n", argv[0]);
        return 2;
    }
    for (const fs::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", files.size());
    return 0;
}
