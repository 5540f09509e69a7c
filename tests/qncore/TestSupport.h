// Helpers shared by the qncore suites and the test plug-in.
#pragma once

#include "qncore/QNCore.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

namespace qntest {

// QNWCHAR is char16_t on Linux and wchar_t on Windows, both UTF-16: texts are written u"..." and
// copied unit by unit; Units() spells what a literal cannot, such as unpaired surrogates.
using WString = std::basic_string<QNWCHAR>;
inline WString W(std::u16string_view s) {
    return WString(s.begin(), s.end());
}
inline WString Units(std::initializer_list<uint16_t> u) {
    return WString(u.begin(), u.end());
}
inline WString widePath(const std::filesystem::path& p) {
    return W(p.u16string());
}
inline bool sameGuid(const QNGUID& a, const QNGUID& b) {
    return !std::memcmp(&a, &b, sizeof a);
}

// Runs f on a thread of its own and returns its result: lock ownership is per thread.
template <class F> auto onOtherThread(F f) {
    return std::async(std::launch::async, f).get();
}

// Polls for a state another thread reaches; false if it has not come after ten seconds.
template <class P> bool eventually(P done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return done();
}

WString pluginPath();
// Kernel object names are shared between processes on Windows, so names carry the process id.
std::string uniqueName(const char* stem);

// A fresh directory for one test, removed with its content afterwards.
struct ScratchDir {
    ScratchDir();
    ~ScratchDir();
    WString file(std::u16string_view name) const { return widePath(path / std::u16string(name)); }
    const std::filesystem::path path;
};

// The test component, built into the plug-in and into the tests: objects answer GetValue with
// their factory's number.
inline const QNGUID kTestClsid = {
    0xD3E1A7C2, 0x5B4F, 0x4C8E, {0x9A, 0x61, 0x2F, 0x7B, 0x3C, 0x9D, 0x0E, 0x15}};
inline const QNGUID kTestIid = {
    0x6A0F4D19, 0x27C3, 0x4B5E, {0x81, 0xD2, 0x3E, 0x44, 0x90, 0xAB, 0x7C, 0x61}};
inline constexpr int32_t kPluginValue = 42;

struct ITestValue : IQNUnknown {
    virtual int32_t QN_STDCALL GetValue() = 0;

protected:
    ~ITestValue() = default;
};

// QueryInterface of an object with one chain of interfaces, own being the most derived.
inline QNRESULT queryInterface(IQNUnknown* self, const QNGUID& own, const QNGUID& iid, void** out) {
    const bool known = sameGuid(iid, QN_IID_IQNUnknown) || sameGuid(iid, own);
    *out = known ? self : nullptr;
    if (known)
        self->AddRef();
    return known ? QN_S_OK : QN_E_NOINTERFACE;
}

class TestObject final : public ITestValue {
public:
    TestObject(int32_t value, std::atomic<int>& live) : m_value(value), m_live(live) { ++live; }
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return queryInterface(this, kTestIid, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ++m_refs; }
    uint32_t QN_STDCALL Release() override {
        const uint32_t left = --m_refs;
        if (left == 0) {
            --m_live;
            delete this;
        }
        return left;
    }
    int32_t QN_STDCALL GetValue() override { return m_value; }

private:
    std::atomic<uint32_t> m_refs{0};
    const int32_t m_value;
    std::atomic<int>& m_live;
};

// Never deleted, so that a test can see how many references the core module holds. Server locks
// count as live objects.
class TestFactory final : public IQNClassFactory {
public:
    TestFactory(int32_t value, std::atomic<int>& live) : m_value(value), m_live(live) {}
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return queryInterface(this, QN_IID_IQNClassFactory, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ++refs; }
    uint32_t QN_STDCALL Release() override { return --refs; }
    QNRESULT QN_STDCALL CreateInstance(IQNUnknown* outer, const QNGUID& iid, void** out) override {
        *out = nullptr;
        if (outer)
            return QN_E_NOAGGREGATION;
        TestObject* object = new TestObject(m_value, m_live);
        object->AddRef();
        const QNRESULT r = object->QueryInterface(iid, out);
        object->Release();
        return r;
    }
    QNRESULT QN_STDCALL LockServer(int32_t lock) override {
        m_live += lock ? 1 : -1;
        return QN_S_OK;
    }
    std::atomic<uint32_t> refs{0};

private:
    const int32_t m_value;
    std::atomic<int>& m_live;
};

} // namespace qntest
