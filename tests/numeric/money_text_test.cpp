// Money text: every output style and its exact room, the parser's lead-in,
// group marks, fifth-decimal rounding, tail and limits, character sets, and
// round trips of every style at the extremes.
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "../../fuzz/conv/scan_charset.h"
#include "numeric/mny.h"
#include "support/context.h"

namespace {

constexpr int64_t kMax = INT64_MAX, kMin = INT64_MIN;
constexpr int kGroups = 1;
constexpr int prec(int n) { return n << 8; }

CS_MONEY M(int64_t v)
{
    CS_MONEY m;
    kes::money::set(m, v);
    return m;
}
int64_t V(const CS_MONEY &m) { return kes::money::value(m); }

// The text, or "<null>" when it does not fit len bytes.
std::string print(int64_t v, int style, int len = 48)
{
    char buf[64];
    std::memset(buf, '#', sizeof buf);
    CS_MONEY m = M(v);
    const char *p = com_cvtmnytochar(&m, buf, len, style);
    if (p == nullptr)
        return "<null>";
    EXPECT_EQ(buf[len], '#') << "wrote past len";
    return std::string(p, static_cast<const char *>(buf + len));
}

int parse(CS_MONEY &m, std::string_view text, CS_ATTRIB *chatr = nullptr)
{
    std::vector<char> exact(text.begin(), text.end()); // no byte after the text
    return com__mnyfromchar_mb(&m, exact.data(), static_cast<int>(exact.size()), 0, chatr);
}

// Each text fits exactly its room and not one byte less.  The room is the
// text's length, or one more when a group mark in front of the first digit
// had to be written and then gave way (a sign takes that byte instead).
TEST(MoneyPrint, TextOfEachStyleAndItsExactRoom)
{
    const struct { int64_t v; int style; const char *text; int room = 0; } cases[] = { // room 0: the text's
        {123456, 0, "12.35"}, {123449, 0, "12.34"}, // only the last removed digit decides: 12.34|5, 12.34|4
        {-1, 0, "-0.00"}, {-50, 0, "-0.01"}, {1, 2, "0.00"}, // a low byte other than 1 asks for no groups
        {1000000, kGroups, "100.00", 7}, {-1000000, kGroups, "-100.00"}, {-10000000, kGroups, "-1,000.00"},
        {12345678912LL, kGroups | prec(4), "1,234,567.8912"}, {12345678912LL, prec(9), "1234567.8912"},
        {12345678915LL, prec(3), "1234567.892"}, {12345678950LL, prec(1), "1234567.9"}, {5, prec(3), "0.001"},
        {kMax, kGroups | prec(4), "922,337,203,685,477.5807", 25},
        {kMin, kGroups | prec(4), "-922,337,203,685,477.5808"},
        {kMin, 0, "-922337203685477.58"}, {kMax, prec(1), "922337203685477.6"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.v << " style " << c.style);
        const int room = c.room ? c.room : static_cast<int>(std::strlen(c.text));
        EXPECT_EQ(print(c.v, c.style, room), c.text);
        EXPECT_EQ(print(c.v, c.style, room - 1), "<null>");
    }
    EXPECT_EQ(print(1, 0, 0), "<null>");
    EXPECT_EQ(print(1, 0, -5), "<null>");
}

TEST(MoneyPrint, Money4WidensAndThePrecisionEntryShiftsTheDecimals)
{
    char buf[32];
    CS_MONEY4 m4{INT32_MIN};
    const char *p = com_cvtmny4tochar(&m4, buf, sizeof buf, kGroups | prec(4));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string(p, static_cast<const char *>(buf + sizeof buf)), "-214,748.3648");
    CS_MONEY m = M(123456);
    p = com_precmnytochar(&m, buf, sizeof buf, 0, 3);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string(p, static_cast<const char *>(buf + sizeof buf)), "12.346");
}

// A double-byte set: 0xA3 0xA0..0xFE are full-width ASCII.
kes::fuzz::ScanCharset two(false);

// A one-byte set whose bytes 0xB0..0xB9 are digits in another form and
// whose currency sign is '#', not '$'.
struct OtherDigits {
    CS_NORM_MAP norm{};
    CS_TYPE_MAP types{};
    CS_ATTRIB attr{};
    OtherDigits()
    {
        for (int b = 0; b < 256; b++) {
            norm.norm[b] = static_cast<CS_BYTE>(b >= 0xB0 && b <= 0xB9 ? '0' + b - 0xB0 : b);
            types.chmap[b].char_lower = static_cast<CS_BYTE>(b);
        }
        types.chmap[' '].char_type = 0x08;
        types.chmap['#'].char_lex = 64;
        attr.cs_class = attr.cs_maxcharlen = attr.cs_nnorm = attr.cs_ntype = 1;
        attr.cs_norm_map = &norm;
        attr.cs_type_map = &types;
    }
} other;

