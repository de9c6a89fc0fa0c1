#include <afx/afxqt.h>

#include <QMetaObject>
#include <QObject>

#include <memory>

#if defined(__SANITIZE_THREAD__)
#define AFX_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define AFX_TSAN 1
#endif
#endif

#ifdef AFX_TSAN
#include <sanitizer/tsan_interface.h>
#define AFX_RELEASE(p) __tsan_release(p)
#define AFX_ACQUIRE(p) __tsan_acquire(p)
#else
#define AFX_RELEASE(p) ((void)(p))
#define AFX_ACQUIRE(p) ((void)(p))
#endif

namespace {

// One clock for every queue: a queue is a lock taken in the order of posting, and a post
// always comes before the run of what was posted.
char g_queueClock;

// The queued call. Qt frees it on whichever thread lets go of it last, the poster's or
// the receiver's, after a count TSan can't see; so the run's end is told to the free.
class QueuedCall {
public:
    explicit QueuedCall(std::function<void()> call)
        : m_call(std::move(call)), m_ran(std::make_unique<char>()) {}
    // Qt moves the call into an object of its own before it posts it: the post is told
    // after each move, so that the run sees the moved call whole.
    QueuedCall(QueuedCall&& other) noexcept
        : m_call(std::move(other.m_call)), m_ran(std::move(other.m_ran)) {
        AFX_RELEASE(&g_queueClock);
    }
    QueuedCall& operator=(QueuedCall&&) = delete;
    ~QueuedCall() {
        if (m_ran)
            AFX_ACQUIRE(m_ran.get());
    }
    void operator()() {
        AFX_ACQUIRE(&g_queueClock);
        m_call();
        AFX_RELEASE(m_ran.get());
    }

private:
    std::function<void()> m_call;
    std::unique_ptr<char> m_ran;
};

} // namespace

void AfxQueueCall(QObject* receiver, std::function<void()> call) {
    if (receiver == nullptr || !call)
        return;
    AFX_RELEASE(&g_queueClock);
    QMetaObject::invokeMethod(receiver, QueuedCall(std::move(call)), Qt::QueuedConnection);
}
