// IQNCharCodec: the interface of a codec plug-in, a component object registered under the
// program id "Solvantic.CharCodec." + encoding name that converts one sequence or one code point
// at a time. BTCCom and CTBCom turn such an object into a decoder and an encoder.
#pragma once

#include "qn/util/IQNByteBuffer.h"

namespace qn::text::charset {

// The operations follow the three of IQNUnknown in this slot order. Each returns a result
// code; a plug-in never throws across them.
struct IQNCharCodec : IQNUnknown {
    // Writes the encoding's name into name (through its write lock, setting its length).
    virtual QNRESULT QN_STDCALL GetEncodingName(IQNCharBuffer* name) = 0;
    virtual QNRESULT QN_STDCALL GetMaxBytesPerChar(int32_t* count) = 0;
    virtual QNRESULT QN_STDCALL GetMaxCharsPerByte(int32_t* count) = 0;
    // Decodes the sequence at bytes. On entry *length is the number of bytes available; on
    // return it is the number the sequence used, 0 when it is incomplete. *codePoint arrives
    // holding U+FFFD and is left so for bytes that are no character.
    virtual QNRESULT QN_STDCALL DecodeBytes(const signed char* bytes, int32_t* length,
                                            uint32_t* codePoint) = 0;
    // Replaces the content of bytes (through its write lock) with the encoding of codePoint;
    // a failure code when the encoding has no bytes for it.
    virtual QNRESULT QN_STDCALL EncodeChar(uint32_t codePoint, util::IQNByteBuffer* bytes) = 0;

protected:
    ~IQNCharCodec() = default;
};

// {E9DE4D9A-BF89-4A97-B974-1F50BC5A8C61}: the id plug-ins are created with.
inline const QNGUID IID_IQNCharCodec = {
    0xE9DE4D9A, 0xBF89, 0x4A97, {0xB9, 0x74, 0x1F, 0x50, 0xBC, 0x5A, 0x8C, 0x61}};

} // namespace qn::text::charset
