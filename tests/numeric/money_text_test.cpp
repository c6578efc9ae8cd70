// Money text: every output style, the parser's lead-in, group marks, decimal
// rounding, tail and limits, and round trips at the extremes.
#include <random>
#include <string>

#include "../../fuzz/conv/scan_charset.h"
#include "numeric/mny.h"
#include "support/context.h"

namespace {

constexpr int64_t kMax = INT64_MAX, kMin = INT64_MIN;

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

constexpr int kGroups = 1;
constexpr int prec(int n) { return n << 8; }

struct PrintCase {
    int64_t v;
    int style;
    const char *text;
};

const PrintCase kPrintCases[] = {
    {123456, 0, "12.35"}, // only the last removed digit decides: 12.34|56 -> 5
    {123446, 0, "12.34"},
    {123450, 0, "12.35"},
    {123449, 0, "12.34"}, // 12.344|9: the 4 decides, the 9 does not
    {-1, 0, "-0.00"},
    {-50, 0, "-0.01"},
    {0, 0, "0.00"},
    {1000000, kGroups, "100.00"}, // the mark in front of 100 gives way
    {12345678912LL, kGroups | prec(4), "1,234,567.8912"},
    {12345678912LL, prec(4), "1234567.8912"},
    {12345678912LL, prec(9), "1234567.8912"}, // more than 4 keeps 4
    {12345678912LL, prec(3), "1234567.891"},
    {12345678915LL, prec(3), "1234567.892"},
    {12345678950LL, prec(1), "1234567.9"},
    {-10000000, kGroups, "-1,000.00"},
    {-1000000, kGroups, "-100.00"},
    {kMax, kGroups | prec(4), "922,337,203,685,477.5807"},
    {kMin, kGroups | prec(4), "-922,337,203,685,477.5808"},
    {kMax, 0, "922337203685477.58"},
    {kMin, 0, "-922337203685477.58"},
    {kMax, prec(1), "922337203685477.6"},
    {5, prec(3), "0.001"},
    {4, prec(3), "0.000"},
    {1, 2, "0.00"}, // a low byte other than 1 asks for no groups
};

class MoneyPrint : public ::testing::TestWithParam<PrintCase> {};

TEST_P(MoneyPrint, TextOfEachStyle)
{
    const PrintCase &c = GetParam();
    EXPECT_EQ(print(c.v, c.style), c.text);
    // Exactly its length fits; one byte less does not.
    const int n = static_cast<int>(std::strlen(c.text));
    EXPECT_EQ(print(c.v, c.style, n - 1), "<null>");
}

INSTANTIATE_TEST_SUITE_P(Table, MoneyPrint, ::testing::ValuesIn(kPrintCases));

TEST(MoneyPrint, AGroupMarkInFrontNeedsItsByteEvenThoughItIsNotReturned)
{
    EXPECT_EQ(print(1000000, kGroups, 7), "100.00");
    EXPECT_EQ(print(1000000, kGroups, 6), "<null>");
    EXPECT_EQ(print(-1000000, kGroups, 7), "-100.00");
    EXPECT_EQ(print(1000000, 0, 6), "100.00");
    EXPECT_EQ(print(1, 0, 0), "<null>");
    EXPECT_EQ(print(1, 0, -5), "<null>");
}

TEST(MoneyPrint, Money4WidensAndPrecisionEntryShiftsTheDecimals)
{
    char buf[32];
    CS_MONEY4 m4{-2147483648};
    const char *p = com_cvtmny4tochar(&m4, buf, sizeof buf, kGroups | prec(4));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string(p, static_cast<const char *>(buf + sizeof buf)), "-214,748.3648");
    CS_MONEY m = M(123456);
    p = com_precmnytochar(&m, buf, sizeof buf, 0, 3);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string(p, static_cast<const char *>(buf + sizeof buf)), "12.346");
}

// ---- text in ----------------------------------------------------------------------

struct ParseCase {
    const char *text;
    int status;
    int64_t value; // meaningful when status is 0
};

