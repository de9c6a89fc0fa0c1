#include "SimProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace linktest {

namespace {

constexpr int kStart_ms = 10000;
using Clock = std::chrono::steady_clock;

int Spawn(const std::vector<std::string>& argv, int* in, int* out) {
    int toChild[2], fromChild[2];
    if (::pipe2(toChild, O_CLOEXEC) != 0 || ::pipe2(fromChild, O_CLOEXEC) != 0)
        return -1;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(toChild[0], 0);
        ::dup2(fromChild[1], 1);
        std::vector<char*> args;
        for (const std::string& a : argv)
            args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        ::execvp(args[0], args.data());
        ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    *in = toChild[1];
    *out = fromChild[0];
    return pid;
}

bool WaitExit(int pid, int timeout_ms) {
    const auto end = Clock::now() + std::chrono::milliseconds(timeout_ms);
    while (Clock::now() < end) {
        if (::waitpid(pid, nullptr, WNOHANG) == pid)
            return true;
        ::poll(nullptr, 0, 10);
    }
    return false;
}

// Appends what `fd` has before `end`; false at the end of the output or the time.
bool ReadSome(int fd, Clock::time_point end, std::string& to) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd p{fd, POLLIN, 0};
    if (left <= 0 || ::poll(&p, 1, int(left)) <= 0)
        return false;
    char chunk[512];
    const ssize_t n = ::read(fd, chunk, sizeof chunk);
    if (n <= 0)
        return false;
    to.append(chunk, size_t(n));
    return true;
}

} // namespace

SimProcess::SimProcess(const std::vector<std::string>& args) {
    std::vector<std::string> argv{ZORDRIVE_SIM, "--control-stdin"};
    argv.insert(argv.end(), args.begin(), args.end());
    m_pid = Spawn(argv, &m_in, &m_out);
    if (m_pid > 0)
        m_firstLine = ReadLine(kStart_ms);
}

SimProcess::~SimProcess() {
    if (m_in >= 0)
        ::close(m_in); // the simulator ends when its control channel closes
    if (m_pid > 0 && !WaitExit(m_pid, 3000))
        Kill();
    if (m_out >= 0)
        ::close(m_out);
}

void SimProcess::Kill() {
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

std::string SimProcess::ReadLine(int timeout_ms) {
    const auto end = Clock::now() + std::chrono::milliseconds(timeout_ms);
    size_t nl;
    while ((nl = m_buffer.find('\n')) == std::string::npos)
        if (!ReadSome(m_out, end, m_buffer))
            return {};
    std::string line = m_buffer.substr(0, nl);
    m_buffer.erase(0, nl + 1);
    return line;
}

int SimProcess::Port() const {
    const size_t colon = m_firstLine.rfind(':');
    if (m_firstLine.rfind("tcp ", 0) != 0 || colon == std::string::npos)
        return -1;
    return std::atoi(m_firstLine.c_str() + colon + 1);
}

std::string SimProcess::Path() const {
    return m_firstLine.rfind("rtu ", 0) == 0 ? m_firstLine.substr(4) : std::string();
}

bool SimProcess::Command(const std::string& line) {
    const std::string text = line + "\n";
    if (m_in < 0 || ::write(m_in, text.data(), text.size()) != ssize_t(text.size()))
        return false;
    return ReadLine(kStart_ms) == "ok";
}

std::string RunCapture(const std::vector<std::string>& argv, int timeout_ms) {
    int in = -1, out = -1;
    const int pid = Spawn(argv, &in, &out);
    if (pid <= 0)
        return {};
    ::close(in);
    std::string text;
    const auto end = Clock::now() + std::chrono::milliseconds(timeout_ms);
    while (ReadSome(out, end, text)) {
    }
    ::close(out);
    if (!WaitExit(pid, 100)) {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
    }
    return text;
}

} // namespace linktest
