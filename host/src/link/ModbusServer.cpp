#include "zorhost/link/ModbusServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace zorhost::link {

namespace {

std::uint16_t Crc16(const std::uint8_t* data, size_t size) {
    std::uint16_t crc = 0xFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int b = 0; b < 8; ++b)
            crc = (crc & 1) ? std::uint16_t((crc >> 1) ^ 0xA001) : std::uint16_t(crc >> 1);
    }
    return crc;
}

// Length of the RTU request at the front of `b` (unit, PDU, CRC) once it can be told;
// 0 while more bytes are needed to tell it.
size_t RtuRequestLength(const std::vector<std::uint8_t>& b) {
    if (b.size() < 2)
        return 0;
    switch (b[1]) {
    case 3:
    case 4:
    case 6:
        return 8;
    case 16:
        return b.size() < 7 ? 0 : size_t(9 + b[6]);
    default:
        return 4; // unit, function, CRC: answered with "illegal function"
    }
}

bool WriteAll(int fd, const std::uint8_t* data, size_t size) {
    while (size > 0) {
        const ssize_t n = ::send(fd, data, size, MSG_NOSIGNAL);
        if (n < 0 && errno == ENOTSOCK) {
            const ssize_t m = ::write(fd, data, size);
            if (m <= 0)
                return false;
            data += m, size -= size_t(m);
            continue;
        }
        if (n <= 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n, size -= size_t(n);
    }
    return true;
}

speed_t Speed(int baud) {
    switch (baud) {
    case 9600:
        return B9600;
    case 19200:
        return B19200;
    case 38400:
        return B38400;
    case 57600:
        return B57600;
    case 230400:
        return B230400;
    default:
        return B115200;
    }
}

} // namespace

struct ModbusServer::Client {
    int fd = -1;
    std::vector<std::uint8_t> in;
};

struct ModbusServer::State {
    std::vector<Client> clients;
    std::vector<std::uint8_t> rtuIn;
};

ModbusServer::ModbusServer(DriveServer& drives) : m_drives(drives), m_state(new State) {
    if (::pipe2(m_wake, O_CLOEXEC | O_NONBLOCK) != 0)
        m_wake[0] = m_wake[1] = -1;
}

ModbusServer::~ModbusServer() {
    for (Client& c : m_state->clients)
        ::close(c.fd);
    for (int fd : {m_listen, m_rtu, m_ptyPeer, m_wake[0], m_wake[1]})
        if (fd >= 0)
            ::close(fd);
    delete m_state;
}

int ModbusServer::ListenTcp(const std::string& host, int port, std::string* error) {
    auto fail = [&](const char* what) {
        if (error)
            *error = std::string(what) + ": " + std::strerror(errno);
        if (m_listen >= 0)
            ::close(m_listen);
        m_listen = -1;
        return -1;
    };
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(std::uint16_t(port));
    if (::inet_pton(AF_INET, host.c_str(), &addr.sin_addr) != 1) {
        errno = EINVAL;
        return fail(("address " + host).c_str());
    }
    m_listen = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listen < 0)
        return fail("socket");
    const int yes = 1;
    ::setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (::bind(m_listen, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0)
        return fail("bind");
    if (::listen(m_listen, 16) != 0)
        return fail("listen");
    socklen_t len = sizeof addr;
    ::getsockname(m_listen, reinterpret_cast<sockaddr*>(&addr), &len);
    return ntohs(addr.sin_port);
}

bool ModbusServer::OpenRtu(const std::string& device, int baud, char parity, std::string* error) {
    m_rtu = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (m_rtu < 0) {
        if (error)
            *error = device + ": " + std::strerror(errno);
        return false;
    }
    termios tio{};
    if (::tcgetattr(m_rtu, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::cfsetispeed(&tio, Speed(baud));
        ::cfsetospeed(&tio, Speed(baud));
        tio.c_cflag |= CLOCAL | CREAD;
        tio.c_cflag &= ~(PARENB | PARODD | CSTOPB);
        if (parity == 'E')
            tio.c_cflag |= PARENB;
        else if (parity == 'O')
            tio.c_cflag |= PARENB | PARODD;
        ::tcsetattr(m_rtu, TCSANOW, &tio);
    }
    return true;
}

std::string ModbusServer::OpenRtuPty(std::string* error) {
    auto fail = [&](const char* what) {
        if (error)
            *error = std::string(what) + ": " + std::strerror(errno);
        return std::string();
    };
    m_rtu = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (m_rtu < 0)
        return fail("posix_openpt");
    if (::grantpt(m_rtu) != 0 || ::unlockpt(m_rtu) != 0)
        return fail("unlockpt");
    const char* name = ::ptsname(m_rtu);
    if (!name)
        return fail("ptsname");
    std::string path = name;
    m_ptyPeer = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_ptyPeer < 0)
        return fail(path.c_str());
    termios tio{};
    for (int fd : {m_rtu, m_ptyPeer})
        if (::tcgetattr(fd, &tio) == 0) {
            ::cfmakeraw(&tio);
            ::tcsetattr(fd, TCSANOW, &tio);
        }
    return path;
}

