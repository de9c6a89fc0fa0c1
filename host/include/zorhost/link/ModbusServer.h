// The framing side of the drive simulator: Modbus TCP on a listening socket (any number of
// clients) and Modbus RTU on a serial device or pseudo-terminal, both served by one loop
// on the calling thread until Stop.
#pragma once

#include "zorhost/link/DriveServer.h"

#include <cstdint>
#include <string>

namespace zorhost::link {

class ModbusServer {
public:
    explicit ModbusServer(DriveServer& drives);
    ~ModbusServer();
    ModbusServer(const ModbusServer&) = delete;
    ModbusServer& operator=(const ModbusServer&) = delete;

    // Binds and listens; port 0 picks a free one. Returns the port, or -1 with `error`.
    int ListenTcp(const std::string& host, int port, std::string* error = nullptr);
    // Opens a serial line (raw, 8 data bits, one stop bit); settings apply to a real tty
    // and are harmless on a pseudo-terminal.
    bool OpenRtu(const std::string& device, int baud, char parity, std::string* error = nullptr);
    // Makes a pseudo-terminal pair, serves its master side and returns the path of the
    // other side for a client to open; empty with `error` when none could be made.
    std::string OpenRtuPty(std::string* error = nullptr);

    // Serves until Stop; returns at once when nothing is open.
    void Serve();
    // Safe from any thread and from a signal handler.
    void Stop();

private:
    struct Client;
    void ServeTcpClient(Client& client);
    void ServeRtu();

    DriveServer& m_drives;
    int m_listen = -1;
    int m_rtu = -1;
    int m_ptyPeer = -1; // held open so that a client closing its side is no hang-up
    int m_wake[2] = {-1, -1};
    struct State;
    State* m_state;
};

} // namespace zorhost::link
