// Text to text in both layers: every format combination at capacities around
// the value, multi-byte cuts at every byte position, quote doubling, the
// CS_VARCHAR forms, the server's byte movers and name case.
#include <cmath>
#include <limits>
#include <string>

#include "conv/string_conv.h"
#include "intl/locale_records.h"
#include "intl/test_charsets.h"
#include "support/context.h"

// Present once the character set converter is linked in.
extern "C" __attribute__((weak)) CS_RETCODE comn_charset_convert(CS_CONTEXT *, CS_INT, CS_DATAFMT *, CS_VOID *,
                                                                 CS_DATAFMT *, CS_VOID *, CS_INT *);

namespace {

using namespace std::string_literals;
using kes::test::code_name;
using kes::test::constant;
using kes::test::Context;
using kes::test::DoubleByte;
using kes::test::fmt;

constexpr size_t kGuard = 8;
constexpr char kFill = '~';

// A destination with guard bytes after the capacity.
struct Dest {
    explicit Dest(CS_INT cap) : cap(cap), buf(static_cast<size_t>(std::max(cap, 0)) + kGuard, kFill) {}
    char *data() { return buf.data(); }
    std::string stored(CS_INT n) const { return buf.substr(0, static_cast<size_t>(std::max(n, 0))); }
    bool guard_intact() const { return buf.substr(buf.size() - kGuard) == std::string(kGuard, kFill); }
    CS_INT cap;
    std::string buf;
};

// A character set reached through a locale on the context, as callers have it.
struct SetOnContext {
    SetOnContext(Context &ctx, CS_ATTRIB *attrib)
    {
        desc.char_attrib = attrib;
        cache.locchardesc = &desc;
        locale.ctypeptr = &cache;
        ctx->ctxlocale = &locale;
    }
    CsCharDesc desc{};
    CsLocCache cache{};
    CS_LOCALE locale{};
};

struct TextCase {
    std::string src;
    CS_INT maxlength;
    CS_INT format;
    CS_RETCODE code;
    std::string stored; // the first destlen bytes
    CS_INT destlen;
};

void run_chartochar(const TextCase &c, Context &ctx, CS_INT srctype = CS_CHAR_TYPE, CS_INT desttype = CS_CHAR_TYPE)
{
    CS_DATAFMT sf = fmt(srctype, static_cast<CS_INT>(c.src.size()));
    CS_DATAFMT df = fmt(desttype, c.maxlength, c.format);
    Dest d(c.maxlength);
    CS_INT destlen = -7;
    std::string src = c.src;
    SCOPED_TRACE(testing::Message() << '"' << kes::test::hex(c.src.data(), c.src.size()) << "\" maxlength "
                                    << c.maxlength << " format " << c.format);
    EXPECT_EQ(code_name(comn_chartochar(ctx.get(), &sf, src.data(), &df, d.data(), &destlen)), code_name(c.code));
    EXPECT_EQ(destlen, c.destlen);
    EXPECT_EQ(kes::test::hex(d.data(), static_cast<size_t>(std::max(destlen, 0))),
              kes::test::hex(c.stored.data(), c.stored.size()));
    EXPECT_TRUE(d.guard_intact()) << "wrote past the capacity";
}

// Five characters into capacities 0..7 under each format of the fill.
TEST(CharToChar, FormatsAtEveryCapacity)
{
    Context ctx;
    const TextCase cases[] = {
        // plain copy
        {"abcde", 0, 0, CS_TRUNCATED, ""s, 0},
        {"abcde", 1, 0, CS_TRUNCATED, "a"s, 1},
        {"abcde", 4, 0, CS_TRUNCATED, "abcd"s, 4},
        {"abcde", 5, 0, CS_SUCCEED, "abcde"s, 5},
        {"abcde", 6, 0, CS_SUCCEED, "abcde"s, 5},
        // NUL end: an exact fit gives its last byte to the terminator
        {"abcde", 0, 1, CS_TRUNCATED, ""s, 0},
        {"abcde", 1, 1, CS_TRUNCATED, "\0"s, 1},
        {"abcde", 4, 1, CS_TRUNCATED, "abc\0"s, 4},
        {"abcde", 5, 1, CS_TRUNCATED, "abcd\0"s, 5},
        {"abcde", 6, 1, CS_SUCCEED, "abcde\0"s, 6},
        {"abcde", 7, 1, CS_SUCCEED, "abcde\0"s, 6},
        // NUL fill
        {"abcde", 4, 2, CS_TRUNCATED, "abcd"s, 4},
        {"abcde", 5, 2, CS_SUCCEED, "abcde"s, 5},
        {"abcde", 7, 2, CS_SUCCEED, "abcde\0\0"s, 7},
        {"abcde", 7, 3, CS_SUCCEED, "abcde\0\0"s, 7},
        {"abcde", 5, 3, CS_TRUNCATED, "abcd\0"s, 5},
        // blank fill, and blank fill with a NUL at the end inside the length
        {"abcde", 4, 4, CS_TRUNCATED, "abcd"s, 4},
        {"abcde", 5, 4, CS_SUCCEED, "abcde"s, 5},
        {"abcde", 6, 4, CS_SUCCEED, "abcde "s, 6},
        {"abcde", 7, 4, CS_SUCCEED, "abcde  "s, 7},
        {"abcde", 6, 5, CS_SUCCEED, "abcde\0"s, 6},
        {"abcde", 7, 5, CS_SUCCEED, "abcde \0"s, 7},
        {"abcde", 5, 5, CS_TRUNCATED, "abcd\0"s, 5},
        // contradictory: reported after the copy
        {"abcde", 6, 6, CS_EFORMAT, "abcde"s, 5},
        {"abcde", 7, 7, CS_EFORMAT, "abcde"s, 5},
        {"abcde", 4, 6, CS_EFORMAT, "abcd"s, 4},   // cut, and still contradictory
        {"abcde", 5, 7, CS_TRUNCATED, "abcd\0"s, 5},
        // right-justify has no meaning in this layer
        {"abcde", 7, 8, CS_SUCCEED, "abcde"s, 5},
        {"abcde", 7, 12, CS_SUCCEED, "abcde  "s, 7},
        // empty value
        {""s, 0, 0, CS_SUCCEED, ""s, 0},
        {""s, 0, 1, CS_TRUNCATED, ""s, 0},
        {""s, 1, 1, CS_SUCCEED, "\0"s, 1},
        {""s, 3, 4, CS_SUCCEED, "   "s, 3},
        {""s, 3, 6, CS_EFORMAT, ""s, 0},
        // NUL bytes inside the value are plain bytes
        {"a\0b"s, 4, 1, CS_SUCCEED, "a\0b\0"s, 4},
        // a negative capacity stores nothing
        {"abc", -1, 1, CS_TRUNCATED, ""s, 0},
    };
    for (const TextCase &c : cases)
        run_chartochar(c, ctx);
}

TEST(CharToChar, EveryCharacterFamilyMemberAndTheMatrixCells)
{
    Context ctx;
    const int family[] = {CS_CHAR_TYPE, CS_LONGCHAR_TYPE, CS_TEXT_TYPE, CS_SENSITIVITY_TYPE, CS_BOUNDARY_TYPE,
                          CS_XML_TYPE};
    for (int from : family)
        for (int to : family)
            run_chartochar({"xyz", 4, 1, CS_SUCCEED, "xyz\0"s, 4}, ctx, from, to);
    for (int row : {CS_CHAR_TYPE, CS_LONGCHAR_TYPE, CS_TEXT_TYPE}) {
        for (int col : family)
            EXPECT_EQ(com_conv_func(ctx.get(), row, col), &comn_chartochar) << row << "," << col;
        EXPECT_EQ(com_conv_func(ctx.get(), row, CS_VARCHAR_TYPE), &comn_chartovarchar);
    }
    for (int col : family)
        EXPECT_EQ(com_conv_func(ctx.get(), CS_VARCHAR_TYPE, col), &comn_varchartochar) << col;
    EXPECT_EQ(com_conv_func(ctx.get(), CS_VARCHAR_TYPE, CS_VARCHAR_TYPE), &comn_varchartovarchar);
    // The text-only rows reach the plain text types, themselves and varchar.
    const struct {
        int row;
        int self;
        int other1, other2;
    } only[] = {{CS_SENSITIVITY_TYPE, 21, 22, 34}, {CS_BOUNDARY_TYPE, 22, 21, 34}, {CS_XML_TYPE, 34, 21, 22}};
    for (const auto &r : only) {
        for (int col : {0, 2, 4, r.self})
            EXPECT_EQ(com_conv_func(ctx.get(), r.row, col), &comn_chartochar) << r.row << "," << col;
        EXPECT_EQ(com_conv_func(ctx.get(), r.row, CS_VARCHAR_TYPE), &comn_chartovarchar);
        EXPECT_EQ(com_conv_func(ctx.get(), r.row, r.other1), nullptr);
        EXPECT_EQ(com_conv_func(ctx.get(), r.row, r.other2), nullptr);
    }
}

TEST(CharToChar, FillsInPlace)
{
    Context ctx;
    char buf[8] = {'a', 'b', 'c', '~', '~', '~', '~', '~'};
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3);
    CS_DATAFMT df = fmt(CS_CHAR_TYPE, 6, CS_FMT_PADBLANK | CS_FMT_NULLTERM);
    CS_INT destlen;
    EXPECT_EQ(comn_chartochar(ctx.get(), &sf, buf, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(std::string(buf, 8), "abc  \0~~"s);
    EXPECT_EQ(destlen, 6);
}

// ---- quote doubling ----------------------------------------------------------------------

TEST(CharToChar, SafeStringDoublesQuotes)
{
    Context ctx;
    const CS_INT safe = CS_FMT_SAFESTR;
    const TextCase cases[] = {
        {"it's", 8, safe, CS_SUCCEED, "it''s"s, 5},
        {"it's", 5, safe, CS_SUCCEED, "it''s"s, 5},
        {"it's", 4, safe, CS_TRUNCATED, "it''"s, 4},
        {"it's", 3, safe, CS_TRUNCATED, "it"s, 2}, // the pair does not fit: left out whole
        {"'", 2, safe, CS_SUCCEED, "''"s, 2},
        {"'", 1, safe, CS_TRUNCATED, ""s, 0},
        {"''", 4, safe, CS_SUCCEED, "''''"s, 4},
        {"a\"b", 4, safe, CS_SUCCEED, "a\"b"s, 3}, // only the single quote
        {"it's", 6, safe | CS_FMT_NULLTERM, CS_SUCCEED, "it''s\0"s, 6},
        {"it's", 5, safe | CS_FMT_NULLTERM, CS_TRUNCATED, "it''\0"s, 5},
        {"it's", 8, safe | CS_FMT_PADBLANK, CS_SUCCEED, "it''s   "s, 8},
        {"ab'\0cd"s, 9, safe | CS_FMT_NULLTERM, CS_SUCCEED, "ab''\0"s, 5}, // a NUL ends the walk
        {"ab'\0cd"s, 9, safe, CS_SUCCEED, "ab''\0cd"s, 7},
        {""s, 3, safe | CS_FMT_NULLTERM, CS_SUCCEED, "\0"s, 1},
    };
    for (const TextCase &c : cases)
        run_chartochar(c, ctx);
}

TEST(EscChar, DoublesAnyEscapeByItsAsciiEquivalent)
{
    DoubleByte set;
    // The full-width quote (81 66) normalizes to "'" and is doubled whole.
    std::string src = "a\x81\x66" "b'"s;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size()));
    CS_DATAFMT df = fmt(CS_CHAR_TYPE, 16);
    Dest d(16);
    CS_INT n;
    EXPECT_EQ(comn__escchar(src.data(), &sf, d.data(), &df, &n, set, '\''), CS_SUCCEED);
    EXPECT_EQ(d.stored(n), "a\x81\x66\x81\x66" "b''"s);
    // A pair that would pass the capacity is left out whole.
    df.maxlength = 4;
    EXPECT_EQ(comn__escchar(src.data(), &sf, d.data(), &df, &n, set, '\''), CS_TRUNCATED);
    EXPECT_EQ(d.stored(n), "a"s);
    df.maxlength = 5;
    EXPECT_EQ(comn__escchar(src.data(), &sf, d.data(), &df, &n, set, '\''), CS_TRUNCATED);
    EXPECT_EQ(d.stored(n), "a\x81\x66\x81\x66"s);
    // Another escape byte.
    df.maxlength = 16;
    std::string pct = "5%";
    sf.maxlength = 2;
    EXPECT_EQ(comn__escchar(pct.data(), &sf, d.data(), &df, &n, nullptr, '%'), CS_SUCCEED);
    EXPECT_EQ(d.stored(n), "5%%"s);
}

