// The encoding-information table: the code page of every named encoding the library knows,
// with or without a converter, reachable by name, alias or code page through three flat
// functions. It is built when the library loads and read without a lock afterwards.
#pragma once

#include "qn/core/Config.h"

// One record. name is static, NUL-terminated, canonical and upper case; codePage is the Windows
// code page (never 0 in the table); reserved is 0.
struct QnEncInfo {
    const QNWCHAR* name;
    int32_t codePage;
    int32_t reserved;
};

// Copies the records into buffer when *count is at least their number, and sets *count to that
// number: 0. When *count is smaller (0 is the size query) *count is set to the number and
// 0x80004009 returned. 0x80070057 for a null count, or a null buffer with a non-zero *count.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL QNEnumerateEncInfo(uint32_t* count, QnEncInfo* buffer);
// The record of a name or alias (any case), or of a code page written in decimal: 0, or
// 0x80004005 when there is none. 0x80070057 for a null name or info.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL QNGetEncInfoByName(const QNWCHAR* name, QnEncInfo* info);
// The record of a code page: 0, or 0x80004005 when there is none. 0x80070057 for a null info.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL QNGetEncInfoByCodePage(int32_t codePage, QnEncInfo* info);
