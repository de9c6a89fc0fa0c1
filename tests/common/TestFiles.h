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

// Writes `bytes` as the whole file.
inline void Spit(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}
