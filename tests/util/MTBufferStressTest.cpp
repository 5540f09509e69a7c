// An MTCharBuffer under concurrent readers and writers through its interface: writers append
// whole records under the write lock, readers must never see a partial one.
#include "qn/util/MTCharBuffer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace qn;

namespace {

constexpr int32_t RECORD = 8;

// Appends one record of unit c (EnsureCapacity may move the block under the lock).
bool appendRecord(IQNCharBuffer* buffer, char16_t c) {
    QNWCHAR* data = nullptr;
    if (QN_FAILED(buffer->GetWriteLock(&data)))
        return false;
    int32_t length = 0;
    buffer->GetLength(&length);
    if (QN_FAILED(buffer->EnsureCapacity(length + RECORD, &data))) {
        buffer->ReleaseWriteLock(-1);
        return false;
    }
    for (int32_t i = 0; i < RECORD; ++i)
        data[length + i] = static_cast<QNWCHAR>(c);
    return QN_SUCCEEDED(buffer->ReleaseWriteLock(length + RECORD));
}

// True when the content is whole records of one unit each.
bool readWholeRecords(IQNCharBuffer* buffer) {
    const QNWCHAR* data = nullptr;
    if (QN_FAILED(buffer->GetReadLock(&data)))
        return false;
    int32_t length = 0;
    buffer->GetLength(&length);
    bool whole = length % RECORD == 0;
    for (int32_t i = 0; whole && i < length; ++i)
        whole = data[i] == data[i - i % RECORD];
    return QN_SUCCEEDED(buffer->ReleaseReadLock()) && whole;
}

} // namespace

TEST(MTBufferStressTest, ReadersNeverSeeAPartialWrite) {
    Reference<util::MTCharBuffer> buffer(new util::MTCharBuffer());
    IQNCharBuffer* face = buffer.get();
    constexpr int WRITERS = 3;
    constexpr int READERS = 3;
    constexpr int RECORDS = 300;
    std::atomic<int> failures{0};
    std::atomic<int> writersLeft{WRITERS};
    std::vector<std::thread> threads;
    for (int w = 0; w < WRITERS; ++w) {
        threads.emplace_back([&, w] {
            for (int i = 0; i < RECORDS; ++i) {
                if (!appendRecord(face, static_cast<char16_t>(u'a' + w)))
                    ++failures;
            }
            --writersLeft;
        });
    }
    for (int r = 0; r < READERS; ++r) {
        threads.emplace_back([&] {
            while (writersLeft.load() > 0) {
                if (!readWholeRecords(face))
                    ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(buffer->getLength(), WRITERS * RECORDS * RECORD);
    EXPECT_EQ(buffer->getCapacity(), WRITERS * RECORDS * RECORD);
}
