#include "zorhost/link/ModbusLink.h"

#include "zorhost/link/RegisterMap.h"

#include <modbus/modbus.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <vector>

namespace zorhost::link {

using sim::LinkResult;
using sim::LinkStatus;

const char* LinkKindName(LinkKind kind) {
    switch (kind) {
    case LinkKind::Simulated:
        return "simulated";
    case LinkKind::ModbusTcp:
        return "modbus-tcp";
    case LinkKind::ModbusRtu:
        return "modbus-rtu";
    }
    return "simulated";
}

struct ModbusLink::Job {
    bool write = false;
    std::uint32_t address = 0;
    std::vector<std::uint16_t> words; // the worker's until the job is answered
    // Under the link's mutex:
    bool answered = false;
    bool abandoned = false; // its caller stopped waiting: it need not go out any more
    LinkResult result;
    QAbstractEventDispatcher* window = nullptr; // the waiting window thread's event loop
};

struct ModbusLink::Connection {
    modbus_t* ctx = nullptr;
    ~Connection() {
        if (ctx) {
            modbus_close(ctx);
            modbus_free(ctx);
        }
    }
};

namespace {

// Frame sizes of function 3 and 16 requests and answers, for the traffic count: the TCP
// header is 7 bytes before the function code, RTU has a unit byte before and a CRC after.
struct FrameSize {
    int overhead;
    int Read() const { return overhead + 5; }
    int ReadAnswer(int n) const { return overhead + 2 + 2 * n; }
    int Write(int n) const { return overhead + 6 + 2 * n; }
    int WriteAnswer() const { return overhead + 5; }
};

bool IsException(int error) {
    return error > MODBUS_ENOBASE && error < MODBUS_ENOBASE + MODBUS_EXCEPTION_MAX;
}

// An answer came, but not one that can be used: worth another try, not a dead link.
bool IsGarbled(int error) {
    return error == EMBBADCRC || error == EMBBADDATA || error == EMBBADEXC || error == EMBUNKEXC ||
           error == EMBMDATA || error == EMBBADSLAVE;
}

} // namespace

ModbusLink::ModbusLink(std::shared_ptr<const device::DeviceDescription> device,
                       LinkSettings settings)
    : m_device(std::move(device)), m_settings(std::move(settings)) {
    m_worker = std::thread([this] { Run(); });
}

ModbusLink::~ModbusLink() {
    Close();
    m_worker.join();
}

void ModbusLink::Close() {
    {
        std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        m_closed = true;
        m_stop = true;
        m_listener = nullptr;
        m_online = false;
        for (auto& job : m_jobs)
            AnswerLocked(*job, {LinkStatus::Offline});
        m_jobs.clear();
        // The waiters see the link closed whether their job was answered or not.
        for (Job* job : m_waiting)
            if (job->window)
                job->window->wakeUp();
        m_answered.notify_all();
        // A request on the wire ends now instead of after the drive's answer or the time-out
        // (TCP; a serial line has no such cut and runs into its time-out).
        if (m_socket >= 0)
            ::shutdown(m_socket, SHUT_RDWR);
    }
    m_wake.notify_all();
    m_stateSet.notify_all();
}

bool ModbusLink::Stopping() const {
    std::lock_guard lock(m_mutex);
    return m_stop;
}

void ModbusLink::Answer(Job& job, const LinkResult& result) {
    std::lock_guard lock(m_mutex);
    AnswerLocked(job, result);
}

void ModbusLink::AnswerLocked(Job& job, const LinkResult& result) {
    if (job.answered)
        return;
    job.answered = true;
    job.result = result;
    m_answered.notify_all();
    if (job.window)
        job.window->wakeUp();
}

void ModbusLink::SetStateListener(std::function<void(bool online)> listener) {
    std::lock_guard lock(m_mutex);
    m_listener = std::move(listener);
}

bool ModbusLink::IsOnline() const {
    return m_online.load();
}

int ModbusLink::ReadBlockLimit() const {
    return kMaxReadRegisters;
}

int ModbusLink::WriteBlockLimit() const {
    return kMaxWriteRegisters;
}

bool ModbusLink::WaitOnline(int timeout_ms) const {
    std::unique_lock lock(m_mutex);
    return m_stateSet.wait_for(lock, std::chrono::milliseconds(timeout_ms),
                               [this] { return m_online.load(); });
}

LinkTraffic ModbusLink::Traffic() const {
    std::lock_guard lock(m_mutex);
    return m_traffic;
}

void ModbusLink::SetOnline(bool online) {
    std::function<void(bool)> listener;
    {
        std::lock_guard lock(m_mutex);
        if (m_closed || m_online.exchange(online) == online)
            return;
        listener = m_listener;
    }
    m_stateSet.notify_all();
    if (listener)
        listener(online);
}

LinkResult ModbusLink::Read(std::uint32_t address, std::span<std::uint16_t> words, int) {
    return Submit(false, address, words.data(), int(words.size()));
}

LinkResult ModbusLink::Write(std::uint32_t address, std::span<const std::uint16_t> words, int) {
    return Submit(true, address, const_cast<std::uint16_t*>(words.data()), int(words.size()));
}

LinkResult ModbusLink::Submit(bool write, std::uint32_t address, std::uint16_t* words, int count) {
    const int limit = write ? kMaxWriteRegisters : kMaxReadRegisters;
    if (count < 1 || count > limit)
        return LinkResult::Refuse(sim::Refusal::WrongLength);
    if (address + std::uint32_t(count) - 1 > 0xFFFF)
        return LinkResult::Refuse(sim::Refusal::IllegalAddress);
    if (!m_online.load())
        return {LinkStatus::Offline};
    // Whoever closes the project from an event handled below drops the host's share; this
    // one keeps the link until the wait is over. Destroyed last, after the answer is taken.
    const std::shared_ptr<ModbusLink> keep = weak_from_this().lock();
    auto job = std::make_shared<Job>();
    job->write = write;
    job->address = address;
    job->words.assign(words, words + count);
    QCoreApplication* app = QCoreApplication::instance();
    QAbstractEventDispatcher* window = app && QThread::currentThread() == app->thread()
                                           ? QAbstractEventDispatcher::instance()
                                           : nullptr;
    // The worker answers every job within its tries; the margin covers the queue.
    const auto bound =
        std::chrono::milliseconds(m_settings.timeout_ms * (m_settings.retries + 1) * 2 + 1000);
    const auto deadline = std::chrono::steady_clock::now() + bound;
    std::unique_ptr<QTimer> alarm;
    if (window) {
        // Wakes the event loop at the deadline when nothing else does.
        alarm = std::make_unique<QTimer>();
        alarm->setSingleShot(true);
        alarm->start(bound);
    }

    std::unique_lock lock(m_mutex);
    if (m_closed)
        return {LinkStatus::Offline};
    job->window = window;
    m_jobs.push_back(job);
    m_waiting.push_back(job.get());
    m_wake.notify_all();
    auto over = [&] { return job->answered || m_closed; };
    if (window) {
        // The window keeps handling its events; the worker wakes its loop with the answer.
        while (!over() && std::chrono::steady_clock::now() < deadline) {
            lock.unlock();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            lock.lock();
        }
    } else {
        m_answered.wait_until(lock, deadline, over);
    }
    std::erase(m_waiting, job.get());
    job->window = nullptr;
    LinkResult r{LinkStatus::Timeout};
    if (m_closed)
        r = {LinkStatus::Offline}; // whatever came back belongs to a project that is gone
    else if (job->answered)
        r = job->result;
    else
        job->abandoned = true;
    lock.unlock();
    if (r.ok() && !write)
        std::copy(job->words.begin(), job->words.end(), words);
    return r;
}

void ModbusLink::Run() {
    int wait_ms = 0; // the first attempt goes at once
    for (;;) {
        std::shared_ptr<Job> job;
        bool orphans = false;
        {
            std::unique_lock lock(m_mutex);
            if (!m_online.load()) {
                orphans = !m_jobs.empty();
                for (auto& o : m_jobs)
                    AnswerLocked(*o, {LinkStatus::Offline});
                m_jobs.clear();
                if (!orphans && wait_ms > 0)
                    m_wake.wait_for(lock, std::chrono::milliseconds(wait_ms),
                                    [this] { return m_stop; });
            } else {
                m_wake.wait(lock, [this] { return m_stop || !m_jobs.empty(); });
                if (!m_stop) {
                    job = m_jobs.front();
                    m_jobs.pop_front();
                    if (job->abandoned)
                        continue; // its caller has given up on it: it goes nowhere
                }
            }
            if (m_stop)
                break;
        }
        if (job) {
            Execute(*job);
            if (!m_online.load())
                wait_ms = m_settings.reconnectMin_ms;
            continue;
        }
        if (orphans)
            continue;
        if (Connect()) {
            wait_ms = m_settings.reconnectMin_ms;
            SetOnline(true);
        } else {
            wait_ms =
                std::clamp(wait_ms * 2, m_settings.reconnectMin_ms, m_settings.reconnectMax_ms);
        }
    }
    {
        std::lock_guard lock(m_mutex);
        for (auto& o : m_jobs)
            AnswerLocked(*o, {LinkStatus::Offline});
        m_jobs.clear();
        m_online = false;
    }
    DropConnection();
}

void ModbusLink::DropConnection() {
    {
        std::lock_guard lock(m_mutex);
        m_socket = -1; // before the socket closes: Close must never cut a stranger's
    }
    m_connection.reset();
}

bool ModbusLink::Connect() {
    DropConnection();
    modbus_t* ctx = nullptr;
    if (m_settings.kind == LinkKind::ModbusTcp)
        ctx = modbus_new_tcp(m_settings.host.c_str(), m_settings.port);
    else if (m_settings.kind == LinkKind::ModbusRtu)
        ctx = modbus_new_rtu(m_settings.device.c_str(), m_settings.baud, m_settings.parity, 8, 1);
    if (!ctx)
        return false;
    auto connection = std::make_unique<Connection>();
    connection->ctx = ctx;
    const int timeout_ms = std::max(1, m_settings.timeout_ms);
    const auto sec = std::uint32_t(timeout_ms / 1000),
               usec = std::uint32_t(timeout_ms % 1000) * 1000;
    modbus_set_slave(ctx, m_settings.unit);
    modbus_set_response_timeout(ctx, sec, usec);
    modbus_set_byte_timeout(ctx, sec, usec);
    if (modbus_connect(ctx) != 0)
        return false;
    // Something listens; it counts as the drive once it answers, even with a refusal.
    std::uint16_t label[kLabelRegisters];
    const int rc = modbus_read_registers(ctx, int(kLabelRegister), kLabelRegisters, label);
    if (rc != kLabelRegisters && !IsException(errno))
        return false;
    m_connection = std::move(connection);
    std::lock_guard lock(m_mutex);
    m_socket = modbus_get_socket(ctx);
    return true;
}

void ModbusLink::Disconnect() {
    DropConnection();
    SetOnline(false);
}

void ModbusLink::Execute(Job& job) {
    if (!m_connection) {
        Answer(job, {LinkStatus::Offline});
        return;
    }
    modbus_t* ctx = m_connection->ctx;
    const int n = int(job.words.size());
    const FrameSize frame{m_settings.kind == LinkKind::ModbusTcp ? 7 : 3};
    if (job.write)
        SwapToWireOrder(*m_device, job.address, job.words);
    LinkResult result{LinkStatus::Timeout};
    for (int attempt = 0; attempt <= m_settings.retries; ++attempt) {
        if (attempt > 0 && Stopping())
            break; // closed: nobody waits for another try
        const int rc = job.write
                           ? modbus_write_registers(ctx, int(job.address), n, job.words.data())
                           : modbus_read_registers(ctx, int(job.address), n, job.words.data());
        const int error = errno;
        {
            std::lock_guard lock(m_mutex);
            ++m_traffic.requests;
            m_traffic.bytesOut += std::uint64_t(job.write ? frame.Write(n) : frame.Read());
            if (rc == n)
                m_traffic.bytesIn +=
                    std::uint64_t(job.write ? frame.WriteAnswer() : frame.ReadAnswer(n));
            else if (IsException(error))
                m_traffic.bytesIn += std::uint64_t(frame.overhead + 2);
        }
        if (rc == n) {
            if (!job.write)
                SwapToWireOrder(*m_device, job.address, job.words);
            Answer(job, {});
            return;
        }
        if (IsException(error)) {
            result = ResultFor(Exception(error - MODBUS_ENOBASE));
            // The drive keeps the exact reason of its last refusal.
            std::uint16_t why[kRefusalRegisters];
            if (result.refusal != sim::Refusal::IllegalFunction &&
                modbus_read_registers(ctx, int(kRefusalRegister), kRefusalRegisters, why) ==
                    kRefusalRegisters) {
                std::lock_guard lock(m_mutex);
                ++m_traffic.requests;
                m_traffic.bytesOut += std::uint64_t(frame.Read());
                m_traffic.bytesIn += std::uint64_t(frame.ReadAnswer(kRefusalRegisters));
                const LinkResult exact = DecodeRefusal(std::span<const std::uint16_t, 10>(why));
                if (!exact.ok())
                    result = exact;
            }
            Answer(job, result);
            return;
        }
        // A garbled answer may be noise (or a late answer to the try before): try again.
        if (error != ETIMEDOUT && !IsGarbled(error))
            break; // the connection itself broke
        modbus_flush(ctx);
    }
    // Broken, or silent or garbled through every try: the drive is gone until it answers
    // a request properly again.
    Disconnect();
    Answer(job, {LinkStatus::Offline});
}

} // namespace zorhost::link
