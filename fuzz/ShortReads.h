// A byte stream over the fuzz input that hands out short reads: each read gives at most
// 1 + sizes[k] % longest bytes, taking the sizes in turn (the whole request when there are
// none), and available() tells the rest only when asked to.
#pragma once

#include "qn/io/InputStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace fuzzsupport {

class ShortReads : public qn::io::InputStream {
public:
    ShortReads(const uint8_t* data, size_t size, const uint8_t* sizes, size_t count, bool tells,
               long longest)
        : m_data(data), m_size(size), m_sizes(sizes), m_count(count), m_tells(tells),
          m_longest(longest) {}
    using InputStream::read;
    long read(signed char* buf, long len) override {
        if (m_pos >= m_size)
            return -1;
        const long most = m_count ? 1 + m_sizes[m_next++ % m_count] % m_longest : len;
        const long n = std::min({len, most, static_cast<long>(m_size - m_pos)});
        std::memcpy(buf, m_data + m_pos, static_cast<size_t>(n));
        m_pos += static_cast<size_t>(n);
        return n;
    }
    long available() override { return m_tells ? static_cast<long>(m_size - m_pos) : 0; }

private:
    const uint8_t* m_data;
    size_t m_size, m_pos = 0;
    const uint8_t* m_sizes;
    size_t m_count, m_next = 0;
    bool m_tells;
    long m_longest;
};

} // namespace fuzzsupport
