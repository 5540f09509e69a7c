// What the converter fuzzers share: runs of a conversion step over one input, either in one
// call or in pieces (input revealed a few units at a time, output given in small windows), with
// the outcome recorded so that runs can be compared.
#pragma once

#include "qn/core/Exception.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace fuzzsupport {

// Aborts, naming the line of the failed check (for reading a crash without a debugger).
inline void check(bool condition, int line = __builtin_LINE()) {
    if (!condition) {
        std::fprintf(stderr, "check failed at line %d\n", line);
        std::abort();
    }
}

// A small deterministic generator, seeded from the fuzz input.
struct Random {
    uint32_t state;
    uint32_t next() {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    }
    long upTo(long limit) { return 1 + static_cast<long>(next() % static_cast<uint32_t>(limit)); }
};

// How a run ended: the positions reached, what it wrote, and the result code of the exception
// that stopped it (0 when none).
template <class OutUnit> struct Outcome {
    long inPos = 0;
    long outPos = 0;
    QNRESULT failure = 0;
    std::vector<OutUnit> out;
    bool operator==(const Outcome& o) const {
        return inPos == o.inPos && outPos == o.outPos && failure == o.failure && out == o.out;
    }
};

// Runs step(inPos, inEnd, out, outPos, outEnd) -> written until it makes no progress with the
// whole input in view and an output window of maxRoom (at least the longest single result). The
// output buffer holds capacity units. Without random, one call sees everything; with it, the
// input is revealed 1 to maxChunk units further per call and each window has minRoom to maxRoom
// units.
template <class OutUnit, class Step>
Outcome<OutUnit> run(long inSize, long capacity, Random* random, long maxChunk, long maxRoom,
                     Step step, long minRoom = 1) {
    Outcome<OutUnit> outcome;
    outcome.out.assign(static_cast<size_t>(capacity), OutUnit{});
    long available = 0;
    auto call = [&](long room) {
        const long outEnd = std::min(capacity, outcome.outPos + room);
        const long inBefore = outcome.inPos, outBefore = outcome.outPos;
        // Nothing may be written at or past outEnd: a guard zone there must stay as it is.
        const long guardEnd = std::min(capacity, outEnd + 8);
        std::fill(outcome.out.begin() + outEnd, outcome.out.begin() + guardEnd, OutUnit(0x5A));
        const long written =
            step(&outcome.inPos, available, outcome.out.data(), &outcome.outPos, outEnd);
        for (long k = outEnd; k < guardEnd; ++k)
            check(outcome.out[static_cast<size_t>(k)] == OutUnit(0x5A));
        check(written == outcome.outPos - outBefore);
        check(outcome.inPos >= inBefore && outcome.inPos <= available);
        check(outcome.outPos >= outBefore && outcome.outPos <= outEnd);
        return outcome.inPos != inBefore || outcome.outPos != outBefore;
    };
    try {
        for (;;) {
            available =
                random
                    ? std::min(inSize, std::max(available, outcome.inPos) + random->upTo(maxChunk))
                    : inSize;
            const long room = random ? minRoom - 1 + random->upTo(maxRoom - minRoom + 1) : capacity;
            if (call(room) || available < inSize)
                continue;
            if (!random || room == maxRoom || !call(maxRoom))
                break;
        }
    } catch (const qn::Exception& e) {
        outcome.failure = e.getResult();
    }
    outcome.out.resize(static_cast<size_t>(outcome.outPos));
    return outcome;
}

} // namespace fuzzsupport
