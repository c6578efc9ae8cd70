// Text to text in both layers: the fill formats at capacities around the
// value, double-byte cuts at every byte position, quote doubling, the
// CS_VARCHAR forms, the server's byte movers and name case.
#include <limits>
#include <string>
#include <tuple>

#include "conv/string_conv.h"
#include "intl/test_charsets.h"
#include "support/context.h"

// Present once the character set converter is linked in.
extern "C" __attribute__((weak)) CS_RETCODE comn_charset_convert(CS_CONTEXT *, CS_INT, CS_DATAFMT *, CS_VOID *,
                                                                 CS_DATAFMT *, CS_VOID *, CS_INT *);

namespace {

using namespace std::string_literals;
using kes::test::code_name;
using kes::test::Context;
using kes::test::DoubleByte;
using kes::test::fmt;
using kes::test::hex;

constexpr CS_INT kNul = CS_FMT_NULLTERM, kPadNul = CS_FMT_PADNULL, kBlank = CS_FMT_PADBLANK, kSafe = CS_FMT_SAFESTR;
const std::string kGuard(8, '~');

CS_VARCHAR varchar(const std::string &s)
{
    CS_VARCHAR v;
    std::memset(&v, '~', sizeof v);
    v.len = static_cast<CS_SMALLINT>(s.size());
    std::memcpy(v.str, s.data(), std::min(s.size(), sizeof v.str));
    return v;
}

struct TextCase {
    std::string src;
    CS_INT maxlength, format;
    CS_RETCODE code;
    std::string stored; // the first destlen bytes
    CS_INT destlen;
};

// comn_chartochar, or comn_varchartochar with the text as a CS_VARCHAR; the
// destination is followed by guard bytes.
void run(const TextCase &c, Context &ctx, bool from_varchar = false, CS_INT srctype = CS_CHAR_TYPE,
         CS_INT desttype = CS_CHAR_TYPE)
{
    SCOPED_TRACE(testing::Message() << '"' << hex(c.src.data(), c.src.size()) << "\" maxlength " << c.maxlength
                                    << " format " << c.format << (from_varchar ? " varchar" : ""));
    CS_DATAFMT sf = from_varchar ? fmt(CS_VARCHAR_TYPE, 258) : fmt(srctype, static_cast<CS_INT>(c.src.size()));
    CS_DATAFMT df = fmt(desttype, c.maxlength, c.format);
    std::string d(static_cast<size_t>(std::max(c.maxlength, 0)), '~'), src = c.src;
    d += kGuard;
    CS_INT destlen = -7;
    CS_VARCHAR v = varchar(c.src);
    const CS_RETCODE rc = from_varchar ? comn_varchartochar(ctx.get(), &sf, &v, &df, d.data(), &destlen)
                                       : comn_chartochar(ctx.get(), &sf, src.data(), &df, d.data(), &destlen);
    EXPECT_EQ(code_name(rc), code_name(c.code));
    EXPECT_EQ(destlen, c.destlen);
    EXPECT_EQ(hex(d.data(), static_cast<size_t>(std::max(destlen, 0))), hex(c.stored.data(), c.stored.size()));
    EXPECT_TRUE(d.ends_with(kGuard)) << "wrote past the capacity";
}

// The fill formats the double-byte walk below leaves out (a NUL end with a
// NUL fill, contradictory and right-justified formats), values with no bytes
// or with NULs, and quote doubling.  From a CS_VARCHAR the exact fit with a
// NUL end is left to the fill, and quotes are not doubled.
TEST(CharToChar, FormatsEmptyValuesAndQuoteDoubling)
{
    Context ctx;
    const std::pair<bool, TextCase> cases[] = {
        {0, {"abcde", 7, 3, CS_SUCCEED, "abcde\0\0"s, 7}}, {0, {"abcde", 5, 3, CS_TRUNCATED, "abcd\0"s, 5}},
        // contradictory fills are reported after the copy, even a cut one
        {0, {"abcde", 6, 6, CS_EFORMAT, "abcde", 5}}, {0, {"abcde", 4, 6, CS_EFORMAT, "abcd", 4}},
        {0, {"abcde", 5, 7, CS_TRUNCATED, "abcd\0"s, 5}},
        // right-justify means nothing in this layer
        {0, {"abcde", 7, 8, CS_SUCCEED, "abcde", 5}}, {0, {"abcde", 7, 12, CS_SUCCEED, "abcde  ", 7}},
        {0, {"", 0, 0, CS_SUCCEED, "", 0}}, {0, {"", 0, 1, CS_TRUNCATED, "", 0}}, {0, {"", 1, 1, CS_SUCCEED, "\0"s, 1}},
        {0, {"", 3, 4, CS_SUCCEED, "   ", 3}}, {0, {"", 3, 6, CS_EFORMAT, "", 0}},
        {0, {"a\0b"s, 4, 1, CS_SUCCEED, "a\0b\0"s, 4}}, {0, {"abc", -1, 1, CS_TRUNCATED, "", 0}},
        // a doubled quote that does not fit is left out whole; a NUL ends the walk
        {0, {"it's", 5, kSafe, CS_SUCCEED, "it''s", 5}}, {0, {"it's", 4, kSafe, CS_TRUNCATED, "it''", 4}},
        {0, {"it's", 3, kSafe, CS_TRUNCATED, "it", 2}}, {0, {"'", 1, kSafe, CS_TRUNCATED, "", 0}},
        {0, {"a\"b", 4, kSafe, CS_SUCCEED, "a\"b", 3}}, {0, {"it's", 8, kSafe | kBlank, CS_SUCCEED, "it''s   ", 8}},
        {0, {"it's", 6, kSafe | kNul, CS_SUCCEED, "it''s\0"s, 6}},
        {0, {"it's", 5, kSafe | kNul, CS_TRUNCATED, "it''\0"s, 5}},
        {0, {"ab'\0cd"s, 9, kSafe | kNul, CS_SUCCEED, "ab''\0"s, 5}},
        {0, {"ab'\0cd"s, 9, kSafe, CS_SUCCEED, "ab''\0cd"s, 7}}, {0, {"", 3, kSafe | kNul, CS_SUCCEED, "\0"s, 1}},
        {1, {"abcde", 5, 1, CS_TRUNCATED, "abcd\0"s, 5}}, {1, {"abcde", 6, 1, CS_SUCCEED, "abcde\0"s, 6}},
        {1, {"abcde", 6, 4, CS_SUCCEED, "abcde ", 6}}, {1, {"abcde", 6, 6, CS_EFORMAT, "abcde", 5}},
        {1, {"abcde", 3, 0, CS_TRUNCATED, "abc", 3}}, {1, {"abcde", 0, 1, CS_TRUNCATED, "", 0}},
        {1, {"it's", 8, kSafe, CS_SUCCEED, "it's", 4}},
        {1, {std::string(256, 'v'), 300, 0, CS_SUCCEED, std::string(256, 'v'), 256}},
    };
    for (const auto &[from_varchar, c] : cases)
        run(c, ctx, from_varchar);
    const CS_INT family[] = {CS_CHAR_TYPE, CS_LONGCHAR_TYPE, CS_TEXT_TYPE, CS_SENSITIVITY_TYPE, CS_BOUNDARY_TYPE, CS_XML_TYPE};
    for (CS_INT from : family)
        for (CS_INT to : family)
            run({"xyz", 4, 1, CS_SUCCEED, "xyz\0"s, 4}, ctx, false, from, to);
    char buf[8] = {'a', 'b', 'c', '~', '~', '~', '~', '~'}; // source and destination the same bytes
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3), df = fmt(CS_CHAR_TYPE, 6, kBlank | kNul);
    CS_INT destlen;
    EXPECT_EQ(comn_chartochar(ctx.get(), &sf, buf, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(std::string(buf, 8), "abc  \0~~"s);
}

// The full-width quote (81 66) normalizes to "'" and is doubled whole.
TEST(EscChar, DoublesAnyEscapeByItsAsciiEquivalent)
{
    DoubleByte set;
    const std::tuple<std::string, CS_INT, CS_INT, CS_RETCODE, std::string> cases[] = {
        {"a\x81\x66" "b'", 16, '\'', CS_SUCCEED, "a\x81\x66\x81\x66" "b''"},
        {"a\x81\x66" "b'", 4, '\'', CS_TRUNCATED, "a"},
        {"a\x81\x66" "b'", 5, '\'', CS_TRUNCATED, "a\x81\x66\x81\x66"}, {"5%", 16, '%', CS_SUCCEED, "5%%"},
    };
    for (auto [src, cap, escape, rc, stored] : cases) {
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size())), df = fmt(CS_CHAR_TYPE, cap);
        std::string d(static_cast<size_t>(cap), '~');
        CS_INT n;
        EXPECT_EQ(comn__escchar(src.data(), &sf, d.data(), &df, &n, set, escape), rc) << cap;
        EXPECT_EQ(d.substr(0, static_cast<size_t>(n)), stored);
    }
}

