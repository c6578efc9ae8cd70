// Text to integers and bit: limits and one past, blanks and signs in every
// position, the narrow views' low bits, CS_CHAR and CS_VARCHAR sources and the
// server layer, multi-byte text, and a differential run against from_chars.
#include <charconv>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "conv/char_scan.h"
#include "support/context.h"

namespace {

using namespace std::string_view_literals;
using kes::test::code_name;
using kes::test::fmt;

CS_CONTEXT *ctx() { static kes::test::Context c; return c.get(); }

// A destination and its members; a null member is not called.  A few server
// members are the CS_VARCHAR twins, which read the same text.
struct Dest {
    CS_CONV_FUNC chr, vchr;
    CS_RETCODE (*srv)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);
    CS_INT type, size;
    bool is_signed;
};
const Dest I1{comn_chartoi1, comn_varchartoi1, comnb_chartoi1, CS_TINYINT_TYPE, 1, false};
const Dest I2{comn_chartoi2, comn_varchartoi2, comnb_chartoi2, CS_SMALLINT_TYPE, 2, true};
const Dest I4{comn_chartoi4, comn_varchartoi4, comnb_chartoi4, CS_INT_TYPE, 4, true};
const Dest I8{comn_chartoi8, comn_varchartoi8, comnb_chartoi8, CS_BIGINT_TYPE, 8, true};
const Dest LONG{comn_chartoi8, comn_varchartoi8, comnb_varchartoi8, CS_LONG_TYPE, 8, true};
const Dest UI2{comn_chartoui2, comn_varchartoui2, comnb_chartoui2, CS_USMALLINT_TYPE, 2, false};
const Dest UI4{comn_chartoui4, comn_varchartoui4, comnb_varchartoui4, CS_UINT_TYPE, 4, false};
const Dest UI8{comn_chartoui8, comn_varchartoui8, comnb_chartoui8, CS_UBIGINT_TYPE, 8, false};
const Dest BIT{comn_chartobit, comn_varchartobit, nullptr, CS_BIT_TYPE, 1, false};
const Dest SBIT{nullptr, nullptr, comnb_varchartobit, CS_BIT_TYPE, 1, false}; // rules of its own

std::string value_of(const Dest &d, const CS_BYTE *b)
{
    uint64_t u = 0;
    std::memcpy(&u, b, static_cast<size_t>(d.size));
    const int shift = 64 - 8 * d.size;
    return d.is_signed ? std::to_string(static_cast<int64_t>(u << shift) >> shift) : std::to_string(u);
}

// Runs the text through a CS_CHAR and a CS_VARCHAR source and the server
// layer into bytes of 7, so that an untouched destination shows; past len the
// CS_VARCHAR holds bytes that would be a syntax error.  All three must give
// rc and the value (unless it is empty); the context layer's length is 0 on a
// syntax error, the server's always the type's size.
void check(const Dest &d, std::string_view text, CS_RETCODE rc, std::string_view value)
{
    std::string chars(text);
    CS_BYTE dest[8];
    for (bool varchar : {false, true}) {
        if (text.empty() || d.chr == nullptr) // empty text reaches only the server layer
            break;
        CS_VARCHAR vc;
        std::memset(&vc, 'Z', sizeof vc);
        vc.len = static_cast<CS_SMALLINT>(text.size());
        std::memcpy(vc.str, text.data(), text.size());
        CS_DATAFMT sf = varchar ? fmt(CS_VARCHAR_TYPE, sizeof vc) : fmt(CS_CHAR_TYPE, static_cast<CS_INT>(text.size()));
        CS_DATAFMT df = fmt(d.type);
        std::memset(dest, 7, sizeof dest);
        CS_INT destlen = -7;
        void *src = varchar ? static_cast<void *>(&vc) : chars.data();
        EXPECT_EQ(code_name((varchar ? d.vchr : d.chr)(ctx(), &sf, src, &df, dest, &destlen)), code_name(rc)) << varchar;
        EXPECT_TRUE(value.empty() || value_of(d, dest) == value) << value_of(d, dest) << " varchar " << varchar;
        EXPECT_EQ(destlen, rc == CS_ESYNTAX ? 0 : d.size) << "varchar " << varchar;
    }
    if (d.srv == nullptr)
        return;
    CAST_CONTEXT cc{};
    std::memset(dest, 7, sizeof dest);
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(chars.data()), static_cast<CS_INT>(text.size()), 0);
    __CONSTANT out = kes::test::constant(dest, -1, d.size);
    EXPECT_EQ(code_name(d.srv(&cc, &src, &out)), code_name(rc)) << "server";
    EXPECT_TRUE(value.empty() || value_of(d, dest) == value) << value_of(d, dest) << " server";
    EXPECT_EQ(out.len, d.size) << "server";
}

