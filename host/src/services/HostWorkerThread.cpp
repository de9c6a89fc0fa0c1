#include "zorhost/services/HostWorkerThread.h"

#include <chrono>

namespace zorhost {

CHostWorkerThread::~CHostWorkerThread() {
    if (m_thread.joinable())
        m_thread.join();
}

BOOL CHostWorkerThread::Start(HostWorkerProc proc, int, void* arg) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_started || !proc)
        return 0;
    m_started = true;
    m_running = true;
    m_thread = std::thread([this, proc, arg] {
        proc(arg);
        bool orphaned;
        {
            std::lock_guard<std::mutex> l(m_mutex);
            m_running = false;
            orphaned = m_orphaned;
            m_changed.notify_all();
        }
        if (orphaned) {
            m_thread.detach();
            delete this;
        }
    });
    return 1;
}

void CHostWorkerThread::RequestStop(BOOL stop) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stop = stop != 0;
    m_changed.notify_all();
}

BOOL CHostWorkerThread::IsStopRequested() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_stop;
}

BOOL CHostWorkerThread::Wait(int ms) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::milliseconds(ms < 0 ? 0 : ms), [this] { return m_stop; });
    return m_stop;
}

void CHostWorkerThread::SetWaitTimeout(int ms) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_waitTimeout = ms;
}

void CHostWorkerThread::SetUserData(void* data) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_userData = data;
}

void* CHostWorkerThread::GetUserData() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_userData;
}

void CHostWorkerThread::Release() {
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_stop = true;
        m_changed.notify_all();
        auto ended = [this] { return !m_running; };
        if (m_waitTimeout < 0)
            m_changed.wait(lock, ended);
        else if (!m_changed.wait_for(lock, std::chrono::milliseconds(m_waitTimeout), ended)) {
            m_orphaned = true;
            return;
        }
    }
    delete this;
}

} // namespace zorhost
