/* The component interfaces the core module itself calls: the base interface, the class factory
 * and the character buffer. Declared as abstract classes in C++ and as tables of function
 * pointers in C; both have the same binary layout, so a component built by another compiler
 * can implement or call them. */
#ifndef QNCORE_QNUNKNOWN_H
#define QNCORE_QNUNKNOWN_H

#include "QNTypes.h"

/* 00000000-0000-0000-C000-000000000046: the platform's base interface. */
static const QNGUID QN_IID_IQNUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/* 00000001-0000-0000-C000-000000000046: the platform's class-factory interface. */
static const QNGUID QN_IID_IQNClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/* 1F2639A2-1EBC-4E20-8560-0AA59F8ACB39: the character-buffer interface. */
static const QNGUID QN_IID_IQNCharBuffer = {
    0x1F2639A2, 0x1EBC, 0x4E20, {0x85, 0x60, 0x0A, 0xA5, 0x9F, 0x8A, 0xCB, 0x39}};

#ifdef __cplusplus

struct IQNUnknown {
    virtual QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) = 0;
    virtual uint32_t QN_STDCALL AddRef() = 0;
    virtual uint32_t QN_STDCALL Release() = 0;

protected:
    ~IQNUnknown() = default;
};

struct IQNClassFactory : IQNUnknown {
    virtual QNRESULT QN_STDCALL CreateInstance(IQNUnknown* outer, const QNGUID& iid,
                                               void** out) = 0;
    virtual QNRESULT QN_STDCALL LockServer(int32_t lock) = 0;

protected:
    ~IQNClassFactory() = default;
};

/* A counted block of 16-bit characters. Readers bracket access with GetReadLock and
 * ReleaseReadLock; writers with GetWriteLock and ReleaseWriteLock, which also sets the new
 * length (-1 keeps the present one). EnsureCapacity is valid under a write lock and may move
 * the block. */
struct IQNCharBuffer : IQNUnknown {
    virtual QNRESULT QN_STDCALL GetLength(int32_t* length) = 0;
    virtual QNRESULT QN_STDCALL GetData(const QNWCHAR** data) = 0;
    virtual QNRESULT QN_STDCALL GetReadLock(const QNWCHAR** data) = 0;
    virtual QNRESULT QN_STDCALL ReleaseReadLock() = 0;
    virtual QNRESULT QN_STDCALL IsWritable(int32_t* writable) = 0;
    virtual QNRESULT QN_STDCALL GetWriteLock(QNWCHAR** data) = 0;
    virtual QNRESULT QN_STDCALL EnsureCapacity(int32_t capacity, QNWCHAR** data) = 0;
    virtual QNRESULT QN_STDCALL ReleaseWriteLock(int32_t length) = 0;
    virtual QNRESULT QN_STDCALL FreeExtra() = 0;

protected:
    ~IQNCharBuffer() = default;
};

#else

typedef struct IQNUnknown IQNUnknown;
typedef struct IQNUnknownVtbl {
    QNRESULT(QN_STDCALL* QueryInterface)(IQNUnknown* self, const QNGUID* iid, void** out);
    uint32_t(QN_STDCALL* AddRef)(IQNUnknown* self);
    uint32_t(QN_STDCALL* Release)(IQNUnknown* self);
} IQNUnknownVtbl;
struct IQNUnknown {
    const IQNUnknownVtbl* lpVtbl;
};

typedef struct IQNClassFactory IQNClassFactory;
typedef struct IQNClassFactoryVtbl {
    QNRESULT(QN_STDCALL* QueryInterface)(IQNClassFactory* self, const QNGUID* iid, void** out);
    uint32_t(QN_STDCALL* AddRef)(IQNClassFactory* self);
    uint32_t(QN_STDCALL* Release)(IQNClassFactory* self);
    QNRESULT(QN_STDCALL* CreateInstance)
    (IQNClassFactory* self, IQNUnknown* outer, const QNGUID* iid, void** out);
    QNRESULT(QN_STDCALL* LockServer)(IQNClassFactory* self, int32_t lock);
} IQNClassFactoryVtbl;
struct IQNClassFactory {
    const IQNClassFactoryVtbl* lpVtbl;
};

typedef struct IQNCharBuffer IQNCharBuffer;
typedef struct IQNCharBufferVtbl {
    QNRESULT(QN_STDCALL* QueryInterface)(IQNCharBuffer* self, const QNGUID* iid, void** out);
    uint32_t(QN_STDCALL* AddRef)(IQNCharBuffer* self);
    uint32_t(QN_STDCALL* Release)(IQNCharBuffer* self);
    QNRESULT(QN_STDCALL* GetLength)(IQNCharBuffer* self, int32_t* length);
    QNRESULT(QN_STDCALL* GetData)(IQNCharBuffer* self, const QNWCHAR** data);
    QNRESULT(QN_STDCALL* GetReadLock)(IQNCharBuffer* self, const QNWCHAR** data);
    QNRESULT(QN_STDCALL* ReleaseReadLock)(IQNCharBuffer* self);
    QNRESULT(QN_STDCALL* IsWritable)(IQNCharBuffer* self, int32_t* writable);
    QNRESULT(QN_STDCALL* GetWriteLock)(IQNCharBuffer* self, QNWCHAR** data);
    QNRESULT(QN_STDCALL* EnsureCapacity)(IQNCharBuffer* self, int32_t capacity, QNWCHAR** data);
    QNRESULT(QN_STDCALL* ReleaseWriteLock)(IQNCharBuffer* self, int32_t length);
    QNRESULT(QN_STDCALL* FreeExtra)(IQNCharBuffer* self);
} IQNCharBufferVtbl;
struct IQNCharBuffer {
    const IQNCharBufferVtbl* lpVtbl;
};

#endif

/* The entry points a component library exports (undecorated names on every platform). */
typedef QNRESULT(QN_STDCALL* QNPFN_DllGetClassObject)(const QNGUID* clsid, const QNGUID* iid,
                                                      void** out);
typedef QNRESULT(QN_STDCALL* QNPFN_DllCanUnloadNow)(void);

#endif
