// Float conversions: every fixed-size destination at, one ulp inside and one
// ulp outside each bound in both layers, text placement, and where the two
// layers differ.  The digits themselves are checked in float_text_test.
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::constant;
using kes::test::Context;
using kes::test::fmt;

constexpr double kInf = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr CS_RETCODE OK = CS_SUCCEED, OVER = CS_EOVERFLOW, UNDER = CS_EUNDERFLOW;
template <class T> T up(T v) { return std::nextafter(v, std::numeric_limits<T>::infinity()); }
template <class T> T down(T v) { return std::nextafter(v, -std::numeric_limits<T>::infinity()); }
__CONSTANT bytes_of(void *p, CS_INT len, CS_INT maxlen) { return constant(static_cast<CS_BYTE *>(p), len, maxlen); }

using Comnb = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);
struct Dest {
    CS_CONV_FUNC comn8, comn4;
    Comnb comnb8, comnb4;
    CS_INT type;
    int size;
    bool is_signed;
};
#define KES_DEST(d, T, n, s) {comn_flt8to##d, comn_flt4to##d, comnb_flt8to##d, comnb_flt4to##d, T, n, s}
const Dest i1 = KES_DEST(i1, CS_TINYINT_TYPE, 1, false), i2 = KES_DEST(i2, CS_SMALLINT_TYPE, 2, true),
           i4 = KES_DEST(i4, CS_INT_TYPE, 4, true), i8 = KES_DEST(i8, CS_BIGINT_TYPE, 8, true),
           lng = KES_DEST(i8, CS_LONG_TYPE, 8, true), ui2 = KES_DEST(ui2, CS_USMALLINT_TYPE, 2, false),
           ui4 = KES_DEST(ui4, CS_UINT_TYPE, 4, false), ui8 = KES_DEST(ui8, CS_UBIGINT_TYPE, 8, false),
           bit = KES_DEST(bit, CS_BIT_TYPE, 1, false), flt4 = KES_DEST(flt4, CS_REAL_TYPE, 4, false);
#undef KES_DEST

struct FixedCase {
    const Dest &d;
    bool single; // a CS_REAL source (the value narrowed to float)
    double value;
    __int128 stored; // the integer, or the bits of a single
    CS_RETCODE comn_code, comnb_code;
};

constexpr int64_t kI8s = 9223372036854769664LL;
constexpr double kI8 = static_cast<double>(kI8s), k2p63 = 9223372036854775808.0, kUI8 = 18446744073709500416.0;
constexpr double kFltMax = 3.4028234663852886e38;
constexpr float kI8f = 9.22337e18f, kUI8f = 1.84467e19f;

