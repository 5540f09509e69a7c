#include "qn/util/PathNormaliser.h"

#include "qn/core/Exception.h"

#include <vector>

namespace qn::util {

namespace {

using Style = PathNormaliser::Style;

// A path as its root in clean form and its names.
struct Parts {
    String root;
    std::vector<String> names;
};

bool isLetter(char16_t c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// Index of the first separator at or after i, or the length.
int32_t nextSeparator(const String& path, int32_t i, Style style) {
    while (i < path.getLength() && !PathNormaliser::isSeparator(path[i], style))
        ++i;
    return i;
}

// The root of path in clean form; *rest receives where the names start.
String rootOf(const String& path, Style style, int32_t* rest) {
    const int32_t length = path.getLength();
    const char16_t sep = PathNormaliser::separator(style);
    auto isSep = [&](int32_t i) {
        return i < length && PathNormaliser::isSeparator(path[i], style);
    };
    *rest = 0;
    if (style == PathNormaliser::POSIX_STYLE) {
        if (!isSep(0))
            return String();
        *rest = 1;
        return String(sep);
    }
    if (isSep(0) && isSep(1)) {
        // \\server\share\ : a server and a share name make the root.
        const int32_t serverEnd = nextSeparator(path, 2, style);
        String root(sep, 2);
        root.append(path.substring(2, serverEnd - 2)).append(sep);
        if (serverEnd < length) {
            const int32_t shareEnd = nextSeparator(path, serverEnd + 1, style);
            root.append(path.substring(serverEnd + 1, shareEnd - serverEnd - 1)).append(sep);
            *rest = shareEnd;
        } else {
            *rest = serverEnd;
        }
        return root;
    }
    if (length >= 2 && isLetter(path[0]) && path[1] == u':') {
        *rest = isSep(2) ? 3 : 2;
        String root = path.substring(0, 2);
        return isSep(2) ? root.append(sep) : root;
    }
    if (isSep(0)) {
        *rest = 1;
        return String(sep);
    }
    return String();
}

Parts split(const String& path, Style style) {
    Parts parts;
    int32_t i = 0;
    parts.root = rootOf(path, style, &i);
    const int32_t length = path.getLength();
    while (i < length) {
        const int32_t end = nextSeparator(path, i, style);
        if (end > i)
            parts.names.push_back(path.substring(i, end - i));
        i = end + 1;
    }
    return parts;
}

String assemble(const Parts& parts, Style style) {
    String path(parts.root);
    for (size_t i = 0; i < parts.names.size(); ++i) {
        if (i)
            path.append(PathNormaliser::separator(style));
        path.append(parts.names[i]);
    }
    return path;
}

bool rootEndsInSeparator(const String& root, Style style) {
    return !root.isEmpty() && PathNormaliser::isSeparator(root[root.getLength() - 1], style);
}

void normaliseNames(Parts& parts, Style style) {
    std::vector<String> names;
    for (const String& name : parts.names) {
        if (name == u".")
            continue;
        if (name == u"..") {
            if (!names.empty() && names.back() != u"..") {
                names.pop_back();
                continue;
            }
            // Above a root there is nothing: "/.." is "/".
            if (rootEndsInSeparator(parts.root, style))
                continue;
        }
        names.push_back(name);
    }
    parts.names.swap(names);
}

bool sameName(const String& a, const String& b, Style style) {
    return a.equals(b, !PathNormaliser::isCaseSensitive(style));
}

// The drive or UNC share of a Windows root, without its separator ("C:", "\\server\share").
String driveOf(const String& root) {
    if (root.getLength() >= 2 && root[1] == u':')
        return root.substring(0, 2);
    if (root.getLength() > 2 && root[0] == u'\\' && root[1] == u'\\')
        return root.substring(0, root.getLength() - 1);
    return String();
}

} // namespace

char16_t PathNormaliser::separator(Style style) {
    return style == WINDOWS_STYLE ? u'\\' : u'/';
}

bool PathNormaliser::isSeparator(char16_t c, Style style) {
    return c == u'/' || (style == WINDOWS_STYLE && c == u'\\');
}

bool PathNormaliser::isCaseSensitive(Style style) {
    return style != WINDOWS_STYLE;
}

String PathNormaliser::root(const String& path, Style style) {
    int32_t rest;
    return rootOf(path, style, &rest);
}

bool PathNormaliser::isAbsolute(const String& path, Style style) {
    const String r = root(path, style);
    if (style == POSIX_STYLE)
        return !r.isEmpty();
    return r.getLength() > 1 && rootEndsInSeparator(r, style);
}

String PathNormaliser::clean(const String& path, Style style) {
    return assemble(split(path, style), style);
}

String PathNormaliser::normalise(const String& path, Style style) {
    Parts parts = split(path, style);
    normaliseNames(parts, style);
    if (parts.root.isEmpty() && parts.names.empty() && !path.isEmpty())
        return String(u".");
    return assemble(parts, style);
}

String PathNormaliser::join(const String& base, const String& other, Style style) {
    if (other.isEmpty())
        return clean(base, style);
    if (base.isEmpty())
        return clean(other, style);
    Parts parts = split(other, style);
    if (!parts.root.isEmpty()) {
        if (style == POSIX_STYLE || isAbsolute(other, style))
            return assemble(parts, style);
        const Parts baseParts = split(base, style);
        const String drive = driveOf(baseParts.root);
        if (parts.root.getLength() == 1) {
            // "\x": the root of base's drive.
            parts.root = String(drive).append(separator(style));
            return assemble(parts, style);
        }
        // "C:x": relative to base only when base is on that drive.
        if (!sameName(drive, parts.root, style))
            return assemble(parts, style);
        Parts joined = baseParts;
        joined.names.insert(joined.names.end(), parts.names.begin(), parts.names.end());
        return assemble(joined, style);
    }
    Parts joined = split(base, style);
    joined.names.insert(joined.names.end(), parts.names.begin(), parts.names.end());
    return assemble(joined, style);
}

String PathNormaliser::relativise(const String& from, const String& to, Style style) {
    Parts a = split(from, style), b = split(to, style);
    normaliseNames(a, style);
    normaliseNames(b, style);
    if (!sameName(a.root, b.root, style))
        throw InvalidPathException(u"paths have different roots");
    size_t common = 0;
    while (common < a.names.size() && common < b.names.size() &&
           sameName(a.names[common], b.names[common], style))
        ++common;
    Parts relative;
    for (size_t i = common; i < a.names.size(); ++i) {
        if (a.names[i] == u"..")
            throw InvalidPathException(u"cannot relativise from a path above its start");
        relative.names.push_back(String(u".."));
    }
    relative.names.insert(relative.names.end(), b.names.begin() + static_cast<long>(common),
                          b.names.end());
    return relative.names.empty() ? String(u".") : assemble(relative, style);
}

bool PathNormaliser::equal(const String& a, const String& b, Style style) {
    return sameName(a, b, style);
}

} // namespace qn::util
