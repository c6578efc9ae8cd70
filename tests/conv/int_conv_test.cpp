// Integer and bit conversions: saturation and codes at every range edge in
// both layers, the float clamps, text and byte destinations.
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::constant;
using kes::test::Context;
using kes::test::fmt;

using ComnbFunc = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

template <class T> struct Outcome {
    CS_RETCODE code;
    T value;
    CS_INT len;
};

template <class D, class S>
Outcome<D> run_comn(CS_CONV_FUNC f, CS_INT srctype, S v, CS_INT desttype)
{
    Context ctx;
    CS_DATAFMT sf = fmt(srctype, sizeof(S));
    CS_DATAFMT df = fmt(desttype, sizeof(D));
    D out{};
    CS_INT len = -1;
    CS_RETCODE code = f(ctx.get(), &sf, &v, &df, &out, &len);
    return {code, out, len};
}

template <class D, class S> Outcome<D> run_comnb(ComnbFunc f, S v)
{
    CAST_CONTEXT cc{};
    D out{};
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), sizeof v, sizeof v);
    __CONSTANT dest = constant(reinterpret_cast<CS_BYTE *>(&out), -1, sizeof out);
    CS_RETCODE code = f(&cc, &src, &dest);
    return {code, out, dest.len};
}

// One row of the narrowing table: what each layer stores and says.
struct Narrowing {
    std::function<void()> check;
};

template <class S, class D>
Narrowing narrowing(CS_CONV_FUNC comn, ComnbFunc comnb, CS_INT srctype, CS_INT desttype, S v, D stored,
                    CS_RETCODE comn_code, CS_RETCODE comnb_code, CS_INT comnb_len = sizeof(D))
{
    return {[=] {
        SCOPED_TRACE(testing::Message() << "source " << +v << " type " << srctype << " -> " << desttype);
        auto a = run_comn<D>(comn, srctype, v, desttype);
        EXPECT_EQ(code_name(a.code), code_name(comn_code));
        EXPECT_EQ(+a.value, +stored);
        EXPECT_EQ(a.len, static_cast<CS_INT>(sizeof(D)));
        auto b = run_comnb<D>(comnb, v);
        EXPECT_EQ(code_name(b.code), code_name(comnb_code));
        EXPECT_EQ(+b.value, +stored);
        EXPECT_EQ(b.len, comnb_len);
    }};
}

constexpr CS_RETCODE OK = CS_SUCCEED;
constexpr CS_RETCODE OVER = CS_EOVERFLOW;
constexpr CS_RETCODE UNDER = CS_EUNDERFLOW;

