// Threads over pthreads. The handle and the running thread share one state record, so that
// either may end first; a join waits on the record's condition and reaps the thread once.
#include "common/Internal.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

using qncore::Kind;

namespace {

struct State {
    QNPFN_ThreadProc proc = nullptr;
    void* argument = nullptr;
    pthread_t thread{};
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
    bool reaped = false; // joined or detached
    uint32_t exitCode = 0;
    uint32_t id = 0;
    bool started = false;
    std::condition_variable startedSignal;
};

class ThreadRecord final : public qncore::Shared {
public:
    explicit ThreadRecord(std::shared_ptr<State> state)
        : Shared(Kind::Thread), state(std::move(state)) {}
    std::shared_ptr<State> state;
};

void* threadMain(void* raw) {
    // The thread owns one share of the state from here on.
    std::shared_ptr<State> state(*static_cast<std::shared_ptr<State>*>(raw));
    delete static_cast<std::shared_ptr<State>*>(raw);
    {
        std::lock_guard<std::mutex> hold(state->lock);
        state->id = QNThreadGetCurrentId();
        state->started = true;
    }
    state->startedSignal.notify_all();
    const uint32_t code = state->proc(state->argument);
    {
        std::lock_guard<std::mutex> hold(state->lock);
        state->exitCode = code;
        state->done = true;
    }
    state->ended.notify_all();
    return nullptr;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadCreate(QNPFN_ThreadProc proc, void* argument,
                                               QNHANDLE* handle, uint32_t* id) {
    if (!handle)
        return QN_E_POINTER;
    *handle = nullptr;
    if (!proc)
        return QN_E_INVALIDARG;
    return qncore::guard([&] {
        auto state = std::make_shared<State>();
        state->proc = proc;
        state->argument = argument;
        auto record = std::make_unique<ThreadRecord>(state);
        auto share = std::make_unique<std::shared_ptr<State>>(state);
        const int error = pthread_create(&state->thread, nullptr, threadMain, share.get());
        if (error != 0)
            return QNResultFromNative(static_cast<uint32_t>(error));
        share.release();
        {
            // The id is the kernel's, known only once the thread runs.
            std::unique_lock<std::mutex> hold(state->lock);
            state->startedSignal.wait(hold, [&] { return state->started; });
            if (id)
                *id = state->id;
        }
        *handle = qncore::makeHandle(Kind::Thread, record.release());
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadJoin(QNHANDLE handle, uint32_t milliseconds,
                                             uint32_t* exitCode) {
    auto* record = qncore::as<ThreadRecord>(handle, Kind::Thread);
    if (!record)
        return QN_E_HANDLE;
    State& state = *record->state;
    if (pthread_equal(state.thread, pthread_self()))
        return QN_E_POSSIBLEDEADLOCK;
    return qncore::guard([&] {
        std::unique_lock<std::mutex> hold(state.lock);
        auto isDone = [&] { return state.done; };
        if (milliseconds == QN_INFINITE)
            state.ended.wait(hold, isDone);
        else if (!state.ended.wait_for(hold, std::chrono::milliseconds(milliseconds), isDone))
            return QN_E_TIMEOUT;
        if (!state.reaped) {
            // The thread has only to return now and never takes the lock again.
            pthread_join(state.thread, nullptr);
            state.reaped = true;
        }
        if (exitCode)
            *exitCode = state.exitCode;
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadClose(QNHANDLE handle) {
    auto* record = qncore::as<ThreadRecord>(handle, Kind::Thread);
    if (!record)
        return QN_E_HANDLE;
    {
        std::lock_guard<std::mutex> hold(record->state->lock);
        if (!record->state->reaped) {
            pthread_detach(record->state->thread);
            record->state->reaped = true;
        }
    }
    qncore::freeHandle(handle);
    delete record;
    return QN_S_OK;
}

QN_EXTERN_C uint32_t QN_STDCALL QNThreadGetCurrentId(void) {
    return static_cast<uint32_t>(syscall(SYS_gettid));
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadSleep(uint32_t milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return QN_S_OK;
    }
    timespec rest{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&rest, &rest) != 0) {
        if (errno != EINTR)
            return QNResultFromNative(static_cast<uint32_t>(errno));
    }
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadSetName(const char* name) {
    if (!name)
        return QN_E_POINTER;
    // The kernel keeps 15 bytes; never cut a UTF-8 sequence in two.
    std::string shortName(name);
    if (shortName.size() > 15) {
        size_t end = 15;
        while (end > 0 && (static_cast<unsigned char>(shortName[end]) & 0xC0) == 0x80)
            --end;
        shortName.resize(end);
    }
    const int error = pthread_setname_np(pthread_self(), shortName.c_str());
    return error == 0 ? QN_S_OK : QNResultFromNative(static_cast<uint32_t>(error));
}