const FixedCase kFixedCases[] = {
    // i1 is unsigned: the sign is judged before truncation.
    {i1, false, -0.0, 0, OK, OK}, {i1, false, -0.5, 0, OVER, OVER}, {i1, false, down(0.0), 0, OVER, OVER},
    {i1, false, 255.0, 255, OK, OK}, {i1, false, up(255.0), 255, OVER, OVER}, {i1, true, up(255.0f), 255, OVER, OVER},
    {i2, false, -0.9, 0, OK, OK}, // signed: truncated toward zero
    {i2, false, -32768.0, -32768, OK, OK}, {i2, false, down(-32768.0), -32768, OVER, OVER},
    {i2, false, -kInf, -32768, OVER, OVER}, {i2, false, 32767.0, 32767, OK, OK},
    {i2, false, up(32767.0), 32767, OVER, OVER}, {i4, false, 2147483647.0, INT32_MAX, OK, OK},
    {i4, false, 2147483647.5, INT32_MAX, OVER, OVER}, {i4, false, -2147483648.0, INT32_MIN, OK, OK},
    {i4, false, down(-2147483648.0), INT32_MIN, OVER, OVER},
    {i4, false, kNaN, INT32_MIN, OK, OK}, // passes both bounds: the machine's indefinite integer
    {i4, true, 2147483648.0, INT32_MAX, OVER, OVER}, {i4, true, down(2147483648.0f), 2147483520, OK, OK},
    // i8 from a double: the bound is the table's double below 2^63, not 2^63.
    {i8, false, kI8, kI8s, OK, OK}, {i8, false, down(kI8), kI8s - 1024, OK, OK}, {i8, false, up(kI8), kI8s, OVER, OVER},
    {i8, false, -kI8, -kI8s, OK, OK}, {i8, false, up(-kI8), 1024 - kI8s, OK, OK},
    {i8, false, down(-kI8), -kI8s, OVER, OVER}, {lng, false, -7.5, -7, OK, OK}, // CS_LONG is an i8 destination
    // i8 from a single compares as a single and stores a rounder limit.
    {i8, true, kI8f, 9223369837831520256LL, OK, OK}, {i8, true, down(kI8f), static_cast<int64_t>(down(kI8f)), OK, OK},
    {i8, true, up(kI8f), 9223370000000000000LL, OVER, OVER}, {i8, true, -kI8f, -9223369837831520256LL, OK, OK},
    {i8, true, down(-kI8f), -9223370000000000000LL, OVER, OVER},
    // Below an unsigned range the context layer says underflow, the server layer overflow.
    {ui2, false, -0.0, 0, OK, OK}, {ui2, false, -0.5, 0, UNDER, OVER}, {ui2, true, -1.0, 0, UNDER, OVER},
    {ui2, false, 65535.0, 65535, OK, OK}, {ui2, false, up(65535.0), 65535, OVER, OVER},
    {ui4, false, 4294967295.0, UINT32_MAX, OK, OK}, {ui4, false, up(4294967295.0), UINT32_MAX, OVER, OVER},
    {ui4, false, down(0.0), 0, UNDER, OVER}, {ui4, true, -kInf, 0, UNDER, OVER},
    // ui8: at or above 2^63 one less than exact.
    {ui8, false, down(k2p63), 9223372036854774784ULL, OK, OK}, {ui8, false, k2p63, 9223372036854775807ULL, OK, OK},
    {ui8, false, up(k2p63), 9223372036854777855ULL, OK, OK}, {ui8, false, kUI8, 18446744073709500415ULL, OK, OK},
    {ui8, false, up(kUI8), 18446744073709500416ULL, OVER, OVER}, {ui8, false, -1e-300, 0, UNDER, OVER},
    {ui8, true, kUI8f, 18446700093244440575ULL, OK, OK}, {ui8, true, up(kUI8f), 18446700000000000000ULL, OVER, OVER},
    {ui8, true, kInf, 18446700000000000000ULL, OVER, OVER},
    // bit: only a zero of either sign is 0; the smallest double is 0 once narrowed.
    {bit, false, -0.0, 0, OK, OK}, {bit, false, 5e-324, 1, OK, OK}, {bit, true, 5e-324, 0, OK, OK},
    {bit, false, kNaN, 1, OK, OK}, {bit, false, -1.0, 1, OK, OK},
    // A double beyond the largest single saturates to it; a tiny one rounds to a zero.
    {flt4, false, kFltMax, 0x7f7fffff, OK, OK}, {flt4, false, up(kFltMax), 0x7f7fffff, OVER, OVER},
    {flt4, false, kInf, 0x7f7fffff, OVER, OVER}, {flt4, false, -kFltMax, 0xff7fffff, OK, OK},
    {flt4, false, down(-kFltMax), 0xff7fffff, OVER, OVER}, {flt4, false, -1e-300, 0x80000000, OK, OK},
    {flt4, false, 0.1, 0x3dcccccd, OK, OK},
};

__int128 read_int(const CS_BYTE *p, int size, bool is_signed)
{
    uint64_t raw = 0;
    std::memcpy(&raw, p, static_cast<size_t>(size));
    const int shift = 64 - 8 * size;
    return is_signed ? static_cast<__int128>(static_cast<int64_t>(raw << shift) >> shift) : raw;
}

