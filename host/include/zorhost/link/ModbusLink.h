// A drive reached over Modbus (TCP or RTU) through libmodbus.
//
// One worker thread owns the connection: it connects, reconnects with back-off and carries
// every request. Callers on any thread hand their request over and wait for its answer,
// never longer than the link's time-out times its tries; the thread that runs the window
// keeps handling its events while it waits. A link that is down answers at once with
// Offline; the worker keeps trying to come back. A connection counts as up once the drive
// has answered a read of its electronic label.
//
// The host shares the link with the requests in flight: an event handled during a wait may
// close the project. Close() ends every wait at once with Offline and cuts the request on
// the wire short; the last owner's destructor then only joins a worker that is ending.
#pragma once

#include "zorhost/device/DeviceDescription.h"
#include "zorhost/link/LinkSettings.h"
#include "zorhost/sim/DriveLink.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zorhost::link {

// Traffic a link has carried, counted as the frames on the wire.
struct LinkTraffic {
    std::uint64_t requests = 0;
    std::uint64_t bytesOut = 0;
    std::uint64_t bytesIn = 0;
};

class ModbusLink : public sim::DriveLink, public std::enable_shared_from_this<ModbusLink> {
public:
    ModbusLink(std::shared_ptr<const device::DeviceDescription> device, LinkSettings settings);
    ~ModbusLink() override;
    ModbusLink(const ModbusLink&) = delete;
    ModbusLink& operator=(const ModbusLink&) = delete;

    const LinkSettings& Settings() const { return m_settings; }

    // Called on the worker whenever the link comes up or goes down; the host posts it on.
    // Set before traffic starts.
    void SetStateListener(std::function<void(bool online)> listener);

    bool IsOnline() const override;
    sim::LinkResult Read(std::uint32_t address, std::span<std::uint16_t> words,
                         int timeout_ms) override;
    sim::LinkResult Write(std::uint32_t address, std::span<const std::uint16_t> words,
                          int timeout_ms) override;
    int ReadBlockLimit() const override;
    int WriteBlockLimit() const override;

    // Ends the link for good: every caller still waiting gets Offline at once, and so does
    // every later request; the state listener is not called again. Any thread.
    void Close();

    // Waits until the link is up or `timeout_ms` passed; true when up.
    bool WaitOnline(int timeout_ms) const;
    LinkTraffic Traffic() const;

private:
    struct Job;
    struct Connection;
    void Run();
    bool Connect();
    void Disconnect();
    void DropConnection();
    void Execute(Job& job);
    bool Stopping() const;
    sim::LinkResult Submit(bool write, std::uint32_t address, std::uint16_t* words, int count);
    void Answer(Job& job, const sim::LinkResult& result);
    void AnswerLocked(Job& job, const sim::LinkResult& result);
    void SetOnline(bool online);

    std::shared_ptr<const device::DeviceDescription> m_device;
    const LinkSettings m_settings;
    std::function<void(bool)> m_listener;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_wake;     // the worker: a job, or stop
    mutable std::condition_variable m_stateSet; // WaitOnline
    std::condition_variable m_answered;         // callers waiting off the window thread
    std::deque<std::shared_ptr<Job>> m_jobs;
    std::vector<Job*> m_waiting; // jobs whose callers wait for them
    int m_socket = -1;           // the connection's, for Close to cut a request short
    bool m_stop = false;
    bool m_closed = false;
    std::atomic<bool> m_online{false};
    LinkTraffic m_traffic;

    std::unique_ptr<Connection> m_connection; // the worker's only
    std::thread m_worker;
};

} // namespace zorhost::link