const ParseCase kParseCases[] = {
    {"-922337203685477.5808", 0, kMin},
    {"922337203685477.5808", 1, 0},
    {"922337203685477.5807", 0, kMax},
    {"922337203685477.58074", 0, kMax},
    {"922337203685477.58075", 1, 0}, // rounds past the largest value
    {"-922337203685477.58075", 0, kMin},
    {"-922337203685477.58076", 0, kMin}, // the fifth decimal rounds the magnitude up to 2^63
    {"-922337203685477.58081", 1, 0},
    {"-922337203685477.58080", 0, kMin},
    {"-922337203685477.580809", 0, kMin},
    {"-922337203685477.580", 0, -9223372036854775800LL}, // no mark: ...58|0, not ...580|8
    {"-922337203685477.581", 1, 0},
    {"-92233720368547758.08", 1, 0},
    {"-9223372036854775808", 1, 0},
    {"12.34565", 0, 123457},
    {"12.34564", 0, 123456},
    {"12.34564x", 2, 0},
    {"12.345649999", 0, 123456},
    {"12.3456a9", 2, 0},
    {"1,234,567.89", 0, 12345678900LL},
    {"1234,567", 2, 0},
    {"1234567,890", 0, 12345678900000LL},
    {"1,23", 0, 1230000},
    {"1,2345", 0, 123450000},
    {"1,23,456", 2, 0},
    {",5", 0, 50000},
    {"12.3,4", 0, 123400}, // the counter runs on through the point: -1 at the mark, which is valid
    {"1.234,5", 2, 0},     // the counter counts the integer digit too: 0 at the mark
    {"1234.567,8", 0, 12345678}, // 3 at the mark: valid, though behind the point
    {"123.456,7", 2, 0},
    {"", 0, 0},
    {"     ", 0, 0},
    {"-", 0, 0},
    {"+", 0, 0},
    {"--1", 2, 0},
    {"+-1", 2, 0},
    {"- $ 12", 0, -120000},
    {"$-12", 0, -120000},
    {"$$12", 2, 0},
    {"  +  7.5  ", 0, 75000},
    {"7.5.", 2, 0},
    {"7-", 2, 0},
    {"7 8", 2, 0},
    {"1e5", 2, 0},
    {".0001", 0, 1},
    {".00005", 0, 1},
    {".00004", 0, 0},
    {"-.00005", 0, -1},
    {"0000000000000000000000012", 0, 120000},
    {"\t12", 2, 0}, // a tab is no blank of the lead-in, so the tail sees digits
    {"12\t", 0, 120000},
};

class MoneyParse : public ::testing::TestWithParam<ParseCase> {};

TEST_P(MoneyParse, StatusAndValue)
{
    const ParseCase &c = GetParam();
    CS_MONEY m = M(0x123456789LL);
    std::string text = c.text;
    const int status = com__mnyfromchar_mb(&m, text.data(), static_cast<int>(text.size()), 0, nullptr);
    EXPECT_EQ(status, c.status) << '"' << c.text << '"';
    if (c.status == 0)
        EXPECT_EQ(V(m), c.value) << '"' << c.text << '"';
}

INSTANTIATE_TEST_SUITE_P(Table, MoneyParse, ::testing::ValuesIn(kParseCases));

TEST(MoneyParse, ANulByteIsNeitherBlankNorSpace)
{
    CS_MONEY m;
    char text[] = {'1', '2', '\0', ' '};
    EXPECT_EQ(com__mnyfromchar_mb(&m, text, 4, 0, nullptr), 2);
    EXPECT_EQ(com__mnyfromchar_mb(&m, text, 2, 0, nullptr), 0);
    EXPECT_EQ(V(m), 120000);
}

TEST(MoneyParse, CurrencySignsAndSpacesComeFromTheCharacterSet)
{
    CS_MONEY m;
    std::string pound = "\xA3 12.50"; // ISO 8859-1: the pound sign has the money class
    EXPECT_EQ(com__mnyfromchar_mb(&m, pound.data(), static_cast<int>(pound.size()), 0, nullptr), 0);
    EXPECT_EQ(V(m), 125000);
    std::string nbsp = "12.50\xA0"; // a no-break space is of the space class
    EXPECT_EQ(com__mnyfromchar_mb(&m, nbsp.data(), static_cast<int>(nbsp.size()), 0, nullptr), 0);
    std::string letter = "12.50\xE9";
    EXPECT_EQ(com__mnyfromchar_mb(&m, letter.data(), static_cast<int>(letter.size()), 0, nullptr), 2);
}

