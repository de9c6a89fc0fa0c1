#include "zorhost/link/DriveServer.h"

#include <chrono>
#include <thread>

namespace zorhost::link {

using sim::LinkResult;
using sim::LinkStatus;
using sim::Refusal;

namespace {

std::uint16_t Word(std::span<const std::uint8_t> b, size_t at) {
    return std::uint16_t(b[at] << 8 | b[at + 1]);
}

void PutWord(std::vector<std::uint8_t>& b, std::uint16_t w) {
    b.push_back(std::uint8_t(w >> 8));
    b.push_back(std::uint8_t(w & 0xff));
}

} // namespace

sim::SimulatedDrive&
DriveServer::AddDrive(std::shared_ptr<const device::DeviceDescription> device) {
    Unit u;
    u.drive = std::make_unique<sim::SimulatedDrive>(std::move(device));
    m_units.push_back(std::move(u));
    return *m_units.back().drive;
}

sim::SimulatedDrive* DriveServer::Drive(int unit) {
    return unit >= 1 && unit <= int(m_units.size()) ? m_units[size_t(unit - 1)].drive.get()
                                                    : nullptr;
}

void DriveServer::SetFaults(ServerFaults faults) {
    std::lock_guard lock(m_mutex);
    m_faults = std::move(faults);
}

ServerFaults DriveServer::Faults() const {
    std::lock_guard lock(m_mutex);
    return m_faults;
}

void DriveServer::Step(int dt_ms) {
    for (Unit& u : m_units)
        u.drive->Step(dt_ms);
}

LinkResult DriveServer::ReadRegisters(Unit& unit, std::uint32_t address,
                                      std::span<std::uint16_t> words) {
    if (address + words.size() <= kLastParameterRegister + 1) {
        LinkResult r = unit.drive->Read(address, words, 0);
        if (r.ok())
            SwapToWireOrder(unit.drive->Device(), address, words);
        return r;
    }
    // The drive's own registers, one by one.
    const auto& product = unit.drive->Device().product;
    std::uint16_t label[kLabelRegisters], version[kVersionRegisters];
    PackBytes(product.electronicLabel, label);
    const std::string_view text = unit.drive->Device().Text(product.versionText);
    PackBytes(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), version);
    for (std::uint32_t i = 0; i < words.size(); ++i) {
        const std::uint32_t a = address + i;
        if (a == kRunRegister)
            words[i] = unit.drive->IsRunning() ? 1 : 0;
        else if (a >= kVersionRegister && a < kVersionRegister + kVersionRegisters)
            words[i] = version[a - kVersionRegister];
        else if (a >= kLabelRegister && a < kLabelRegister + kLabelRegisters)
            words[i] = label[a - kLabelRegister];
        else if (a >= kRefusalRegister && a < kRefusalRegister + kRefusalRegisters)
            words[i] = unit.refusal[a - kRefusalRegister];
        else
            return LinkResult::Refuse(Refusal::IllegalAddress);
    }
    return {};
}

// A block write is carried out parameter by parameter, as the drive takes them; the first
// refusal ends it, and what came before it stays written.
LinkResult DriveServer::WriteRegisters(Unit& unit, std::uint32_t address,
                                       std::span<std::uint16_t> words) {
    const device::DeviceDescription& d = unit.drive->Device();
    SwapToWireOrder(d, address, words);
    for (std::uint32_t i = 0; i < words.size();) {
        const std::uint32_t a = address + i;
        if (a == kRunRegister) {
            unit.drive->SetRunning(words[i] != 0);
            ++i;
            continue;
        }
        const std::uint32_t index = d.FindByAddress(a);
        std::uint32_t n = 1;
        if (index != device::kNoIndex) {
            n = std::uint32_t(sim::RegisterSpan(d.parameters[index].dataType));
        } else {
            for (const auto& v : d.namedVariables)
                if (v.address == a)
                    n = std::uint32_t(sim::RegisterSpan(v.dataType));
        }
        if (i + n > words.size())
            return LinkResult::Refuse(Refusal::WrongLength);
        LinkResult r = unit.drive->Write(a, words.subspan(i, n), 0);
        if (!r.ok())
            return r;
        i += n;
    }
    return {};
}

