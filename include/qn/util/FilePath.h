// util::FilePath: a file system path as a String in the platform's clean form (its separators,
// no repeated or trailing separators), with the operations users know from
// std::filesystem::path and java.nio.file.Path: joining, parent, file name, extension,
// absolute, normal and relative forms. Paths compare under the platform's case rule: exactly
// on POSIX, without regard to letter case on Windows. The rules themselves are PathNormaliser's.
#pragma once

#include "qn/util/PathNormaliser.h"

namespace qn::util {

class QNCL_API FilePath : public Object {
public:
    FilePath() = default;
    FilePath(const String& path);
    FilePath(const char16_t* path);
    FilePath(const FilePath& other);
    FilePath& operator=(const FilePath& other);
    ~FilePath() override;

    static char16_t getSeparator() {
        return PathNormaliser::separator(PathNormaliser::NATIVE_STYLE);
    }

    const String& getPath() const { return m_path; }
    bool isEmpty() const { return m_path.isEmpty(); }
    bool isAbsolute() const;
    // "/", "C:\", "\\server\share\", ... or the empty path.
    FilePath getRoot() const;
    // The path without its last name; the empty path when there is no name before it ("a", "/").
    FilePath getParent() const;
    // The last name; empty for a root or the empty path.
    String getFileName() const;
    // The file name after its last '.', without the dot; empty when there is none, and for
    // names that only start with one (".profile") and for "..".
    String getExtension() const;
    // The file name without its extension and its dot.
    String getStem() const;

    // other seen from this path (PathNormaliser::join).
    FilePath resolve(const FilePath& other) const;
    FilePath operator/(const FilePath& other) const { return resolve(other); }
    FilePath normalize() const;
    // Against the process's current directory, normalised.
    FilePath toAbsolute() const;
    // Against base, normalised.
    FilePath toAbsolute(const FilePath& base) const;
    // The relative path that leads from this directory to target (PathNormaliser::relativise).
    FilePath relativize(const FilePath& target) const;

    Reference<Object> clone() const override;
    int32_t compareTo(const Object& other) const override;
    bool equals(const Object& other) const override;
    uint32_t hashCode() const override;
    String toString() const override { return m_path; }

private:
    String m_path;
};

inline bool operator==(const FilePath& a, const FilePath& b) {
    return a.equals(b);
}
inline bool operator!=(const FilePath& a, const FilePath& b) {
    return !a.equals(b);
}

} // namespace qn::util
