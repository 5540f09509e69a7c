// The character buffers: capacity rounding and exact growth, the interface's result codes, and
// the multi-thread buffer releasing a refused write.
#include "qn/core/Exception.h"
#include "qn/util/MTCharBuffer.h"
#include "qn/util/ROCharBuffer.h"
#include "qn/util/RWCharBuffer.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;
using util::MTCharBuffer;
using util::ROCharBuffer;
using util::RWCharBuffer;

namespace {

std::u16string content(const util::AbstractCharBuffer& buffer) {
    return std::u16string(buffer.getData(), static_cast<size_t>(buffer.getLength()));
}

} // namespace

TEST(CharBufferTest, CapacityIsRoundedUpToSixteen) {
    const struct {
        int32_t requested;
        int32_t capacity;
    } cases[] = {{0, 0}, {-5, 0}, {1, 16}, {16, 16}, {17, 32}, {100, 112}};
    for (const auto& c : cases) {
        const RWCharBuffer buffer(c.requested);
        EXPECT_EQ(buffer.getCapacity(), c.capacity) << c.requested;
        EXPECT_EQ(buffer.getData() == nullptr, c.capacity == 0) << c.requested;
        EXPECT_EQ(buffer.getLength(), 0);
    }
}

TEST(CharBufferTest, TextConstructorSizesForTheLargerOfLengthAndCapacity) {
    const struct {
        const char16_t* text;
        int32_t length;
        int32_t capacity;
        std::u16string content;
        int32_t expectedCapacity;
    } cases[] = {
        {u"abc", 3, 0, u"abc", 16},
        {u"abc", 3, 40, u"abc", 48},
        {u"abc", 0, 0, u"", 0},
        // -1 is not "measure the text" here: nothing is copied.
        {u"abc", -1, 5, u"", 16},
        {nullptr, 5, 0, u"", 0},
    };
    for (const auto& c : cases) {
        const RWCharBuffer buffer(c.text, c.length, c.capacity);
        EXPECT_EQ(content(buffer), c.content);
        EXPECT_EQ(buffer.getCapacity(), c.expectedCapacity);
    }
}

TEST(CharBufferTest, EnsureCapacityGrowsExactlyAndNeverShrinks) {
    RWCharBuffer buffer(u"0123456789", 10, 16);
    ASSERT_EQ(buffer.getCapacity(), 16);
    buffer.ensureCapacity(20);
    EXPECT_EQ(buffer.getCapacity(), 32);
    const char16_t* data = buffer.getData();
    EXPECT_EQ(buffer.ensureCapacity(10), data);
    EXPECT_EQ(buffer.getCapacity(), 32);
    // Not doubled: the next multiple of 16 of what is asked.
    buffer.ensureCapacity(33);
    EXPECT_EQ(buffer.getCapacity(), 48);
    EXPECT_EQ(content(buffer), u"0123456789");
}

TEST(CharBufferTest, FreeExtraShrinksToTheRoundedLength) {
    RWCharBuffer five(u"abcde", 5, 64);
    five.freeExtra();
    EXPECT_EQ(five.getCapacity(), 16);
    EXPECT_EQ(content(five), u"abcde");

    RWCharBuffer sixteen(u"0123456789abcdef", 16, 64);
    sixteen.freeExtra();
    EXPECT_EQ(sixteen.getCapacity(), 16);

    RWCharBuffer empty(64);
    empty.freeExtra();
    EXPECT_EQ(empty.getCapacity(), 0);
    EXPECT_EQ(empty.getData(), nullptr);
}

TEST(CharBufferTest, ReleaseWriteLockRefusesLengthsOutsideTheCapacity) {
    RWCharBuffer buffer(u"abc", 3, 0);
    char16_t* data = buffer.getWriteLock();
    data[3] = u'd';
    buffer.releaseWriteLock(-1);
    EXPECT_EQ(buffer.getLength(), 3);
    buffer.releaseWriteLock(16);
    EXPECT_EQ(buffer.getLength(), 16);
    EXPECT_THROW(buffer.releaseWriteLock(17), RangeErrorException);
    EXPECT_THROW(buffer.releaseWriteLock(-2), RangeErrorException);
    EXPECT_EQ(buffer.getLength(), 16);
}

TEST(CharBufferTest, InterfaceTurnsExceptionsIntoResultCodes) {
    static const char16_t text[] = u"abc";
    Reference<ROCharBuffer> readOnly(new ROCharBuffer(text, 3));
    Reference<RWCharBuffer> writable(new RWCharBuffer(u"abc", 3));
    IQNCharBuffer* ro = readOnly.get();
    IQNCharBuffer* rw = writable.get();

    QNWCHAR* data = reinterpret_cast<QNWCHAR*>(1);
    EXPECT_EQ(ro->GetWriteLock(&data), QN_E_FAIL);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(ro->GetWriteLock(nullptr), QN_E_POINTER);
    int32_t flag = -1;
    EXPECT_EQ(ro->IsWritable(&flag), QN_S_OK);
    EXPECT_EQ(flag, 0);

    EXPECT_EQ(rw->ReleaseWriteLock(17), QN_E_FAIL);
    EXPECT_EQ(rw->EnsureCapacity(INT32_MAX, &data), QN_E_OUTOFMEMORY);
    EXPECT_EQ(writable->getCapacity(), 16);
    EXPECT_EQ(rw->EnsureCapacity(40, &data), QN_S_OK);
    EXPECT_EQ(reinterpret_cast<const char16_t*>(data), writable->getData());
    int32_t length = 0;
    EXPECT_EQ(rw->GetLength(&length), QN_S_OK);
    EXPECT_EQ(length, 3);
}

TEST(CharBufferTest, MultiThreadBufferReleasesARefusedWrite) {
    MTCharBuffer buffer(u"abc", 3);
    buffer.getWriteLock();
    EXPECT_THROW(buffer.releaseWriteLock(100), RangeErrorException);
    // Had the refused write kept the lock, this thread could not take it again.
    buffer.getWriteLock();
    buffer.releaseWriteLock(2);
    EXPECT_EQ(content(buffer), u"ab");

    const MTCharBuffer copy(buffer);
    EXPECT_EQ(content(copy), u"ab");
    buffer.freeExtra();
    EXPECT_EQ(buffer.getCapacity(), 16);
}
