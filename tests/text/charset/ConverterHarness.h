// Drives converters the way their callers do: one-shot, in random pieces with random output
// room, and one step at a time, collecting what comes out and where an exception left the
// positions.
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include "qn/core/Exception.h"

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace charset_test {

using Bytes = std::vector<unsigned char>;
using Units = std::u16string;

inline Bytes bytes(std::initializer_list<int> values) {
    Bytes out;
    for (int v : values)
        out.push_back(static_cast<unsigned char>(v));
    return out;
}
inline Bytes bytes(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

// What a whole conversion gave: the output, and the failure that ended it, if any.
template <class Out> struct Outcome {
    Out out;
    std::string failure; // "" when none, else the exception's kind and message
    long failedAt = -1;  // input position the exception left
    bool operator==(const Outcome& o) const {
        return out == o.out && failure == o.failure && failedAt == o.failedAt;
    }
};

using namespace qn;
using namespace qn::text::charset;

// The converters' own views of the buffers.
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

inline Units textOf(const String& s) {
    return Units(s.getData(), static_cast<size_t>(s.getLength()));
}

// Failure messages show outcomes as hexadecimal units.
template <class Out> void PrintTo(const Outcome<Out>& o, std::ostream* os) {
    *os << "{";
    for (auto u : o.out)
        *os << std::hex << (static_cast<unsigned>(u) & (sizeof u == 1 ? 0xFF : 0xFFFF)) << " ";
    *os << std::dec << "| " << o.failure << " @" << o.failedAt << "}";
}

inline std::string describe(const Exception& e) {
    std::string text = dynamic_cast<const InvalidCharacterException*>(&e)      ? "invalid"
                       : dynamic_cast<const UnmappableCharacterException*>(&e) ? "unmappable"
                                                                               : "other";
    const Units message = textOf(e.getDescription());
    if (!message.empty())
        text += ": " + std::string(message.begin(), message.end());
    return text;
}

namespace detail {

template <class Converter, class In, class Out>
Outcome<Out> runAll(Converter& converter, const In& in, const std::vector<long>& splits,
                    long room) {
    using OutUnit = typename Out::value_type;
    Outcome<Out> outcome;
    // The split points, then the end (sized once: GCC 12 misreads a copy grown by push_back).
    std::vector<long> ends(splits.size() + 1, static_cast<long>(in.size()));
    std::copy(splits.begin(), splits.end(), ends.begin());
    long inPos = 0;
    Out out(static_cast<size_t>(room) + 8, OutUnit(0));
    long outPos = 4;
    // What the call wrote, exception or not.
    const auto collect = [&] {
        outcome.out.insert(outcome.out.end(), out.begin() + 4, out.begin() + outPos);
    };
    try {
        for (long end : ends) {
            for (;;) {
                std::fill(out.begin(), out.end(), OutUnit(0x55));
                outPos = 4;
                const long before = inPos;
                const long written =
                    converter.convert(raw(in), &inPos, end, raw(out), &outPos, 4 + room);
                // The return value, the positions and the untouched slack agree.
                if (written != outPos - 4 || out[static_cast<size_t>(4 + room)] != OutUnit(0x55))
                    throw Exception(String(u"convert broke its contract"));
                collect();
                if (inPos == end || (inPos == before && written == 0))
                    break;
            }
        }
        outPos = 4;
        converter.flush(raw(out), &outPos, 4 + room);
        collect();
        if (inPos != static_cast<long>(in.size()))
            outcome.failure = "incomplete";
    } catch (const Exception& e) {
        collect();
        outcome.failure = describe(e);
        outcome.failedAt = inPos;
    }
    return outcome;
}

} // namespace detail

inline Outcome<Units> decodeAll(ByteToCharConverter& decoder, const Bytes& in,
                                const std::vector<long>& splits = {}, long room = 64) {
    return detail::runAll<ByteToCharConverter, Bytes, Units>(decoder, in, splits, room);
}

inline Outcome<Bytes> encodeAll(CharToByteConverter& encoder, const Units& in,
                                const std::vector<long>& splits = {}, long room = 64) {
    return detail::runAll<CharToByteConverter, Units, Bytes>(encoder, in, splits, room);
}

inline std::vector<long> randomSplits(std::mt19937& random, long size) {
    std::vector<long> splits;
    const int count = std::uniform_int_distribution<int>(0, 6)(random);
    for (int k = 0; k < count; ++k)
        splits.push_back(std::uniform_int_distribution<long>(0, size)(random));
    std::sort(splits.begin(), splits.end());
    return splits;
}

} // namespace charset_test
