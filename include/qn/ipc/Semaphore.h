// ipc::Semaphore: a named counting semaphore shared between processes (a POSIX named semaphore,
// or a Windows named kernel semaphore), created for its owner alone. As a lock (initial count
// 1) it serialises processes, for instance writers of one file.
//
// On POSIX the name outlives the processes until unlink() removes it; a process that opens the
// name afterwards gets a new semaphore, so remove a name only once no process uses it. Windows
// removes the name with its last handle. Failures of the core module are thrown as
// ResultException with its code (0x80070057 for a bad name, 0x80070002 when OPEN_ONLY finds
// nothing, 0x800700B7 when CREATE_ONLY finds the name taken).
#pragma once

#include "qn/sync/LockObject.h"

#include <string>

struct QNIpcSemaphoreRecord;

namespace qn::ipc {

class QNCL_API Semaphore : public sync::LockObject {
public:
    enum Mode { CREATE_OR_OPEN, CREATE_ONLY, OPEN_ONLY };

    // name: 1 to 200 bytes without '/' or '\\'. initialCount applies only when the semaphore is
    // created.
    explicit Semaphore(const char* name, uint32_t initialCount = 1, Mode mode = CREATE_OR_OPEN);
    ~Semaphore() override;

    void wait() override;
    // False after milliseconds without a count to take.
    bool wait(uint32_t milliseconds);
    bool tryWait() override;
    void signal() override;

    const std::string& getName() const { return m_name; }
    // Removes the name; false when there was none.
    static bool unlink(const char* name);

private:
    std::string m_name;
    QNIpcSemaphoreRecord* m_handle = nullptr;
};

} // namespace qn::ipc
