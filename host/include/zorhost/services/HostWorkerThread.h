// The host's worker thread object (IHostWorkerThread).
#pragma once

#include "module/host/IHostWorkerThread.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zorhost {

class CHostWorkerThread : public IHostWorkerThread {
public:
    CHostWorkerThread() = default;
    ~CHostWorkerThread() override;

    BOOL Start(HostWorkerProc proc, int flags, void* arg) override;
    void RequestStop(BOOL stop) override;
    BOOL IsStopRequested() override;
    BOOL Wait(int ms) override;
    void SetWaitTimeout(int ms) override;
    void SetUserData(void* data) override;
    void* GetUserData() override;
    // Stops and waits for the function. When the wait times out the object is left to
    // the thread, which deletes it once the function returns: it is never freed under it.
    void Release() override;

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
    bool m_started = false;
    bool m_running = false;
    bool m_stop = false;
    bool m_orphaned = false; // Release gave up waiting; the thread deletes the object
    int m_waitTimeout = -1;
    void* m_userData = nullptr;
};

} // namespace zorhost
