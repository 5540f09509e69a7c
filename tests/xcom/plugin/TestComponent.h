// What the xcom tests and their component plug-in share: the component's identifiers and its
// interface.
#pragma once

#include <qncore/QNCore.h>

namespace qntest {

// 6D3C2A41-95E7-4C1B-8F0A-3B6E2D7C9A15
inline const QNGUID CLSID_TestCounter = {
    0x6D3C2A41, 0x95E7, 0x4C1B, {0x8F, 0x0A, 0x3B, 0x6E, 0x2D, 0x7C, 0x9A, 0x15}};
// 0E7B5F92-1C44-4D8E-A6B3-72F1C0D9E842
inline const QNGUID IID_ITestCounter = {
    0x0E7B5F92, 0x1C44, 0x4D8E, {0xA6, 0xB3, 0x72, 0xF1, 0xC0, 0xD9, 0xE8, 0x42}};

inline const char16_t TEST_COUNTER_PROGID[] = u"Solvantic.QnclTest.Counter.1";
inline const char16_t TEST_COUNTER_VI_PROGID[] = u"Solvantic.QnclTest.Counter";

// Counts up from 1, one step per call.
struct ITestCounter : IQNUnknown {
    virtual QNRESULT QN_STDCALL Next(int32_t* value) = 0;

protected:
    ~ITestCounter() = default;
};

} // namespace qntest