// ---- multi-byte cuts ------------------------------------------------------------------------

// "a" DB DB "b" DB: each cut must keep only whole characters.
const std::string kMixed = "a\x82\x60\x81\x40" "b\xE0\x41"s;
// The longest whole-character prefix of kMixed within n bytes.
CS_INT whole_prefix(CS_INT n)
{
    const CS_INT bounds[] = {0, 1, 3, 5, 6, 8};
    CS_INT best = 0;
    for (CS_INT b : bounds)
        if (b <= n)
            best = b;
    return best;
}

TEST(CharToChar, DoubleByteCutAtEveryPosition)
{
    Context ctx;
    DoubleByte set;
    SetOnContext on(ctx, set);
    const CS_INT len = static_cast<CS_INT>(kMixed.size());
    for (CS_INT cap = 0; cap <= len + 1; ++cap) {
        for (CS_INT format : {0, 1, 2, 4, 5}) {
            const CS_INT keep = whole_prefix(cap);
            TextCase c{kMixed, cap, format, CS_SUCCEED, kMixed.substr(0, static_cast<size_t>(keep)), keep};
            const bool cut = cap < len;
            const bool nul = format & CS_FMT_NULLTERM;
            if (nul && keep == cap) {
                // An exact fit: the terminator replaces the last byte.
                c.code = CS_TRUNCATED;
                if (cap > 0)
                    c.stored[static_cast<size_t>(cap - 1)] = '\0';
            } else {
                c.code = cut ? CS_TRUNCATED : CS_SUCCEED;
                if (format & (CS_FMT_PADNULL | CS_FMT_PADBLANK)) {
                    c.stored.resize(static_cast<size_t>(cap), (format & CS_FMT_PADNULL) ? '\0' : ' ');
                    if (nul)
                        c.stored.back() = '\0';
                    c.destlen = cap;
                } else if (nul) {
                    c.stored.push_back('\0');
                    c.destlen = keep + 1;
                }
            }
            run_chartochar(c, ctx);
        }
    }
    ctx->ctxlocale = nullptr;
}

