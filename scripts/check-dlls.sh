#!/usr/bin/env bash
# Checks the product's Windows build: qncore6.dll and qncl6.dll are PE32 DLLs for i386 and
# export their flat functions under undecorated names (beside the decorated ones).
# Usage: scripts/check-dlls.sh BUILD_DIR
set -euo pipefail
bin=$1/bin
objdump=i686-w64-mingw32-objdump

exports() { "$objdump" -p "$1" | awk '/^\[Ordinal\/Name Pointer\] Table/{t=1; next} t && NF==0 {t=0} t {print $NF}'; }

check_dll() {
    local dll=$1
    shift
    [ -f "$dll" ] || { echo "missing: $dll"; exit 1; }
    local header names
    header=$("$objdump" -f -p "$dll")
    grep -q 'file format pei-i386' <<<"$header" || { echo "$dll is not PE32 i386"; exit 1; }
    grep -q 'Magic.*010b' <<<"$header" || { echo "$dll lacks the PE32 optional header"; exit 1; }
    names=$(exports "$dll")
    for f in "$@"; do
        grep -qx "$f" <<<"$names" || { echo "$dll does not export $f"; exit 1; }
    done
}

check_dll "$bin/qncore6.dll" QNStrLenW QNStrCmpW QNToLowerW QNStrToLowerW QNStrToUpperW QNLToStrW \
    QNCopyCharBuffer QNMutexCreate QNMutexAcquire QNSemaphoreCreate QNEventCreate QNGateCreate \
    QNRWLockCreate QNConditionCreate QNTimeGetLocal QNTimeGetSystem QNTimeFromPosix QNFileOpen \
    QNFileSeek64 QNFileClose QNResultFromNative QNGetDefaultCharEncoding QNComClassIDFromProgID \
    QNModuleComCreateObject QNModuleSetInitialized QNgetaddrinfo
if [ -f "$bin/qncl6.dll" ]; then
    check_dll "$bin/qncl6.dll" $(cat "$(dirname "$0")/qncl6-exports.txt" 2>/dev/null || true)
fi
echo "DLLs: PE32 i386, flat functions exported"
