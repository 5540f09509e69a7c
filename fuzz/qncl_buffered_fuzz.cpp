// BufferedInputStream against a model of the bytes it must deliver: a position in the data and
// a mark. The wrapped stream gives short reads of sizes the input picks and may or may not tell
// what is available. Whatever the operations, every byte delivered is the model's next byte,
// skips and reads stop only at the true end, a reset within the mark limit always returns to
// the mark, and a refused reset ("mark invalid") leaves the position alone.
//
// Input: byte 0 = buffer size, byte 1 = whether available() tells, bytes 2.. = the operations
// (an operation byte and an argument byte, neither 0) up to a zero byte; after it, the data.
// The wrapped stream's read sizes are taken from the operation bytes in turn.
#include "ShortReads.h"
#include "qn/io/BufferedInputStream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace qn;
using namespace qn::io;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

struct Model {
    size_t size;
    size_t pos = 0;
    long mark = -1;
    long limit = 0;
    size_t remaining() const { return size - pos; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
    if (size < 2)
        return 0;
    const long bufferSize = input[0];
    const bool tells = input[1] & 1;
    const uint8_t* ops = input + 2;
    const uint8_t* end = static_cast<const uint8_t*>(std::memchr(ops, 0, size - 2));
    const size_t opCount = end ? static_cast<size_t>(end - ops) : size - 2;
    const uint8_t* data = ops + opCount + (end ? 1 : 0);
    const size_t dataSize = static_cast<size_t>(input + size - data);

    Reference<BufferedInputStream> in = new BufferedInputStream(
        new fuzzsupport::ShortReads(data, dataSize, ops, opCount, tells, 64), bufferSize);
    Model model{dataSize};
    std::vector<signed char> buf(300);
    for (size_t i = 0; i + 1 < opCount; i += 2) {
        const uint8_t arg = ops[i + 1];
        switch (ops[i] % 6) {
        case 0: { // read()
            const int b = in->read();
            if (model.remaining() == 0) {
                check(b == -1);
                break;
            }
            check(b == static_cast<signed char>(data[model.pos]));
            ++model.pos;
            break;
        }
        case 1: { // read(buf, len)
            const long len = arg - 1;
            const long n = in->read(buf.data(), len);
            if (len == 0) {
                check(n == 0);
            } else if (model.remaining() == 0) {
                check(n == -1);
            } else {
                check(n >= 1 && n <= len && static_cast<size_t>(n) <= model.remaining());
                check(std::memcmp(buf.data(), data + model.pos, static_cast<size_t>(n)) == 0);
                model.pos += static_cast<size_t>(n);
            }
            break;
        }
        case 2: { // skip(n)
            const long n = arg - 1;
            const long skipped = in->skip(n);
            check(skipped ==
                  static_cast<long>(std::min<size_t>(static_cast<size_t>(n), model.remaining())));
            model.pos += static_cast<size_t>(skipped);
            break;
        }
        case 3: // mark(limit)
            in->mark(static_cast<long>(arg) * 4 - 8);
            model.mark = static_cast<long>(model.pos);
            model.limit = static_cast<long>(arg) * 4 - 8;
            break;
        case 4: { // reset()
            try {
                in->reset();
                check(model.mark >= 0);
                model.pos = static_cast<size_t>(model.mark);
            } catch (const IoException&) {
                // Refused without a mark, or once the limit was read past it (a refill at the
                // end of the data invalidates a mark with exactly the limit read).
                check(model.mark < 0 || static_cast<long>(model.pos) - model.mark >= model.limit);
            }
            break;
        }
        case 5: { // available()
            const long a = in->available();
            check(a >= 0 && static_cast<size_t>(a) <= model.remaining());
            if (tells)
                check(static_cast<size_t>(a) == model.remaining());
            break;
        }
        }
    }
    in->close();
    try {
        in->read();
        check(false);
    } catch (const IoException&) {
    }
    return 0;
}
