// The byte buffers: the same rounding and growth as the character side, the 8-bit overloads,
// and the byte-buffer interface with its own identifier.
#include "qn/core/Exception.h"
#include "qn/util/MTByteBuffer.h"
#include "qn/util/ROByteBuffer.h"
#include "qn/util/RWByteBuffer.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;
using util::IQNByteBuffer;
using util::MTByteBuffer;
using util::ROByteBuffer;
using util::RWByteBuffer;

namespace {

std::string content(const util::AbstractByteBuffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.getData()),
                       static_cast<size_t>(buffer.getLength()));
}

} // namespace

TEST(ByteBufferTest, CapacityRoundingGrowthAndShrinking) {
    EXPECT_EQ(RWByteBuffer(1).getCapacity(), 16);
    EXPECT_EQ(RWByteBuffer(17).getCapacity(), 32);
    EXPECT_EQ(RWByteBuffer(0).getData(), nullptr);

    RWByteBuffer buffer("abc", 3, 0);
    EXPECT_EQ(buffer.getLength(), 3);
    EXPECT_EQ(buffer.getCapacity(), 16);
    buffer.ensureCapacity(20);
    EXPECT_EQ(buffer.getCapacity(), 32);
    buffer.ensureCapacity(10);
    EXPECT_EQ(buffer.getCapacity(), 32);
    buffer.ensureCapacity(64);
    buffer.freeExtra();
    EXPECT_EQ(buffer.getCapacity(), 16);
    EXPECT_EQ(content(buffer), "abc");

    RWByteBuffer empty(64);
    empty.freeExtra();
    EXPECT_EQ(empty.getData(), nullptr);
    EXPECT_EQ(empty.getCapacity(), 0);
}

TEST(ByteBufferTest, EightBitOverloadsShareOneRepresentation) {
    const unsigned char bytes[] = {0x00, 0x7F, 0x80, 0xFF};
    const RWByteBuffer fromUnsigned(bytes, 4);
    const ROByteBuffer view(bytes, 4);
    EXPECT_EQ(view.getData(), reinterpret_cast<const signed char*>(bytes));
    EXPECT_EQ(fromUnsigned.getData()[3], static_cast<signed char>(-1));
    EXPECT_EQ(content(MTByteBuffer("xyz", 3)), "xyz");
}

TEST(ByteBufferTest, ReadOnlyRefusesWritesAndInterfaceReportsThem) {
    static const char data[] = "fixed";
    Reference<ROByteBuffer> readOnly(new ROByteBuffer(data, 5));
    EXPECT_THROW(readOnly->getWriteLock(), ReadOnlyException);
    IQNByteBuffer* face = readOnly.get();
    signed char* out = nullptr;
    EXPECT_EQ(face->EnsureCapacity(10, &out), QN_E_FAIL);
    EXPECT_EQ(face->GetWriteLock(nullptr), QN_E_POINTER);

    Reference<RWByteBuffer> writable(new RWByteBuffer(data, 5));
    IQNByteBuffer* rw = writable.get();
    EXPECT_EQ(rw->GetWriteLock(&out), QN_S_OK);
    EXPECT_EQ(rw->EnsureCapacity(INT32_MAX, &out), QN_E_OUTOFMEMORY);
    EXPECT_EQ(rw->ReleaseWriteLock(17), QN_E_FAIL);
    EXPECT_EQ(rw->ReleaseWriteLock(2), QN_S_OK);
    EXPECT_EQ(content(*writable), "fi");
}

TEST(ByteBufferTest, AnswersTheByteInterfaceOnly) {
    static const QNGUID byteIid = {
        0xBD454BEB, 0xD847, 0x40F3, {0xAA, 0xBF, 0x30, 0x83, 0xAC, 0x2A, 0xC5, 0x4B}};
    Reference<MTByteBuffer> buffer(new MTByteBuffer(8));
    void* out = nullptr;
    ASSERT_EQ(buffer->QueryInterface(byteIid, &out), QN_S_OK);
    EXPECT_EQ(out, static_cast<IQNByteBuffer*>(buffer.get()));
    static_cast<IQNByteBuffer*>(out)->Release();
    EXPECT_EQ(buffer->QueryInterface(IID_IQNCharBuffer, &out), QN_E_NOINTERFACE);
    ASSERT_EQ(buffer->QueryInterface(IID_IQNComparable, &out), QN_S_OK);
    static_cast<IQNComparable*>(out)->Release();
    EXPECT_EQ(buffer->GetRefCount(), 1u);
}
