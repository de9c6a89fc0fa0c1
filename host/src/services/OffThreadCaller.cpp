#include "zorhost/services/OffThreadCaller.h"

#include <QCoreApplication>
#include <QThread>

#include <chrono>

namespace zorhost {

OffThreadCaller::~OffThreadCaller() {
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void OffThreadCaller::Call(const std::function<void()>& work) {
    std::unique_lock lock(m_mutex);
    if (m_busy) {
        lock.unlock();
        work();
        return;
    }
    m_busy = true;
    m_finished = false;
    m_work = &work;
    if (!m_thread.joinable())
        m_thread = std::thread([this] { Run(); });
    m_wake.notify_all();
    QCoreApplication* app = QCoreApplication::instance();
    const bool window = app && QThread::currentThread() == app->thread();
    while (!m_finished) {
        if (window) {
            lock.unlock();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            lock.lock();
            // A short wait: events that arrive meanwhile are seen within it.
            m_done.wait_for(lock, std::chrono::milliseconds(2), [this] { return m_finished; });
        } else {
            m_done.wait(lock, [this] { return m_finished; });
        }
    }
    m_work = nullptr;
    m_busy = false;
}

void OffThreadCaller::Run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || (m_work && !m_finished); });
        if (m_stop)
            return;
        const std::function<void()>* work = m_work;
        lock.unlock();
        (*work)();
        lock.lock();
        m_finished = true;
        m_done.notify_all();
    }
}

} // namespace zorhost
