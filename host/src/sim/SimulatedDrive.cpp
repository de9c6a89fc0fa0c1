#include "zorhost/sim/SimulatedDrive.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <numbers>
#include <string_view>
#include <thread>

namespace zorhost::sim {

using device::DataType;
using device::kNoIndex;
using device::ModifyMode;
using device::ParameterDef;

namespace {

enum class SignalKind : std::uint8_t { Speed, Frequency, Current, BusVoltage };

// Monitoring values are recognised by their English names, which the device files keep
// stable across products; a drive without them simply has nothing that moves.
bool NameIs(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr double kNominalSpeed_rpm = 1500;
constexpr double kSpeedTau_ms = 400;
constexpr double kBusNominal_V = 540;
constexpr double kRatedFrequency_Hz = 50;
// A drive is powered up well before anyone reads it: its monitoring values have settled.
constexpr int kPoweredUp_ms = 250;

} // namespace

struct SimulatedDrive::Signal {
    std::uint32_t parameter = kNoIndex;
    SignalKind kind = SignalKind::Speed;
};

struct SimulatedDrive::Axis {
    int scope = device::kCommonScope;
    std::vector<Signal> signals;
    double speed_rpm = 0;
    double target_rpm = 0;
};

SimulatedDrive::SimulatedDrive(std::shared_ptr<const device::DeviceDescription> device)
    : m_device(std::move(device)) {
    const auto& d = *m_device;
    for (const ParameterDef& p : d.parameters) {
        std::uint16_t words[4] = {};
        const int n = RegisterCount(p.dataType);
        if (n == 0 || !EncodeRaw(p.dataType, p.factoryValue, std::span(words, size_t(n))))
            continue;
        for (int i = 0; i < n; ++i)
            m_registers[p.address + std::uint32_t(i)] = words[i];
    }
    for (const device::NamedVariable& v : d.namedVariables) {
        if (v.parameter == kNoIndex) {
            for (int i = 0; i < RegisterSpan(v.dataType); ++i) {
                m_registers.emplace(v.address + std::uint32_t(i), 0);
                m_freeRegisters.insert(v.address + std::uint32_t(i));
            }
        }
        const std::string_view name = d.Text(v.name);
        if (name == "InputPassword")
            m_passwordRegisters.insert(v.address);
        else if (name == "Factory")
            m_passwordRegisters.insert(v.address);
        else if (name == "TempAuthority")
            m_passwordRegisters.insert(v.address);
        else if (name == "Authority") {
            m_authorityReg = v.address;
            m_hasAuthority = true;
        }
    }
    // H02-41 is the factory password of every axis as well.
    for (const ParameterDef& p : d.parameters)
        if (d.Code(p) == "H02-41")
            m_passwordRegisters.insert(p.address);
    for (std::uint32_t a : m_passwordRegisters)
        PokeLocked(a, 0);
    SetAuthority(kBaseAuthority);
    FindSignals();
    Step(kPoweredUp_ms);
}

SimulatedDrive::~SimulatedDrive() = default;

void SimulatedDrive::FindSignals() {
    const auto& d = *m_device;
    auto axisOf = [this](int scope) -> Axis& {
        for (Axis& a : m_axes)
            if (a.scope == scope)
                return a;
        m_axes.push_back(Axis{scope, {}, 0, 0});
        return m_axes.back();
    };
    for (std::uint32_t i = 0; i < d.parameters.size(); ++i) {
        const ParameterDef& p = d.parameters[i];
        const std::string_view name = d.Text(p.nameEn);
        if (NameIs(name, {"Actual motor speed", "Motor speed"}))
            axisOf(p.axis).signals.push_back({i, SignalKind::Speed});
        else if (NameIs(name, {"Output frequency"}))
            axisOf(p.axis).signals.push_back({i, SignalKind::Frequency});
        else if (NameIs(name, {"Phase current RMS", "Output current"}))
            axisOf(p.axis).signals.push_back({i, SignalKind::Current});
        else if (NameIs(name, {"DC bus voltage"}))
            m_busVoltage.push_back({i, SignalKind::BusVoltage});
    }
    std::sort(m_axes.begin(), m_axes.end(),
              [](const Axis& a, const Axis& b) { return a.scope < b.scope; });
}

bool SimulatedDrive::IsOnline() const {
    std::lock_guard lock(m_mutex);
    return m_connected && !m_offlineFault;
}

void SimulatedDrive::SetConnected(bool connected) {
    std::lock_guard lock(m_mutex);
    m_connected = connected;
}

bool SimulatedDrive::IsConnected() const {
    std::lock_guard lock(m_mutex);
    return m_connected;
}

void SimulatedDrive::SetRunning(bool running) {
    std::lock_guard lock(m_mutex);
    m_running = running;
}

bool SimulatedDrive::IsRunning() const {
    std::lock_guard lock(m_mutex);
    return m_running;
}

void SimulatedDrive::SetLatency(int latency_ms) {
    SetLatency_us(std::clamp(latency_ms, 0, INT_MAX / 1000) * 1000);
}

int SimulatedDrive::Latency() const {
    return (Latency_us() + 999) / 1000;
}

void SimulatedDrive::SetLatency_us(int latency_us) {
    std::lock_guard lock(m_mutex);
    m_latency_us = std::max(0, latency_us);
}

int SimulatedDrive::Latency_us() const {
    std::lock_guard lock(m_mutex);
    return m_slow ? std::max(m_latency_us, kSlowLatency_ms * 1000) : m_latency_us;
}

void SimulatedDrive::SetRealTime(bool realTime) {
    std::lock_guard lock(m_mutex);
    m_realTime = realTime;
}

void SimulatedDrive::SetFailure(FailureMode mode, std::vector<std::uint32_t> addresses) {
    std::lock_guard lock(m_mutex);
    switch (mode) {
    case FailureMode::Offline:
        m_offlineFault = true;
        break;
    case FailureMode::FailReads:
        m_failReads.insert(addresses.begin(), addresses.end());
        break;
    case FailureMode::FailWrites:
        m_failWrites.insert(addresses.begin(), addresses.end());
        break;
    case FailureMode::Slow:
        m_slow = true;
        break;
    case FailureMode::RefuseWrites:
        m_refuseWrites.insert(addresses.begin(), addresses.end());
        break;
    }
}

void SimulatedDrive::ClearFailure(FailureMode mode) {
    std::lock_guard lock(m_mutex);
    switch (mode) {
    case FailureMode::Offline:
        m_offlineFault = false;
        break;
    case FailureMode::FailReads:
        m_failReads.clear();
        break;
    case FailureMode::FailWrites:
        m_failWrites.clear();
        break;
    case FailureMode::Slow:
        m_slow = false;
        break;
    case FailureMode::RefuseWrites:
        m_refuseWrites.clear();
        break;
    }
}

void SimulatedDrive::ClearFailures() {
    for (FailureMode m : {FailureMode::Offline, FailureMode::FailReads, FailureMode::FailWrites,
                          FailureMode::Slow, FailureMode::RefuseWrites})
        ClearFailure(m);
}

bool SimulatedDrive::HasFailure(FailureMode mode) const {
    std::lock_guard lock(m_mutex);
    switch (mode) {
    case FailureMode::Offline:
        return m_offlineFault;
    case FailureMode::FailReads:
        return !m_failReads.empty();
    case FailureMode::FailWrites:
        return !m_failWrites.empty();
    case FailureMode::Slow:
        return m_slow;
    case FailureMode::RefuseWrites:
        return !m_refuseWrites.empty();
    }
    return false;
}

int SimulatedDrive::Authority() const {
    std::lock_guard lock(m_mutex);
    return m_authority;
}

void SimulatedDrive::Log(DriveRequest::Kind kind, std::uint32_t address, std::size_t count) {
    ++m_requestCount;
    if (m_requests.size() < kRequestLogLimit)
        m_requests.push_back({kind, address, std::uint16_t(count)});
}

std::vector<DriveRequest> SimulatedDrive::TakeRequests() {
    std::lock_guard lock(m_mutex);
    return std::exchange(m_requests, {});
}

std::uint64_t SimulatedDrive::RequestCount() const {
    std::lock_guard lock(m_mutex);
    return m_requestCount;
}

// The part every request shares: the request is logged, takes its time, and reaches a
// drive that is there.
LinkResult SimulatedDrive::Admit(DriveRequest::Kind kind, std::uint32_t address, std::size_t count,
                                 int timeout_ms) {
    const auto start = std::chrono::steady_clock::now();
    int latency_us;
    bool online, realTime;
    {
        std::lock_guard lock(m_mutex);
        Log(kind, address, count);
        online = m_connected && !m_offlineFault;
        latency_us = m_slow ? std::max(m_latency_us, kSlowLatency_ms * 1000) : m_latency_us;
        realTime = m_realTime;
    }
    const bool limited = timeout_ms > 0;
    const std::int64_t timeout_us = std::int64_t(std::max(timeout_ms, 0)) * 1000;
    // A request to a drive that is gone waits out its whole time-out.
    const std::int64_t wait_us =
        online ? (limited ? std::min<std::int64_t>(latency_us, timeout_us) : latency_us)
               : timeout_us;
    // Waiting for a deadline keeps the many short waits of a long job from adding up
    // their wake-up delays.
    if (realTime && wait_us > 0)
        std::this_thread::sleep_until(start + std::chrono::microseconds(wait_us));
    if (!online)
        return {LinkStatus::Offline};
    if (limited && latency_us > timeout_us)
        return {LinkStatus::Timeout};
    return {};
}

LinkResult SimulatedDrive::Read(std::uint32_t address, std::span<std::uint16_t> words,
                                int timeout_ms) {
    LinkResult r = Admit(DriveRequest::Read, address, words.size(), timeout_ms);
    if (!r.ok())
        return r;
    std::lock_guard lock(m_mutex);
    if (words.empty())
        return LinkResult::Refuse(Refusal::WrongLength);
    for (std::uint32_t i = 0; i < words.size(); ++i)
        if (m_failReads.count(address + i))
            return {LinkStatus::Error};
    for (std::uint32_t i = 0; i < words.size(); ++i) {
        auto it = m_registers.find(address + i);
        if (it == m_registers.end())
            return LinkResult::Refuse(Refusal::IllegalAddress);
        words[i] = it->second;
    }
    return {};
}

LinkResult SimulatedDrive::Write(std::uint32_t address, std::span<const std::uint16_t> words,
                                 int timeout_ms) {
    LinkResult r = Admit(DriveRequest::Write, address, words.size(), timeout_ms);
    if (!r.ok())
        return r;
    std::lock_guard lock(m_mutex);
    if (words.empty())
        return LinkResult::Refuse(Refusal::WrongLength);
    for (std::uint32_t i = 0; i < words.size(); ++i)
        if (m_failWrites.count(address + i))
            return {LinkStatus::Error};
    for (std::uint32_t i = 0; i < words.size(); ++i)
        if (m_refuseWrites.count(address + i))
            return LinkResult::Refuse(Refusal::AccessDenied);
    const std::uint32_t index = m_device->FindByAddress(address);
    DataType type = DataType::Unknown;
    if (index != kNoIndex) {
        type = m_device->parameters[index].dataType;
    } else if (m_freeRegisters.count(address)) {
        for (const auto& v : m_device->namedVariables)
            if (v.address == address)
                type = v.dataType;
    } else {
        return LinkResult::Refuse(Refusal::IllegalAddress);
    }
    if (RegisterCount(type) != int(words.size()))
        return LinkResult::Refuse(Refusal::WrongLength);
    const double raw = DecodeRaw(type, words);
    if (index != kNoIndex) {
        LinkResult check = CheckWrite(index, raw);
        if (!check.ok())
            return check;
    }
    for (std::uint32_t i = 0; i < words.size(); ++i)
        m_registers[address + i] = words[i];
    AfterWrite(address, raw);
    return {};
}

// What the drive itself lets through. Password registers take any code: the drive judges
// the code, not the write.
LinkResult SimulatedDrive::CheckWrite(std::uint32_t index, double raw) const {
    const ParameterDef& p = m_device->parameters[index];
    if (m_passwordRegisters.count(p.address))
        return {};
    if (p.modifyMode == ModifyMode::Never)
        return LinkResult::Refuse(Refusal::ReadOnly);
    if (p.modifyMode == ModifyMode::AtStandstill && m_running)
        return LinkResult::Refuse(Refusal::WhileRunning);
    if (m_device->product.accessModel != device::AccessModel::ToolOnly &&
        p.accessLevel > m_authority)
        return LinkResult::Refuse(Refusal::AccessDenied);
    const double low = p.IsMinLinked() ? LiveLimit(p.minLink, p.minValue) : p.minValue;
    const double high = p.IsMaxLinked() ? LiveLimit(p.maxLink, p.maxValue) : p.maxValue;
    if (raw < low || raw > high) {
        LinkResult r = LinkResult::Refuse(Refusal::OutOfRange);
        r.low = low;
        r.high = high;
        r.decimals = p.decimals;
        return r;
    }
    return {};
}

double SimulatedDrive::LiveLimit(std::uint32_t link, double fallback) const {
    double raw;
    return PeekLocked(m_device->parameters[link].address, raw) ? raw : fallback;
}

void SimulatedDrive::AfterWrite(std::uint32_t address, double raw) {
    if (!m_passwordRegisters.count(address))
        return;
    if (raw == kFactoryCode)
        SetAuthority(kFactoryAuthority);
    else if (raw == kLogoutCode)
        SetAuthority(kBaseAuthority);
    // Codes are taken, never kept: the register reads 0 again.
    PokeLocked(address, 0);
}

void SimulatedDrive::SetAuthority(int level) {
    m_authority = level;
    if (m_hasAuthority)
        PokeLocked(m_authorityReg, level);
}

bool SimulatedDrive::PeekLocked(std::uint32_t address, double& raw) const {
    DataType type = DataType::Unknown;
    const std::uint32_t index = m_device->FindByAddress(address);
    if (index != kNoIndex) {
        type = m_device->parameters[index].dataType;
    } else {
        for (const auto& v : m_device->namedVariables)
            if (v.address == address)
                type = v.dataType;
    }
    const int n = RegisterCount(type);
    if (n == 0)
        return false;
    std::uint16_t words[4] = {};
    for (int i = 0; i < n; ++i) {
        auto it = m_registers.find(address + std::uint32_t(i));
        if (it == m_registers.end())
            return false;
        words[i] = it->second;
    }
    raw = DecodeRaw(type, std::span<const std::uint16_t>(words, size_t(n)));
    return true;
}

bool SimulatedDrive::PokeLocked(std::uint32_t address, double raw) {
    DataType type = DataType::Unknown;
    const std::uint32_t index = m_device->FindByAddress(address);
    if (index != kNoIndex) {
        type = m_device->parameters[index].dataType;
    } else {
        for (const auto& v : m_device->namedVariables)
            if (v.address == address)
                type = v.dataType;
    }
    const int n = RegisterCount(type);
    std::uint16_t words[4] = {};
    if (n == 0 || !EncodeRaw(type, raw, std::span<std::uint16_t>(words, size_t(n))))
        return false;
    for (int i = 0; i < n; ++i)
        m_registers[address + std::uint32_t(i)] = words[i];
    return true;
}

bool SimulatedDrive::PeekRaw(std::uint32_t address, double& raw) const {
    std::lock_guard lock(m_mutex);
    return PeekLocked(address, raw);
}

bool SimulatedDrive::PokeRaw(std::uint32_t address, double raw) {
    std::lock_guard lock(m_mutex);
    return PokeLocked(address, raw);
}

std::int64_t SimulatedDrive::Time_ms() const {
    std::lock_guard lock(m_mutex);
    return m_time_ms;
}

void SimulatedDrive::Step(int dt_ms) {
    if (dt_ms <= 0)
        return;
    std::lock_guard lock(m_mutex);
    m_time_ms += dt_ms;
    const double t = double(m_time_ms);
    const double follow = 1.0 - std::exp(-double(dt_ms) / kSpeedTau_ms);
    // Writes a monitoring value in engineering units, kept inside the parameter's limits.
    auto put = [this](std::uint32_t index, double value) {
        const ParameterDef& p = m_device->parameters[index];
        double raw = value * std::pow(10.0, p.decimals);
        if (p.dataType != DataType::Float && p.dataType != DataType::Double)
            raw = std::round(raw);
        raw = std::clamp(raw, p.minValue, p.maxValue);
        PokeLocked(p.address, raw);
    };
    double load = 0;
    for (size_t i = 0; i < m_axes.size(); ++i) {
        Axis& a = m_axes[i];
        a.target_rpm = m_running ? kNominalSpeed_rpm - 250.0 * double(i) : 0.0;
        const double before = a.speed_rpm;
        a.speed_rpm += (a.target_rpm - a.speed_rpm) * follow;
        if (!m_running && std::fabs(a.speed_rpm) < 0.5)
            a.speed_rpm = 0;
        // A little ripple while running, as a real speed loop shows.
        const double ripple =
            m_running ? 3.0 * std::sin(2 * std::numbers::pi * t / 700.0 + double(i)) : 0.0;
        const double speed = a.speed_rpm + ripple;
        const double accel = std::fabs(a.speed_rpm - before) / double(dt_ms); // rpm per ms
        const double current = (m_running || speed != 0)
                                   ? 0.3 + 2.5 * std::fabs(speed) / kNominalSpeed_rpm + accel
                                   : 0.0;
        load += current;
        for (const Signal& s : a.signals) {
            switch (s.kind) {
            case SignalKind::Speed:
                put(s.parameter, speed);
                break;
            case SignalKind::Frequency:
                put(s.parameter, speed / kNominalSpeed_rpm * kRatedFrequency_Hz);
                break;
            case SignalKind::Current:
                put(s.parameter, current);
                break;
            case SignalKind::BusVoltage:
                break;
            }
        }
        if (i == 0 && m_scopeRunning) {
            if (m_scope.size() >= kScopeSamples)
                m_scope.erase(m_scope.begin());
            m_scope.push_back(speed);
        }
    }
    const double bus =
        kBusNominal_V - 4.0 * load + 1.5 * std::sin(2 * std::numbers::pi * t / 1000.0);
    for (const Signal& s : m_busVoltage)
        put(s.parameter, bus);
}

void SimulatedDrive::StartOscilloscope() {
    std::lock_guard lock(m_mutex);
    m_scopeRunning = true;
    m_scope.clear();
}

void SimulatedDrive::StopOscilloscope() {
    std::lock_guard lock(m_mutex);
    m_scopeRunning = false;
}

bool SimulatedDrive::IsOscilloscopeRunning() const {
    std::lock_guard lock(m_mutex);
    return m_scopeRunning;
}

std::vector<double> SimulatedDrive::OscilloscopeSamples() const {
    std::lock_guard lock(m_mutex);
    return m_scope;
}

} // namespace zorhost::sim
