// Reading outside input with a ceiling. A regular file larger than the ceiling is refused
// by its size before a byte is read; a pipe or device, which has no size, is read only up
// to the ceiling. So a path that leads to /dev/zero costs one ceiling of memory at most and
// ends with a refusal instead of eating the machine.
#pragma once

#include <cstddef>
#include <string>

namespace zorhost::files {

// Ceilings of the readers. Each is far above the largest real file of its kind.
inline constexpr std::size_t kMaxDeviceFileBytes = std::size_t(64) << 20;
inline constexpr std::size_t kMaxProjectFileBytes = std::size_t(4) << 20;
inline constexpr std::size_t kMaxConfigFileBytes = std::size_t(1) << 20;
inline constexpr std::size_t kMaxGroupFileBytes = std::size_t(64) << 20;

enum class ReadOutcome { Ok, CannotRead, TooLarge };

// The whole of `path` into `bytes` when it holds at most `maxBytes`. Otherwise `bytes` is
// left empty and `error` (may be null) gets the reason in words: the system's own
// ("No such file or directory") or "larger than 4 MB".
ReadOutcome ReadFileBounded(const std::string& path, std::size_t maxBytes, std::string& bytes,
                            std::string* error = nullptr);

// "4 MB", "512 KB", "100 bytes": a ceiling as a message states it.
std::string SizeText(std::size_t bytes);

} // namespace zorhost::files
