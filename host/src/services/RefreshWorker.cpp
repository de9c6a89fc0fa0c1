#include "zorhost/services/RefreshWorker.h"

#include "zorhost/link/BlockPlan.h"
#include "zorhost/link/RegisterMap.h"
#include "zorhost/sim/DriveLink.h"

#include <algorithm>
#include <utility>

namespace zorhost {

namespace {

// Refresh reads are tried once: the next cycle asks again anyway.
constexpr int kReadTimeout_ms = 200;

} // namespace

RefreshWorker::~RefreshWorker() {
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
        m_queue.clear();
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

bool RefreshWorker::Submit(Batch batch) {
    {
        std::lock_guard lock(m_mutex);
        if (m_stop || !batch.link || !m_out.insert(batch.key).second)
            return false;
        m_queue.push_back(std::move(batch));
        if (!m_thread.joinable())
            m_thread = std::thread([this] { Run(); });
    }
    m_wake.notify_all();
    return true;
}

std::vector<RefreshWorker::Result> RefreshWorker::TakeResults() {
    std::lock_guard lock(m_mutex);
    return std::exchange(m_results, {});
}

void RefreshWorker::Quiesce() {
    std::unique_lock lock(m_mutex);
    for (const Batch& b : m_queue)
        m_out.erase(b.key);
    m_queue.clear();
    m_idle.wait(lock, [this] { return !m_reading; });
    m_results.clear();
}

void RefreshWorker::Run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || !m_queue.empty(); });
        if (m_stop)
            return;
        Batch batch = std::move(m_queue.front());
        m_queue.pop_front();
        m_reading = true;
        lock.unlock();
        Result result = Read(batch);
        lock.lock();
        m_reading = false;
        m_out.erase(batch.key);
        m_results.push_back(std::move(result));
        m_idle.notify_all();
    }
}

// Neighbouring registers go in one block read; a block the drive refuses is read again
// item by item, so that one refused address costs only its own value.
RefreshWorker::Result RefreshWorker::Read(Batch& batch) {
    Result result{batch.key, batch.link.get(), {}};
    sim::DriveLink& link = *batch.link;
    std::vector<Item>& items = batch.items;
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.address < b.address; });
    const std::vector<link::RegisterRange> ranges = link::RangesOf(items);
    const int limit = std::clamp(link.ReadBlockLimit(), 1, link::kMaxReadRegisters);
    std::vector<std::uint16_t> words;
    for (const link::RegisterBlock& block : link::PlanBlocks(ranges, limit)) {
        if (block.last - block.first > 1) {
            words.assign(std::size_t(block.count), 0);
            const sim::LinkResult r = link.Read(block.address, words, kReadTimeout_ms);
            if (r.status == sim::LinkStatus::Offline)
                break; // the rest would fail the same way
            if (r.ok()) {
                std::size_t offset = 0;
                for (std::size_t k = block.first; k < block.last; ++k) {
                    const std::size_t n = std::size_t(ranges[k].count);
                    result.values.push_back(
                        {items[k].address, items[k].type,
                         sim::DecodeRaw(items[k].type, std::span(words.data() + offset, n))});
                    offset += n;
                }
                continue;
            }
        }
        bool offline = false;
        for (std::size_t k = block.first; k < block.last; ++k) {
            double raw = 0;
            const sim::LinkResult r =
                sim::ReadRaw(link, items[k].address, items[k].type, raw, kReadTimeout_ms);
            if (r.status == sim::LinkStatus::Offline) {
                offline = true;
                break;
            }
            if (r.ok())
                result.values.push_back({items[k].address, items[k].type, raw});
        }
        if (offline)
            break;
    }
    return result;
}

} // namespace zorhost