TEST(TruncateChars, WholeCharactersWithinTheLimit)
{
    DoubleByte set;
    kes::test::FourByte four;
    std::string s = kMixed;
    auto *p = reinterpret_cast<CS_BYTE *>(s.data());
    const CS_INT len = static_cast<CS_INT>(s.size());
    for (CS_INT max = 0; max <= len + 2; ++max) {
        EXPECT_EQ(comnb_truncate_chars(set, p, len, max), max > len ? len : whole_prefix(max)) << max;
        EXPECT_EQ(comnb_truncate_chars(nullptr, p, len, max), std::min(max, len)) << max;
    }
    // Below the limit the length stands, even with a partial last character.
    EXPECT_EQ(comnb_truncate_chars(set, p, 2, 5), 2);
    EXPECT_EQ(comnb_truncate_chars(set, p, 2, 2), 1);
    std::string g = "\x81\x30\x81\x30\x81\x40z"s;
    auto *q = reinterpret_cast<CS_BYTE *>(g.data());
    const CS_INT want[] = {0, 0, 0, 0, 4, 4, 6, 7};
    for (CS_INT max = 0; max <= 7; ++max)
        EXPECT_EQ(comnb_truncate_chars(four, q, 7, max), want[max]) << max;
    // The byte after the cut is not looked at beyond the given length.
    EXPECT_EQ(comnb_truncate_chars(four, q, 1, 1), 0);
}

