// Text to integers and bit: the scanner's states, every type's limits and one
// past them, the narrow views' low bits, both layers' length fields, double-
// and four-byte character sets, and a differential run against from_chars.
#include <charconv>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "conv/char_scan.h"
#include "support/context.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using kes::test::Context;
using kes::test::code_name;

template <class T> struct Case {
    std::string_view text;
    CS_RETCODE rc;
    T value;
};

template <class T> struct Outcome {
    CS_RETCODE rc;
    CS_INT destlen;
    T value;
};

// One comn_ call with a destination that starts out as a recognisable pattern.
template <class T>
Outcome<T> comn(Context &ctx, CS_CONV_FUNC f, CS_INT desttype, std::string_view text, T initial = T{})
{
    std::string src(text);
    CS_DATAFMT sf = kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size()));
    CS_DATAFMT df = kes::test::fmt(desttype);
    T value = initial;
    CS_INT destlen = -7;
    CS_RETCODE rc = f(ctx.get(), &sf, src.data(), &df, &value, &destlen);
    return {rc, destlen, value};
}

template <class T> void run_table(CS_CONV_FUNC f, CS_INT desttype, std::initializer_list<Case<T>> cases)
{
    Context ctx;
    for (const Case<T> &c : cases) {
        SCOPED_TRACE("text \"" + std::string(c.text) + "\"");
        const Outcome<T> out = comn<T>(ctx, f, desttype, c.text);
        EXPECT_EQ(code_name(out.rc), code_name(c.rc));
        EXPECT_EQ(out.value, c.value);
        EXPECT_EQ(out.destlen, c.rc == CS_ESYNTAX ? 0 : static_cast<CS_INT>(sizeof(T)));
    }
}

TEST(ScanInt, BlanksSignsAndTheirPositions)
{
    run_table<CS_INT>(comn_chartoi4, CS_INT_TYPE,
                      {
                          {"0", CS_SUCCEED, 0},
                          {"123", CS_SUCCEED, 123},
                          {"   ", CS_SUCCEED, 0},
                          {" ", CS_SUCCEED, 0},
                          {"+", CS_SUCCEED, 0},
                          {"-", CS_SUCCEED, 0},
                          {"  -  ", CS_SUCCEED, 0},
                          {"  12", CS_SUCCEED, 12},
                          {"12  ", CS_SUCCEED, 12},
                          {"- 12", CS_SUCCEED, -12},
                          {" + 12 ", CS_SUCCEED, 12},
                          {"-0", CS_SUCCEED, 0},
                          {"000000000000000000000000042", CS_SUCCEED, 42},
                          {"--1", CS_ESYNTAX, 0},
                          {"+-1", CS_ESYNTAX, 0},
                          {"-+1", CS_ESYNTAX, 0},
                          {"- - 1", CS_ESYNTAX, 0},
                          {"12a", CS_ESYNTAX, 12},
                          {"-12a", CS_ESYNTAX, -12},
                          {"1 2", CS_ESYNTAX, 1},
                          {"12-", CS_ESYNTAX, 12},
                          {"12 +", CS_ESYNTAX, 12},
                          {"a", CS_ESYNTAX, 0},
                          {"-a1", CS_ESYNTAX, 0},
                          {"1.5", CS_ESYNTAX, 1},
                          {"0x10", CS_ESYNTAX, 0},
                          {"1e3", CS_ESYNTAX, 1},
                          // Only the blank is a blank: tabs and NULs are faults.
                          {"\t1", CS_ESYNTAX, 0},
                          {"1\t", CS_ESYNTAX, 1},
                          {"1\0"sv, CS_ESYNTAX, 1},
                          {"\0"sv, CS_ESYNTAX, 0},
                          {"7\0 "sv, CS_ESYNTAX, 7},
                      });
}

