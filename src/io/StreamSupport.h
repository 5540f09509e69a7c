// What the stream classes share: core-module failures and bad arguments as exceptions.
#pragma once

#include "qn/core/Exception.h"

namespace qn::io {

inline void check(QNRESULT r) {
    if (QN_FAILED(r))
        throw ResultException(r);
}

// A caller's array must exist wherever bytes are to be moved.
inline void checkBuffer(const void* buf, long len) {
    if (!buf && len > 0)
        throw ResultException(QN_E_POINTER);
}

template <class T> T* checkStream(T* stream) {
    if (!stream)
        throw ResultException(QN_E_POINTER);
    return stream;
}

} // namespace qn::io

#include <algorithm>
#include <cstring>
#include <memory>

namespace qn::io {

// The buffer of BufferedInputStream and BufferedReader with its mark, over units of T (bytes or
// characters): the members of the owner, bound by reference, and the operations the two share.
template <class T> struct MarkedBuffer {
    std::unique_ptr<T[]>& buffer;
    long& size;
    long& pos;
    long& count;
    long& markLimit;
    long& markPos; // -1: no mark; -2: mark invalidated

    // Reads the source into the buffer after the units the mark keeps. The buffer grows to the
    // mark limit when the kept units need it; past the limit the mark is invalidated. pos and
    // count change only when the source delivered something.
    template <class Source> void fill(Source& in) {
        long kept = 0;
        if (markPos >= 0) {
            kept = pos - markPos;
            if (kept < markLimit) {
                if (markLimit > size) {
                    std::unique_ptr<T[]> grown(new T[static_cast<size_t>(markLimit)]);
                    std::memcpy(grown.get(), buffer.get() + markPos,
                                static_cast<size_t>(kept) * sizeof(T));
                    buffer = std::move(grown);
                    size = markLimit;
                } else {
                    std::memmove(buffer.get(), buffer.get() + markPos,
                                 static_cast<size_t>(kept) * sizeof(T));
                }
                markPos = 0;
                pos = count = kept;
            } else {
                // More than the limit was read past the mark: the units need not be kept.
                markPos = -2;
                kept = 0;
            }
        }
        const long n = in.read(buffer.get() + kept, size - kept);
        if (n > 0) {
            pos = kept;
            count = kept + n;
        }
    }

    // Copies up to len units, refilling as needed; stops early with what it has when the source
    // reports nothing available. Large reads with nothing buffered and no mark bypass the
    // buffer. -1 when the source ended before anything was copied.
    template <class Source> long read(Source& in, T* buf, long len) {
        long copied = 0;
        for (;;) {
            if (pos >= count) {
                if (copied > 0 && in.available() == 0)
                    return copied;
                if (len - copied >= size && markPos < 0) {
                    const long n = in.read(buf + copied, len - copied);
                    if (n > 0)
                        return copied + n;
                    return copied ? copied : n;
                }
                fill(in);
                if (pos >= count)
                    return copied ? copied : -1;
            }
            const long n = std::min(len - copied, count - pos);
            std::memcpy(buf + copied, buffer.get() + pos, static_cast<size_t>(n) * sizeof(T));
            pos += n;
            copied += n;
            if (copied == len)
                return copied;
        }
    }

    // Steps over up to n units, refilling as needed, until a fill yields nothing.
    template <class Source> long skip(Source& in, long n) {
        long skipped = 0;
        while (skipped < n) {
            if (pos >= count) {
                fill(in);
                if (pos >= count)
                    break;
            }
            const long step = std::min(n - skipped, count - pos);
            pos += step;
            skipped += step;
        }
        return skipped;
    }

    void reset() {
        if (markPos >= 0) {
            pos = markPos;
            return;
        }
        throw IoException(markPos == -2 ? u"mark invalid" : u"stream not marked");
    }
};

} // namespace qn::io
