#include "Tool.h"

#include <cstdio>

namespace qncl {

std::string utf8(const String& text) {
    const auto* units = reinterpret_cast<const QNWCHAR*>(text.getData());
    const int32_t length = QNWideToUtf8(units, text.getLength(), nullptr, 0);
    std::string out(static_cast<size_t>(length), '\0');
    QNWideToUtf8(units, text.getLength(), out.data(), length + 1);
    return out;
}

String wide(const std::string& utf8Text) {
    const auto length = static_cast<int32_t>(utf8Text.size());
    const int32_t units = QNUtf8ToWide(utf8Text.data(), length, nullptr, 0);
    std::u16string out(static_cast<size_t>(units), u'\0');
    QNUtf8ToWide(utf8Text.data(), length, reinterpret_cast<QNWCHAR*>(out.data()), units + 1);
    return String(out.data(), units);
}

void printOut(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printError(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

bool flushOutput() {
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

std::string hexCode(QNRESULT code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(code));
    return text;
}

std::string describe(QNRESULT code) {
    struct Known {
        uint32_t code;
        const char* text;
    };
    // Native errors arrive as the Win32 errors of the same meaning, on every platform.
    static const Known KNOWN[] = {
        {0x80070002, "file not found"},     {0x80070003, "path not found"},
        {0x80070005, "access denied"},      {0x8007000E, "out of memory"},
        {0x80070013, "write protected"},    {0x80070020, "file in use"},
        {0x8007006D, "broken pipe"},        {0x80070070, "disk full"},
        {0x800700B7, "already exists"},     {0x800700CE, "file name too long"},
        {0x8007045D, "input/output error"}, {0x80070057, "bad argument"},
        {0x8BB34101, "invalid character"},  {0x8BB34102, "unmappable character"},
    };
    for (const Known& k : KNOWN)
        if (k.code == static_cast<uint32_t>(code))
            return std::string(k.text) + " (" + hexCode(code) + ")";
    return std::string("error ") + hexCode(code);
}

std::string describe(const qn::Exception& e) {
    const String message = e.getDescription();
    return message.isEmpty() ? describe(e.getResult()) : utf8(message);
}

} // namespace qncl