std::string str128(__int128 v) // for readable failures
{
    return v < 0 ? "-" + str128(-v) : (v >= 10 ? str128(v / 10) : "") + char('0' + int(v % 10));
}

TEST(FloatToFixed, BoundTableInBothLayers)
{
    Context ctx;
    for (const FixedCase &c : kFixedCases) {
        SCOPED_TRACE(::testing::Message() << (c.single ? "single " : "double ") << c.value << " to " << c.d.type);
        const float single = static_cast<float>(c.value);
        CS_BYTE src[8], dest[9], bdest[8];
        std::memcpy(src, c.single ? static_cast<const void *>(&single) : &c.value, c.single ? 4 : 8);
        CS_DATAFMT sfmt = c.single ? fmt(CS_REAL_TYPE, 4) : fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(c.d.type, c.d.size);
        std::memset(dest, 0xAB, sizeof dest);
        CS_INT destlen = -1;
        EXPECT_EQ(code_name((c.single ? c.d.comn4 : c.d.comn8)(ctx.get(), &sfmt, src, &dfmt, dest, &destlen)),
                  code_name(c.comn_code));
        EXPECT_EQ(destlen, c.d.size);
        EXPECT_EQ(str128(read_int(dest, c.d.size, c.d.is_signed)), str128(c.stored));
        EXPECT_EQ(dest[c.d.size], 0xAB) << "wrote past the value";

        CAST_CONTEXT cast{};
        __CONSTANT bsrc = constant(src, c.single ? 4 : 8, 8), bdst = constant(bdest, 0, 8);
        EXPECT_EQ(code_name((c.single ? c.d.comnb4 : c.d.comnb8)(&cast, &bsrc, &bdst)), code_name(c.comnb_code));
        EXPECT_EQ(bdst.len, c.d.size);
        EXPECT_EQ(str128(read_int(bdest, c.d.size, c.d.is_signed)), str128(c.stored));
    }
}

// Placement by the format.  ".5" and ".25" are 2 and 3 bytes.
struct TextCase {
    double value;
    CS_INT maxlength, format;
    std::string_view stored; // the bytes counted by *destlen
    CS_RETCODE code;
};

const TextCase kTextCases[] = {
    // The NUL counts in *destlen; exact capacity fits unless a NUL is asked for.
    {0.5, 64, 0, ".5", OK}, {1.0, 64, CS_FMT_NULLTERM, {"1.0\0", 4}, OK}, {1.0, 3, 0, "1.0", OK},
    {1.0, 6, CS_FMT_PADBLANK, "1.0   ", OK}, {1.0, 5, CS_FMT_PADNULL, {"1.0\0\0", 5}, OK},
    {1.0, 5, CS_FMT_PADNULL | CS_FMT_PADBLANK, "1.0", CS_EFORMAT},
    // No room: "*" and a NUL for any capacity above 1, then the fill.
    {0.5, 2, CS_FMT_NULLTERM, {"*\0", 2}, OVER}, {1.0, 3, CS_FMT_NULLTERM, {"*\0", 2}, OVER},
    {123.25, 4, CS_FMT_PADBLANK, "*   ", OVER}, {123.25, 5, 0, "*", OVER},
    // Capacity 1 or 0: nothing written, *destlen the capacity ("?" only counts).
    {0.5, 1, 0, "?", OVER}, {0.5, 0, 0, "", OVER},
};

