// Runs blocking link requests off the calling thread. On the user-interface thread the
// event loop keeps turning while the request is out, so the window repaints and answers
// (its cancel button included) however long the drive takes; elsewhere the caller simply
// waits. Either way the request itself is bounded by its link's time-out.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace zorhost {

class OffThreadCaller {
public:
    OffThreadCaller() = default;
    ~OffThreadCaller();
    OffThreadCaller(const OffThreadCaller&) = delete;
    OffThreadCaller& operator=(const OffThreadCaller&) = delete;

    // Returns once `work` has run. A call made while another is out (from an event handled
    // while waiting) runs `work` on the calling thread.
    void Call(const std::function<void()>& work);

private:
    void Run();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_done;
    const std::function<void()>* m_work = nullptr; // the call that is out
    bool m_finished = false;
    bool m_busy = false;
    bool m_stop = false;
    std::thread m_thread; // started with the first call
};

} // namespace zorhost
