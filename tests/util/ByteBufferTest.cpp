// The byte buffer answers its own interface identifier, not the character buffer's.
#include "qn/util/MTByteBuffer.h"

#include <gtest/gtest.h>

using namespace qn;
using util::IQNByteBuffer;
using util::MTByteBuffer;

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
