// Small file helpers that suites share.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

// The whole file as bytes; empty when it can't be read.
inline std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}
