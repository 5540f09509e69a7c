#include "qn/exec/Thread.h"

#include "qn/core/Exception.h"

#include <cstdio>
#include <vector>

namespace qn::exec {

namespace {

void writeFailure(Thread& thread, const Exception* failure, QNRESULT result) {
    std::string text;
    if (failure) {
        const String message = failure->getDescription();
        const auto* units = reinterpret_cast<const QNWCHAR*>(message.getData());
        const int32_t needed = QNWideToUtf8(units, message.getLength(), nullptr, 0);
        std::vector<char> utf8(static_cast<size_t>(needed) + 1);
        QNWideToUtf8(units, message.getLength(), utf8.data(), needed + 1);
        text = utf8.data();
    }
    std::fprintf(stderr, "qn::exec::Thread \"%s\" (%lu): uncaught exception 0x%08lX%s%s\n",
                 thread.getName(), static_cast<unsigned long>(thread.getId()),
                 static_cast<unsigned long>(static_cast<uint32_t>(result)),
                 text.empty() ? "" : ": ", text.c_str());
    std::fflush(stderr);
}

std::atomic<Thread::FailureHandler> s_failureHandler{&writeFailure};

} // namespace

IRunnable::~IRunnable() = default;

Thread::Thread(IRunnable* target, const char* name) : m_target(target), m_name(name ? name : "") {}

Thread::~Thread() {
    // A thread still running holds a reference, so this runs after run has returned (possibly
    // on the thread itself, whose handle is then simply let go).
    if (m_handle)
        QNThreadClose(m_handle);
}

void Thread::run() {
    if (m_target)
        m_target->run();
}

void Thread::start() {
    // A caller holding no reference must not see this object deleted under its own call by a
    // thread that ends at once.
    const Reference<Thread> keep(this);
    std::lock_guard<std::mutex> hold(m_lock);
    if (m_handle)
        throw IllegalStateException(String(u"Thread already started"));
    m_alive.store(true, std::memory_order_release);
    AddRef(); // the running thread's reference, given back by finish
    uint32_t id = 0;
    const QNRESULT r = QNThreadCreate(&Thread::entry, this, &m_handle, &id);
    if (QN_FAILED(r)) {
        m_alive.store(false, std::memory_order_release);
        m_handle = nullptr;
        InternalRelease();
        throw ResultException(r);
    }
    m_id.store(id, std::memory_order_release);
}

QNHANDLE Thread::startedHandle() {
    std::lock_guard<std::mutex> hold(m_lock);
    if (!m_handle)
        throw IllegalStateException(String(u"Thread not started"));
    return m_handle;
}

void Thread::join() {
    join(QN_INFINITE);
}

bool Thread::join(uint32_t milliseconds) {
    const QNRESULT r = QNThreadJoin(startedHandle(), milliseconds, nullptr);
    if (r == QN_E_TIMEOUT)
        return false;
    if (QN_FAILED(r))
        throw ResultException(r);
    return true;
}

uint32_t QN_STDCALL Thread::entry(void* raw) {
    auto* self = static_cast<Thread*>(raw);
    self->m_id.store(QNThreadGetCurrentId(), std::memory_order_release);
    if (!self->m_name.empty())
        QNThreadSetName(self->m_name.c_str());
    QNRESULT result = QN_S_OK;
    try {
        self->run();
    } catch (const Exception& e) {
        // Reported while the exception is still alive.
        self->finish(e.getResult(), &e);
        return static_cast<uint32_t>(e.getResult());
    } catch (const std::bad_alloc&) {
        result = QN_E_OUTOFMEMORY;
    } catch (...) {
        result = QN_E_FAIL;
    }
    self->finish(result, nullptr);
    return static_cast<uint32_t>(result);
}

void Thread::finish(QNRESULT result, const Exception* failure) noexcept {
    if (QN_FAILED(result)) {
        try {
            s_failureHandler.load()(*this, failure, result);
        } catch (...) {
            // A handler that throws has nowhere to report to.
        }
    }
    m_result.store(result, std::memory_order_release);
    m_alive.store(false, std::memory_order_release);
    Release();
}

uint32_t Thread::currentId() {
    return QNThreadGetCurrentId();
}

void Thread::sleep(uint32_t milliseconds) {
    const QNRESULT r = QNThreadSleep(milliseconds);
    if (QN_FAILED(r))
        throw ResultException(r);
}

Thread::FailureHandler Thread::setFailureHandler(FailureHandler handler) noexcept {
    return s_failureHandler.exchange(handler ? handler : &writeFailure);
}

} // namespace qn::exec
