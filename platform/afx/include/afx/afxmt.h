// Locks, events and waits.
#pragma once

#include <afx/afxtypes.h>

#include <memory>

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
// AfxWaitPumping: the thread's event handling was told to end (the application quits)
// before the event came. The quit is left to the loops outside the wait.
constexpr DWORD WAIT_QUIT = 0x103;

// A recursive lock, as a critical section is.
class CCriticalSection {
public:
    CCriticalSection();
    ~CCriticalSection();
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;
    BOOL Lock();
    BOOL Unlock();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

class CSingleLock {
public:
    explicit CSingleLock(CCriticalSection* pObject, BOOL bInitialLock = FALSE);
    ~CSingleLock();
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;
    BOOL Lock();
    BOOL Unlock();
    BOOL IsLocked() const { return m_locked; }

private:
    CCriticalSection* m_obj;
    BOOL m_locked = FALSE;
};

// An event. Auto-reset by default: a successful wait consumes the signal.
class CEvent {
public:
    explicit CEvent(BOOL bInitiallyOwn = FALSE, BOOL bManualReset = FALSE);
    ~CEvent();
    CEvent(const CEvent&) = delete;
    CEvent& operator=(const CEvent&) = delete;
    BOOL SetEvent();
    BOOL ResetEvent();
    // Waits up to timeout_ms (INFINITE for ever) without pumping messages; TRUE if signalled.
    BOOL Lock(DWORD timeout_ms = INFINITE);
    BOOL Unlock() { return TRUE; }

    struct Impl;
    Impl* impl() const { return m_impl.get(); }

private:
    std::unique_ptr<Impl> m_impl;
};

DWORD WaitForSingleObject(CEvent& ev, DWORD timeout_ms);
// Waits for `ev` while the calling (user-interface) thread keeps handling its messages,
// timers and posted messages. WAIT_OBJECT_0 when signalled, WAIT_QUIT when the application
// quits first (however long the wait was to be), WAIT_TIMEOUT otherwise.
DWORD AfxWaitPumping(CEvent& ev, DWORD timeout_ms);
// Handles the messages that are waiting now, without blocking; FALSE if there were none.
BOOL AfxPumpPendingMessages();
void Sleep(DWORD ms);