TEST(IntConv, NarrowingTable)
{
    const Narrowing cases[] = {
        // i2 to i1: both edges are overflow.
        narrowing<CS_SMALLINT, CS_TINYINT>(comn_i2toi1, comnb_i2toi1, 7, 6, -1, 0, OVER, OVER),
        narrowing<CS_SMALLINT, CS_TINYINT>(comn_i2toi1, comnb_i2toi1, 7, 6, 256, 255, OVER, OVER),
        narrowing<CS_SMALLINT, CS_TINYINT>(comn_i2toi1, comnb_i2toi1, 7, 6, 255, 255, OK, OK),
        narrowing<CS_SMALLINT, CS_TINYINT>(comn_i2toi1, comnb_i2toi1, 7, 6, 0, 0, OK, OK),
        // i4 to i1, i2: a negative overflow is still overflow.
        narrowing<CS_INT, CS_TINYINT>(comn_i4toi1, comnb_i4toi1, 8, 6, -1, 0, OVER, OVER),
        narrowing<CS_INT, CS_SMALLINT>(comn_i4toi2, comnb_i4toi2, 8, 7, 32768, 32767, OVER, OVER),
        narrowing<CS_INT, CS_SMALLINT>(comn_i4toi2, comnb_i4toi2, 8, 7, -32769, -32768, OVER, OVER),
        narrowing<CS_INT, CS_SMALLINT>(comn_i4toi2, comnb_i4toi2, 8, 7, -32768, -32768, OK, OK),
        // i8 to i1, i2: the context layer says underflow below the range.
        narrowing<CS_BIGINT, CS_TINYINT>(comn_i8toi1, comnb_i8toi1, 30, 6, -1, 0, UNDER, OVER),
        narrowing<CS_BIGINT, CS_TINYINT>(comn_i8toi1, comnb_i8toi1, 30, 6, 256, 255, OVER, OVER),
        narrowing<CS_BIGINT, CS_SMALLINT>(comn_i8toi2, comnb_i8toi2, 30, 7, -32769, -32768, UNDER, OVER),
        narrowing<CS_BIGINT, CS_SMALLINT>(comn_i8toi2, comnb_i8toi2, 30, 7, 32768, 32767, OVER, OVER),
        // ... but not into i4.
        narrowing<CS_BIGINT, CS_INT>(comn_i8toi4, comnb_i8toi4, 30, 8, -2147483649LL, INT32_MIN, OVER, OVER),
        narrowing<CS_BIGINT, CS_INT>(comn_i8toi4, comnb_i8toi4, 30, 8, 2147483648LL, INT32_MAX, OVER, OVER),
        narrowing<CS_BIGINT, CS_INT>(comn_i8toi4, comnb_i8toi4, 20, 8, INT32_MIN, INT32_MIN, OK, OK),
        // Signed to the wide unsigned types; only i2 clears the server length.
        narrowing<CS_SMALLINT, CS_USMALLINT>(comn_i2toui2, comnb_i2toui2, 7, 31, -1, 0, UNDER, OVER, 0),
        narrowing<CS_SMALLINT, CS_UINT>(comn_i2toui4, comnb_i2toui4, 7, 32, -1, 0, UNDER, OVER, 0),
        narrowing<CS_SMALLINT, CS_UBIGINT>(comn_i2toui8, comnb_i2toui8, 7, 33, -32768, 0, UNDER, OVER, 0),
        narrowing<CS_SMALLINT, CS_USMALLINT>(comn_i2toui2, comnb_i2toui2, 7, 31, 32767, 32767, OK, OK),
        narrowing<CS_INT, CS_USMALLINT>(comn_i4toui2, comnb_i4toui2, 8, 31, -1, 0, UNDER, OVER),
        narrowing<CS_INT, CS_USMALLINT>(comn_i4toui2, comnb_i4toui2, 8, 31, 65536, 65535, OVER, OVER),
        narrowing<CS_INT, CS_UINT>(comn_i4toui4, comnb_i4toui4, 8, 32, INT32_MIN, 0, UNDER, OVER),
        narrowing<CS_INT, CS_UBIGINT>(comn_i4toui8, comnb_i4toui8, 8, 33, -1, 0, UNDER, OVER),
        narrowing<CS_BIGINT, CS_USMALLINT>(comn_i8toui2, comnb_i8toui2, 30, 31, -1, 0, UNDER, OVER),
        narrowing<CS_BIGINT, CS_USMALLINT>(comn_i8toui2, comnb_i8toui2, 20, 31, 65536, 65535, OVER, OVER),
        narrowing<CS_BIGINT, CS_UINT>(comn_i8toui4, comnb_i8toui4, 30, 32, 4294967296LL, UINT32_MAX, OVER, OVER),
        narrowing<CS_BIGINT, CS_UINT>(comn_i8toui4, comnb_i8toui4, 20, 32, -1, 0, UNDER, OVER),
        narrowing<CS_BIGINT, CS_UBIGINT>(comn_i8toui8, comnb_i8toui8, 30, 33, INT64_MIN, 0, UNDER, OVER),
        narrowing<CS_BIGINT, CS_UBIGINT>(comn_i8toui8, comnb_i8toui8, 30, 33, INT64_MAX, INT64_MAX, OK, OK),
        // Unsigned sources only overflow upward.
        narrowing<CS_USMALLINT, CS_TINYINT>(comn_ui2toi1, comnb_ui2toi1, 31, 6, 256, 255, OVER, OVER),
        narrowing<CS_USMALLINT, CS_SMALLINT>(comn_ui2toi2, comnb_ui2toi2, 31, 7, 32768, 32767, OVER, OVER),
        narrowing<CS_UINT, CS_INT>(comn_ui4toi4, comnb_ui4toi4, 32, 8, 2147483648U, INT32_MAX, OVER, OVER),
        narrowing<CS_UINT, CS_USMALLINT>(comn_ui4toui2, comnb_ui4toui2, 32, 31, 65536, 65535, OVER, OVER),
        narrowing<CS_UBIGINT, CS_BIGINT>(comn_ui8toi8, comnb_ui8toi8, 33, 30, 1ULL << 63, INT64_MAX, OVER, OVER),
        narrowing<CS_UBIGINT, CS_UINT>(comn_ui8toui4, comnb_ui8toui4, 33, 32, 1ULL << 32, UINT32_MAX, OVER, OVER),
        narrowing<CS_UBIGINT, CS_TINYINT>(comn_ui8toi1, comnb_ui8toi1, 33, 6, UINT64_MAX, 255, OVER, OVER),
        // Widening copies, zero-extending the unsigned tiny integer.
        narrowing<CS_TINYINT, CS_SMALLINT>(comn_i1toi2, comnb_i1toi2, 6, 7, 255, 255, OK, OK),
        narrowing<CS_TINYINT, CS_BIGINT>(comn_i1toi8, comnb_i1toi8, 6, 30, 200, 200, OK, OK),
        narrowing<CS_SMALLINT, CS_BIGINT>(comn_i2toi8, comnb_i2toi8, 7, 20, -5, -5, OK, OK),
        narrowing<CS_UINT, CS_UBIGINT>(comn_ui4toui8, comnb_ui4toui8, 32, 33, UINT32_MAX, UINT32_MAX, OK, OK),
    };
    for (const Narrowing &c : cases)
        c.check();
}