// ---- CS_VARCHAR --------------------------------------------------------------------------------

CS_VARCHAR varchar(const std::string &s)
{
    CS_VARCHAR v;
    std::memset(&v, '~', sizeof v);
    v.len = static_cast<CS_SMALLINT>(s.size());
    std::memcpy(v.str, s.data(), std::min<size_t>(s.size(), sizeof v.str));
    return v;
}

TEST(CharToVarchar, CapacityIsAlways256)
{
    Context ctx;
    struct Case {
        CS_INT srclen;
        CS_INT destmax;
        CS_INT format;
        CS_RETCODE code;
        CS_INT len;
    } cases[] = {
        {0, 10, 0, CS_SUCCEED, 0},       {1, 10, 0, CS_SUCCEED, 1},     {5, 1, 1, CS_SUCCEED, 5},
        {255, 0, 6, CS_SUCCEED, 255},    {256, 0, 0, CS_SUCCEED, 256}, {257, 300, 0, CS_TRUNCATED, 256},
        {300, 258, 1, CS_TRUNCATED, 256}, {-1, 10, 0, CS_SUCCEED, 256},
    };
    std::string src(400, 'q');
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<char>('a' + i % 26);
    for (const Case &c : cases) {
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, c.srclen);
        CS_DATAFMT df = fmt(CS_VARCHAR_TYPE, c.destmax, c.format);
        CS_VARCHAR v = varchar("");
        CS_INT destlen = -1;
        SCOPED_TRACE(testing::Message() << "srclen " << c.srclen);
        EXPECT_EQ(code_name(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen)), code_name(c.code));
        EXPECT_EQ(destlen, 258);
        EXPECT_EQ(v.len, c.len);
        EXPECT_EQ(std::string(v.str, static_cast<size_t>(v.len)), src.substr(0, static_cast<size_t>(c.len)));
        if (c.len < 256) {
            EXPECT_EQ(v.str[c.len], '~') << "no terminator or fill";
        }
    }
}

