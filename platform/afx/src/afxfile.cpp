#include <afx/afxfile.h>
#include <afx/afxtest.h>

#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<AfxWriteFunction> g_write{nullptr};
thread_local std::string t_lastError;

std::string SystemText(int code) {
    char buffer[256];
    // The GNU variant: returns the text, not always in `buffer`.
    return ::strerror_r(code, buffer, sizeof buffer);
}

bool Fail(std::string* error, const std::string& why) {
    t_lastError = why.empty() ? std::string("unknown error") : why;
    if (error != nullptr)
        *error = t_lastError;
    return false;
}

bool FailErrno(std::string* error, int code) {
    return Fail(error, SystemText(code));
}

std::string DirOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Follows symbolic links to the file they finally name (which need not exist yet), as
// open() would. ELOOP after 40 links, as the kernel counts.
bool ResolveLinks(std::string& path, int* code) {
    for (int hops = 0; hops < 40; ++hops) {
        struct stat st {};
        if (::lstat(path.c_str(), &st) != 0) {
            if (errno == ENOENT)
                return true;
            *code = errno;
            return false;
        }
        if (!S_ISLNK(st.st_mode))
            return true;
        std::string linked(size_t(st.st_size > 0 ? st.st_size : 256) + 1, '\0');
        const ssize_t n = ::readlink(path.c_str(), linked.data(), linked.size());
        if (n < 0) {
            *code = errno;
            return false;
        }
        linked.resize(size_t(n));
        path = !linked.empty() && linked[0] == '/' ? linked : DirOf(path) + "/" + linked;
    }
    *code = ELOOP;
    return false;
}

bool WriteAll(int fd, std::string_view bytes, int* code) {
    const AfxWriteFunction write = g_write.load();
    size_t done = 0;
    while (done < bytes.size()) {
        const size_t left = bytes.size() - done;
        const ssize_t n = write != nullptr ? ssize_t(write(fd, bytes.data() + done, left))
                                           : ::write(fd, bytes.data() + done, left);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            *code = n < 0 ? errno : ENOSPC;
            return false;
        }
        done += size_t(n);
    }
    return true;
}

// Removes what earlier saves of `name` in `dir` left behind when they were killed: those
// whose writer is gone, and any old enough that no live save can still own it.
void RemoveStaleTemporaries(const std::string& dir, const std::string& name) {
    DIR* folder = ::opendir(dir.c_str());
    if (folder == nullptr)
        return;
    const int dirFd = ::dirfd(folder);
    const time_t now = ::time(nullptr);
    while (const dirent* entry = ::readdir(folder)) {
        long pid = 0;
        if (!AfxIsSaveTemporary(entry->d_name, name, &pid))
            continue;
        const bool dead = pid != long(::getpid()) && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
        struct stat st {};
        const bool old = ::fstatat(dirFd, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 &&
                         now - st.st_mtime > AFX_STALE_SAVE_SECONDS;
        if (dead || old)
            ::unlinkat(dirFd, entry->d_name, 0);
    }
    ::closedir(folder);
}

// Creates the temporary beside the target, O_EXCL so that two saves never share one.
int CreateTemporary(const std::string& dir, const std::string& name, std::string& temp, int* code) {
    static const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    thread_local std::mt19937 random(std::random_device{}() ^ unsigned(::getpid() * 2654435761u));
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string tail;
        for (int i = 0; i < 6; ++i)
            tail += letters[random() % (sizeof letters - 1)];
        temp = dir + "/." + name + ".~" + std::to_string(::getpid()) + "." + tail;
        // 0666: the kernel applies the umask, as for any new file.
        const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) {
            *code = errno;
            return fd;
        }
    }
    *code = EEXIST;
    return -1;
}

bool WriteInPlace(const std::string& target, std::string_view bytes, std::string* error) {
    const int fd = ::open(target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0)
        return FailErrno(error, errno);
    int code = 0;
    const bool written = WriteAll(fd, bytes, &code);
    if (::close(fd) != 0 && written)
        return FailErrno(error, errno);
    return written ? (t_lastError.clear(), true) : FailErrno(error, code);
}

} // namespace

bool AfxIsSaveTemporary(std::string_view entry, std::string_view targetName, long* pid) {
    const size_t head = targetName.size() + 3; // "." name ".~"
    if (entry.size() < head + 1 + 1 + 6 || entry[0] != '.' ||
        entry.substr(1, targetName.size()) != targetName ||
        entry.substr(targetName.size() + 1, 2) != ".~")
        return false;
    std::string_view rest = entry.substr(head);
    const size_t dot = rest.find('.');
    if (dot == 0 || dot == std::string_view::npos || dot > 10 || rest.size() - dot - 1 != 6)
        return false;
    long number = 0;
    for (char c : rest.substr(0, dot)) {
        if (c < '0' || c > '9')
            return false;
        number = number * 10 + (c - '0');
    }
    for (char c : rest.substr(dot + 1))
        if (!std::isalnum(static_cast<unsigned char>(c)))
            return false;
    if (pid != nullptr)
        *pid = number;
    return number > 0;
}

const std::string& AfxGetLastFileError() {
    return t_lastError;
}

AfxWriteFunction AfxSetFileWriteFunction(AfxWriteFunction write) {
    return g_write.exchange(write);
}

bool AfxReplaceFile(const std::string& path, std::string_view bytes, std::string* error) {
    if (path.empty())
        return Fail(error, "no file name");
    std::string target = path;
    int code = 0;
    if (!ResolveLinks(target, &code))
        return FailErrno(error, code);

    struct stat old {};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT)
        return FailErrno(error, errno);
    if (exists) {
        if (S_ISDIR(old.st_mode))
            return FailErrno(error, EISDIR);
        // Refused where opening for writing would be refused, whatever the folder allows.
        if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
            return FailErrno(error, errno);
        // A device or a pipe can't be replaced, only written.
        if (!S_ISREG(old.st_mode))
            return WriteInPlace(target, bytes, error);
    }

    const std::string dir = DirOf(target), name = NameOf(target);
    RemoveStaleTemporaries(dir, name);
    std::string temp;
    const int fd = CreateTemporary(dir, name, temp, &code);
    if (fd < 0)
        return FailErrno(error, code);
    if (exists) {
        // Owner first: a change of owner may clear the set-id bits the mode then restores.
        if (old.st_uid != ::geteuid() || old.st_gid != ::getegid())
            (void)::fchown(fd, old.st_uid, old.st_gid);
        ::fchmod(fd, old.st_mode & 07777);
    }
    bool ok = WriteAll(fd, bytes, &code);
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        code = errno;
    }
    if (::close(fd) != 0 && ok) {
        ok = false;
        code = errno;
    }
    if (ok && ::rename(temp.c_str(), target.c_str()) != 0) {
        ok = false;
        code = errno;
    }
    if (!ok) {
        ::unlink(temp.c_str());
        return FailErrno(error, code);
    }
    // The rename itself reaches the disk with the folder.
    const int dirFd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    t_lastError.clear();
    return true;
}