TEST(FloatToChar, PlacementFollowsTheFormat)
{
    Context ctx;
    for (const TextCase &c : kTextCases) {
        SCOPED_TRACE(::testing::Message() << c.value << " in " << c.maxlength << " format " << c.format);
        char dest[80];
        std::memset(dest, '#', sizeof dest);
        CS_INT destlen = -7;
        double d = c.value;
        CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        EXPECT_EQ(code_name(comn_flt8tochar(ctx.get(), &sfmt, &d, &dfmt, dest, &destlen)), code_name(c.code));
        EXPECT_EQ(destlen, static_cast<CS_INT>(c.stored.size()));
        if (c.maxlength > 1)
            EXPECT_EQ(std::string_view(dest, static_cast<size_t>(destlen)), c.stored);
        else
            EXPECT_EQ(dest[0], '#') << "nothing written";
        if (c.code == OVER && c.maxlength > 1 && !(c.format & CS_FMT_PADBLANK)) {
            EXPECT_EQ(dest[1], '\0') << "the star is terminated even when *destlen leaves the NUL out";
        }
        EXPECT_EQ(dest[c.maxlength], '#') << "wrote past the capacity";
    }
}

// Without room the server layer writes nothing, and only a single source
// clears the length; its varchar checks the capacity the context layer's
// CS_VARCHAR never lacks.  -1.5e-7 prints in 23 characters.
TEST(FloatToText, ServerLayerWritesNothingWithoutRoomContextLayerVarcharAlwaysFits)
{
    struct Case { Comnb f; bool single; double value; CS_INT maxlen; CS_RETCODE rc; CS_INT len; std::string text; };
    const Case cases[] = {
        {comnb_flt8tochar, false, 0.25, 3, OVER, 3, ""}, {comnb_flt4tochar, true, 0.25, 3, OVER, 0, ""},
        {comnb_flt8tovarchar, false, -1.5e-7, 22, OVER, 22, ""},
        {comnb_flt4tochar, true, 0.25, 4, OK, 4, std::string(".25\0", 4)},
        {comnb_flt8tovarchar, false, -1.5e-7, 23, OK, 23, "-1.4999999999999999e-07"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.value << " into " << c.maxlen);
        CAST_CONTEXT cast{};
        cast.format = CS_FMT_NULLTERM;
        char out[32];
        std::memset(out, '#', sizeof out);
        double d = c.value;
        float f = static_cast<float>(c.value);
        __CONSTANT src = c.single ? bytes_of(&f, 4, 4) : bytes_of(&d, 8, 8), dst = bytes_of(out, 0, c.maxlen);
        EXPECT_EQ(code_name(c.f(&cast, &src, &dst)), code_name(c.rc));
        EXPECT_EQ(dst.len, c.len);
        EXPECT_EQ(std::string(out, c.text.empty() ? 1 : c.text.size()), c.text.empty() ? "#" : c.text);
    }
    Context ctx;
    double e = -1.5e-7;
    CS_VARCHAR vc;
    CS_VARBINARY vb;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_VARCHAR_TYPE, 258);
    EXPECT_EQ(comn_flt8tovarchar(ctx.get(), &sfmt, &e, &dfmt, &vc, &destlen), OK);
    EXPECT_EQ(destlen, 258);
    EXPECT_EQ(vc.len, 23);
    dfmt = fmt(CS_VARBINARY_TYPE, 258); // the storage bytes, to a binary type
    EXPECT_EQ(comn_flt8tovarbin(ctx.get(), &sfmt, &e, &dfmt, &vb, &destlen), OK);
    EXPECT_EQ(kes::test::hex(vb.array, static_cast<size_t>(vb.len)), kes::test::hex(&e, 8));
}

TEST(FloatConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    double v = 1.0;
    CS_INT out = 0, destlen = 0;
    char text[8];
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_INT_TYPE, 4), wrong = fmt(CS_SMALLINT_TYPE, 2);
    CS_DATAFMT negative = fmt(CS_CHAR_TYPE, -1);
    EXPECT_NULL_POINTER(comn_flt8toi4(ctx.get(), &sfmt, nullptr, &dfmt, &out, &destlen));
    EXPECT_BOMB(comn_flt8toi4(ctx.get(), &sfmt, &v, &wrong, &out, &destlen));
    EXPECT_BOMB(comn_flt8tochar(ctx.get(), &sfmt, &v, &negative, text, &destlen));
}

} // namespace