struct ServerCase {
    std::string src;
    CS_INT maxlen, format;
    CS_RETCODE code;
    std::string stored; // dest->len bytes
};

void run_server(CS_RETCODE (*fn)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *), const ServerCase &c,
                CS_ATTRIB *attrib = nullptr, CS_BYTE type = 0)
{
    SCOPED_TRACE(testing::Message() << '"' << hex(c.src.data(), c.src.size()) << "\" maxlen " << c.maxlen
                                    << " format " << c.format << " type " << int(type));
    CAST_CONTEXT cc{};
    cc.format = c.format;
    cc.char_attrib = attrib;
    std::string s = c.src, d = std::string(static_cast<size_t>(c.maxlen), '~') + kGuard;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(s.data()), static_cast<CS_INT>(s.size()), 0);
    __CONSTANT dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(d.data()), -1, c.maxlen);
    dst.type = type;
    EXPECT_EQ(code_name(fn(&cc, &src, &dst)), code_name(c.code));
    EXPECT_EQ(hex(d.data(), static_cast<size_t>(std::max(dst.len, 0))), hex(c.stored.data(), c.stored.size()));
    EXPECT_TRUE(d.ends_with(kGuard));
}

// "a" DB DB "b" DB: both layers keep only whole characters at every
// capacity; the context layer then fills by the format.
TEST(CharToChar, DoubleByteCutAtEveryPositionInBothLayers)
{
    const std::string mixed = "a\x82\x60\x81\x40" "b\xE0\x41";
    Context ctx;
    DoubleByte set;
    kes::test::LoadedLocale on(set);
    ctx->ctxlocale = &on.locale;
    const auto len = static_cast<CS_INT>(mixed.size());
    for (CS_INT cap = 0; cap <= len + 1; ++cap) {
        CS_INT keep = 0;
        for (CS_INT boundary : {0, 1, 3, 5, 6, 8})
            keep = boundary <= cap ? boundary : keep;
        for (CS_INT format : {0, kNul, kPadNul, kBlank, kBlank | kNul}) {
            TextCase c{mixed, cap, format, cap < len ? CS_TRUNCATED : CS_SUCCEED, mixed.substr(0, size_t(keep)), keep};
            const bool nul = format & kNul;
            if (nul && keep == cap) { // exact fit: the terminator replaces the last byte
                c.code = CS_TRUNCATED;
                if (cap > 0)
                    c.stored.back() = '\0';
            } else if (format & (kPadNul | kBlank)) {
                c.stored.resize(static_cast<size_t>(cap), (format & kPadNul) ? '\0' : ' ');
                if (nul)
                    c.stored.back() = '\0';
                c.destlen = cap;
            } else if (nul) {
                c.stored.push_back('\0');
                c.destlen = keep + 1;
            }
            run(c, ctx);
        }
        for (auto fn : {comnb_chartochar, comnb_chartovarchar})
            run_server(fn, {mixed, cap, 0, cap < len ? CS_TRUNCATED : CS_SUCCEED, mixed.substr(0, size_t(keep))}, set);
    }
    std::string s = mixed;
    EXPECT_EQ(comnb_truncate_chars(nullptr, reinterpret_cast<CS_BYTE *>(s.data()), len, 2), 2) << "single-byte";

    // A CS_VARCHAR holds 256 bytes: after "a" the character at 255..256 does
    // not fit, while 255 bytes that end on a boundary stay whole.
    std::string src = "a";
    while (src.size() < 300)
        src += "\x82\x60";
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size())), df = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR v = varchar("");
    CS_INT destlen;
    EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen), CS_TRUNCATED);
    EXPECT_EQ(v.len, 255);
    sf.maxlength = 255;
    EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen), CS_SUCCEED);
    EXPECT_EQ(v.len, 255);
    ctx->ctxlocale = nullptr;
}

