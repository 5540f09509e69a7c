// Helpers of the converter tests: one-shot and piecewise conversion through real converters.
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace charsettest {

using Bytes = std::vector<unsigned char>;
using Units = std::u16string;
using qn::text::charset::ByteToCharConverter;
using qn::text::charset::CharToByteConverter;

inline std::u16string textOf(const qn::String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

// Decodes all of in with room for everything, then flushes.
inline Units decodeAll(ByteToCharConverter& converter, const Bytes& in) {
    Units out(in.size() * 2 + 8, u'\0');
    long inPos = 0, outPos = 0;
    const long written = converter.convert(reinterpret_cast<const signed char*>(in.data()), &inPos,
                                           static_cast<long>(in.size()), &out[0], &outPos,
                                           static_cast<long>(out.size()));
    EXPECT_EQ(written, outPos);
    out.resize(static_cast<size_t>(outPos));
    return out;
}

inline Bytes encodeAll(CharToByteConverter& converter, const Units& in) {
    Bytes out(in.size() * 6 + 8);
    long inPos = 0, outPos = 0;
    const long written = converter.convert(in.data(), &inPos, static_cast<long>(in.size()),
                                           reinterpret_cast<signed char*>(out.data()), &outPos,
                                           static_cast<long>(out.size()));
    EXPECT_EQ(written, outPos);
    EXPECT_EQ(inPos, static_cast<long>(in.size()));
    out.resize(static_cast<size_t>(outPos));
    return out;
}

inline const signed char* raw(const Bytes& b) {
    return reinterpret_cast<const signed char*>(b.data());
}
inline signed char* raw(Bytes& b) {
    return reinterpret_cast<signed char*>(b.data());
}
inline const char16_t* raw(const Units& u) {
    return u.data();
}
inline char16_t* raw(Units& u) {
    return &u[0];
}

// Converts in through an output window of room units, giving the input chunk units at a time
// (the unconsumed rest of one chunk is offered again with the next). Every call's output goes
// to check(piece); the pieces are concatenated. Stops when a call with all the input in view
// makes no progress.
template <class Out, class Converter, class In, class Check>
Out convertPiecewise(Converter& converter, const In& in, long chunk, long room, Check check) {
    Out result;
    long inPos = 0;
    long available = 0;
    const long size = static_cast<long>(in.size());
    while (inPos < size) {
        available = std::min(size, std::max(available, inPos) + chunk);
        Out window(static_cast<size_t>(room), typename Out::value_type{});
        long outPos = 0;
        const long before = inPos;
        const long written =
            converter.convert(raw(in), &inPos, available, raw(window), &outPos, room);
        EXPECT_EQ(written, outPos);
        window.resize(static_cast<size_t>(outPos));
        check(window);
        result.insert(result.end(), window.begin(), window.end());
        if (inPos == before && outPos == 0 && available == size)
            break;
    }
    return result;
}

} // namespace charsettest
