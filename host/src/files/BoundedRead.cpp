#include "zorhost/files/BoundedRead.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorhost::files {

std::string SizeText(std::size_t bytes) {
    if (bytes >= (std::size_t(1) << 20) && bytes % (std::size_t(1) << 20) == 0)
        return std::to_string(bytes >> 20) + " MB";
    if (bytes >= 1024 && bytes % 1024 == 0)
        return std::to_string(bytes >> 10) + " KB";
    return std::to_string(bytes) + " bytes";
}

ReadOutcome ReadFileBounded(const std::string& path, std::size_t maxBytes, std::string& bytes,
                            std::string* error) {
    bytes.clear();
    auto fail = [&](ReadOutcome outcome, const std::string& why) {
        bytes.clear();
        bytes.shrink_to_fit();
        if (error != nullptr)
            *error = why;
        return outcome;
    };
    auto tooLarge = [&] {
        return fail(ReadOutcome::TooLarge, "larger than " + SizeText(maxBytes));
    };

    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return fail(ReadOutcome::CannotRead, std::strerror(errno));
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};

    struct stat st {};
    if (::fstat(fd, &st) != 0)
        return fail(ReadOutcome::CannotRead, std::strerror(errno));
    if (S_ISDIR(st.st_mode))
        return fail(ReadOutcome::CannotRead, std::strerror(EISDIR));
    if (S_ISREG(st.st_mode)) {
        if (std::uint64_t(st.st_size) > maxBytes)
            return tooLarge();
        bytes.reserve(std::size_t(st.st_size));
    }
    // A regular file may still grow while it is read, and a device has no size: the read
    // itself stops one byte past the ceiling, which is enough to know it was passed.
    char buffer[64 * 1024];
    for (;;) {
        const std::size_t want = std::min(sizeof buffer, maxBytes + 1 - bytes.size());
        const ssize_t n = ::read(fd, buffer, want);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return fail(ReadOutcome::CannotRead, std::strerror(errno));
        }
        if (n == 0)
            break;
        bytes.append(buffer, std::size_t(n));
        if (bytes.size() > maxBytes)
            return tooLarge();
    }
    return ReadOutcome::Ok;
}

} // namespace zorhost::files