TEST(ScanInt, Int32LimitsKeepTheDigitsReadSoFar)
{
    run_table<CS_INT>(comn_chartoi4, CS_INT_TYPE,
                      {
                          {"2147483647", CS_SUCCEED, 2147483647},
                          {"-2147483648", CS_SUCCEED, -2147483647 - 1},
                          {"+2147483647", CS_SUCCEED, 2147483647},
                          {"2147483648", CS_EOVERFLOW, 2147483640},
                          {"2147483649", CS_EOVERFLOW, 2147483640},
                          {"-2147483649", CS_EOVERFLOW, -2147483640},
                          {"21474836470", CS_EOVERFLOW, 2147483647},
                          {"-21474836480", CS_EOVERFLOW, -2147483647 - 1},
                          {"3000000000", CS_EOVERFLOW, 300000000},
                          {"2147483650", CS_EOVERFLOW, 214748365},
                          {"99999999999x", CS_EOVERFLOW, 999999999},
                      });
}

TEST(ScanInt, SixtyFourBitAndUnsignedLimitsSaturate)
{
    constexpr CS_BIGINT kMin8 = std::numeric_limits<CS_BIGINT>::min();
    constexpr CS_BIGINT kMax8 = std::numeric_limits<CS_BIGINT>::max();
    run_table<CS_BIGINT>(comn_chartoi8, CS_BIGINT_TYPE,
                         {
                             {"9223372036854775807", CS_SUCCEED, kMax8},
                             {"-9223372036854775808", CS_SUCCEED, kMin8},
                             {"9223372036854775808", CS_EOVERFLOW, kMax8},
                             {"-9223372036854775809", CS_EOVERFLOW, kMin8},
                             {"92233720368547758070", CS_EOVERFLOW, kMax8},
                             {"-92233720368547758000", CS_EOVERFLOW, kMin8},
                             {"12a", CS_ESYNTAX, 12},
                         });
    run_table<CS_UINT>(comn_chartoui4, CS_UINT_TYPE,
                       {
                           {"4294967295", CS_SUCCEED, 4294967295u},
                           {"4294967296", CS_EOVERFLOW, 4294967295u},
                           {"42949672950", CS_EOVERFLOW, 4294967295u},
                           {"+7", CS_SUCCEED, 7},
                           {"-0", CS_ESYNTAX, 0},
                           {"-", CS_ESYNTAX, 0},
                           {" + - 1", CS_ESYNTAX, 0},
                           {"1-", CS_ESYNTAX, 1},
                       });
    run_table<CS_UBIGINT>(comn_chartoui8, CS_UBIGINT_TYPE,
                          {
                              {"18446744073709551615", CS_SUCCEED, 18446744073709551615ull},
                              {"18446744073709551616", CS_EOVERFLOW, 18446744073709551615ull},
                              {"184467440737095516150", CS_EOVERFLOW, 18446744073709551615ull},
                              {"-1", CS_ESYNTAX, 0},
                              {"++1", CS_ESYNTAX, 0},
                          });
}

TEST(ScanInt, NarrowViewsStoreLowBits)
{
    run_table<CS_BYTE>(comn_chartoi1, CS_TINYINT_TYPE,
                       {
                           {"255", CS_SUCCEED, 255},
                           {"0", CS_SUCCEED, 0},
                           {"256", CS_EOVERFLOW, 0},
                           {"300", CS_EOVERFLOW, 44},
                           {"-1", CS_EOVERFLOW, 255},
                           {"99999999999", CS_EOVERFLOW, 0},
                           {"12a", CS_ESYNTAX, 0},
                       });
    run_table<CS_SMALLINT>(comn_chartoi2, CS_SMALLINT_TYPE,
                           {
                               {"32767", CS_SUCCEED, 32767},
                               {"-32768", CS_SUCCEED, -32768},
                               {"32768", CS_EOVERFLOW, -32768},
                               {"-32769", CS_EOVERFLOW, 32767},
                               {"65536", CS_EOVERFLOW, 0},
                               {"2147483648", CS_EOVERFLOW, 0},
                               {"1 2", CS_ESYNTAX, 0},
                           });
    run_table<CS_USMALLINT>(comn_chartoui2, CS_USMALLINT_TYPE,
                            {
                                {"65535", CS_SUCCEED, 65535},
                                {"65536", CS_EOVERFLOW, 0},
                                {"70000", CS_EOVERFLOW, 4464},
                                {"+7", CS_SUCCEED, 7},
                                {"-0", CS_ESYNTAX, 0},
                                {"4294967296", CS_EOVERFLOW, 0},
                            });
}

