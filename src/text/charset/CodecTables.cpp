// The static tables of the character-set layer.
#include "CodecTables.h"

namespace qn::text::charset::tables {

#define ENCODER(suffix) u"qn::text::charset::CTB" suffix
#define DECODER(suffix) u"qn::text::charset::BTC" suffix

// Each canonical row is followed by its aliases. "ASCII" stands a second time among its own
// aliases: the first registration wins, so the repeat does nothing.
const CodecRow CODECS[CODEC_COUNT] = {
    // ASCII
    {u"ASCII", 20127, nullptr, ENCODER("ASCII"), DECODER("ASCII")},
    {u"ANSI_X3.4-1968", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ISO-IR-6", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ANSI_X3.4-1986", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ISO_646.IRV:1991", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ASCII", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ISO646-US", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"US-ASCII", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"US", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"IBM367", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"CP367", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"CSASCII", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"646", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"DEFAULT", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    {u"ASCII7", 0, u"ASCII", ENCODER("ASCII"), DECODER("ASCII")},
    // ISO8859_1
    {u"ISO8859_1", 28591, nullptr, ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"ISO_8859-1:1987", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"ISO-IR-100", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"ISO_8859-1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"ISO-8859-1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"LATIN1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"L1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"IBM819", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"CP819", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"CSISOLATIN1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"8859_1", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"ISO_8859-1:1978", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"IBM-819", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    {u"819", 0, u"ISO8859_1", ENCODER("ISO8859_1"), DECODER("ISO8859_1")},
    // CP437
    {u"CP437", 437, nullptr, ENCODER("CP437"), DECODER("CP437")},
    {u"IBM437", 0, u"CP437", ENCODER("CP437"), DECODER("CP437")},
    {u"437", 0, u"CP437", ENCODER("CP437"), DECODER("CP437")},
    {u"CSPC8CODEPAGE437", 0, u"CP437", ENCODER("CP437"), DECODER("CP437")},
    {u"IBM-437", 0, u"CP437", ENCODER("CP437"), DECODER("CP437")},
    // CP1252
    {u"CP1252", 1252, nullptr, ENCODER("CP1252"), DECODER("CP1252")},
    {u"WINDOWS-1252", 0, u"CP1252", ENCODER("CP1252"), DECODER("CP1252")},
    // UTF-8
    {u"UTF-8", 65001, nullptr, ENCODER("UTF8"), DECODER("UTF8")},
    {u"UTF8", 0, u"UTF-8", ENCODER("UTF8"), DECODER("UTF8")},
    {u"UTF_8", 0, u"UTF-8", ENCODER("UTF8"), DECODER("UTF8")},
    // UTF-16LE
    {u"UTF-16LE", 0, nullptr, ENCODER("UTF16LE"), DECODER("UTF16LE")},
    // UTF-16BE
    {u"UTF-16BE", 0, nullptr, ENCODER("UTF16BE"), DECODER("UTF16BE")},
    // UTF-32BE
    {u"UTF-32BE", 0, nullptr, ENCODER("UTF32BE"), DECODER("UTF32BE")},
    // UTF-32LE
    {u"UTF-32LE", 0, nullptr, ENCODER("UTF32LE"), DECODER("UTF32LE")},
    // AMP-7
    {u"AMP-7", 0, nullptr, ENCODER("AMP7"), DECODER("AMP7")},
    {u"A7", 0, u"AMP-7", ENCODER("AMP7"), DECODER("AMP7")},
};

#undef ENCODER
#undef DECODER

const CodePageRow CODE_PAGES[CODE_PAGE_COUNT] = {
    {u"CP1250", 1250}, {u"CP1251", 1251}, {u"CP1253", 1253}, {u"CP1254", 1254}, {u"CP1255", 1255},
    {u"CP1256", 1256}, {u"CP1257", 1257}, {u"CP1258", 1258}, {u"CP720", 720},   {u"CP737", 737},
    {u"CP775", 775},   {u"CP850", 850},   {u"CP852", 852},   {u"CP855", 855},   {u"CP857", 857},
    {u"CP858", 858},   {u"CP862", 862},   {u"CP866", 866},   {u"CP932", 932},   {u"CP936", 936},
    {u"CP949", 949},   {u"CP950", 950},   {u"EUCJP", 20932},
};

const AliasPair ALIASES[ALIAS_COUNT] = {
    {u"EUC-JP", u"EUCJP"},        {u"EUC_JP", u"EUCJP"},        {u"WINDOWS-31J", u"CP932"},
    {u"MS932", u"CP932"},         {u"GB2312", u"CP936"},        {u"KS_C_5601-1987", u"CP949"},
    {u"BIG5", u"CP950"},          {u"WINDOWS-1250", u"CP1250"}, {u"WINDOWS-1251", u"CP1251"},
    {u"WINDOWS-1253", u"CP1253"}, {u"WINDOWS-1254", u"CP1254"}, {u"WINDOWS-1255", u"CP1255"},
    {u"WINDOWS-1256", u"CP1256"}, {u"WINDOWS-1257", u"CP1257"}, {u"WINDOWS-1258", u"CP1258"},
};

} // namespace qn::text::charset::tables
