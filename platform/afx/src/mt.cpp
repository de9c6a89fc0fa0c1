#include <afx/afxmt.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

struct CCriticalSection::Impl {
    std::recursive_mutex m;
};

CCriticalSection::CCriticalSection() : m_impl(std::make_unique<Impl>()) {}
CCriticalSection::~CCriticalSection() = default;
BOOL CCriticalSection::Lock() {
    m_impl->m.lock();
    return TRUE;
}
BOOL CCriticalSection::Unlock() {
    m_impl->m.unlock();
    return TRUE;
}

CSingleLock::CSingleLock(CCriticalSection* pObject, BOOL bInitialLock) : m_obj(pObject) {
    if (bInitialLock)
        Lock();
}
CSingleLock::~CSingleLock() {
    Unlock();
}
BOOL CSingleLock::Lock() {
    if (!m_locked && m_obj)
        m_locked = m_obj->Lock();
    return m_locked;
}
BOOL CSingleLock::Unlock() {
    if (m_locked && m_obj) {
        m_obj->Unlock();
        m_locked = FALSE;
    }
    return TRUE;
}

struct CEvent::Impl {
    std::mutex m;
    std::condition_variable cv;
    bool signalled = false;
    bool manual = false;
    QEventLoop* pumping = nullptr; // a user-interface wait to wake up

    // Takes the signal if it is there (auto-reset events consume it).
    bool TryTake() {
        if (!signalled)
            return false;
        if (!manual)
            signalled = false;
        return true;
    }
};

CEvent::CEvent(BOOL bInitiallyOwn, BOOL bManualReset) : m_impl(std::make_unique<Impl>()) {
    m_impl->signalled = bInitiallyOwn;
    m_impl->manual = bManualReset;
}
CEvent::~CEvent() = default;

BOOL CEvent::SetEvent() {
    std::lock_guard<std::mutex> lock(m_impl->m);
    m_impl->signalled = true;
    m_impl->cv.notify_all();
    if (m_impl->pumping)
        QMetaObject::invokeMethod(m_impl->pumping, "quit", Qt::QueuedConnection);
    return TRUE;
}

BOOL CEvent::ResetEvent() {
    std::lock_guard<std::mutex> lock(m_impl->m);
    m_impl->signalled = false;
    return TRUE;
}

BOOL CEvent::Lock(DWORD timeout_ms) {
    std::unique_lock<std::mutex> lock(m_impl->m);
    if (timeout_ms == INFINITE) {
        m_impl->cv.wait(lock, [this] { return m_impl->signalled; });
    } else if (!m_impl->cv.wait_for(lock, std::chrono::milliseconds(timeout_ms),
                                    [this] { return m_impl->signalled; })) {
        return FALSE;
    }
    return m_impl->TryTake();
}

DWORD WaitForSingleObject(CEvent& ev, DWORD timeout_ms) {
    return ev.Lock(timeout_ms) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

DWORD AfxWaitPumping(CEvent& ev, DWORD timeout_ms) {
    CEvent::Impl* e = ev.impl();
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        QEventLoop loop;
        {
            std::lock_guard<std::mutex> lock(e->m);
            if (e->TryTake())
                return WAIT_OBJECT_0;
            e->pumping = &loop;
        }
        const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(
                                std::chrono::steady_clock::now() - start)
                                .count();
        if (timeout_ms != INFINITE && waited >= long(timeout_ms)) {
            std::lock_guard<std::mutex> lock(e->m);
            e->pumping = nullptr;
            return e->TryTake() ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
        }
        const long left = timeout_ms == INFINITE ? 1000 : long(timeout_ms) - waited;
        QTimer::singleShot(int(std::min<long>(left, 1000)), &loop, &QEventLoop::quit);
        // A loop that refuses to run (-1) means the thread's event handling is ending: an
        // exit ends every running loop and keeps new ones from starting. Waiting on would
        // spin without handling anything.
        const int ran = loop.exec();
        std::lock_guard<std::mutex> lock(e->m);
        e->pumping = nullptr;
        if (ran == -1)
            return e->TryTake() ? WAIT_OBJECT_0 : WAIT_QUIT;
    }
}

BOOL AfxPumpPendingMessages() {
    if (!QCoreApplication::instance())
        return FALSE;
    QAbstractEventDispatcher* d = QAbstractEventDispatcher::instance();
    return d && d->processEvents(QEventLoop::AllEvents);
}

void Sleep(DWORD ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}
