// The cyclic reads of drives behind a field-bus link, off the user-interface thread. A
// batch of one module's reads goes to the worker; the values come back as a result the
// next refresh cycle stores. A module has at most one batch on its way: a cycle that finds
// the last one still out skips the module, so a slow or silent drive never piles requests
// up nor holds the window.
#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zorhost {

namespace sim {
class DriveLink;
}

class RefreshWorker {
public:
    struct Item {
        std::uint32_t address = 0;
        device::DataType type = device::DataType::Unknown;
    };
    struct Value {
        std::uint32_t address = 0;
        device::DataType type = device::DataType::Unknown;
        double raw = 0;
    };
    struct Batch {
        std::string key;
        std::shared_ptr<sim::DriveLink> link;
        std::vector<Item> items;
    };
    struct Result {
        std::string key;
        const sim::DriveLink* link = nullptr; // the link it was read over
        std::vector<Value> values;            // what was read; a failed read is left out
    };

    RefreshWorker() = default;
    ~RefreshWorker();
    RefreshWorker(const RefreshWorker&) = delete;
    RefreshWorker& operator=(const RefreshWorker&) = delete;

    // False (and nothing queued) while the module's last batch is not back yet.
    bool Submit(Batch batch);
    // The results that came back since the last call, oldest first.
    std::vector<Result> TakeResults();
    // Drops what is queued and returns once no read is running. Bounded by one request's
    // time-out on each link; at once for links that were closed before.
    void Quiesce();

private:
    void Run();
    static Result Read(Batch& batch);

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<Batch> m_queue;
    std::set<std::string> m_out; // modules with a batch queued or being read
    std::vector<Result> m_results;
    bool m_reading = false;
    bool m_stop = false;
    std::thread m_thread; // started with the first batch
};

} // namespace zorhost