TEST(MoneyParse, DigitsOfAnotherFormCountThroughTheNormalisationMap)
{
    // A one-byte set whose bytes 0xB0..0xB9 are digits in another form.
    CS_NORM_MAP norm{};
    CS_TYPE_MAP types{};
    for (int b = 0; b < 256; b++) {
        norm.norm[b] = static_cast<CS_BYTE>(b);
        types.chmap[b].char_lower = static_cast<CS_BYTE>(b);
    }
    for (int d = 0; d < 10; d++)
        norm.norm[0xB0 + d] = static_cast<CS_BYTE>('0' + d);
    types.chmap[' '].char_type = 0x08;
    types.chmap['#'].char_lex = 64; // this set's currency sign
    CS_ATTRIB attrib{};
    attrib.cs_class = 1;
    attrib.cs_maxcharlen = 1;
    attrib.cs_nnorm = 1;
    attrib.cs_ntype = 1;
    attrib.cs_norm_map = &norm;
    attrib.cs_type_map = &types;
    CS_MONEY m;
    std::string text = "#-\xB1\xB2.\xB5";
    EXPECT_EQ(com__mnyfromchar_mb(&m, text.data(), static_cast<int>(text.size()), 0, &attrib), 0);
    EXPECT_EQ(V(m), -125000);
    std::string dollar = "$5"; // no currency class in this set
    EXPECT_EQ(com__mnyfromchar_mb(&m, dollar.data(), static_cast<int>(dollar.size()), 0, &attrib), 2);
}

TEST(MoneyParse, DoubleByteTextStepsByWholeCharacters)
{
    kes::fuzz::ScanCharset two(false); // 0xA3 0xA0..0xFE: full-width ASCII
    const struct {
        std::string text;
        int status;
        int64_t value;
    } cases[] = {
        {"\xA3\xAD\xA3\xB1\xA3\xB2\xA3\xAE\xA3\xB5", 0, -125000}, // full-width "-12.5"
        {"1\xA3\xAC" "234", 0, 12340000},                           // a full-width group mark
        {"12\xA3\xA0\xA3\xA0", 0, 120000},                          // full-width blanks in the tail
        {"12\xA3", 2, 0},                                           // a lead byte cut off at the end
        {"\xB0\xA1", 2, 0},                                         // a pair without a normal form
    };
    for (const auto &c : cases) {
        std::vector<char> text(c.text.begin(), c.text.end()); // exact size: no byte after the text
        CS_MONEY m = M(99);
        EXPECT_EQ(com__mnyfromchar_mb(&m, text.data(), static_cast<int>(text.size()), 0, &two.attr), c.status)
            << kes::test::hex(text.data(), text.size());
        if (c.status == 0)
            EXPECT_EQ(V(m), c.value) << kes::test::hex(text.data(), text.size());
    }
}

TEST(MoneyParse, Money4NarrowsAndFailsOutsideItsRange)
{
    const struct {
        const char *text;
        int status;
        CS_INT value;
    } cases[] = {{"214748.3647", 0, INT32_MAX},
                 {"-214748.3648", 0, INT32_MIN},
                 {"214748.3648", 1, INT32_MAX},
                 {"-214748.3649", 1, INT32_MIN},
                 {"1x", 2, 77},
                 {"922337203685477.5808", 1, 77}};
    for (const auto &c : cases) {
        CS_MONEY4 m4{77};
        std::string text = c.text;
        EXPECT_EQ(com__mny4fromchar_mb(&m4, text.data(), static_cast<int>(text.size()), 0, nullptr), c.status)
            << c.text;
        EXPECT_EQ(m4.mny4, c.value) << c.text;
    }
}

// ---- round trips ------------------------------------------------------------------

// Printing with four decimals and reading back gives the value; with fewer
// decimals it gives the value as the printer rounded it, in every style.
__int128 printer_rounding(int64_t v, int decimals)
{
    uint64_t mag = v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
    unsigned last = 0;
    uint64_t unit = 1;
    for (int d = 4; d > decimals; --d) {
        last = static_cast<unsigned>(mag % 10);
        mag /= 10;
        unit *= 10;
    }
    if (last > 4)
        ++mag;
    const auto back = static_cast<__int128>(mag) * unit;
    return v < 0 ? -back : back;
}

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
                const int style = groups | prec(decimals);
                char buf[40];
                CS_MONEY m = M(v);
                const char *p = com_cvtmnytochar(&m, buf, sizeof buf, style);
                ASSERT_NE(p, nullptr);
                const int n = static_cast<int>(buf + sizeof buf - p);
                CS_MONEY back = M(12345);
                const int status = com__mnyfromchar_mb(&back, const_cast<char *>(p), n, style, nullptr);
                const __int128 want = printer_rounding(v, decimals);
                // Rounding may push the largest values past the range.
                if (want > kMax || want < kMin) {
                    EXPECT_EQ(status, 1) << std::string(p, n);
                    continue;
                }
                ASSERT_EQ(status, 0) << std::string(p, n);
                ASSERT_EQ(V(back), static_cast<int64_t>(want)) << std::string(p, n);
            }
}

} // namespace
