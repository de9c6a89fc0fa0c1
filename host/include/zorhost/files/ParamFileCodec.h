// The .zorparam byte form of a parameter file (see host/src/files/ZORPARAM_FORMAT.md).
#pragma once

#include <cstdint>
#include <string>

namespace zorhost::files {

class CParamFile;

inline constexpr char kZorparamMagic[8] = {'Z', 'O', 'R', 'P', 'A', 'R', 'A', 'M'};
inline constexpr std::uint16_t kZorparamVersion = 1;
inline constexpr std::size_t kZorparamHeaderBytes = 20;

// The whole object as bytes: header, then the checked payload.
std::string EncodeParamFile(CParamFile& file);
// Fills `file` (which must be empty) from `bytes`. False with the reason in `error`: a
// foreign or newer file, a truncated one, a checksum that doesn't match, or contents that
// contradict themselves, each with the byte offset where it was found.
bool DecodeParamFile(const std::string& bytes, CParamFile& file, std::string& error);

} // namespace zorhost::files