TEST(CharToVarchar, DoubleByteCutAt256)
{
    Context ctx;
    DoubleByte set;
    SetOnContext on(ctx, set);
    // "a" then double-byte characters: the one at 255..256 does not fit.
    std::string src = "a";
    while (src.size() < 300)
        src += "\x82\x60";
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size()));
    CS_DATAFMT df = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR v = varchar("");
    CS_INT destlen;
    EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen), CS_TRUNCATED);
    EXPECT_EQ(v.len, 255);
    EXPECT_EQ(destlen, 258);
    // 255 bytes that end on a character boundary are kept whole.
    sf.maxlength = 255;
    EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src.data(), &df, &v, &destlen), CS_SUCCEED);
    EXPECT_EQ(v.len, 255);
    ctx->ctxlocale = nullptr;
}

TEST(VarcharToChar, UsesLenAndLeavesTheExactFitToTheFill)
{
    Context ctx;
    const struct {
        std::string value;
        CS_INT maxlength, format;
        CS_RETCODE code;
        std::string stored;
        CS_INT destlen;
    } cases[] = {
        {"abcde", 5, 1, CS_TRUNCATED, "abcd\0"s, 5},
        {"abcde", 6, 1, CS_SUCCEED, "abcde\0"s, 6},
        {"abcde", 6, 4, CS_SUCCEED, "abcde "s, 6},
        {"abcde", 6, 6, CS_EFORMAT, "abcde"s, 5},
        {"abcde", 3, 0, CS_TRUNCATED, "abc"s, 3},
        {"abcde", 0, 1, CS_TRUNCATED, ""s, 0},
        {"it's", 8, CS_FMT_SAFESTR, CS_SUCCEED, "it's"s, 4}, // no quote doubling from a varchar
        {std::string(256, 'v'), 300, 0, CS_SUCCEED, std::string(256, 'v'), 256},
    };
    for (const auto &c : cases) {
        CS_VARCHAR v = varchar(c.value);
        CS_DATAFMT sf = fmt(CS_VARCHAR_TYPE, 258);
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        Dest d(c.maxlength);
        CS_INT destlen;
        SCOPED_TRACE(testing::Message() << c.value.substr(0, 8) << " maxlength " << c.maxlength << " format "
                                        << c.format);
        EXPECT_EQ(code_name(comn_varchartochar(ctx.get(), &sf, &v, &df, d.data(), &destlen)), code_name(c.code));
        EXPECT_EQ(destlen, c.destlen);
        EXPECT_EQ(d.stored(destlen), c.stored);
        EXPECT_TRUE(d.guard_intact());
    }
}