DriveServer::Action DriveServer::Handle(std::uint8_t unitId, std::span<const std::uint8_t> pdu,
                                        std::vector<std::uint8_t>& answer) {
    answer.clear();
    const std::uint64_t number = ++m_requests;
    ServerFaults faults = Faults();
    if (faults.silent || (faults.silentAfter && number >= faults.silentAfter))
        return Action::Ignore;
    if (faults.dropAfter && number >= faults.dropAfter) {
        std::lock_guard lock(m_mutex);
        m_faults.dropAfter = 0;
        return Action::Drop;
    }
    if (unitId < 1 || unitId > m_units.size() || pdu.empty())
        return Action::Ignore; // no drive there: a real line stays silent too
    if (faults.latency_ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(faults.latency_ms));
    Unit& unit = m_units[unitId - 1u];
    const std::uint8_t function = pdu[0];

    auto touchesRefused = [&](std::uint32_t address, std::uint32_t count) {
        for (std::uint32_t a : faults.refused)
            if (a >= address && a < address + count)
                return true;
        return false;
    };

    LinkResult r = LinkResult::Refuse(Refusal::IllegalFunction);
    std::vector<std::uint16_t> words;
    std::uint32_t address = 0, count = 0;
    if ((function == 3 || function == 4) && pdu.size() == 5) {
        address = Word(pdu, 1);
        count = Word(pdu, 3);
        if (count < 1 || count > std::uint32_t(kMaxReadRegisters)) {
            r = LinkResult::Refuse(Refusal::IllegalValue);
        } else if (touchesRefused(address, count)) {
            r = LinkResult::Refuse(Refusal::DeviceFailure);
        } else {
            words.resize(count);
            r = ReadRegisters(unit, address, words);
        }
    } else if (function == 6 && pdu.size() == 5) {
        address = Word(pdu, 1);
        count = 1;
        words = {Word(pdu, 3)};
        r = touchesRefused(address, 1) ? LinkResult::Refuse(Refusal::DeviceFailure)
                                       : WriteRegisters(unit, address, words);
    } else if (function == 16 && pdu.size() >= 6) {
        address = Word(pdu, 1);
        count = Word(pdu, 3);
        if (count < 1 || count > std::uint32_t(kMaxWriteRegisters) || pdu[5] != 2 * count ||
            pdu.size() != 6 + 2 * count) {
            r = LinkResult::Refuse(Refusal::IllegalValue);
        } else if (touchesRefused(address, count)) {
            r = LinkResult::Refuse(Refusal::DeviceFailure);
        } else {
            for (std::uint32_t i = 0; i < count; ++i)
                words.push_back(Word(pdu, 6 + 2 * i));
            r = WriteRegisters(unit, address, words);
        }
    }

    if (faults.garbage) {
        // Well framed, but no answer to this request: the client must not take it.
        answer = {std::uint8_t(function ^ 0x40), 0};
        return Action::Answer;
    }
    if (!r.ok()) {
        EncodeRefusal(r, std::span<std::uint16_t, kRefusalRegisters>(unit.refusal));
        answer = {std::uint8_t(function | 0x80), std::uint8_t(ExceptionFor(r))};
        return Action::Answer;
    }
    answer.push_back(function);
    if (function == 3 || function == 4) {
        answer.push_back(std::uint8_t(2 * count));
        for (std::uint16_t w : words)
            PutWord(answer, w);
    } else {
        // Both writes echo the address and the value (6) or the count (16).
        answer.insert(answer.end(), pdu.begin() + 1, pdu.begin() + 5);
    }
    return Action::Answer;
}

} // namespace zorhost::link