// Whatever maxlength and format say, a CS_VARCHAR takes 256 bytes with
// neither terminator nor fill; from a CS_VARCHAR its len counts, read as
// unsigned and capped.
TEST(ToVarchar, CapacityIsAlways256)
{
    Context ctx;
    const std::tuple<CS_INT, CS_INT, CS_INT, CS_RETCODE, CS_INT> cases[] = {
        {0, 10, 0, CS_SUCCEED, 0},       {1, 10, 0, CS_SUCCEED, 1},        {5, 1, 1, CS_SUCCEED, 5},
        {255, 0, 6, CS_SUCCEED, 255},    {256, 0, 0, CS_SUCCEED, 256},     {257, 300, 0, CS_TRUNCATED, 256},
        {300, 258, 1, CS_TRUNCATED, 256}, {-1, 10, 0, CS_SUCCEED, 256},
    };
    std::string src(400, 'q');
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<char>('a' + i % 26);
    for (auto [srclen, destmax, format, code, len] : cases) {
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, srclen), df = fmt(CS_VARCHAR_TYPE, destmax, format);
        CS_VARCHAR v = varchar("");
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen)), code_name(code))
            << srclen;
        EXPECT_EQ(destlen, 258);
        EXPECT_EQ(std::string(v.str, static_cast<size_t>(v.len)), src.substr(0, static_cast<size_t>(len)));
        EXPECT_TRUE(len == 256 || v.str[len] == '~') << "no terminator or fill";
    }
    CS_DATAFMT sf = fmt(CS_VARCHAR_TYPE, 258), df = fmt(CS_VARCHAR_TYPE, 1, kNul);
    for (CS_SMALLINT len : {1, 200, 256, 300, -1}) {
        CS_VARCHAR from = varchar(std::string(256, 'k')), to = varchar("");
        from.len = len;
        CS_INT destlen;
        EXPECT_EQ(comn_varchartovarchar(ctx.get(), &sf, &from, &df, &to, &destlen), CS_SUCCEED) << len;
        EXPECT_EQ(to.len, std::min<CS_INT>(static_cast<CS_USMALLINT>(len), 256)) << len;
    }
}

