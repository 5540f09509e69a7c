#include "common/Internal.h"

#include <langinfo.h>
#include <locale.h>
#include <strings.h>

namespace {

// Codesets as the C library names them, and the names the codec manager knows them by.
struct Alias {
    const char* codeset;
    const char* name;
};

const Alias ALIASES[] = {
    {"UTF-8", "UTF-8"},         {"UTF8", "UTF-8"},           {"ANSI_X3.4-1968", "ASCII"},
    {"US-ASCII", "ASCII"},      {"ASCII", "ASCII"},          {"ISO-8859-1", "ISO8859_1"},
    {"ISO8859-1", "ISO8859_1"}, {"ISO_8859-1", "ISO8859_1"}, {"CP1252", "CP1252"},
    {"WINDOWS-1252", "CP1252"}, {"CP437", "CP437"},          {"IBM437", "CP437"},
    {"EUC-JP", "EUCJP"},        {"EUCJP", "EUCJP"},
};

// The codeset of the user's default locale as the environment (LC_ALL, LC_CTYPE, LANG) sets it,
// whatever locale the process has selected.
std::string userCodeset() {
    locale_t user = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(0));
    if (!user)
        user = newlocale(LC_CTYPE_MASK, "C", static_cast<locale_t>(0));
    if (!user)
        return "ASCII";
    std::string codeset = nl_langinfo_l(CODESET, user);
    freelocale(user);
    return codeset;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNGetDefaultCharEncoding(QNWCHAR* buffer, int32_t size) {
    if (!buffer)
        return QN_E_POINTER;
    return qncore::guard([&] {
        std::string name = userCodeset();
        for (const Alias& a : ALIASES) {
            if (strcasecmp(a.codeset, name.c_str()) == 0) {
                name = a.name;
                break;
            }
        }
        const std::u16string wide = qncore::toUtf16(name.c_str());
        if (size < static_cast<int32_t>(wide.size()) + 1) {
            if (size > 0)
                buffer[0] = 0;
            return QN_E_BUFFERTOOSMALL;
        }
        return QNStrCpyNW(buffer, size, qncore::qw(wide.c_str()), -1);
    });
}
