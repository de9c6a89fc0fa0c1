// SHA-256 of a byte string, for the one-way form of the administrator word.
#pragma once

#include <cstddef>
#include <string>

// The digest of `size` bytes at `data`, as 64 lower-case hexadecimal digits.
std::string Sha256Hex(const void* data, size_t size);
inline std::string Sha256Hex(const std::string& bytes) {
    return Sha256Hex(bytes.data(), bytes.size());
}
