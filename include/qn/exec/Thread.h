// exec::Thread: runs an IRunnable on a new operating-system thread. Create it on the heap and
// hold it by Reference: while its thread runs it holds a reference to itself, so it lives until
// run returns even when every other holder has let go.
//
// An exception that escapes run never escapes the thread: the thread ends, getExitResult
// reports the exception's result code (0x8007000E for out of memory, 0x80004005 for anything
// not of the library's tree), and the process-wide failure handler is told (by default it
// writes one line to the standard error stream).
#pragma once

#include "qn/core/Object.h"
#include "qn/exec/IRunnable.h"

#include <atomic>
#include <mutex>
#include <string>

namespace qn {
class Exception;
}

namespace qn::exec {

class QNCL_API Thread : public qn::Object, public IRunnable {
public:
    // Told on the failing thread; failure is null when what escaped was not an Exception.
    using FailureHandler = void (*)(Thread& thread, const Exception* failure, QNRESULT result);

    // target (may be null: run does nothing unless a subclass overrides it) is not owned and
    // must live until the thread ends. name (UTF-8, may be null) names the thread for debuggers
    // where the platform allows; Linux shows its first 15 bytes.
    explicit Thread(IRunnable* target = nullptr, const char* name = nullptr);
    ~Thread() override;

    // Runs the target; subclasses override it to run their own work.
    void run() override;

    // Starts run on a new thread. A thread starts once: a second start throws
    // IllegalStateException; a failure of the system throws ResultException.
    void start();
    // Waits until the thread has ended. Joining a thread never started throws
    // IllegalStateException; a thread joining itself gets ResultException (0x8007046B).
    void join();
    // The same, waiting at most milliseconds: false when the thread still runs.
    bool join(uint32_t milliseconds);

    // Started and run not yet returned.
    bool isAlive() const noexcept { return m_alive.load(std::memory_order_acquire); }
    // The system's id of the thread, 0 before start.
    uint32_t getId() const noexcept { return m_id.load(std::memory_order_acquire); }
    const char* getName() const noexcept { return m_name.c_str(); }
    // 0 unless an exception escaped run: then its result code. Final once join has succeeded.
    QNRESULT getExitResult() const noexcept { return m_result.load(std::memory_order_acquire); }

    // The calling thread's system id (as getId of its Thread, and as debuggers show it).
    static uint32_t currentId();
    // Gives up the processor for at least milliseconds; 0 only yields.
    static void sleep(uint32_t milliseconds);
    // Replaces the failure handler (null restores the default) and returns the previous one.
    static FailureHandler setFailureHandler(FailureHandler handler) noexcept;

private:
    static uint32_t QN_STDCALL entry(void* self);
    void finish(QNRESULT result, const Exception* failure) noexcept;
    QNHANDLE startedHandle();

    IRunnable* const m_target;
    const std::string m_name;
    mutable std::mutex m_lock; // guards m_handle
    QNHANDLE m_handle = nullptr;
    std::atomic<bool> m_alive{false};
    std::atomic<uint32_t> m_id{0};
    std::atomic<QNRESULT> m_result{QN_S_OK};
};

} // namespace qn::exec
