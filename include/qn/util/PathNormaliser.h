// util::PathNormaliser: the rules of file paths for either platform's style, used by FilePath
// with the style of the platform it runs on. Paths are split into a root and names:
//   POSIX:   "/" or nothing. Repeated separators, leading ones too, are one.
//   Windows: "\\server\share\" (UNC), "C:\" (drive), "C:" (the drive's current directory),
//            "\" (the current drive's root), or nothing. '/' and '\' both separate; the clean
//            form uses '\'.
// Names compare exactly on POSIX and without regard to letter case on Windows.
#pragma once

#include "qn/core/String.h"

namespace qn::util {

class QNCL_API PathNormaliser {
public:
    enum Style {
        POSIX_STYLE,
        WINDOWS_STYLE,
#ifdef _WIN32
        NATIVE_STYLE = WINDOWS_STYLE
#else
        NATIVE_STYLE = POSIX_STYLE
#endif
    };

    static char16_t separator(Style style);
    static bool isSeparator(char16_t c, Style style);
    static bool isCaseSensitive(Style style);

    // The root in clean form ("" for a relative path).
    static String root(const String& path, Style style);
    // POSIX: a root; Windows: a UNC or drive root ("\x" and "C:x" depend on the current drive
    // or directory, so they are not absolute).
    static bool isAbsolute(const String& path, Style style);
    // The style's separators, repeated separators as one, no trailing separator after a name.
    static String clean(const String& path, Style style);
    // clean, and without "." names or ".." names that follow a name; ".." directly under a
    // root is dropped. A path that comes to nothing is ".", the empty path stays empty.
    static String normalise(const String& path, Style style);
    // other seen from base: other itself when it has a root of its own (on Windows "\x" takes
    // base's drive, and "C:x" continues base when base is on drive C:), otherwise base, a
    // separator and other. Clean form.
    static String join(const String& base, const String& other, Style style);
    // The relative path that leads from the directory from to to, both normalised first: ".."
    // for every name of from after the common start, then the rest of to; "." for the same
    // path. InvalidPathException when the roots differ, or when from climbs ("..") after the
    // common start.
    static String relativise(const String& from, const String& to, Style style);
    // Whether two paths are the same text under the style's case rule.
    static bool equal(const String& a, const String& b, Style style);
};

} // namespace qn::util
