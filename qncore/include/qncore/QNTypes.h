/* Basic types of the qncore6 C interface: result codes, calling convention, the platform's wide
 * character, GUIDs, handles and the time record. Every other qncore header includes this one. */
#ifndef QNCORE_QNTYPES_H
#define QNCORE_QNTYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#include <guiddef.h>
#endif

#if defined(_WIN32) && !defined(_WIN64)
#define QN_STDCALL __stdcall
#else
#define QN_STDCALL
#endif

#if defined(_WIN32)
#if defined(QNCORE_BUILDING)
#define QNCORE_API __declspec(dllexport)
#else
#define QNCORE_API __declspec(dllimport)
#endif
#else
#define QNCORE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define QN_EXTERN_C extern "C"
#define QN_EXTERN_C_BEGIN extern "C" {
#define QN_EXTERN_C_END }
#else
#define QN_EXTERN_C
#define QN_EXTERN_C_BEGIN
#define QN_EXTERN_C_END
#endif

/* 32-bit result code in the component model's layout: negative means failure. */
typedef int32_t QNRESULT;

#define QN_SUCCEEDED(r) ((QNRESULT)(r) >= 0)
#define QN_FAILED(r) ((QNRESULT)(r) < 0)

#define QN_S_OK ((QNRESULT)0x00000000)
#define QN_S_FALSE ((QNRESULT)0x00000001)
#define QN_E_NOTIMPL ((QNRESULT)0x80004001)
#define QN_E_NOINTERFACE ((QNRESULT)0x80004002)
#define QN_E_POINTER ((QNRESULT)0x80004003)
#define QN_E_FAIL ((QNRESULT)0x80004005)
#define QN_E_BUFFERTOOSMALL ((QNRESULT)0x80004009)
#define QN_E_UNEXPECTED ((QNRESULT)0x8000FFFF)
#define QN_E_NOAGGREGATION ((QNRESULT)0x80040110)
#define QN_E_CLASSNOTAVAILABLE ((QNRESULT)0x80040111)
#define QN_E_CLASSNOTREGISTERED ((QNRESULT)0x80040154)
#define QN_E_FILENOTFOUND ((QNRESULT)0x80070002)
#define QN_E_PATHNOTFOUND ((QNRESULT)0x80070003)
#define QN_E_ACCESSDENIED ((QNRESULT)0x80070005)
#define QN_E_HANDLE ((QNRESULT)0x80070006)
#define QN_E_OUTOFMEMORY ((QNRESULT)0x8007000E)
#define QN_E_HANDLEEOF ((QNRESULT)0x80070026)
#define QN_E_INVALIDARG ((QNRESULT)0x80070057)
#define QN_E_ALREADYEXISTS ((QNRESULT)0x800700B7)
#define QN_E_NOTOWNER ((QNRESULT)0x80070120)
#define QN_E_TOOMANYPOSTS ((QNRESULT)0x8007012A)
#define QN_E_TIMEOUT ((QNRESULT)0x800705B4)
#define QN_E_POSSIBLEDEADLOCK ((QNRESULT)0x8007046B)
#define QN_E_INVALIDCLASSSTRING ((QNRESULT)0x800401F3)

/* The platform's wide character: UTF-16 code units on every platform. */
#if defined(_WIN32)
typedef wchar_t QNWCHAR;
#elif defined(__cplusplus)
typedef char16_t QNWCHAR;
#else
typedef uint16_t QNWCHAR;
#endif

/* A 16-byte interface or class identifier in the platform's layout. */
#if defined(_WIN32)
typedef GUID QNGUID;
#else
typedef struct QNGUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} QNGUID;
#endif

/* An opaque handle of a core object (a lock, a signal). Pointer-sized: 32 bits on the product's
 * 32-bit target. Null is never a valid handle. */
typedef struct QNHandleRecord* QNHANDLE;

/* A file handle: the descriptor on POSIX, the platform HANDLE on Windows; -1 when invalid. */
typedef intptr_t QNFILE;
#define QN_INVALID_FILE ((QNFILE)-1)

/* Calendar time in the layout of the Win32 SYSTEMTIME record. Day of week 0 is Sunday. */
typedef struct STRUCT_QN_TIME {
    uint16_t wYear;
    uint16_t wMonth;
    uint16_t wDayOfWeek;
    uint16_t wDay;
    uint16_t wHour;
    uint16_t wMinute;
    uint16_t wSecond;
    uint16_t wMilliseconds;
} STRUCT_QN_TIME;

#endif