TEST(VarcharToVarchar, LenIsUnsignedAndCapped)
{
    Context ctx;
    CS_DATAFMT sf = fmt(CS_VARCHAR_TYPE, 258);
    CS_DATAFMT df = fmt(CS_VARCHAR_TYPE, 1, CS_FMT_NULLTERM);
    for (CS_SMALLINT len : {CS_SMALLINT{1}, CS_SMALLINT{200}, CS_SMALLINT{256}, CS_SMALLINT{300}, CS_SMALLINT{-1}}) {
        CS_VARCHAR src = varchar(std::string(256, 'k'));
        src.len = len;
        CS_VARCHAR dst = varchar("");
        CS_INT destlen;
        EXPECT_EQ(comn_varchartovarchar(ctx.get(), &sf, &src, &df, &dst, &destlen), CS_SUCCEED) << len;
        EXPECT_EQ(destlen, 258);
        EXPECT_EQ(dst.len, std::min<CS_INT>(static_cast<CS_USMALLINT>(len), 256)) << len;
    }
}

// ---- locales: translation is asked for only when the sets differ --------------------------

TEST(CharToChar, SameDescriptionInTwoCachesIsCopied)
{
    Context ctx;
    DoubleByte set;
    CsCharDesc desc{};
    desc.char_attrib = set;
    CsLocCache c1{}, c2{};
    c1.locchardesc = c2.locchardesc = &desc;
    CS_LOCALE l1{}, l2{};
    l1.ctypeptr = &c1;
    l2.ctypeptr = &c2;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3);
    CS_DATAFMT df = fmt(CS_CHAR_TYPE, 2);
    sf.locale = &l1;
    df.locale = &l2;
    char src[] = "a\x82\x60";
    Dest d(2);
    CS_INT destlen;
    // Copied in the common set: the double-byte character is left out.
    EXPECT_EQ(comn_chartochar(ctx.get(), &sf, src, &df, d.data(), &destlen), CS_TRUNCATED);
    EXPECT_EQ(d.stored(destlen), "a"s);
    // The varchar forms look at the caches alone, and so must translate.
    if (comn_charset_convert == nullptr) {
        CS_VARCHAR v = varchar("a\x82\x60");
        CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258);
        vf.locale = &l1;
        EXPECT_EQ(comn_varchartochar(ctx.get(), &vf, &v, &df, d.data(), &destlen), CS_ENOXLT);
        CS_DATAFMT vdf = fmt(CS_VARCHAR_TYPE, 258);
        vdf.locale = &l2;
        EXPECT_EQ(comn_chartovarchar(ctx.get(), &sf, src, &vdf, &v, &destlen), CS_ENOXLT);
    }
}

// ---- server layer ---------------------------------------------------------------------------

struct ServerCase {
    std::string src;
    CS_INT maxlen;
    CS_INT format;
    CS_RETCODE code;
    std::string stored; // dest->len bytes
};

void run_server(CS_RETCODE (*fn)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *), const ServerCase &c,
                CHAR_ATTRIB *attrib = nullptr)
{
    CAST_CONTEXT cc{};
    cc.format = c.format;
    cc.char_attrib = attrib;
    std::string s = c.src;
    Dest d(c.maxlen);
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(s.data()), static_cast<CS_INT>(s.size()), 0);
    __CONSTANT dst = constant(reinterpret_cast<CS_BYTE *>(d.data()), -1, c.maxlen);
    SCOPED_TRACE(testing::Message() << '"' << kes::test::hex(s.data(), s.size()) << "\" maxlen " << c.maxlen
                                    << " format " << c.format);
    EXPECT_EQ(code_name(fn(&cc, &src, &dst)), code_name(c.code));
    EXPECT_EQ(kes::test::hex(d.data(), static_cast<size_t>(std::max(dst.len, 0))),
              kes::test::hex(c.stored.data(), c.stored.size()));
    EXPECT_TRUE(d.guard_intact());
}

