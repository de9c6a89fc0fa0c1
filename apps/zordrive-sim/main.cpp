// zordrive-sim: serves simulated drives from device descriptions over Modbus TCP and RTU.
//
//     zordrive-sim [--tcp HOST:PORT] [--rtu DEVICE|pty] [--baud N] [--parity N|E|O]
//                  [--latency MS] [--refuse ADDR[,ADDR...]] [--drop-after N]
//                  [--silent-after N] [--control-stdin] DEVICE.json...
//
// The drives get unit ids 1, 2, … in argument order. Once everything listens, one line per
// transport goes to standard output: "tcp HOST:PORT", "rtu PATH". With --control-stdin the
// program reads commands from standard input and ends when it closes:
//     latency MS | refuse ADDR... | drop-after N | silent-after N | silent on|off | garbage on|off
//     | run UNIT on|off | quit
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/link/ModbusServer.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

using namespace zorhost;

namespace {

link::ModbusServer* g_server = nullptr;

void OnSignal(int) {
    if (g_server)
        g_server->Stop();
}

int Usage(const std::string& message) {
    std::fprintf(stderr,
                 "zordrive-sim: %s\n"
                 "usage: zordrive-sim [--tcp HOST:PORT] [--rtu DEVICE|pty] [--baud N] "
                 "[--parity N|E|O] [--latency MS] [--refuse ADDR[,ADDR...]] [--drop-after N] "
                 "[--silent-after N] [--control-stdin] DEVICE.json...\n",
                 message.c_str());
    return 2;
}

bool Number(const std::string& text, long long& value) {
    try {
        size_t used = 0;
        value = std::stoll(text, &used, 0);
        return used == text.size();
    } catch (...) {
        return false;
    }
}

bool Addresses(std::string text, std::set<std::uint32_t>& out) {
    for (char& c : text)
        if (c == ',')
            c = ' ';
    std::istringstream in(text);
    std::string item;
    while (in >> item) {
        long long a;
        if (!Number(item, a) || a < 0 || a > 0xFFFF)
            return false;
        out.insert(std::uint32_t(a));
    }
    return true;
}

std::string DevicePath(const std::string& file) {
    struct stat st {};
    if (file.find('/') != std::string::npos || ::stat(file.c_str(), &st) == 0)
        return file;
    return device::DefaultDeviceDirectory() + "/" + file;
}

// One command of the control channel; false for "quit".
bool Command(const std::string& line, link::DriveServer& drives) {
    std::istringstream in(line);
    std::string word, arg;
    in >> word;
    link::ServerFaults f = drives.Faults();
    long long n = 0;
    if (word == "quit")
        return false;
    if (word == "latency" && in >> arg && Number(arg, n))
        f.latency_ms = int(n);
    else if (word == "refuse") {
        std::string rest;
        std::getline(in, rest);
        f.refused.clear();
        Addresses(rest, f.refused);
    } else if (word == "drop-after" && in >> arg && Number(arg, n))
        f.dropAfter = drives.Requests() + std::uint64_t(n);
    else if (word == "silent-after" && in >> arg && Number(arg, n))
        f.silentAfter = drives.Requests() + std::uint64_t(n);
    else if (word == "silent" && in >> arg) {
        f.silent = arg == "on";
        if (!f.silent)
            f.silentAfter = 0; // answers again, whichever way it fell silent
    } else if (word == "garbage" && in >> arg)
        f.garbage = arg == "on";
    else if (word == "run" && in >> arg && Number(arg, n) && drives.Drive(int(n))) {
        in >> arg;
        drives.Drive(int(n))->SetRunning(arg == "on");
    } else if (!word.empty())
        std::fprintf(stderr, "zordrive-sim: unknown command \"%s\"\n", line.c_str());
    drives.SetFaults(f);
    std::printf("ok\n");
    std::fflush(stdout);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    std::string tcp, rtu;
    int baud = 115200;
    char parity = 'E';
    bool control = false;
    link::ServerFaults faults;
    std::vector<std::string> devices;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= argc)
                return false;
            out = argv[++i];
            return true;
        };
        std::string v;
        long long n = 0;
        if (a == "--tcp") {
            if (!value(tcp))
                return Usage("--tcp needs HOST:PORT");
        } else if (a == "--rtu") {
            if (!value(rtu))
                return Usage("--rtu needs a device");
        } else if (a == "--baud") {
            if (!value(v) || !Number(v, n) || n <= 0)
                return Usage("--baud needs a number");
            baud = int(n);
        } else if (a == "--parity") {
            if (!value(v) || (v != "N" && v != "E" && v != "O"))
                return Usage("--parity takes N, E or O");
            parity = v[0];
        } else if (a == "--latency") {
            if (!value(v) || !Number(v, n) || n < 0)
                return Usage("--latency needs milliseconds");
            faults.latency_ms = int(n);
        } else if (a == "--refuse") {
            if (!value(v) || !Addresses(v, faults.refused))
                return Usage("--refuse needs addresses");
        } else if (a == "--drop-after") {
            if (!value(v) || !Number(v, n) || n <= 0)
                return Usage("--drop-after needs a count");
            faults.dropAfter = std::uint64_t(n);
        } else if (a == "--silent-after") {
            if (!value(v) || !Number(v, n) || n <= 0)
                return Usage("--silent-after needs a count");
            faults.silentAfter = std::uint64_t(n);
        } else if (a == "--control-stdin") {
            control = true;
        } else if (a.starts_with("--")) {
            return Usage("unknown option " + a);
        } else {
            devices.push_back(a);
        }
    }
    if (devices.empty())
        return Usage("no device description given");
    if (tcp.empty() && rtu.empty())
        return Usage("give --tcp or --rtu");

    link::DriveServer drives;
    for (const std::string& file : devices) {
        device::LoadResult r = device::LoadDeviceFile(DevicePath(file));
        if (!r) {
            std::fprintf(stderr, "zordrive-sim: %s\n", r.error.ToString().c_str());
            return 3;
        }
        drives.AddDrive(r.device);
    }
    drives.SetFaults(faults);

    link::ModbusServer server(drives);
    std::string error;
    if (!tcp.empty()) {
        const size_t colon = tcp.rfind(':');
        long long port = -1;
        if (colon == std::string::npos || !Number(tcp.substr(colon + 1), port) || port < 0 ||
            port > 65535)
            return Usage("--tcp needs HOST:PORT");
        const std::string host = colon == 0 ? "127.0.0.1" : tcp.substr(0, colon);
        const int bound = server.ListenTcp(host, int(port), &error);
        if (bound < 0) {
            std::fprintf(stderr, "zordrive-sim: %s\n", error.c_str());
            return 4;
        }
        std::printf("tcp %s:%d\n", host.c_str(), bound);
    }
    if (!rtu.empty()) {
        std::string path = rtu;
        if (rtu == "pty")
            path = server.OpenRtuPty(&error);
        else if (!server.OpenRtu(rtu, baud, parity, &error))
            path.clear();
        if (path.empty()) {
            std::fprintf(stderr, "zordrive-sim: %s\n", error.c_str());
            return 4;
        }
        std::printf("rtu %s\n", path.c_str());
    }
    std::fflush(stdout);

    g_server = &server;
    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    std::signal(SIGPIPE, SIG_IGN);

    // The drives' own time: monitor values move while they run.
    std::mutex mutex;
    std::condition_variable stopped;
    bool stop = false;
    std::thread clock([&] {
        std::unique_lock lock(mutex);
        while (!stopped.wait_for(lock, std::chrono::milliseconds(100), [&] { return stop; }))
            drives.Step(100);
    });
    // The control channel ends the server when its input ends. Then it is joined before the
    // server goes; after a signal it still waits for input and is left behind.
    std::atomic<bool> controlEnded{false};
    std::thread controlThread;
    if (control) {
        controlThread = std::thread([&] {
            std::string line;
            while (std::getline(std::cin, line))
                if (!Command(line, drives))
                    break;
            controlEnded = true;
            server.Stop();
        });
    }
    server.Serve();
    if (controlThread.joinable()) {
        if (controlEnded)
            controlThread.join();
        else
            controlThread.detach();
    }
    {
        std::lock_guard lock(mutex);
        stop = true;
    }
    stopped.notify_all();
    clock.join();
    g_server = nullptr;
    return 0;
}