// Random values against the range rules written independently of the code:
// the stored value is the clamp, and the code says which edge was hit.
TEST(IntConv, RandomNarrowingAgreesWithClamp)
{
    std::mt19937_64 rng(20261122);
    for (int i = 0; i < 20000; i++) {
        CS_BIGINT v = static_cast<CS_BIGINT>(rng()) >> (rng() % 64);
        auto check = [&](CS_CONV_FUNC f, CS_INT desttype, long long lo, long long hi, CS_RETCODE below) {
            auto r = run_comn<CS_BIGINT>(f, CS_BIGINT_TYPE, v, desttype);
            const long long want = v < lo ? lo : v > hi ? hi : v;
            const CS_RETCODE code = v < lo ? below : v > hi ? CS_EOVERFLOW : CS_SUCCEED;
            long long got = 0;
            switch (desttype) {
            case CS_TINYINT_TYPE: got = static_cast<CS_TINYINT>(r.value); break;
            case CS_SMALLINT_TYPE: got = static_cast<CS_SMALLINT>(r.value); break;
            case CS_INT_TYPE: got = static_cast<CS_INT>(r.value); break;
            case CS_USMALLINT_TYPE: got = static_cast<CS_USMALLINT>(r.value); break;
            case CS_UINT_TYPE: got = static_cast<CS_UINT>(r.value); break;
            }
            ASSERT_EQ(got, want) << v << " to " << desttype;
            ASSERT_EQ(r.code, code) << v << " to " << desttype;
        };
        check(comn_i8toi1, CS_TINYINT_TYPE, 0, 255, CS_EUNDERFLOW);
        check(comn_i8toi2, CS_SMALLINT_TYPE, -32768, 32767, CS_EUNDERFLOW);
        check(comn_i8toi4, CS_INT_TYPE, INT32_MIN, INT32_MAX, CS_EOVERFLOW);
        check(comn_i8toui2, CS_USMALLINT_TYPE, 0, 65535, CS_EUNDERFLOW);
        check(comn_i8toui4, CS_UINT_TYPE, 0, UINT32_MAX, CS_EUNDERFLOW);
    }
}

