/* Wide-text helpers over UTF-16 code units: length, ordinal comparison, simple case mapping over
 * the whole Basic Multilingual Plane, number to text, bounded copy, and filling a caller's
 * character buffer. Case mapping is table driven and the same on every platform. */
#ifndef QNCORE_QNWIDETEXT_H
#define QNCORE_QNWIDETEXT_H

#include "QNUnknown.h"

QN_EXTERN_C_BEGIN

/* Units before the terminating zero; 0 for a null pointer. */
QNCORE_API int32_t QN_STDCALL QNStrLenW(const QNWCHAR* text);

/* Ordinal comparison of two zero-terminated texts by unsigned code unit: negative, 0 or positive.
 * A null pointer compares as the empty text. */
QNCORE_API int32_t QN_STDCALL QNStrCmpW(const QNWCHAR* a, const QNWCHAR* b);

/* Ordinal comparison of two counted texts (zeros inside are ordinary units); a shorter text that
 * is a prefix of the longer one sorts first. */
QNCORE_API int32_t QN_STDCALL QNStrCmpNW(const QNWCHAR* a, int32_t lengthA, const QNWCHAR* b,
                                         int32_t lengthB);

/* Simple (one unit to one unit) Unicode case mapping. Surrogates and unmapped units map to
 * themselves. */
QNCORE_API QNWCHAR QN_STDCALL QNToLowerW(QNWCHAR c);
QNCORE_API QNWCHAR QN_STDCALL QNToUpperW(QNWCHAR c);

/* Maps text in place and returns it; a length of -1 means up to the terminating zero. */
QNCORE_API QNWCHAR* QN_STDCALL QNStrToLowerW(QNWCHAR* text, int32_t length);
QNCORE_API QNWCHAR* QN_STDCALL QNStrToUpperW(QNWCHAR* text, int32_t length);

/* Writes value in the radix (2 to 36, lower-case digits) with a terminating zero. Radix 10 writes
 * a minus sign for negative values; other radices write the 32-bit two's-complement pattern.
 * QN_E_INVALIDARG for a bad radix or null buffer, QN_E_BUFFERTOOSMALL when size (in units,
 * terminator included) is too small; the buffer then holds the empty text if size > 0. */
QNCORE_API QNRESULT QN_STDCALL QNLToStrW(int32_t value, QNWCHAR* buffer, int32_t size,
                                         int32_t radix);

/* Copies at most size - 1 units of source (length -1: up to its zero) and always terminates.
 * QN_S_OK when everything was copied, QN_S_FALSE when the copy was cut short. */
QNCORE_API QNRESULT QN_STDCALL QNStrCpyNW(QNWCHAR* destination, int32_t size, const QNWCHAR* source,
                                          int32_t length);

/* Replaces the content of a writable character buffer with text (length -1: up to its zero;
 * a null text empties the buffer). QN_E_ACCESSDENIED for a read-only buffer; any failure of the
 * buffer is returned as it is. */
QNCORE_API QNRESULT QN_STDCALL QNCopyCharBuffer(IQNCharBuffer* buffer, const QNWCHAR* text,
                                                int32_t length);

/* Converts between UTF-16 and UTF-8. Unpaired surrogates become U+FFFD; each maximal malformed
 * UTF-8 subsequence (overlong forms, surrogates and values above U+10FFFF included) becomes one
 * U+FFFD. Returns the number of units the full result needs, terminator excluded;
 * writes at most capacity units and terminates when room is left. */
QNCORE_API int32_t QN_STDCALL QNWideToUtf8(const QNWCHAR* text, int32_t length, char* out,
                                           int32_t capacity);
QNCORE_API int32_t QN_STDCALL QNUtf8ToWide(const char* text, int32_t length, QNWCHAR* out,
                                           int32_t capacity);

QN_EXTERN_C_END

#endif