// Only comn_chartochar compares the loaded descriptions; the varchar forms
// look at the caches alone and so ask for a translation.
TEST(CharToChar, SameDescriptionInTwoCachesIsCopied)
{
    Context ctx;
    DoubleByte set;
    kes::test::LoadedLocale l1(set), l2(set);
    l2.cache.locchardesc = &l1.desc;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3), df = fmt(CS_CHAR_TYPE, 2);
    sf.locale = &l1.locale;
    df.locale = &l2.locale;
    char src[] = "a\x82\x60", d[4] = "~~~";
    CS_INT destlen;
    EXPECT_EQ(comn_chartochar(ctx.get(), &sf, src, &df, d, &destlen), CS_TRUNCATED);
    EXPECT_EQ(std::string(d, static_cast<size_t>(destlen)), "a") << "cut in the common set";
    if (comn_charset_convert == nullptr) {
        CS_VARCHAR v = varchar(src);
        CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258), vdf = fmt(CS_VARCHAR_TYPE, 258);
        vf.locale = &l1.locale;
        vdf.locale = &l2.locale;
        EXPECT_EQ(comn_varchartochar(ctx.get(), &vf, &v, &df, d, &destlen), CS_ENOXLT);
        EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src, &vdf, &v, &destlen), CS_ENOXLT);
    }
}

// A cut is neither filled nor terminated, nor is an exact fit; right-justify
// works here, and needs blanks.
TEST(ServerText, FillsRightJustifiesOrCopiesAsIs)
{
    const ServerCase text[] = {
        {"abc", 3, 0, CS_SUCCEED, "abc"},     {"abc", 2, 0, CS_TRUNCATED, "ab"},  {"abc", 2, 1, CS_TRUNCATED, "ab"},
        {"abc", 0, 0, CS_TRUNCATED, ""},      {"abc", 3, 1, CS_TRUNCATED, "abc"}, {"abc", 4, 1, CS_SUCCEED, "abc\0"s},
        {"abc", 5, 2, CS_SUCCEED, "abc\0\0"s}, {"abc", 5, 5, CS_SUCCEED, "abc \0"s}, {"abc", 5, 6, CS_EFORMAT, "abc"},
        {"abc", 5, 12, CS_SUCCEED, "  abc"},  {"abc", 3, 12, CS_SUCCEED, "abc"},  {"abc", 5, 13, CS_EFORMAT, "abc"},
        {"abc", 5, 8, CS_SUCCEED, "abc"},     {"", 3, 12, CS_SUCCEED, "   "},
    };
    for (const ServerCase &c : text) {
        run_server(comnb_chartochar, c);
        run_server(comnb_varchartochar, c);
    }
    for (auto fn : {comnb_chartovarchar, comnb_varchartovarchar}) {
        run_server(fn, {"abc", 5, 5, CS_SUCCEED, "abc"});
        run_server(fn, {"abc", 3, 1, CS_SUCCEED, "abc"});
        run_server(fn, {"abc", 2, 4, CS_TRUNCATED, "ab"});
    }
}