TEST(ServerCharToChar, FillsAndRightJustifies)
{
    const ServerCase cases[] = {
        {"abc", 5, 0, CS_SUCCEED, "abc"s},
        {"abc", 3, 0, CS_SUCCEED, "abc"s},
        {"abc", 2, 0, CS_TRUNCATED, "ab"s},
        {"abc", 2, 1, CS_TRUNCATED, "ab"s}, // cut: no fill, no terminator
        {"abc", 0, 0, CS_TRUNCATED, ""s},
        {"abc", 3, 1, CS_TRUNCATED, "abc"s}, // exact fit: the server writes no terminator
        {"abc", 4, 1, CS_SUCCEED, "abc\0"s},
        {"abc", 5, 2, CS_SUCCEED, "abc\0\0"s},
        {"abc", 5, 4, CS_SUCCEED, "abc  "s},
        {"abc", 5, 5, CS_SUCCEED, "abc \0"s},
        {"abc", 5, 6, CS_EFORMAT, "abc"s},
        {"abc", 5, 12, CS_SUCCEED, "  abc"s}, // right-justified
        {"abc", 3, 12, CS_SUCCEED, "abc"s},
        {"abc", 5, 13, CS_EFORMAT, "abc"s},
        {"abc", 5, 8, CS_SUCCEED, "abc"s}, // justify without blanks changes nothing
        {"", 3, 12, CS_SUCCEED, "   "s},
    };
    for (const ServerCase &c : cases)
        run_server(comnb_chartochar, c);
    for (const ServerCase &c : cases)
        run_server(comnb_varchartochar, c);
}

TEST(ServerCharToVarchar, CopiesWithoutFill)
{
    for (auto fn : {comnb_chartovarchar, comnb_varchartovarchar}) {
        run_server(fn, {"abc", 5, 5, CS_SUCCEED, "abc"s});
        run_server(fn, {"abc", 3, 1, CS_SUCCEED, "abc"s});
        run_server(fn, {"abc", 2, 4, CS_TRUNCATED, "ab"s});
        run_server(fn, {"", 2, 4, CS_SUCCEED, ""s});
    }
}

TEST(ServerCharToChar, DoubleByteCutAtEveryPosition)
{
    DoubleByte set;
    for (CS_INT cap = 0; cap <= static_cast<CS_INT>(kMixed.size()); ++cap) {
        const CS_INT keep = whole_prefix(cap);
        const bool cut = keep < static_cast<CS_INT>(kMixed.size());
        run_server(comnb_chartochar, {kMixed, cap, 0, cut ? CS_TRUNCATED : CS_SUCCEED, kMixed.substr(0, keep)}, set);
        run_server(comnb_chartovarchar, {kMixed, cap, 0, cut ? CS_TRUNCATED : CS_SUCCEED, kMixed.substr(0, keep)},
                   set);
    }
}

TEST(ServerBytes, AnyToFixedAndAnyToVar)
{
    const ServerCase fixed[] = {
        {"\x01\x02"s, 4, 0, CS_SUCCEED, "\x01\x02"s},
        {"\x01\x02"s, 4, 2, CS_SUCCEED, "\x01\x02\0\0"s},
        {"\x01\x02"s, 4, 4, CS_SUCCEED, "\x01\x02  "s}, // the server can blank-fill bytes
        {"\x01\x02"s, 4, 6, CS_SUCCEED, "\x01\x02\0\0"s},
        {"\x01\x02\x03"s, 2, 2, CS_TRUNCATED, "\x01\x02"s},
        {"\x01\x02"s, 2, 2, CS_SUCCEED, "\x01\x02"s},
        {""s, 2, 4, CS_SUCCEED, "  "s},
    };
    for (const ServerCase &c : fixed)
        run_server(comnb_anytofixed, c);
    run_server(comnb_anytovar, {"\x01\x02"s, 4, 4, CS_SUCCEED, "\x01\x02"s});
    run_server(comnb_anytovar, {"\x01\x02\x03"s, 2, 4, CS_TRUNCATED, "\x01\x02"s});
}