TEST(ScanInt, BigintMemberServesTheLongCode)
{
    Context ctx;
    const Outcome<CS_BIGINT> out = comn<CS_BIGINT>(ctx, comn_chartoi8, CS_LONG_TYPE, "-5");
    EXPECT_EQ(out.rc, CS_SUCCEED);
    EXPECT_EQ(out.value, -5);
}

TEST(ScanInt, TextToBitIsAnyNonZeroValue)
{
    Context ctx;
    struct BitCase {
        std::string_view text;
        CS_RETCODE rc;
        CS_BIT value; // 7: the destination is left alone
        CS_INT destlen;
    };
    constexpr BitCase cases[] = {
        {"0", CS_SUCCEED, 0, 1},         {"1", CS_SUCCEED, 1, 1},          {"2", CS_SUCCEED, 1, 1},
        {"-5", CS_SUCCEED, 1, 1},        {"   ", CS_SUCCEED, 0, 1},        {" -0 ", CS_SUCCEED, 0, 1},
        {"99999999999", CS_EOVERFLOW, 7, 1}, {"1a", CS_ESYNTAX, 7, 0},     {"--1", CS_ESYNTAX, 7, 0},
    };
    for (const BitCase &c : cases) {
        SCOPED_TRACE(std::string(c.text));
        const Outcome<CS_BIT> out = comn<CS_BIT>(ctx, comn_chartobit, CS_BIT_TYPE, c.text, 7);
        EXPECT_EQ(code_name(out.rc), code_name(c.rc));
        EXPECT_EQ(out.value, c.value);
        EXPECT_EQ(out.destlen, c.destlen);
    }
}

// ---- the server layer ----------------------------------------------------------

TEST(ScanIntServer, LengthStaysAtTheTypeSizeAndEmptyTextIsZero)
{
    CAST_CONTEXT cc{};
    struct ServerCase {
        std::string_view text;
        CS_RETCODE rc;
        CS_INT value;
    };
    constexpr ServerCase cases[] = {
        {"", CS_SUCCEED, 0},           {" 42 ", CS_SUCCEED, 42}, {"12a", CS_ESYNTAX, 12},
        {"2147483648", CS_EOVERFLOW, 2147483640}, {"--1", CS_ESYNTAX, 0},
    };
    for (const ServerCase &c : cases) {
        SCOPED_TRACE(std::string(c.text));
        std::string text(c.text);
        CS_INT value = -1;
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), static_cast<CS_INT>(text.size()), 0);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&value), -1, 4);
        EXPECT_EQ(code_name(comnb_chartoi4(&cc, &src, &dest)), code_name(c.rc));
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(dest.len, 4);
    }
    CS_BYTE small = 9;
    std::string text = "300";
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), 3, 0);
    __CONSTANT dest = kes::test::constant(&small, 0, 1);
    EXPECT_EQ(comnb_chartoi1(&cc, &src, &dest), CS_EOVERFLOW);
    EXPECT_EQ(small, 44);
    EXPECT_EQ(dest.len, 1);
}

