#include "qn/util/FilePath.h"

#include "qn/core/Exception.h"

#include <vector>

namespace qn::util {

namespace {

constexpr PathNormaliser::Style NATIVE = PathNormaliser::NATIVE_STYLE;

String currentDirectory() {
    int32_t needed = 0;
    QNPathGetCurrentDirectory(nullptr, 0, &needed);
    for (;;) {
        std::vector<QNWCHAR> buffer(static_cast<size_t>(needed > 0 ? needed : 1));
        const QNRESULT r =
            QNPathGetCurrentDirectory(buffer.data(), static_cast<int32_t>(buffer.size()), &needed);
        if (QN_SUCCEEDED(r))
            return String(reinterpret_cast<const char16_t*>(buffer.data()));
        // The directory may have changed between the calls: ask again with the new size.
        if (r != QN_E_BUFFERTOOSMALL)
            throw ResultException(r);
    }
}

} // namespace

FilePath::FilePath(const String& path) : m_path(PathNormaliser::clean(path, NATIVE)) {}
FilePath::FilePath(const char16_t* path) : FilePath(String(path)) {}
FilePath::FilePath(const FilePath& other) : Object(), m_path(other.m_path) {}
FilePath& FilePath::operator=(const FilePath& other) {
    m_path = other.m_path;
    return *this;
}
FilePath::~FilePath() = default;

bool FilePath::isAbsolute() const {
    return PathNormaliser::isAbsolute(m_path, NATIVE);
}

FilePath FilePath::getRoot() const {
    return FilePath(PathNormaliser::root(m_path, NATIVE));
}

FilePath FilePath::getParent() const {
    const String root = PathNormaliser::root(m_path, NATIVE);
    const int32_t cut = m_path.lastIndexOf(getSeparator());
    if (m_path.getLength() == root.getLength())
        return FilePath();
    // The clean form has a separator only between names and at the end of the root.
    if (cut < root.getLength())
        return root.isEmpty() ? FilePath() : FilePath(root);
    return FilePath(m_path.substring(0, cut));
}

String FilePath::getFileName() const {
    const int32_t rootLength = PathNormaliser::root(m_path, NATIVE).getLength();
    const int32_t cut = m_path.lastIndexOf(getSeparator());
    const int32_t start = cut + 1 > rootLength ? cut + 1 : rootLength;
    return m_path.substring(start);
}

String FilePath::getExtension() const {
    const String name = getFileName();
    const int32_t dot = name.lastIndexOf(u'.');
    return dot > 0 && name != u".." ? name.substring(dot + 1) : String();
}

String FilePath::getStem() const {
    const String name = getFileName();
    const int32_t dot = name.lastIndexOf(u'.');
    return dot > 0 && name != u".." ? name.substring(0, dot) : name;
}

FilePath FilePath::resolve(const FilePath& other) const {
    return FilePath(PathNormaliser::join(m_path, other.m_path, NATIVE));
}

FilePath FilePath::normalize() const {
    return FilePath(PathNormaliser::normalise(m_path, NATIVE));
}

FilePath FilePath::toAbsolute() const {
    return toAbsolute(FilePath(currentDirectory()));
}

FilePath FilePath::toAbsolute(const FilePath& base) const {
    String joined = PathNormaliser::join(base.m_path, m_path, NATIVE);
    const String root = PathNormaliser::root(joined, NATIVE);
    // "C:x" on another drive than base: that drive's root stands in for its current directory.
    if (!PathNormaliser::isAbsolute(joined, NATIVE) && root.getLength() == 2)
        joined.insert(2, getSeparator());
    return FilePath(PathNormaliser::normalise(joined, NATIVE));
}

FilePath FilePath::relativize(const FilePath& target) const {
    return FilePath(PathNormaliser::relativise(m_path, target.m_path, NATIVE));
}

Reference<Object> FilePath::clone() const {
    return new FilePath(*this);
}

int32_t FilePath::compareTo(const Object& other) const {
    const auto* path = dynamic_cast<const FilePath*>(&other);
    if (!path)
        throw CastFailedException(String(u"compareTo needs another FilePath"));
    return m_path.compare(path->m_path, !PathNormaliser::isCaseSensitive(NATIVE));
}

bool FilePath::equals(const Object& other) const {
    const auto* path = dynamic_cast<const FilePath*>(&other);
    return path && PathNormaliser::equal(m_path, path->m_path, NATIVE);
}

uint32_t FilePath::hashCode() const {
    return m_path.hashCode(!PathNormaliser::isCaseSensitive(NATIVE));
}

} // namespace qn::util