TEST(MoneyParse, StatusAndValueInEachCharacterSet)
{
    // value: when status is 0; set: null for ISO 8859-1.
    const struct { std::string_view text; int status; int64_t value; CS_ATTRIB *set = nullptr; } cases[] = {
        // The limits; a fifth decimal rounds, further ones do not count.
        {"922337203685477.5807", 0, kMax}, {"922337203685477.5808", 1, 0}, {"922337203685477.58074", 0, kMax},
        {"922337203685477.58075", 1, 0}, {"-922337203685477.5808", 0, kMin}, {"-922337203685477.580809", 0, kMin},
        {"-922337203685477.58076", 0, kMin}, // the fifth decimal rounds up to the magnitude 2^63
        {"-922337203685477.58081", 1, 0}, {"-922337203685477.581", 1, 0}, {"-9223372036854775808", 1, 0},
        {"-922337203685477.580", 0, -9223372036854775800LL}, // ...58|0, not ...580|8
        {"12.34565", 0, 123457}, {"12.345649999", 0, 123456}, {".00005", 0, 1}, {"-.00005", 0, -1},
        {".00004", 0, 0}, {"12.3456a9", 2, 0}, {"0000000000000000000000012", 0, 120000},
        // Group marks: the counter starts at -4, counts every digit (through
        // the point too) and restarts at a mark; negative or 3 is in place.
        {"1,234,567.89", 0, 12345678900LL}, {"1234,567", 2, 0}, {"1234567,890", 0, 12345678900000LL},
        {"1,23", 0, 1230000}, {"1,23,456", 2, 0}, {",5", 0, 50000}, {"12.3,4", 0, 123400}, {"1.234,5", 2, 0},
        {"1234.567,8", 0, 12345678},
        // Lead-in: blanks, one sign and one currency sign in any order; tail: space.
        {"", 0, 0}, {"-", 0, 0}, {"--1", 2, 0}, {"+-1", 2, 0}, {"- $ 12", 0, -120000}, {"$-12", 0, -120000},
        {"$$12", 2, 0}, {"  +  7.5  ", 0, 75000}, {"7.5.", 2, 0}, {"7-", 2, 0}, {"7 8", 2, 0}, {"1e5", 2, 0},
        {"\t12", 2, 0}, {"12\t", 0, 120000}, // a tab is no blank of the lead-in, but space in the tail
        {{"12\0 ", 4}, 2, 0},                // a NUL is neither blank nor space
        {"\xA3 12.50", 0, 125000}, {"12.50\xA0", 0, 125000}, // ISO 8859-1 pound sign, no-break space
        {"12.50\xE9", 2, 0},
        // A caller's set decides what is a digit, a currency sign or a blank.
        {"#-\xB1\xB2.\xB5", 0, -125000, &other.attr}, {"$5", 2, 0, &other.attr},
        {"\xA3\xAD\xA3\xB1\xA3\xB2\xA3\xAE\xA3\xB5", 0, -125000, &two.attr}, // full-width "-12.5"
        {"1\xA3\xAC" "234", 0, 12340000, &two.attr}, {"12\xA3\xA0\xA3\xA0", 0, 120000, &two.attr},
        {"12\xA3", 2, 0, &two.attr},   // a lead byte cut off at the end
        {"\xB0\xA1", 2, 0, &two.attr}, // a pair without a normal form
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << kes::test::hex(c.text.data(), c.text.size()) << " \"" << c.text << '"');
        CS_MONEY m = M(0x123456789LL);
        EXPECT_EQ(parse(m, c.text, c.set), c.status);
        if (c.status == 0) {
            EXPECT_EQ(V(m), c.value);
        }
    }
}

TEST(MoneyParse, Money4StoresTheLimitOutsideItsRangeAndNothingWhenMalformed)
{
    const struct { std::string_view text; int status; CS_INT value; } cases[] = {
        {"214748.3647", 0, INT32_MAX}, {"-214748.3648", 0, INT32_MIN}, {"214748.3648", 1, INT32_MAX},
        {"-214748.3649", 1, INT32_MIN}, {"1x", 2, 77}, {"922337203685477.5808", 1, 77}};
    for (const auto &c : cases) {
        CS_MONEY4 m4{77};
        std::vector<char> text(c.text.begin(), c.text.end()); // no byte after the text
        EXPECT_EQ(com__mny4fromchar_mb(&m4, text.data(), static_cast<int>(text.size()), 0, nullptr), c.status)
            << c.text;
        EXPECT_EQ(m4.mny4, c.value) << c.text;
    }
}

// Four decimals read back as the value; fewer read back as the value rounded
// half up on the magnitude at that many decimals.  Rounding may push the
// largest values past the range.
TEST(MoneyRoundTrip, EveryStyleAndTheExtremes)
{
    std::mt19937_64 rng(31);
    std::vector<int64_t> values = {0, 1, -1, 4999, 5000, -5000, kMax, kMin, kMax - 1, kMin + 1, 10000, -10000};
    for (int i = 0; i < 20000; i++) {
        const auto v = static_cast<int64_t>(rng() >> (rng() % 64));
        values.push_back((rng() & 1) ? v : -v);
    }
    for (int64_t v : values)
        for (int groups : {0, kGroups})
            for (int decimals : {1, 2, 3, 4}) {
                const std::string text = print(v, groups | prec(decimals), 40);
                ASSERT_NE(text, "<null>");
                CS_MONEY back = M(12345);
                const int status = parse(back, text);
                const __int128 unit = decimals == 4 ? 1 : decimals == 3 ? 10 : decimals == 2 ? 100 : 1000;
                const __int128 mag = v < 0 ? -static_cast<__int128>(v) : v;
                const __int128 rounded = (mag + unit / 2) / unit * unit, want = v < 0 ? -rounded : rounded;
                if (want > kMax || want < kMin) {
                    EXPECT_EQ(status, 1) << text;
                    continue;
                }
                ASSERT_EQ(status, 0) << text;
                ASSERT_EQ(V(back), static_cast<int64_t>(want)) << text;
            }
}

TEST(MoneyTextDeath, NullDestinationEndsTheProcess)
{
    CS_MONEY m = M(1);
    EXPECT_NULL_POINTER(com_cvtmnytochar(&m, nullptr, 10, 0));
    EXPECT_NULL_POINTER(com__mnyfromchar_mb(nullptr, const_cast<char *>("1"), 1, 0, nullptr));
}

} // namespace