TEST(ScanIntServer, BitScanCountsSignsAndIgnoresLength)
{
    CAST_CONTEXT cc{};
    struct BitCase {
        std::string_view text;
        CS_RETCODE rc;
        CS_BIT value; // 7: unwritten
    };
    constexpr BitCase cases[] = {
        {"-+1", CS_ESYNTAX, 7},
        {"  000", CS_SUCCEED, 0},
        {"-000000000000000000000009", CS_SUCCEED, 1},
        {"+ 1", CS_SUCCEED, 1},
        {" - 0 ", CS_SUCCEED, 0},
        {"", CS_SUCCEED, 0},
        {"1 1", CS_ESYNTAX, 7},
        {"1a", CS_ESYNTAX, 7},
        {"1\0"sv, CS_ESYNTAX, 7},
        {"99999999999999999999999999999", CS_SUCCEED, 1},
    };
    for (const BitCase &c : cases) {
        SCOPED_TRACE(std::string(c.text));
        std::string text(c.text);
        CS_BIT bit = 7;
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), static_cast<CS_INT>(text.size()), 0);
        __CONSTANT dest = kes::test::constant(&bit, 0, 1);
        EXPECT_EQ(code_name(comnb_chartobit(&cc, &src, &dest)), code_name(c.rc));
        EXPECT_EQ(bit, c.value);
    }
}

// ---- the scanners directly: empty text and character sets -------------------------

TEST(ScanWorkers, NonPositiveLengthIsZeroWithResultZero)
{
    char text[] = "12";
    for (int len : {0, -1}) {
        CS_INT v4 = 9;
        CS_UBIGINT v8 = 9;
        CS_BYTE v1 = 9;
        EXPECT_EQ(com__chtoi4_mb(text, len, &v4, nullptr), COM_SCAN_EMPTY);
        EXPECT_EQ(com__chtoui8_mb(text, len, &v8, nullptr), COM_SCAN_EMPTY);
        EXPECT_EQ(com__chtoi1_mb(text, len, &v1, nullptr), COM_SCAN_EMPTY);
        EXPECT_EQ(v4, 0);
        EXPECT_EQ(v8, 0u);
        EXPECT_EQ(v1, 0);
    }
}

// A double-byte set: lead bytes 0x81..0xFE.  0xA3 0xB0..0xB9 are full-width
// digits, 0xA1 0xA1 a full-width blank, 0xA1 0xDD a full-width minus; other
// double-byte characters have no normal form.
struct DoubleByteSet {
    CS_BYTE width[256];
    CS_NORM_MAP norm[3];
    CS_ATTRIB attr{};

    explicit DoubleByteSet(bool four_byte = false)
    {
        for (int b = 0; b < 256; b++) {
            width[b] = b >= 0x81 && b <= 0xFE ? 2 : 1;
            norm[0].norm[b] = b < 0x80 ? static_cast<CS_BYTE>(b) : 0;
            norm[1].norm[b] = norm[2].norm[b] = 0;
        }
        if (four_byte)
            width[255] |= 0xF0;
        norm[0].norm[0xA3] = 1;
        for (int d = 0; d < 10; d++)
            norm[1].norm[0xB0 + d] = static_cast<CS_BYTE>('0' + d);
        norm[1].norm[0x30] = ' '; // only reachable as the second byte of a pair
        norm[0].norm[0xA1] = 2;
        norm[2].norm[0xA1] = ' ';
        norm[2].norm[0xDD] = '-';
        attr.cs_maxcharlen = four_byte ? 4 : 2;
        attr.cs_nnorm = 3;
        attr.cs_width_map = width;
        attr.cs_norm_map = norm;
    }
};