void ModbusServer::Stop() {
    if (m_wake[1] >= 0) {
        const char c = 1;
        [[maybe_unused]] const ssize_t n = ::write(m_wake[1], &c, 1);
    }
}

void ModbusServer::ServeTcpClient(Client& c) {
    std::uint8_t buffer[512];
    const ssize_t n = ::recv(c.fd, buffer, sizeof buffer, 0);
    if (n <= 0) {
        ::close(c.fd);
        c.fd = -1;
        return;
    }
    c.in.insert(c.in.end(), buffer, buffer + n);
    std::vector<std::uint8_t> answer;
    // MBAP header: transaction, protocol (0), length of what follows, unit.
    while (c.in.size() >= 8) {
        const size_t length = size_t(c.in[4] << 8 | c.in[5]);
        if (c.in[2] != 0 || c.in[3] != 0 || length < 2 || length > 254) {
            ::close(c.fd); // not Modbus: the stream can't be resynchronised
            c.fd = -1;
            return;
        }
        if (c.in.size() < 6 + length)
            return;
        const std::uint8_t unit = c.in[6];
        const DriveServer::Action action =
            m_drives.Handle(unit, std::span(c.in.data() + 7, length - 1), answer);
        if (action == DriveServer::Action::Drop) {
            ::close(c.fd);
            c.fd = -1;
            return;
        }
        if (action == DriveServer::Action::Answer) {
            std::vector<std::uint8_t> frame(c.in.begin(), c.in.begin() + 7);
            frame[4] = std::uint8_t((answer.size() + 1) >> 8);
            frame[5] = std::uint8_t((answer.size() + 1) & 0xff);
            frame.insert(frame.end(), answer.begin(), answer.end());
            if (!WriteAll(c.fd, frame.data(), frame.size())) {
                ::close(c.fd);
                c.fd = -1;
                return;
            }
        }
        c.in.erase(c.in.begin(), c.in.begin() + std::ptrdiff_t(6 + length));
    }
}

void ModbusServer::ServeRtu() {
    std::uint8_t buffer[512];
    const ssize_t n = ::read(m_rtu, buffer, sizeof buffer);
    if (n <= 0)
        return;
    std::vector<std::uint8_t>& in = m_state->rtuIn;
    in.insert(in.end(), buffer, buffer + n);
    std::vector<std::uint8_t> answer;
    for (;;) {
        const size_t length = RtuRequestLength(in);
        if (length == 0 || in.size() < length)
            return;
        const std::uint16_t crc = std::uint16_t(in[length - 2] | in[length - 1] << 8);
        if (Crc16(in.data(), length - 2) != crc) {
            in.erase(in.begin()); // out of step: look for the next frame one byte on
            continue;
        }
        const std::uint8_t unit = in[0];
        const DriveServer::Action action =
            m_drives.Handle(unit, std::span(in.data() + 1, length - 3), answer);
        if (action == DriveServer::Action::Answer && unit != 0) {
            std::vector<std::uint8_t> frame{unit};
            frame.insert(frame.end(), answer.begin(), answer.end());
            const std::uint16_t c = Crc16(frame.data(), frame.size());
            frame.push_back(std::uint8_t(c & 0xff));
            frame.push_back(std::uint8_t(c >> 8));
            WriteAll(m_rtu, frame.data(), frame.size());
        }
        in.erase(in.begin(), in.begin() + std::ptrdiff_t(length));
    }
}

void ModbusServer::Serve() {
    for (;;) {
        std::vector<pollfd> fds;
        fds.push_back({m_wake[0], POLLIN, 0});
        if (m_listen >= 0)
            fds.push_back({m_listen, POLLIN, 0});
        if (m_rtu >= 0)
            fds.push_back({m_rtu, POLLIN, 0});
        const size_t firstClient = fds.size();
        for (const Client& c : m_state->clients)
            fds.push_back({c.fd, POLLIN, 0});
        if (fds.size() == 1)
            return;
        // A stalled half frame on the serial line is dropped after a pause.
        const int timeout_ms = m_state->rtuIn.empty() ? -1 : 100;
        const int ready = ::poll(fds.data(), fds.size(), timeout_ms);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready == 0) {
            m_state->rtuIn.clear();
            continue;
        }
        if (fds[0].revents)
            return;
        for (size_t i = 1; i < firstClient; ++i) {
            if (!fds[i].revents)
                continue;
            if (fds[i].fd == m_listen) {
                const int fd = ::accept4(m_listen, nullptr, nullptr, SOCK_CLOEXEC);
                if (fd >= 0) {
                    const int yes = 1;
                    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
                    m_state->clients.push_back({fd, {}});
                }
            } else {
                ServeRtu();
            }
        }
        const size_t known = m_state->clients.size();
        for (size_t i = firstClient; i < fds.size() && i - firstClient < known; ++i)
            if (fds[i].revents)
                ServeTcpClient(m_state->clients[i - firstClient]);
        std::erase_if(m_state->clients, [](const Client& c) { return c.fd < 0; });
    }
}

} // namespace zorhost::link