TEST(IntConv, BitSourceOtherThanZeroOrOneIsADomainError)
{
    for (CS_CONV_FUNC f : {comn_bittoi4, comn_bittochar, comn_bittovarbin, comn_bittoflt8}) {
        Context ctx;
        CS_BIT two = 2;
        CS_DATAFMT sf = fmt(CS_BIT_TYPE, 1);
        CS_DATAFMT df = fmt(f == comn_bittoi4 ? CS_INT_TYPE
                            : f == comn_bittochar ? CS_CHAR_TYPE
                            : f == comn_bittovarbin ? CS_VARBINARY_TYPE
                                                    : CS_FLOAT_TYPE,
                            16);
        unsigned char out[300] = {0x5a};
        CS_INT len = 77;
        EXPECT_EQ(f(ctx.get(), &sf, &two, &df, out, &len), CS_EDOMAIN);
        EXPECT_EQ(len, 77);
        EXPECT_EQ(out[0], 0x5a);
    }
    CAST_CONTEXT cc{};
    CS_BIT three = 3;
    CS_INT out = 99;
    __CONSTANT src = constant(&three, 1, 1);
    __CONSTANT dest = constant(reinterpret_cast<CS_BYTE *>(&out), 55, 4);
    EXPECT_EQ(comnb_bittoi4(&cc, &src, &dest), CS_EDOMAIN);
    EXPECT_EQ(dest.len, 55);
    EXPECT_EQ(out, 99);
}