TEST(ScanWorkers, DoubleByteDigitsBlanksAndSignsCountAsTheirTwins)
{
    DoubleByteSet set;
    struct MbCase {
        std::string text;
        int result;
        CS_INT value;
    };
    const std::string fw1 = "\xA3\xB1", fw2 = "\xA3\xB2", blank = "\xA1\xA1", minus = "\xA1\xDD";
    const MbCase cases[] = {
        {fw1 + fw2, COM_SCAN_VALUE, 12},
        {blank + minus + blank + fw1 + "2" + blank, COM_SCAN_VALUE, -12},
        {fw1 + blank + fw2, COM_SCAN_SYNTAX, 1},
        // The second byte of a pair is never read as an ASCII digit.
        {"1\x81\x32", COM_SCAN_SYNTAX, 1},
        {"\x81\x35", COM_SCAN_SYNTAX, 0},
        // A lead byte cut by the end of the text is a character without a value.
        {"12\xA3", COM_SCAN_SYNTAX, 12},
        {minus + "-1", COM_SCAN_SYNTAX, 0},
    };
    for (const MbCase &c : cases) {
        SCOPED_TRACE(kes::test::hex(c.text.data(), c.text.size()));
        std::string text = c.text;
        CS_INT v = -99;
        EXPECT_EQ(com__chtoi4_mb(text.data(), static_cast<int>(text.size()), &v, &set.attr), c.result);
        EXPECT_EQ(v, c.value);
    }
}

TEST(ScanWorkers, FourByteSetsJoinAPairAndTheDigitsBehindIt)
{
    // "\xA3\x30" is a pair whose normal form is a blank; in a set with
    // four-byte characters the two digits behind it belong to the character.
    DoubleByteSet two(false), four(true);
    struct WidthCase {
        const CS_ATTRIB *attr;
        std::string text;
        int result;
        CS_INT value;
    };
    const WidthCase cases[] = {
        {&two.attr, "\xA3\x30" "12", COM_SCAN_VALUE, 12},
        {&four.attr, "\xA3\x30" "12", COM_SCAN_VALUE, 0},
        {&two.attr, "12\xA3\x30", COM_SCAN_VALUE, 12},
        {&four.attr, "12\xA3\x30", COM_SCAN_SYNTAX, 12}, // a four-byte character cut by the end
    };
    for (const WidthCase &c : cases) {
        std::string text = c.text;
        CS_INT v = -1;
        EXPECT_EQ(com__chtoi4_mb(text.data(), 4, &v, const_cast<CS_ATTRIB *>(c.attr)), c.result) << c.text;
        EXPECT_EQ(v, c.value) << c.text;
    }
}

TEST(ScanWorkers, SingleByteSetsScanBytesWithoutMaps)
{
    // A single-byte description with a map that would turn 'x' into '7' is
    // not consulted: ordinary text goes through the byte body.
    DoubleByteSet set;
    set.attr.cs_maxcharlen = 1;
    set.norm[0].norm['x'] = '7';
    char text[] = "x";
    CS_INT v = 0;
    EXPECT_EQ(com__chtoi4_mb(text, 1, &v, &set.attr), COM_SCAN_SYNTAX);
}

// ---- differential run against std::from_chars ------------------------------------

// Digits near the type's limits as often as anywhere else.
template <class T> std::string random_decimal(std::mt19937_64 &rng)
{
    std::string digits;
    switch (rng() % 4) {
    case 0: { // anywhere in range, full width
        const T v = static_cast<T>(rng());
        digits = std::to_string(v);
        break;
    }
    case 1: { // near the top or bottom of the range
        using L = std::numeric_limits<T>;
        const int delta = static_cast<int>(rng() % 21) - 10;
        __int128 base = (rng() & 1) ? static_cast<__int128>(L::max()) : static_cast<__int128>(L::min());
        __int128 v = base + delta;
        const bool negative = v < 0;
        unsigned __int128 mag = negative ? static_cast<unsigned __int128>(-v) : static_cast<unsigned __int128>(v);
        do {
            digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(mag % 10)));
            mag /= 10;
        } while (mag != 0);
        if (negative)
            digits.insert(digits.begin(), '-');
        break;
    }
    case 2: { // random digit strings of any length, leading zeros included
        const int n = 1 + static_cast<int>(rng() % 25);
        for (int i = 0; i < n; i++)
            digits += static_cast<char>('0' + rng() % 10);
        break;
    }
    default:
        digits = std::to_string(rng() % 1000);
        break;
    }
    if (digits[0] != '-') {
        const unsigned sign = static_cast<unsigned>(rng() % 3);
        if (sign == 1)
            digits.insert(digits.begin(), '-');
        else if (sign == 2)
            digits.insert(digits.begin(), '+');
    } else if (rng() % 2) {
        digits.erase(digits.begin());
    }
    return digits;
}

