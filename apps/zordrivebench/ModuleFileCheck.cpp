#include "ModuleFileCheck.h"

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zordrivebench {

namespace {

#if defined(__x86_64__)
constexpr std::uint16_t kMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr std::uint16_t kMachine = EM_AARCH64;
#else
constexpr std::uint16_t kMachine = EM_NONE; // not checked
#endif

class Fd {
public:
    explicit Fd(int fd) : m_fd(fd) {}
    ~Fd() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

bool ReadAt(int fd, void* into, std::size_t size, std::uint64_t offset) {
    auto* p = static_cast<char*>(into);
    while (size > 0) {
        const ssize_t n = ::pread(fd, p, size, off_t(offset));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        p += n;
        size -= std::size_t(n);
        offset += std::uint64_t(n);
    }
    return true;
}

// offset + count * size <= fileSize, without overflow.
bool Inside(std::uint64_t offset, std::uint64_t count, std::uint64_t size, std::uint64_t fileSize) {
    if (offset > fileSize)
        return false;
    if (size != 0 && count > (fileSize - offset) / size)
        return false;
    return true;
}

} // namespace

bool CheckModuleFile(const QString& path, QString* why) {
    auto fail = [&](const QString& text) {
        if (why != nullptr)
            *why = text;
        return false;
    };
    const QByteArray name = path.toLocal8Bit();
    const Fd fd(::open(name.constData(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    if (!S_ISREG(st.st_mode))
        return fail(QStringLiteral("not a regular file"));
    const auto fileSize = std::uint64_t(st.st_size);
    if (fileSize == 0)
        return fail(QStringLiteral("the file is empty"));

    Elf64_Ehdr eh{};
    if (fileSize < sizeof eh || !ReadAt(fd.get(), &eh, sizeof eh, 0) ||
        std::memcmp(eh.e_ident, ELFMAG, SELFMAG) != 0)
        return fail(QStringLiteral("not a shared library (no ELF header)"));
    if (eh.e_ident[EI_CLASS] != ELFCLASS64 || eh.e_ident[EI_DATA] != ELFDATA2LSB ||
        (kMachine != EM_NONE && eh.e_machine != kMachine))
        return fail(QStringLiteral("a library for another kind of machine"));
    if (eh.e_type != ET_DYN)
        return fail(QStringLiteral("not a shared library"));

    const QString cut = QStringLiteral("the file is cut short (%1 bytes; %2)").arg(fileSize);
    if (eh.e_phentsize != sizeof(Elf64_Phdr) || eh.e_phnum == 0 ||
        !Inside(eh.e_phoff, eh.e_phnum, sizeof(Elf64_Phdr), fileSize))
        return fail(cut.arg(QStringLiteral("its program headers lie beyond the end")));
    std::vector<Elf64_Phdr> segments(eh.e_phnum);
    if (!ReadAt(fd.get(), segments.data(), segments.size() * sizeof(Elf64_Phdr), eh.e_phoff))
        return fail(cut.arg(QStringLiteral("its program headers can't be read")));
    for (const Elf64_Phdr& ph : segments)
        if (!Inside(ph.p_offset, 1, ph.p_filesz, fileSize))
            return fail(cut.arg(
                QStringLiteral("a segment ends at byte %1").arg(ph.p_offset + ph.p_filesz)));

    if (eh.e_shoff != 0 || eh.e_shnum != 0) {
        if (eh.e_shentsize != sizeof(Elf64_Shdr) ||
            !Inside(eh.e_shoff, eh.e_shnum, sizeof(Elf64_Shdr), fileSize))
            return fail(cut.arg(QStringLiteral("its section table lies beyond the end")));
        std::vector<Elf64_Shdr> sections(eh.e_shnum);
        if (!ReadAt(fd.get(), sections.data(), sections.size() * sizeof(Elf64_Shdr), eh.e_shoff))
            return fail(cut.arg(QStringLiteral("its section table can't be read")));
        for (const Elf64_Shdr& sh : sections)
            if (sh.sh_type != SHT_NOBITS && !Inside(sh.sh_offset, 1, sh.sh_size, fileSize))
                return fail(cut.arg(
                    QStringLiteral("a section ends at byte %1").arg(sh.sh_offset + sh.sh_size)));
    }
    return true;
}

} // namespace zordrivebench
