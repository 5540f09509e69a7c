/* A tour of qncore6 from plain C: the default encoding, the time, case mapping, a GUID, a file
 * and a named lock. */
#include <qncore/QNCore.h>

#include <stdio.h>

static void print(const char* label, const QNWCHAR* text) {
    char utf8[256];
    QNWideToUtf8(text, -1, utf8, sizeof utf8);
    printf("%-22s %s\n", label, utf8);
}

int main(void) {
    QNWCHAR text[64];
    if (QN_SUCCEEDED(QNGetDefaultCharEncoding(text, 64)))
        print("default encoding:", text);

    STRUCT_QN_TIME now;
    QNTimeGetSystem(&now);
    printf("%-22s %04u-%02u-%02u %02u:%02u:%02u.%03u UTC\n", "now:", now.wYear, now.wMonth,
           now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);

    QNWCHAR greek[64];
    QNUtf8ToWide("\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1", -1, greek, 64);
    print("text:", greek);
    print("upper case:", QNStrToUpperW(greek, -1));

    QNWCHAR number[40];
    QNLToStrW(-255, number, 40, 10);
    print("-255 in radix 10:", number);
    QNLToStrW(255, number, 40, 16);
    print("255 in radix 16:", number);

    static const QNGUID id = {0x72038029, 0xFA65, 0x4255, {0xA9, 0x16, 0x1C, 0x56, 0x80, 0xAC, 0xFE, 0xBF}};
    QNGuidToStringW(&id, text, 64);
    print("a GUID:", text);

    QNFILE file = QN_INVALID_FILE;
    QNWCHAR missing[64];
    QNUtf8ToWide("no-such-file.txt", -1, missing, 64);
    QNRESULT r = QNFileOpen(missing, QN_FILE_READ, 0x1C0, &file);
    printf("%-22s 0x%08X\n", "opening a missing file:", (unsigned)r);

    QNHANDLE a = NULL, b = NULL;
    QNMutexCreate("core_tour::lock", 0, &a);
    QNMutexCreate("core_tour::lock", 0, &b);
    QNMutexAcquire(a);
    printf("%-22s %s\n", "one name, one lock:", QN_SUCCEEDED(QNMutexTryAcquire(b)) ? "yes" : "no");
    QNMutexRelease(a);
    QNMutexRelease(a);
    QNMutexDestroy(b);
    QNMutexDestroy(a);
    return 0;
}
