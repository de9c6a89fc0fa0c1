// A worker thread of the host. Implemented by the host; made with
// IHostModuleManager::CreateInstance(kIID) and given back with Release().
//
// Release() requests a stop and returns only after the worker function has ended
// (waiting up to the wait timeout; -1 waits without limit), then destroys the object.
// The worker function runs on the new thread and may call only IsStopRequested, Wait and
// GetUserData of its object; it reports by posting window messages.
#pragma once

#include "module/host/BaseInterface.h"

// The function a worker runs; `arg` is the third argument of Start. Returns 0.
typedef UINT (*HostWorkerProc)(void* arg);

class IHostWorkerThread : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("B89A7CC0-BF7F-423F-BF05-9913E13B9374");

    // Runs `proc(arg)` on a new thread; `flags` is 0. One start per object. Nonzero when
    // the thread runs.
    virtual BOOL Start(HostWorkerProc proc, int flags, void* arg) = 0;
    // Sets (nonzero) or clears the stop request. Any thread.
    virtual void RequestStop(BOOL stop) = 0;
    // Nonzero once a stop was requested. Any thread.
    virtual BOOL IsStopRequested() = 0;
    // Sleeps `ms` milliseconds, or less when a stop is requested meanwhile. Nonzero when
    // woken by a stop request.
    virtual BOOL Wait(int ms) = 0;
    // How long Release waits for the worker function; -1 without limit.
    virtual void SetWaitTimeout(int ms) = 0;
    // A word of the owner's, kept for the worker function. Not owned.
    virtual void SetUserData(void* data) = 0;
    // What SetUserData stored; null before.
    virtual void* GetUserData() = 0;
};

inline constexpr GUID IID_IHostWorkerThread = IHostWorkerThread::kIID;
