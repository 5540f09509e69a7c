// String: sharing and copy on write, the wrapping and empty buffers, the sampled hash,
// placeholders, comparing and searching at word boundaries, changes with clamped ranges and
// self-aliasing, and the character-buffer role seen from components.
#include "qn/core/String.h"
#include "qn/core/Exception.h"
#include "qn/util/MTCharBuffer.h"

#include <gtest/gtest.h>

#include <string>

namespace qn {
// Failure messages print strings as UTF-8.
void PrintTo(const String& text, std::ostream* out) {
    char utf8[512];
    QNWideToUtf8(reinterpret_cast<const QNWCHAR*>(text.getData()), text.getLength(), utf8,
                 sizeof utf8);
    *out << '"' << utf8 << '"';
}
} // namespace qn

using namespace qn;

namespace {

std::u16string str(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

// The hash as documented, one unit at a time.
uint32_t referenceHash(const std::u16string& text, bool ignoreCase) {
    const int32_t length = static_cast<int32_t>(text.size());
    const int32_t step = (length - 32) / 32 + 1;
    uint32_t h = 0;
    for (int32_t i = 0; i < length; i += step)
        h = h * 37 + (ignoreCase ? QNToLowerW(static_cast<QNWCHAR>(text[i])) : text[i]);
    return h;
}

// A foreign buffer whose reads fail with a code of its own.
class FailingBuffer : public util::RWCharBuffer {
public:
    const char16_t* getReadLock() const override { throw ResultException(QN_E_ACCESSDENIED); }
};

} // namespace

TEST(StringTest, CopiesShareUntilOneChanges) {
    String a(u"hello");
    String b = a;
    EXPECT_EQ(a.getData(), b.getData());

    b.append(u" world");
    EXPECT_EQ(a, u"hello");
    EXPECT_EQ(b, u"hello world");

    // The original holder changing leaves the copy alone too.
    String c = a;
    const char16_t* shared = c.getData();
    a.setCharAt(0, u'j');
    EXPECT_EQ(a, u"jello");
    EXPECT_EQ(c, u"hello");
    EXPECT_EQ(c.getData(), shared);
}

TEST(StringTest, SoleHolderChangesInPlace) {
    String s(u"abc", -1, 64);
    const char16_t* data = s.getData();
    s.append(u"def").insert(0, u'>').remove(1, 1).replace(0, 1, u"A", 1);
    EXPECT_EQ(s, u"Abcdef");
    EXPECT_EQ(s.getData(), data);
    s.clear();
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ(s.getData(), data);
    EXPECT_EQ(s.getData()[0], u'\0');
}

TEST(StringTest, WrapDoesNotCopyAndTheFirstChangeCopies) {
    static const char16_t text[] = u"wrapped text";
    String wrapped(String::WRAP, text);
    EXPECT_EQ(wrapped.getData(), text);
    String shortView(String::WRAP, text, 7);
    EXPECT_EQ(shortView.getData(), text);
    EXPECT_EQ(shortView.getLength(), 7);

    wrapped.append(u'!');
    EXPECT_NE(wrapped.getData(), text);
    EXPECT_EQ(wrapped, u"wrapped text!");
    EXPECT_EQ(std::u16string(text), u"wrapped text");

    const String literal(QN_STR_LIT(u"literal"));
    EXPECT_EQ(literal.getLength(), 7);
    EXPECT_EQ(literal, u"literal");
}

TEST(StringTest, EmptyStringsShareOneBuffer) {
    const String a;
    const String b(u"");
    const String c(static_cast<const char16_t*>(nullptr), 5);
    const String d(String::COPY, u"abc", 0, 0);
    EXPECT_EQ(a.getData(), b.getData());
    EXPECT_EQ(a.getData(), c.getData());
    EXPECT_EQ(a.getData(), d.getData());
    EXPECT_EQ(a.getData()[0], u'\0');
    // Asking for room gives a buffer of the string's own.
    const String roomy(10);
    EXPECT_TRUE(roomy.isEmpty());
    EXPECT_NE(roomy.getData(), a.getData());

    String moved(u"text");
    const String taker(std::move(moved));
    EXPECT_EQ(taker, u"text");
    EXPECT_EQ(moved.getData(), a.getData());
}

TEST(StringTest, HashSamplesLongTextsAndFoldsCase) {
    EXPECT_EQ(String().hashCode(), 0u);
    EXPECT_EQ(String(u"a").hashCode(), 97u);
    EXPECT_EQ(String(u"A").hashCode(true), 97u);
    EXPECT_EQ(String(u"ab").hashCode(), 97u * 37u + 98u);
    EXPECT_EQ(String(u"MiXeD \u00C4").hashCode(true), String(u"mixed \u00E4").hashCode());

    // Lengths around each change of step, against the one-unit-at-a-time definition.
    for (int32_t length : {1, 3, 4, 5, 31, 32, 63, 64, 65, 95, 96, 97, 128, 1000, 4099}) {
        std::u16string text;
        for (int32_t i = 0; i < length; ++i)
            text += static_cast<char16_t>(u'A' + (i * 7) % 26 + (i % 5 == 0 ? 0x100 : 0));
        const String s(text.data(), length);
        EXPECT_EQ(s.hashCode(), referenceHash(text, false)) << length;
        EXPECT_EQ(s.hashCode(true), referenceHash(text, true)) << length;
    }
}

TEST(StringTest, FormatFillsConsecutivePlaceholdersOnly) {
    String s;
    EXPECT_EQ(s.format(u"{0}-{1}-{0}", -1, u"a", u"bb"), u"a-bb-a");
    // Only index 1: not consecutive from 0, so nothing is filled and nothing is taken.
    EXPECT_EQ(s.format(String(u"only {1}"), u"unused"), u"only {1}");
    EXPECT_EQ(s.format(String(u"{0}{2}{0}"), u"x", u"y"), u"x{2}x");
    // Argument text is never searched again.
    EXPECT_EQ(s.format(u"{0}{1}", -1, u"{1}", u"b"), u"{1}b");
    EXPECT_EQ(s.format(String(u"{{0}} {01} {0"), u"v"), u"{v} {01} {0");
    EXPECT_EQ(s.format(String(u"{10}{9}{8}{7}{6}{5}{4}{3}{2}{1}{0}"), u"0", u"1", u"2", u"3", u"4",
                       u"5", u"6", u"7", u"8", u"9", u"10"),
              u"109876543210");
    EXPECT_EQ(s.format(u"no placeholders here", 2), u"no");

    // The format may be the string itself.
    String self(u"<{0}>");
    EXPECT_EQ(self.format(self, u"in"), u"<in>");
    // Without placeholders a String format is shared, not copied.
    const String plain(u"plain");
    EXPECT_EQ(s.format(plain).getData(), plain.getData());
}

TEST(StringTest, ComparesOrdinallyByUnsignedUnit) {
    const struct {
        const char16_t* a;
        const char16_t* b;
        bool ignoreCase;
        int32_t expected;
    } cases[] = {
        {u"a", u"b", false, -1},   {u"b", u"a", false, 1},      {u"ab", u"abc", false, -1},
        {u"", u"", false, 0},      {u"\uFFFF", u"a", false, 1}, {u"ABC", u"abd", true, -1},
        {u"ABC", u"abc", true, 0}, {u"ABC", u"abc", false, -1}, {u"\u00C4X", u"\u00E4x", true, 0},
        {u"[", u"a", true, -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(String(c.a).compare(String(c.b), c.ignoreCase), c.expected)
            << testing::PrintToString(c.a);
        EXPECT_EQ(String(c.a).compare(c.b, -1, c.ignoreCase), c.expected)
            << testing::PrintToString(c.a);
        EXPECT_EQ(String(c.a).equals(String(c.b), c.ignoreCase), c.expected == 0);
    }
    // A difference at every position of a text longer than one compared word.
    const std::u16string base(40, u'm');
    for (size_t i = 0; i < base.size(); ++i) {
        std::u16string lower = base;
        lower[i] = u'a';
        EXPECT_EQ(String(base.data()).compare(String(lower.data())), 1) << i;
        EXPECT_EQ(String(lower.data()).compare(String(base.data())), -1) << i;
        EXPECT_FALSE(String(lower.data()).equals(base.data(), -1));
    }
    EXPECT_EQ(String(u"hello world").regionCompare(6, 5, String(u"WORLD!"), 0, 5, true), 0);
    EXPECT_TRUE(String(u"abc").regionMatches(1, 100, String(u"xbc"), 1, -1));
    EXPECT_TRUE(String(u"Prefix.txt").startsWith(String(u"prefix"), true));
    EXPECT_FALSE(String(u"Pre").startsWith(u"Prefix", -1));
    EXPECT_TRUE(String(u"Prefix.TXT").endsWith(u".txt", -1, true));
    EXPECT_TRUE(String(u"abc").endsWith(String()));
}

TEST(StringTest, SearchesFromClampedStarts) {
    const String s(u"abcabcABC\u0100abc");
    const struct {
        const char16_t* part;
        int32_t start;
        bool ignoreCase;
        int32_t first;
        int32_t last;
    } cases[] = {
        {u"abc", 0, false, 0, 0},     {u"abc", 1, false, 3, 0},    {u"abc", -9, false, 0, 10},
        {u"ABC", 0, true, 0, 0},      {u"bca", 0, false, 1, -1},   {u"\u0100a", 0, false, 9, -1},
        {u"abc", 100, false, -1, 10}, {u"", 4, false, 4, 4},       {u"abcd", 0, false, -1, -1},
        {u"cab", 0, true, 2, -1},     {u"abc", 10, false, 10, 10}, {u"abC", 0, false, -1, -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(s.indexOf(c.part, -1, c.start, c.ignoreCase), c.first)
            << testing::PrintToString(c.part);
        EXPECT_EQ(s.lastIndexOf(String(c.part), c.start, c.ignoreCase), c.last)
            << testing::PrintToString(c.part);
    }
    EXPECT_EQ(s.lastIndexOf(String(u"abc")), 10);
    EXPECT_TRUE(s.contains(String(u"CAB"), true));

    // One unit at every position, across the four-unit words.
    std::u16string text(21, u'.');
    for (int32_t i = 0; i < 21; ++i) {
        std::u16string t = text;
        t[static_cast<size_t>(i)] = u'#';
        const String hay(t.data());
        EXPECT_EQ(hay.indexOf(u'#'), i);
        EXPECT_EQ(hay.indexOf(u'#', i + 1), -1);
        EXPECT_EQ(hay.lastIndexOf(u'#'), i);
    }
    EXPECT_EQ(String(u"xX").indexOf(u'X', 0, true), 0);
}

TEST(StringTest, ChangesClampTheirRanges) {
    const struct {
        const char16_t* expected;
        String (*change)();
    } cases[] = {
        {u"xyzabc", [] { return String(u"abc").prepend(u"xyz"); }},
        {u"abc--", [] { return String(u"abc").append(u'-', 2); }},
        {u"*abc", [] { return String(u"abc").insert(-5, u"*"); }},
        {u"abc*", [] { return String(u"abc").insert(100, String(u"*")); }},
        {u"ab", [] { return String(u"abcdef").remove(2, 2).remove(2); }},
        {u"bc", [] { return String(u"abc").remove(-1, 1); }},
        {u"abc", [] { return String(u"abc").remove(3, 5); }},
        {u"aXYZd", [] { return String(u"abcd").replace(1, 2, u"XYZ"); }},
        {u"abc!!", [] { return String(u"abc").replace(10, 10, u'!', 2); }},
        {u"ab..", [] { return String(u"ab").resize(4, u'.'); }},
        {u"a", [] { return String(u"abc").resize(1, u'.'); }},
        {u"qqq", [] { return String(u"abc").setTo(u'q', 3); }},
        {u"", [] { return String(u"abc").setTo(u"xyz", 0); }},
        {u"xy", [] { return String(u"abc").setTo(u"xyz", 2); }},
    };
    for (const auto& c : cases)
        EXPECT_EQ(str(c.change()), c.expected);
}

TEST(StringTest, ChangesFromTheStringsOwnText) {
    String s(u"abc", -1, 64);
    s.append(s);
    EXPECT_EQ(s, u"abcabc");
    s.insert(1, s.getData() + 3, 2);
    EXPECT_EQ(s, u"aabbcabc");
    s.setTo(s.getData() + 5, -1);
    EXPECT_EQ(s, u"abc");
    s.setTo(s.getData() + 1, 2); // in place, overlapping
    EXPECT_EQ(s, u"bc");
    s.setTo(u"abc");
    // Shared: the copy comes from the old buffer, which the other holder keeps.
    String other = s;
    s.prepend(other).replace(0, 1, s.getData() + 1, 2);
    EXPECT_EQ(s, u"bcbcabc");
    EXPECT_EQ(other, u"abc");
}

TEST(StringTest, CaseMappingCopiesOnlyWhatChanges) {
    const String lower(u"already lower \u00E4");
    String copy = lower;
    EXPECT_EQ(copy.toLower().getData(), lower.getData());
    EXPECT_EQ(copy.toUpper(), u"ALREADY LOWER \u00C4");
    EXPECT_EQ(lower, u"already lower \u00E4");
    EXPECT_EQ(String(u"MiXeD").toLower(), u"mixed");

    EXPECT_EQ(String(u"hello").translate(String(u"lo"), String(u"01")), u"he001");
    EXPECT_EQ(String(u"hello").translate(String(u"hle"), String(u"H")), u"Hello");
    String self(u"abc");
    EXPECT_EQ(self.translate(self, String(u"bca")), u"bca");
}

TEST(StringTest, IndexOutsideTheStringIsRefused) {
    String s(u"abc");
    EXPECT_EQ(s.getCharAt(2), u'c');
    EXPECT_EQ(s[0], u'a');
    EXPECT_THROW(s.getCharAt(3), RangeErrorException);
    EXPECT_THROW(s[-1], RangeErrorException);
    EXPECT_THROW(s.setCharAt(3, u'x'), RangeErrorException);
    EXPECT_EQ(s, u"abc");
    EXPECT_THROW(String().getCharAt(0), RangeErrorException);
}

TEST(StringTest, ComponentsWriteThroughCopyOnWrite) {
    Reference<String> target = String::CQNString(u"original", -1, 0);
    const String keeper = *target;
    EXPECT_EQ(QNCopyCharBuffer(target.get(), reinterpret_cast<const QNWCHAR*>(u"from core"), -1),
              QN_S_OK);
    EXPECT_EQ(*target, u"from core");
    EXPECT_EQ(keeper, u"original");
    EXPECT_EQ(target->getData()[target->getLength()], u'\0');

    // A write filling the whole capacity still leaves room for the terminator.
    target->getWriteLock();
    char16_t* data = target->ensureCapacity(16);
    for (int i = 0; i < 16; ++i)
        data[i] = u'w';
    target->releaseWriteLock(16);
    EXPECT_EQ(*target, u"wwwwwwwwwwwwwwww");
    EXPECT_EQ(target->getData()[16], u'\0');
    EXPECT_THROW(target->releaseWriteLock(1), IllegalStateException);
    EXPECT_EQ(target->GetRefCount(), 1u);
}

TEST(StringTest, AdoptsWrapsAndCopiesForeignBuffers) {
    auto* adopted = new util::MTCharBuffer(u"mt", 2);
    adopted->AddRef();
    String owner(static_cast<IQNCharBuffer*>(adopted));
    EXPECT_EQ(owner, u"mt");
    // The only holder of a writable buffer changes it in place.
    owner.append(u"++").append(owner);
    EXPECT_EQ(adopted->getLength(), 8);
    EXPECT_EQ(owner, u"mt++mt++");

    Reference<util::MTCharBuffer> held(new util::MTCharBuffer(u"shared", 6));
    String wrapped(String::WRAP, held.get());
    String copied(String::COPY, held.get());
    EXPECT_EQ(held->GetRefCount(), 2u);
    wrapped.append(u'!');
    copied.append(u'?');
    EXPECT_EQ(wrapped, u"shared!");
    EXPECT_EQ(copied, u"shared?");
    EXPECT_EQ(held->getLength(), 6);
    EXPECT_EQ(held->GetRefCount(), 1u);

    Reference<FailingBuffer> failing(new FailingBuffer());
    String broken(String::WRAP, failing.get());
    try {
        broken.hashCode();
        FAIL() << "no exception";
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), QN_E_ACCESSDENIED);
    }
    EXPECT_THROW(String(String::COPY, failing.get()), ResultException);
}