TEST(IntConv, BitToTextAndBytes)
{
    Context ctx;
    CS_BIT one = 1;
    CS_DATAFMT sf = fmt(CS_BIT_TYPE, 1);

    CS_VARBINARY vb{};
    CS_DATAFMT df = fmt(CS_VARBINARY_TYPE, 258);
    CS_INT len = -7;
    EXPECT_EQ(comn_bittovarbin(ctx.get(), &sf, &one, &df, &vb, &len), CS_SUCCEED);
    EXPECT_EQ(vb.len, 1);
    EXPECT_EQ(vb.array[0], '1'); // the character, not the byte
    EXPECT_EQ(len, -7);          // left unwritten

    CS_VARCHAR vc{};
    df = fmt(CS_VARCHAR_TYPE, 258);
    EXPECT_EQ(comn_bittovarchar(ctx.get(), &sf, &one, &df, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(vc.len, 1);
    EXPECT_EQ(vc.str[0], '1');
    EXPECT_EQ(len, -7);

    CS_BYTE bin[4] = {9, 9, 9, 9};
    df = fmt(CS_BINARY_TYPE, 4, CS_FMT_PADNULL);
    EXPECT_EQ(comn_bittobin(ctx.get(), &sf, &one, &df, bin, &len), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(bin, 4), "01000000");
    EXPECT_EQ(len, 4);

    char text[4] = {'x', 'x', 'x', 'x'};
    df = fmt(CS_CHAR_TYPE, 0, CS_FMT_NULLTERM);
    EXPECT_EQ(comn_bittochar(ctx.get(), &sf, &one, &df, text, &len), CS_EOVERFLOW);
    EXPECT_EQ(len, 1);
    EXPECT_EQ(text[0], 'x');
    df = fmt(CS_CHAR_TYPE, 4, CS_FMT_NULLTERM);
    EXPECT_EQ(comn_bittochar(ctx.get(), &sf, &one, &df, text, &len), CS_SUCCEED);
    EXPECT_STREQ(text, "1");
    EXPECT_EQ(len, 2);
}

// Integer to text through each format, capacity and sign.
struct TextCase {
    CS_INT value;
    CS_INT maxlength;
    CS_INT format;
    CS_RETCODE code;
    const char *bytes; // what stands in the destination, as far as it matters
    CS_INT bytes_len;
    CS_INT destlen;
};

TEST(IntConv, IntToCharFormatsAndCapacities)
{
    const TextCase cases[] = {
        {-2147483648, 11, 0, CS_SUCCEED, "-2147483648", 11, 11},
        // No room for the terminator: "*" and a NUL, then the fill counts the NUL.
        {-2147483648, 11, CS_FMT_NULLTERM, CS_EOVERFLOW, "*\0", 2, 2},
        {-2147483648, 12, CS_FMT_NULLTERM, CS_SUCCEED, "-2147483648\0", 12, 12},
        {12, 1, 0, CS_EOVERFLOW, "~", 1, 1}, // capacity 1: nothing written
        {12, 0, 0, CS_EOVERFLOW, "~", 1, 0},
        {123, 2, 0, CS_EOVERFLOW, "*\0", 2, 1},
        {7, 4, CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, "7  \0", 4, 4},
        {0, 1, 0, CS_SUCCEED, "0", 1, 1},
    };
    for (const TextCase &c : cases) {
        Context ctx;
        CS_INT v = c.value;
        CS_DATAFMT sf = fmt(CS_INT_TYPE, 4);
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        char out[32];
        std::memset(out, '~', sizeof out);
        CS_INT len = -1;
        CS_RETCODE code = comn_i4tochar(ctx.get(), &sf, &v, &df, out, &len);
        SCOPED_TRACE(testing::Message() << c.value << " maxlength " << c.maxlength << " format " << c.format);
        EXPECT_EQ(code_name(code), code_name(c.code));
        EXPECT_EQ(std::string(out, static_cast<size_t>(c.bytes_len)), std::string(c.bytes, static_cast<size_t>(c.bytes_len)));
        EXPECT_EQ(len, c.destlen);
    }
}

TEST(IntConv, ServerLayerTextWritesNothingWhenItDoesNotFit)
{
    CAST_CONTEXT cc{};
    CS_UBIGINT v = UINT64_MAX;
    CS_BYTE out[32];
    std::memset(out, '~', sizeof out);
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    __CONSTANT dest = constant(out, -1, 5);
    EXPECT_EQ(comnb_ui8tochar(&cc, &src, &dest), CS_EOVERFLOW);
    EXPECT_EQ(dest.len, 5);
    EXPECT_EQ(out[0], '~');

    dest = constant(out, -1, 25);
    cc.format = CS_FMT_NULLTERM;
    EXPECT_EQ(comnb_ui8tochar(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_STREQ(reinterpret_cast<char *>(out), "18446744073709551615");
    EXPECT_EQ(dest.len, 21);

    dest = constant(out, -1, 19);
    EXPECT_EQ(comnb_ui8tovarchar(&cc, &src, &dest), CS_EOVERFLOW);
    EXPECT_EQ(dest.len, 19);
    dest = constant(out, -1, 20);
    std::memset(out, '~', sizeof out);
    EXPECT_EQ(comnb_ui8tovarchar(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(dest.len, 20);
    EXPECT_EQ(out[20], '~'); // no fill, no terminator
}

TEST(IntConv, ToVarcharCarriesTheTerminator)
{
    Context ctx;
    CS_SMALLINT v = -32768;
    CS_DATAFMT sf = fmt(CS_SMALLINT_TYPE, 2);
    CS_DATAFMT df = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR out;
    std::memset(&out, '~', sizeof out);
    CS_INT len = 0;
    EXPECT_EQ(comn_i2tovarchar(ctx.get(), &sf, &v, &df, &out, &len), CS_SUCCEED);
    EXPECT_EQ(out.len, 6);
    EXPECT_STREQ(out.str, "-32768");
    EXPECT_EQ(len, 258);
}

TEST(IntConv, ToBinaryIsTheStorageBytes)
{
    Context ctx;
    CS_INT v = 0x01020304;
    CS_DATAFMT sf = fmt(CS_INT_TYPE, 4);
    CS_BYTE out[8];
    std::memset(out, 0xee, sizeof out);
    CS_INT len = 0;

    CS_DATAFMT df = fmt(CS_BINARY_TYPE, 8, CS_FMT_PADNULL);
    EXPECT_EQ(comn_i4tobin(ctx.get(), &sf, &v, &df, out, &len), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(out, 8), "0403020100000000");
    EXPECT_EQ(len, 8);

    std::memset(out, 0xee, sizeof out);
    df = fmt(CS_IMAGE_TYPE, 3);
    EXPECT_EQ(comn_i4tobin(ctx.get(), &sf, &v, &df, out, &len), CS_TRUNCATED);
    EXPECT_EQ(kes::test::hex(out, 4), "040302ee");
    EXPECT_EQ(len, 3);

    CS_VARBINARY vb{};
    df = fmt(CS_VARBINARY_TYPE, 258);
    EXPECT_EQ(comn_i4tovarbin(ctx.get(), &sf, &v, &df, &vb, &len), CS_SUCCEED);
    EXPECT_EQ(vb.len, 4);
    EXPECT_EQ(kes::test::hex(vb.array, 4), "04030201");
    EXPECT_EQ(len, 258);
}

template <class F> uint64_t bits_of(F f)
{
    if constexpr (sizeof(F) == 4)
        return std::bit_cast<uint32_t>(f);
    else
        return std::bit_cast<uint64_t>(f);
}

// The 64-bit sources clamp silently at fixed thresholds; one below converts.
TEST(IntConv, SixtyFourBitToFloatClamps)
{
    struct Case {
        std::function<uint64_t()> stored_bits;
        uint64_t expected_bits;
    };
    auto i8f4 = [](CS_BIGINT v) { return bits_of(run_comn<CS_REAL>(comn_i8toflt4, CS_BIGINT_TYPE, v, CS_REAL_TYPE).value); };
    auto i8f8 = [](CS_BIGINT v) { return bits_of(run_comn<CS_FLOAT>(comn_i8toflt8, CS_BIGINT_TYPE, v, CS_FLOAT_TYPE).value); };
    auto u8f4 = [](CS_UBIGINT v) { return bits_of(run_comn<CS_REAL>(comn_ui8toflt4, CS_UBIGINT_TYPE, v, CS_REAL_TYPE).value); };
    auto u8f8 = [](CS_UBIGINT v) { return bits_of(run_comn<CS_FLOAT>(comn_ui8toflt8, CS_UBIGINT_TYPE, v, CS_FLOAT_TYPE).value); };
    const Case cases[] = {
        {[&] { return i8f4(9223370000000000000LL); }, 0x5efffffc},
        {[&] { return i8f4(INT64_MAX); }, 0x5efffffc},
        {[&] { return i8f4(9223369999999999999LL); }, bits_of(static_cast<float>(9223369999999999999LL))},
        {[&] { return i8f8(9223372036854769664LL); }, bits_of(9223372036854769664.0)},
        {[&] { return i8f8(INT64_MAX); }, bits_of(9223372036854769664.0)},
        {[&] { return i8f8(INT64_MIN); }, bits_of(-9223372036854775808.0)},
        {[&] { return u8f4(18446700000000000000ULL); }, 0x5f7fffd8},
        {[&] { return u8f8(UINT64_MAX); }, 0x43efffffffffffe7ULL},
        {[&] { return u8f8(18446744073709500416ULL); }, 0x43efffffffffffe7ULL},
        // Below the threshold with the top bit set, the added 1 tips a tie upward.
        {[&] { return u8f8((1ULL << 63) + 1024); }, bits_of(9223372036854777856.0)},
        {[&] { return u8f8((1ULL << 63) - 1); }, bits_of(9223372036854775808.0)},
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.stored_bits(), c.expected_bits);

    auto r = run_comnb<CS_FLOAT>(comnb_ui8toflt8, CS_UBIGINT{UINT64_MAX});
    EXPECT_EQ(bits_of(r.value), 0x43efffffffffffe7ULL);
    EXPECT_EQ(r.code, CS_SUCCEED);
    EXPECT_EQ(r.len, 8);
}

TEST(IntConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    CS_INT v = 1;
    CS_SMALLINT out;
    CS_INT len;
    CS_DATAFMT sf = fmt(CS_INT_TYPE, 4);
    CS_DATAFMT df = fmt(CS_SMALLINT_TYPE, 2);
    CS_DATAFMT wrong = fmt(CS_FLOAT_TYPE, 8);
    EXPECT_BOMB(comn_i4toi2(ctx.get(), &wrong, &v, &df, &out, &len));
    EXPECT_NULL_POINTER(comn_i4toi2(ctx.get(), &sf, nullptr, &df, &out, &len));
    // CS_LONG reaches only the members that admit it.
    CS_BIGINT big = 1;
    CS_DATAFMT longfmt = fmt(CS_LONG_TYPE, 8);
    EXPECT_BOMB(comn_i8toi2(ctx.get(), &longfmt, &big, &df, &out, &len));
}

} // namespace
