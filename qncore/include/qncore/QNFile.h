/* Files by handle: open, read, write, seek, flush, size, close; and status and removal by path.
 * Paths are wide text (UTF-8 on the POSIX file system). Failures are result codes of the
 * platform's layout, the same on both sides (see QNResultFromNative). */
#ifndef QNCORE_QNFILE_H
#define QNCORE_QNFILE_H

#include "QNTypes.h"

/* Access word of QNFileOpen. */
#define QN_FILE_READ 0x80000000u   /* open for reading */
#define QN_FILE_WRITE 0x40000000u  /* open for writing */
#define QN_FILE_CREATE 0x00000001u /* create the file when it does not exist */
#define QN_FILE_APPEND                                                                             \
    0x00000002u                      /* stream mode: seek to the end before every write; not an    \
                                        open flag, accepted and ignored here */
#define QN_FILE_TRUNCATE 0x00000004u /* cut an existing file to length 0 (needs QN_FILE_WRITE) */
#define QN_FILE_SHARED                                                                             \
    0x00000008u /* stream mode: writes under an inter-process lock; not an                         \
                   open flag, accepted and ignored here */
#define QN_FILE_EXCLUSIVE                                                                          \
    0x00000010u /* with QN_FILE_CREATE: fail with QN_E_ALREADYEXISTS when                          \
                   the file exists */

/* Origins of QNFileSeek64. */
#define QN_SEEK_BEGIN 0
#define QN_SEEK_CURRENT 1
#define QN_SEEK_END 2

/* What QNFileGetStatus tells of a path. */
typedef struct STRUCT_QN_FILE_STATUS {
    int64_t size;               /* bytes; 0 for a directory */
    int64_t modifiedPosix;      /* last modification, seconds since 1970 UTC */
    STRUCT_QN_TIME modifiedUtc; /* the same moment as a UTC record, with milliseconds */
    uint32_t isDirectory;       /* 1 for a directory, else 0 */
    uint32_t isReadOnly;        /* 1 when the caller may not write it, else 0 */
} STRUCT_QN_FILE_STATUS;

QN_EXTERN_C_BEGIN

/* Opens path with the access word. permission is the POSIX mode for a newly created file (0x1C0
 * gives the owner alone read, write and execute); Windows ignores it. Unknown access bits, or
 * neither read nor write access, give QN_E_INVALIDARG. */
QNCORE_API QNRESULT QN_STDCALL QNFileOpen(const QNWCHAR* path, uint32_t access, uint32_t permission,
                                          QNFILE* file);
/* Reads up to length bytes. At the end of input it succeeds with *done = 0. */
QNCORE_API QNRESULT QN_STDCALL QNFileRead(QNFILE file, void* buffer, uint32_t length,
                                          uint32_t* done);
/* Writes up to length bytes; *done tells how many were written (all, unless it fails). */
QNCORE_API QNRESULT QN_STDCALL QNFileWrite(QNFILE file, const void* buffer, uint32_t length,
                                           uint32_t* done);
/* Moves the position; newPosition (may be null) receives the position from the start. */
QNCORE_API QNRESULT QN_STDCALL QNFileSeek64(QNFILE file, int64_t offset, int32_t origin,
                                            int64_t* newPosition);
QNCORE_API QNRESULT QN_STDCALL QNFileFlush(QNFILE file);
QNCORE_API QNRESULT QN_STDCALL QNFileGetSize(QNFILE file, int64_t* size);
QNCORE_API QNRESULT QN_STDCALL QNFileClose(QNFILE file);
QNCORE_API QNRESULT QN_STDCALL QNFileGetStatus(const QNWCHAR* path, STRUCT_QN_FILE_STATUS* status);
QNCORE_API QNRESULT QN_STDCALL QNFileDelete(const QNWCHAR* path);

QN_EXTERN_C_END

#endif
