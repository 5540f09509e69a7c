// The codec plug-in the character-set tests register under "Solvantic.CharCodec.QNCL-TEST-UTF8".
// Its codec is a plain UTF-8 that, for the tests' sake, also accepts leads up to 0xF7 (values
// beyond U+10FFFF), decodes surrogate values without complaint, fails outright on the byte 0xFE,
// and refuses to encode U+FFFE.
#include "qn/text/charset/IQNCharCodec.h"

#include <atomic>
#include <cstring>

#ifdef _WIN32
#define PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using qn::text::charset::IQNCharCodec;

// {5B0C2E1A-7D43-4F96-A2B8-C41E9D07F3A5}
const QNGUID kCodecClsid = {
    0x5B0C2E1A, 0x7D43, 0x4F96, {0xA2, 0xB8, 0xC4, 0x1E, 0x9D, 0x07, 0xF3, 0xA5}};

std::atomic<int> g_live{0};

bool same(const QNGUID& a, const QNGUID& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class TestCodec final : public IQNCharCodec {
public:
    TestCodec() { ++g_live; }
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        const bool known =
            same(iid, QN_IID_IQNUnknown) || same(iid, qn::text::charset::IID_IQNCharCodec);
        *out = known ? this : nullptr;
        if (known)
            AddRef();
        return known ? QN_S_OK : QN_E_NOINTERFACE;
    }
    uint32_t QN_STDCALL AddRef() override { return ++m_refs; }
    uint32_t QN_STDCALL Release() override {
        const uint32_t left = --m_refs;
        if (left == 0) {
            --g_live;
            delete this;
        }
        return left;
    }
    QNRESULT QN_STDCALL GetEncodingName(IQNCharBuffer* name) override {
        static const char16_t text[] = u"QNCL-TEST-UTF8";
        const int32_t length = static_cast<int32_t>(sizeof text / sizeof text[0] - 1);
        QNWCHAR* data = nullptr;
        QNRESULT r = name->GetWriteLock(&data);
        if (QN_SUCCEEDED(r))
            r = name->EnsureCapacity(length + 1, &data);
        if (QN_FAILED(r))
            return r;
        for (int32_t i = 0; i < length; ++i)
            data[i] = static_cast<QNWCHAR>(text[i]);
        return name->ReleaseWriteLock(length);
    }
    QNRESULT QN_STDCALL GetMaxBytesPerChar(int32_t* count) override {
        *count = 4;
        return QN_S_OK;
    }
    QNRESULT QN_STDCALL GetMaxCharsPerByte(int32_t* count) override {
        *count = 1;
        return QN_S_OK;
    }
    QNRESULT QN_STDCALL DecodeBytes(const signed char* in, int32_t* length,
                                    uint32_t* codePoint) override {
        const auto* bytes = reinterpret_cast<const unsigned char*>(in);
        const unsigned lead = bytes[0];
        if (lead == 0xFE)
            return QN_E_FAIL;
        const int32_t size = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
        if (size == 0) {
            *length = 1;
            return QN_S_OK;
        }
        if (*length < size) {
            *length = 0;
            return QN_S_OK;
        }
        uint32_t value = size == 1 ? lead : lead & (0x7F >> size);
        for (int32_t k = 1; k < size; ++k) {
            if ((bytes[k] & 0xC0) != 0x80) {
                *length = 1;
                return QN_S_OK;
            }
            value = (value << 6) | (bytes[k] & 0x3F);
        }
        *codePoint = value;
        *length = size;
        return QN_S_OK;
    }
    QNRESULT QN_STDCALL EncodeChar(uint32_t c, qn::util::IQNByteBuffer* out) override {
        if (c == 0xFFFE)
            return QN_E_FAIL;
        unsigned char bytes[4];
        int32_t size;
        if (c < 0x80) {
            bytes[0] = static_cast<unsigned char>(c);
            size = 1;
        } else if (c < 0x800) {
            bytes[0] = static_cast<unsigned char>(0xC0 | (c >> 6));
            size = 2;
        } else if (c < 0x10000) {
            bytes[0] = static_cast<unsigned char>(0xE0 | (c >> 12));
            size = 3;
        } else {
            bytes[0] = static_cast<unsigned char>(0xF0 | (c >> 18));
            size = 4;
        }
        for (int32_t k = 1; k < size; ++k)
            bytes[k] = static_cast<unsigned char>(0x80 | ((c >> (6 * (size - 1 - k))) & 0x3F));
        signed char* data = nullptr;
        QNRESULT r = out->GetWriteLock(&data);
        if (QN_SUCCEEDED(r))
            r = out->EnsureCapacity(size, &data);
        if (QN_FAILED(r))
            return r;
        std::memcpy(data, bytes, static_cast<size_t>(size));
        return out->ReleaseWriteLock(size);
    }

private:
    std::atomic<uint32_t> m_refs{0};
};

class Factory final : public IQNClassFactory {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        const bool known = same(iid, QN_IID_IQNUnknown) || same(iid, QN_IID_IQNClassFactory);
        *out = known ? this : nullptr;
        return known ? QN_S_OK : QN_E_NOINTERFACE;
    }
    // Static: never deleted.
    uint32_t QN_STDCALL AddRef() override { return 2; }
    uint32_t QN_STDCALL Release() override { return 1; }
    QNRESULT QN_STDCALL CreateInstance(IQNUnknown* outer, const QNGUID& iid, void** out) override {
        *out = nullptr;
        if (outer)
            return QN_E_NOAGGREGATION;
        TestCodec* codec = new TestCodec;
        codec->AddRef();
        const QNRESULT r = codec->QueryInterface(iid, out);
        codec->Release();
        return r;
    }
    QNRESULT QN_STDCALL LockServer(int32_t lock) override {
        g_live += lock ? 1 : -1;
        return QN_S_OK;
    }
};

Factory g_factory;

} // namespace

PLUGIN_EXPORT QNRESULT QN_STDCALL DllGetClassObject(const QNGUID* clsid, const QNGUID* iid,
                                                    void** out) {
    *out = nullptr;
    if (!same(*clsid, kCodecClsid))
        return QN_E_CLASSNOTAVAILABLE;
    return g_factory.QueryInterface(*iid, out);
}

PLUGIN_EXPORT QNRESULT QN_STDCALL DllCanUnloadNow() {
    return g_live == 0 ? QN_S_OK : QN_S_FALSE;
}
