// A drive in software: the parameter memory of one device description, a run/stop state,
// monitoring values that move as the drive runs, the password and authority registers and
// a sampling oscilloscope. Time only moves when Step is called, so a test decides exactly
// what happened between two reads.
//
// What the drive itself refuses, whatever the tool allows: a parameter that can't be
// changed, a 停机修改 parameter while running, a value outside its limits (linked limits
// follow the live value of their parameter) and, on a drive that keeps access levels
// (models 1 and 2), a parameter above the level it grants. It grants kBaseAuthority after
// power-on; the factory code written to a password register ("InputPassword", "Factory",
// "TempAuthority" or H02-41 of any axis) grants the factory level, kLogoutCode returns to
// the base level, any other code changes nothing. Codes are never kept readable, and
// "Authority" always reads the level granted.
#pragma once

#include "zorhost/sim/DriveLink.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>
#include <vector>

namespace zorhost::sim {

// Faults a drive can be given, by the tests and from the program's menus alike.
enum class FailureMode : std::uint8_t {
    Offline,    // stops answering, as with a pulled cable
    FailReads,  // reads at the given addresses fail with a communication error
    FailWrites, // writes at the given addresses fail with a communication error
    Slow,       // every answer takes kSlowLatency_ms
    // The drive answers writes at the given addresses with a refusal (AccessDenied), as a
    // drive does that locks a parameter for reasons of its own.
    RefuseWrites,
};

// What the drive was asked, for tests and the program's traffic view.
struct DriveRequest {
    enum Kind : std::uint8_t { Read, Write } kind;
    std::uint32_t address;
    std::uint16_t count;
};

// Build-time factory access code shared with the module's login.
#ifndef PARMIRA_FACTORY_CODE_NUMBER
#define PARMIRA_FACTORY_CODE_NUMBER 2468
#endif

class SimulatedDrive : public DriveLink {
public:
    static constexpr int kFactoryCode = PARMIRA_FACTORY_CODE_NUMBER;
    static constexpr int kLogoutCode = 65535;
    static constexpr int kSlowLatency_ms = 1000;
    // Authority granted after power-on and after a log-out.
    static constexpr int kBaseAuthority = 1;
    static constexpr int kFactoryAuthority = 3;
    static constexpr std::size_t kRequestLogLimit = 4096;
    static constexpr std::size_t kScopeSamples = 1000;

    explicit SimulatedDrive(std::shared_ptr<const device::DeviceDescription> device);
    ~SimulatedDrive() override;

    const device::DeviceDescription& Device() const { return *m_device; }

    // DriveLink
    bool IsOnline() const override;
    LinkResult Read(std::uint32_t address, std::span<std::uint16_t> words, int timeout_ms) override;
    LinkResult Write(std::uint32_t address, std::span<const std::uint16_t> words,
                     int timeout_ms) override;

    // The user's connect and disconnect. Online means connected and no Offline fault.
    void SetConnected(bool connected);
    bool IsConnected() const;

    void SetRunning(bool running);
    bool IsRunning() const;

    // Advances the drive's time: the monitoring values follow the run state and the
    // oscilloscope takes its samples.
    void Step(int dt_ms);
    std::int64_t Time_ms() const;

    // Time each request takes. Only counted unless real time is on, when the caller is
    // held for it (at most its time-out); a request slower than its time-out times out.
    void SetLatency(int latency_ms);
    int Latency() const;
    // The same in microseconds, for links whose requests take a fraction of a millisecond
    // more (one register at 115200 baud takes about 4900 us).
    void SetLatency_us(int latency_us);
    int Latency_us() const;
    void SetRealTime(bool realTime);

    // Faults accumulate; addresses matter for FailReads and FailWrites only and add up.
    void SetFailure(FailureMode mode, std::vector<std::uint32_t> addresses = {});
    void ClearFailure(FailureMode mode);
    void ClearFailures();
    bool HasFailure(FailureMode mode) const;

    // The level the drive grants now ("Authority").
    int Authority() const;

    void StartOscilloscope();
    void StopOscilloscope();
    bool IsOscilloscopeRunning() const;
    // Motor speed of the first axis in rpm, oldest first.
    std::vector<double> OscilloscopeSamples() const;

    // The raw value of the parameter at `address` as the drive holds it, without any
    // traffic; false when there is none.
    bool PeekRaw(std::uint32_t address, double& raw) const;
    // Sets a value as the drive itself would (no checks, no traffic).
    bool PokeRaw(std::uint32_t address, double raw);

    // Requests seen since the last call, oldest first (at most kRequestLogLimit).
    std::vector<DriveRequest> TakeRequests();
    std::uint64_t RequestCount() const;

private:
    struct Signal; // a monitoring value the drive moves itself
    struct Axis;

    LinkResult Admit(DriveRequest::Kind kind, std::uint32_t address, std::size_t count,
                     int timeout_ms);
    LinkResult CheckWrite(std::uint32_t parameter, double raw) const;
    void AfterWrite(std::uint32_t address, double raw);
    void SetAuthority(int level);
    bool PeekLocked(std::uint32_t address, double& raw) const;
    bool PokeLocked(std::uint32_t address, double raw);
    double LiveLimit(std::uint32_t link, double fallback) const;
    void Log(DriveRequest::Kind kind, std::uint32_t address, std::size_t count);
    void FindSignals();

    std::shared_ptr<const device::DeviceDescription> m_device;
    mutable std::mutex m_mutex;
    std::unordered_map<std::uint32_t, std::uint16_t> m_registers;
    std::set<std::uint32_t> m_freeRegisters; // named registers that are no parameter
    bool m_connected = true;
    bool m_offlineFault = false;
    bool m_slow = false;
    std::set<std::uint32_t> m_failReads, m_failWrites, m_refuseWrites;
    bool m_running = false;
    bool m_realTime = false;
    int m_latency_us = 2000;
    std::int64_t m_time_ms = 0;
    int m_authority = kBaseAuthority;
    // Registers that take access codes ("InputPassword", "Factory", "TempAuthority", H02-41
    // of every axis) and the one that tells the granted level ("Authority").
    std::set<std::uint32_t> m_passwordRegisters;
    std::uint32_t m_authorityReg = 0;
    bool m_hasAuthority = false;
    std::vector<Axis> m_axes;
    std::vector<Signal> m_busVoltage;
    bool m_scopeRunning = false;
    std::vector<double> m_scope;
    std::vector<DriveRequest> m_requests;
    std::uint64_t m_requestCount = 0;
};

} // namespace zorhost::sim