template <class T> void differential(CS_CONV_FUNC f, CS_INT desttype, uint64_t seed)
{
    Context ctx;
    std::mt19937_64 rng(seed);
    for (int i = 0; i < 100000; i++) {
        const std::string text = random_decimal<T>(rng);
        // from_chars takes no plus sign; the rules agree on everything else here.
        const std::string_view oracle_text =
            text[0] == '+' ? std::string_view(text).substr(1) : std::string_view(text);
        T expected{};
        const auto [end, ec] = std::from_chars(oracle_text.data(), oracle_text.data() + oracle_text.size(), expected);
        const Outcome<T> out = comn<T>(ctx, f, desttype, text);
        if (ec == std::errc()) {
            ASSERT_EQ(end, oracle_text.data() + oracle_text.size()) << text;
            ASSERT_EQ(out.rc, CS_SUCCEED) << text;
            ASSERT_EQ(out.value, expected) << text;
        } else if (ec == std::errc::result_out_of_range) {
            ASSERT_EQ(out.rc, CS_EOVERFLOW) << text;
            if constexpr (!std::is_same_v<T, CS_INT>) {
                ASSERT_EQ(out.value, text[0] == '-' ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max())
                    << text;
            }
        } else {
            // Only a minus before an unsigned reading is refused by both.
            ASSERT_TRUE(std::is_unsigned_v<T> && text[0] == '-') << text;
            ASSERT_EQ(out.rc, CS_ESYNTAX) << text;
            ASSERT_EQ(out.value, T{0}) << text;
        }
    }
}

TEST(ScanIntDifferential, Int32AgreesWithFromChars) { differential<CS_INT>(comn_chartoi4, CS_INT_TYPE, 0x5eed0001); }
TEST(ScanIntDifferential, Int64AgreesWithFromChars)
{
    differential<CS_BIGINT>(comn_chartoi8, CS_BIGINT_TYPE, 0x5eed0002);
}
TEST(ScanIntDifferential, Uint64AgreesWithFromChars)
{
    differential<CS_UBIGINT>(comn_chartoui8, CS_UBIGINT_TYPE, 0x5eed0003);
}

// ---- assertions -------------------------------------------------------------------

TEST(ScanIntDeath, EmptySourceWrongTypesAndNullPointers)
{
    Context ctx;
    char text[] = "1";
    CS_INT value, destlen;
    CS_DATAFMT empty = kes::test::fmt(CS_CHAR_TYPE, 0);
    CS_DATAFMT one = kes::test::fmt(CS_CHAR_TYPE, 1);
    CS_DATAFMT wrong_src = kes::test::fmt(CS_INT_TYPE, 1);
    CS_DATAFMT i4 = kes::test::fmt(CS_INT_TYPE);
    CS_DATAFMT i2 = kes::test::fmt(CS_SMALLINT_TYPE);
    EXPECT_BOMB(comn_chartoi4(ctx.get(), &empty, text, &i4, &value, &destlen));
    EXPECT_BOMB(comn_chartoi4(ctx.get(), &wrong_src, text, &i4, &value, &destlen));
    EXPECT_BOMB(comn_chartoi4(ctx.get(), &one, text, &i2, &value, &destlen));
    EXPECT_NULL_POINTER(comn_chartoi4(ctx.get(), &one, text, &i4, &value, nullptr));
    EXPECT_NULL_POINTER(comn_chartobit(ctx.get(), &one, nullptr, &i4, &value, &destlen));
}

} // namespace
