#!/usr/bin/env bash
# Installs, non-interactively, what the builds need beyond a fresh Debian machine of this kind:
# the mingw-w64 cross compilers (posix thread model) and Wine for the Windows builds, and the
# build tools, test and benchmark libraries when an image lacks them. Idempotent: a machine that
# has everything is checked in a second and left alone.
set -euo pipefail

packages=(
    cmake ninja-build g++ clang libclang-rt-14-dev pkg-config python3
    googletest libgtest-dev libgmock-dev libbenchmark-dev
    libicu-dev libssl-dev libgmp-dev openjdk-17-jdk-headless
    g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64-i686
    binutils-mingw-w64-x86-64 wine wine64
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    echo "setup: installing ${missing[*]}"
    sudo_cmd=()
    if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
    export DEBIAN_FRONTEND=noninteractive
    "${sudo_cmd[@]}" apt-get update -qq
    "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# A Wine prefix of our own, made once, so that the first test run does not pay for it.
prefix=${WINEPREFIX:-$HOME/.wine-qncl}
if [ ! -f "$prefix/system.reg" ]; then
    echo "setup: creating the Wine prefix $prefix"
    WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d" \
        DISPLAY= wineboot -i >/dev/null 2>&1 || true
    WINEPREFIX=$prefix wineserver -w 2>/dev/null || true
fi