TEST(ServerBytes, FloatColumnsRefuseBytesThatAreNoNumber)
{
    struct Case {
        CS_BYTE type;
        double value;
        bool single;
        CS_RETCODE code;
    } cases[] = {
        {59, std::numeric_limits<double>::quiet_NaN(), true, CS_EDOMAIN},
        {59, std::numeric_limits<double>::infinity(), true, CS_EDOMAIN},
        {59, 1.5, true, CS_SUCCEED},
        {62, -std::numeric_limits<double>::infinity(), false, CS_EDOMAIN},
        {62, std::numeric_limits<double>::quiet_NaN(), false, CS_EDOMAIN},
        {62, 1e300, false, CS_SUCCEED},
        {61, std::numeric_limits<double>::quiet_NaN(), false, CS_SUCCEED}, // not a float column
    };
    for (const Case &c : cases) {
        CS_BYTE in[8], out[8];
        const size_t n = c.single ? 4 : 8;
        if (c.single) {
            const float f = static_cast<float>(c.value);
            std::memcpy(in, &f, 4);
        } else {
            std::memcpy(in, &c.value, 8);
        }
        CAST_CONTEXT cc{};
        __CONSTANT src = constant(in, static_cast<CS_INT>(n), 0);
        __CONSTANT dst = constant(out, 0, static_cast<CS_INT>(n));
        dst.type = c.type;
        EXPECT_EQ(code_name(comnb_anytofixed(&cc, &src, &dst)), code_name(c.code)) << int(c.type) << " " << c.value;
        EXPECT_EQ(std::memcmp(in, out, n), 0) << "the value stays in the destination";
        EXPECT_EQ(dst.len, static_cast<CS_INT>(n));
    }
}

// ---- name case ----------------------------------------------------------------------------------

TEST(SanitizeName, LowersRaisesOrLeaves)
{
    const struct {
        CS_INT sanitize;
        const char *in;
        CS_INT namesize;
        const char *out;
    } cases[] = {
        {1, "MyApp-2.EXE", 32, "myapp-2.exe"}, {2, "MyApp-2.exe", 32, "MYAPP-2.EXE"},
        {0, "MyApp", 32, "MyApp"},             {3, "MyApp", 32, "MyApp"},
        {1, "ABCDEF", 2, "abcDEF"},            // namesize bytes plus one
        {1, "AB\xC9" "D", 32, "ab\xC9" "d"},   // bytes outside ASCII stay
    };
    for (const auto &c : cases) {
        char buf[64];
        std::strcpy(buf, c.in);
        comn__sanitize_name(c.sanitize, buf, c.namesize);
        EXPECT_STREQ(buf, c.out) << c.in << " " << c.sanitize;
    }
}

// ---- assertions ---------------------------------------------------------------------------------

TEST(StringConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    char src[4] = "abc", dst[8];
    CS_INT destlen;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 3);
    CS_DATAFMT df = fmt(CS_CHAR_TYPE, 8);
    CS_DATAFMT intf = fmt(CS_INT_TYPE, 4);
    EXPECT_NULL_POINTER(comn_chartochar(ctx.get(), &sf, src, &df, dst, nullptr));
    EXPECT_NULL_POINTER(comn_chartovarchar(ctx.get(), nullptr, src, &df, dst, &destlen));
    EXPECT_BOMB(comn_chartochar(ctx.get(), &intf, src, &df, dst, &destlen));
    EXPECT_BOMB(comn_chartochar(ctx.get(), &sf, src, &intf, dst, &destlen));
    EXPECT_BOMB(comn_chartovarchar(ctx.get(), &sf, src, &df, dst, &destlen)); // destination not varchar
    CS_VARCHAR empty = varchar("");
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258);
    EXPECT_BOMB(comn_varchartochar(ctx.get(), &vf, &empty, &df, dst, &destlen)); // len 0
    // The server never translates here.
    int l1, l2;
    CAST_CONTEXT cc{};
    __CONSTANT s = constant(reinterpret_cast<CS_BYTE *>(src), 3, 0);
    __CONSTANT d = constant(reinterpret_cast<CS_BYTE *>(dst), 0, 8);
    s.locale = &l1;
    d.locale = &l2;
    EXPECT_BOMB(comnb_chartochar(&cc, &s, &d));
}

} // namespace