// Any to fixed fills bytes (blanks too), any to var copies.  Bytes that land
// in a float column (type 59 or 62) must form a finite number, and stay
// there either way.
TEST(ServerBytes, FixedFillsVarCopiesFloatColumnsRefuseNoNumbers)
{
    const auto bytes = [](auto v) { return std::string(reinterpret_cast<const char *>(&v), sizeof v); };
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    const std::pair<CS_BYTE, ServerCase> fixed[] = {
        {0, {"\1\2", 4, 0, CS_SUCCEED, "\1\2"}},        {0, {"\1\2", 4, 2, CS_SUCCEED, "\1\2\0\0"s}},
        {0, {"\1\2", 4, 4, CS_SUCCEED, "\1\2  "}},      {0, {"\1\2", 4, 6, CS_SUCCEED, "\1\2\0\0"s}},
        {0, {"\1\2\3", 2, 2, CS_TRUNCATED, "\1\2"}},    {0, {"", 2, 4, CS_SUCCEED, "  "}},
        {59, {bytes(float(nan)), 4, 0, CS_EDOMAIN, bytes(float(nan))}},
        {59, {bytes(float(inf)), 4, 0, CS_EDOMAIN, bytes(float(inf))}},
        {59, {bytes(1.5f), 4, 0, CS_SUCCEED, bytes(1.5f)}}, {62, {bytes(-inf), 8, 0, CS_EDOMAIN, bytes(-inf)}},
        {62, {bytes(nan), 8, 0, CS_EDOMAIN, bytes(nan)}},   {62, {bytes(1e300), 8, 0, CS_SUCCEED, bytes(1e300)}},
        {61, {bytes(nan), 8, 0, CS_SUCCEED, bytes(nan)}}, // not a float column
    };
    for (const auto &[type, c] : fixed)
        run_server(comnb_anytofixed, c, nullptr, type);
    run_server(comnb_anytovar, {"\1\2", 4, 4, CS_SUCCEED, "\1\2"});
    run_server(comnb_anytovar, {"\1\2\3", 2, 4, CS_TRUNCATED, "\1\2"});
}

// 1 lowers, 2 raises the ASCII letters of up to namesize + 1 bytes.
TEST(SanitizeName, LowersRaisesOrLeaves)
{
    const std::tuple<CS_INT, const char *, CS_INT, const char *> cases[] = {
        {1, "MyApp-2.\xC9XE", 32, "myapp-2.\xC9xe"}, {2, "MyApp-2.exe", 32, "MYAPP-2.EXE"},
        {0, "MyApp", 32, "MyApp"}, {3, "MyApp", 32, "MyApp"}, {1, "ABCDEF", 2, "abcDEF"},
    };
    for (auto [sanitize, in, namesize, out] : cases) {
        char buf[64];
        std::strcpy(buf, in);
        comn__sanitize_name(sanitize, buf, namesize);
        EXPECT_STREQ(buf, out) << in << " " << sanitize;
    }
}

TEST(StringConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    char src[4] = "abc", dst[8];
    CS_INT destlen;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3), df = fmt(CS_CHAR_TYPE, 8), vf = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR empty = varchar("");
    EXPECT_NULL_POINTER(comn_chartochar(ctx.get(), &sf, src, &df, dst, nullptr));
    EXPECT_BOMB(comn_chartovarchar(ctx.get(), &sf, src, &df, dst, &destlen)); // destination not varchar
    EXPECT_BOMB(comn_varchartochar(ctx.get(), &vf, &empty, &df, dst, &destlen)); // len 0
    int l1, l2; // the server never translates here
    CAST_CONTEXT cc{};
    __CONSTANT s = kes::test::constant(reinterpret_cast<CS_BYTE *>(src), 3, 0);
    __CONSTANT d = kes::test::constant(reinterpret_cast<CS_BYTE *>(dst), 0, 8);
    s.locale = &l1;
    d.locale = &l2;
    EXPECT_BOMB(comnb_chartochar(&cc, &s, &d));
}

} // namespace