TEST(ScanInt, LimitsSignsBlanksAndLowBitsInBothLayers)
{
    struct Case { const Dest &d; std::string_view text; CS_RETCODE rc; std::string_view value; };
    const Case cases[] = {
        {I4, "0", CS_SUCCEED, "0"}, {I4, "   ", CS_SUCCEED, "0"}, {I4, "+", CS_SUCCEED, "0"}, {I4, "-0", CS_SUCCEED, "0"},
        {I4, " + 12 ", CS_SUCCEED, "12"}, {I4, "- 12", CS_SUCCEED, "-12"}, {I4, "  -  ", CS_SUCCEED, "0"},
        {I4, "000000000000000000000000042", CS_SUCCEED, "42"}, {I4, "--1", CS_ESYNTAX, "0"}, {I4, "- - 1", CS_ESYNTAX, "0"},
        {I4, "-a1", CS_ESYNTAX, "0"}, {I4, "12a", CS_ESYNTAX, "12"}, {I4, "-12a", CS_ESYNTAX, "-12"},
        {I4, "1 2", CS_ESYNTAX, "1"}, {I4, "12 +", CS_ESYNTAX, "12"}, {I4, "\t1", CS_ESYNTAX, "0"},
        {I4, "7\0 "sv, CS_ESYNTAX, "7"}, {I4, "-2147483649", CS_EOVERFLOW, "-2147483640"},
        // 32 bits keep the value read so far: 10v past the second bound, v past the first.
        {I4, "2147483648", CS_EOVERFLOW, "2147483640"}, {I4, "2147483650", CS_EOVERFLOW, "214748365"},
        {I4, "21474836470", CS_EOVERFLOW, "2147483647"}, {I4, "-21474836480", CS_EOVERFLOW, "-2147483648"},
        {I4, "99999999999x", CS_EOVERFLOW, "999999999"},
        // The limits of the wide readers are the differential runs' below; the unsigned refuse any minus.
        {LONG, "-5", CS_SUCCEED, "-5"}, {UI4, "+7", CS_SUCCEED, "7"}, {UI4, "-0", CS_ESYNTAX, "0"},
        {UI4, " + - 1", CS_ESYNTAX, "0"}, {UI8, "++1", CS_ESYNTAX, "0"}, {UI8, "-1", CS_ESYNTAX, "0"},
        // The narrow views store low bits after a read value, 0 after anything else.
        {I1, "255", CS_SUCCEED, "255"}, {I1, "256", CS_EOVERFLOW, "0"}, {I1, "300", CS_EOVERFLOW, "44"},
        {I1, "-1", CS_EOVERFLOW, "255"}, {I1, "99999999999", CS_EOVERFLOW, "0"}, {I1, "12a", CS_ESYNTAX, "0"},
        {I2, "32767", CS_SUCCEED, "32767"}, {I2, "-32768", CS_SUCCEED, "-32768"}, {I2, "32768", CS_EOVERFLOW, "-32768"},
        {I2, "-32769", CS_EOVERFLOW, "32767"}, {I2, "2147483648", CS_EOVERFLOW, "0"}, {UI2, "65535", CS_SUCCEED, "65535"},
        {UI2, "65536", CS_EOVERFLOW, "0"}, {UI2, "70000", CS_EOVERFLOW, "4464"}, {UI2, "-0", CS_ESYNTAX, "0"},
        // Bit: any value but 0 is 1; overflow and syntax leave the destination alone.
        {BIT, "2", CS_SUCCEED, "1"}, {BIT, "-5", CS_SUCCEED, "1"}, {BIT, " -0 ", CS_SUCCEED, "0"},
        {BIT, "99999999999", CS_EOVERFLOW, "7"}, {BIT, "1a", CS_ESYNTAX, "7"},
        // The server's bit takes signs among blanks, one at most, and digits of any length.
        {SBIT, "+ 1", CS_SUCCEED, "1"}, {SBIT, " - 0 ", CS_SUCCEED, "0"}, {SBIT, "-+1", CS_ESYNTAX, "7"},
        {SBIT, "-000000000000000000000009", CS_SUCCEED, "1"}, {SBIT, "1 1", CS_ESYNTAX, "7"},
        {SBIT, "1\0"sv, CS_ESYNTAX, "7"}, {SBIT, "99999999999999999999999999", CS_SUCCEED, "1"},
        {I4, "", CS_SUCCEED, "0"}, {I1, "", CS_SUCCEED, "0"}, {UI8, "", CS_SUCCEED, "0"}, {SBIT, "", CS_SUCCEED, "0"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE("type " + std::to_string(c.d.type) + " text \"" + std::string(c.text) + "\"");
        check(c.d, c.text, c.rc, c.value);
    }
}

// A double-byte set (lead bytes 0x81..0xFE): 0xA3 0xB0..0xB9 are full-width
// digits, 0xA1 0xA1 a full-width blank, 0xA1 0xDD a full-width minus, 0xA3 0x30
// a blank.  In a set with four-byte characters, a pair whose second byte is
// an ASCII digit opens a four-byte character.
struct DoubleByteSet {
    CS_BYTE width[256];
    CS_NORM_MAP norm[3]{};
    CS_ATTRIB attr{};
    explicit DoubleByteSet(int maxcharlen)
    {
        for (int b = 0; b < 256; b++) {
            width[b] = b >= 0x81 && b <= 0xFE ? 2 : 1;
            norm[0].norm[b] = b < 0x80 ? static_cast<CS_BYTE>(b) : 0;
            norm[1].norm[b] = b >= 0xB0 && b <= 0xB9 ? static_cast<CS_BYTE>(b - 0x80) : b == 0x30 ? ' ' : 0;
        }
        width[255] |= maxcharlen == 4 ? 0xF0 : 0;
        norm[0].norm[0xA3] = 1;
        norm[0].norm[0xA1] = 2;
        norm[2].norm[0xA1] = ' ';
        norm[2].norm[0xDD] = '-';
        attr.cs_maxcharlen = maxcharlen;
        attr.cs_nnorm = 3;
        attr.cs_width_map = width;
        attr.cs_norm_map = norm;
    }
};

TEST(ScanWorkers, MultiByteTextIsReadByCharacterAndNormalisedValue)
{
    DoubleByteSet one(1), two(2), four(4);
    one.norm[0].norm['x'] = '7'; // a single-byte set is read as bytes, its map unused
    const std::string fw1 = "\xA3\xB1", fw2 = "\xA3\xB2", blank = "\xA1\xA1", minus = "\xA1\xDD";
    struct Case { const DoubleByteSet *set; std::string text; int result; CS_INT value; };
    const Case cases[] = {
        {&two, fw1 + fw2, COM_SCAN_VALUE, 12}, {&two, blank + minus + blank + fw1 + "2" + blank, COM_SCAN_VALUE, -12},
        {&two, fw1 + blank + fw2, COM_SCAN_SYNTAX, 1}, {&two, minus + "-1", COM_SCAN_SYNTAX, 0},
        // The second byte of a pair is never an ASCII digit; a cut lead byte has no value.
        {&two, "1\x81\x32", COM_SCAN_SYNTAX, 1}, {&two, "\x81\x35", COM_SCAN_SYNTAX, 0},
        {&two, "12\xA3", COM_SCAN_SYNTAX, 12}, {&two, "\xA3\x30" "12", COM_SCAN_VALUE, 12},
        {&four, "\xA3\x30" "12", COM_SCAN_VALUE, 0}, {&two, "12\xA3\x30", COM_SCAN_VALUE, 12},
        {&four, "12\xA3\x30", COM_SCAN_SYNTAX, 12}, {&one, "x", COM_SCAN_SYNTAX, 0},
        {nullptr, "12", COM_SCAN_EMPTY, 0}, // read with length -1
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(kes::test::hex(c.text.data(), c.text.size()));
        std::string text = c.text;
        const int len = c.set != nullptr ? static_cast<int>(text.size()) : -1;
        CS_INT v = -99;
        EXPECT_EQ(com__chtoi4_mb(text.data(), len, &v, c.set != nullptr ? const_cast<CS_ATTRIB *>(&c.set->attr) : nullptr),
                  c.result);
        EXPECT_EQ(v, c.value);
    }
}

// Decimal text near the type's limits as often as anywhere else, with random
// signs, leading zeros and lengths.
template <class T> std::string random_decimal(std::mt19937_64 &rng)
{
    using L = std::numeric_limits<T>;
    std::string s;
    switch (rng() % 4) {
    case 0: s = std::to_string(static_cast<T>(rng())); break;
    case 1: // the limit with its last digit replaced: either side of it
        s = std::to_string(rng() & 1 ? L::max() : L::min());
        s.back() = static_cast<char>('0' + rng() % 10);
        break;
    case 2:
        for (int n = 1 + static_cast<int>(rng() % 25); n > 0; n--)
            s += static_cast<char>('0' + rng() % 10);
        break;
    default: s = std::to_string(rng() % 1000); break;
    }
    if (s[0] == '-')
        return rng() % 2 ? s.substr(1) : s;
    const unsigned sign = static_cast<unsigned>(rng() % 3);
    return sign == 0 ? s : (sign == 1 ? "-" : "+") + s;
}

template <class T> void differential(const Dest &d, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    for (int i = 0; i < 100000; i++) {
        const std::string text = random_decimal<T>(rng);
        const std::string_view oracle = text[0] == '+' ? std::string_view(text).substr(1) : std::string_view(text);
        T expected{};
        const auto [end, ec] = std::from_chars(oracle.data(), oracle.data() + oracle.size(), expected);
        SCOPED_TRACE(text);
        using L = std::numeric_limits<T>;
        const std::string limit = std::to_string(text[0] == '-' ? L::min() : L::max());
        if (ec == std::errc::result_out_of_range) // the 32-bit reader keeps a partial value, the others saturate
            check(d, text, CS_EOVERFLOW, std::is_same_v<T, CS_INT> ? "" : limit);
        else if (ec == std::errc() && end == oracle.data() + oracle.size())
            check(d, text, CS_SUCCEED, std::to_string(expected));
        else // both refuse a minus before an unsigned type; anything else is a disagreement
            check(d, text, std::is_unsigned_v<T> && text[0] == '-' ? CS_ESYNTAX : CS_FAIL, "0");
        ASSERT_FALSE(::testing::Test::HasFailure());
    }
}

TEST(ScanIntDifferential, Int32AgreesWithFromChars) { differential<CS_INT>(I4, 0x5eed0001); }
TEST(ScanIntDifferential, Int64AgreesWithFromChars) { differential<CS_BIGINT>(I8, 0x5eed0002); }
TEST(ScanIntDifferential, Uint32AgreesWithFromChars) { differential<CS_UINT>(UI4, 0x5eed0004); }
TEST(ScanIntDifferential, Uint64AgreesWithFromChars) { differential<CS_UBIGINT>(UI8, 0x5eed0003); }

TEST(ScanIntDeath, EmptyOrOversizedSourcesWrongTypesAndNullPointers)
{
    char text[] = "1";
    CS_INT value, destlen;
    CS_DATAFMT empty = fmt(CS_CHAR_TYPE, 0), one = fmt(CS_CHAR_TYPE, 1), i4 = fmt(CS_INT_TYPE);
    CS_DATAFMT i2 = fmt(CS_SMALLINT_TYPE), vf = fmt(CS_VARCHAR_TYPE, sizeof(CS_VARCHAR));
    CS_VARCHAR huge{};
    huge.len = CS_MAX_CHAR + 1;
    EXPECT_BOMB(comn_chartoi4(ctx(), &empty, text, &i4, &value, &destlen));
    EXPECT_BOMB(comn_chartoi4(ctx(), &one, text, &i2, &value, &destlen));
    EXPECT_BOMB(comn_varchartoi4(ctx(), &one, &huge, &i4, &value, &destlen));
    EXPECT_BOMB(comn_varchartoi4(ctx(), &vf, &huge, &i4, &value, &destlen));
    EXPECT_NULL_POINTER(comn_chartoi4(ctx(), &one, text, &i4, &value, nullptr));
}

} // namespace
