// Integer and bit conversions: saturation and the codes at every range edge in
// both layers against a clamp model, the float clamps, text and byte
// destinations.
#include <bit>
#include <cstdint>
#include <random>

#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::constant;
using kes::test::Context;
using kes::test::fmt;
using kes::test::hex;
using ComnbFunc = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

struct Type { CS_INT code, size; long long lo; unsigned long long hi; };
constexpr Type I1{CS_TINYINT_TYPE, 1, 0, 255}, I2{CS_SMALLINT_TYPE, 2, INT16_MIN, INT16_MAX},
    I4{CS_INT_TYPE, 4, INT32_MIN, INT32_MAX}, I8{CS_BIGINT_TYPE, 8, INT64_MIN, INT64_MAX},
    LONG{CS_LONG_TYPE, 8, INT64_MIN, INT64_MAX}, UI2{CS_USMALLINT_TYPE, 2, 0, UINT16_MAX},
    UI4{CS_UINT_TYPE, 4, 0, UINT32_MAX}, UI8{CS_UBIGINT_TYPE, 8, 0, UINT64_MAX};

// The value of the bytes at p read as type t.
__int128 read(const Type &t, const void *p)
{
    uint64_t u = 0;
    std::memcpy(&u, p, static_cast<size_t>(t.size));
    const int shift = 64 - 8 * t.size;
    return t.lo < 0 ? static_cast<__int128>(static_cast<int64_t>(u << shift) >> shift) : static_cast<__int128>(u);
}

// One member pair.  Below the range the context layer answers `below` (the
// deliberate unevenness: UNDER for some pairs, OVER for others), the server
// layer always CS_EOVERFLOW and sets its length to below_len (-1: the size).
struct Pair {
    CS_CONV_FUNC comn;
    ComnbFunc comnb;
    Type src, dst;
    CS_RETCODE below = CS_EOVERFLOW;
    CS_INT below_len = -1;
};
constexpr CS_RETCODE UNDER = CS_EUNDERFLOW;
const Pair kPairs[] = {
    {comn_i2toi1, comnb_i2toi1, I2, I1}, {comn_i4toi1, comnb_i4toi1, I4, I1}, {comn_i4toi2, comnb_i4toi2, I4, I2},
    {comn_i8toi1, comnb_i8toi1, I8, I1, UNDER}, {comn_i8toi2, comnb_i8toi2, I8, I2, UNDER},
    {comn_i8toi4, comnb_i8toi4, LONG, I4}, {comn_i8toi4, comnb_i8toi4, I8, I4},
    {comn_i2toui2, comnb_i2toui2, I2, UI2, UNDER, 0}, {comn_i2toui4, comnb_i2toui4, I2, UI4, UNDER, 0},
    {comn_i2toui8, comnb_i2toui8, I2, UI8, UNDER, 0}, {comn_i4toui2, comnb_i4toui2, I4, UI2, UNDER},
    {comn_i4toui4, comnb_i4toui4, I4, UI4, UNDER}, {comn_i4toui8, comnb_i4toui8, I4, UI8, UNDER},
    {comn_i8toui2, comnb_i8toui2, LONG, UI2, UNDER}, {comn_i8toui4, comnb_i8toui4, I8, UI4, UNDER},
    {comn_i8toui8, comnb_i8toui8, I8, UI8, UNDER}, {comn_ui2toi1, comnb_ui2toi1, UI2, I1},
    {comn_ui2toi2, comnb_ui2toi2, UI2, I2}, {comn_ui4toi4, comnb_ui4toi4, UI4, I4},
    {comn_ui4toui2, comnb_ui4toui2, UI4, UI2}, {comn_ui8toi8, comnb_ui8toi8, UI8, I8},
    {comn_ui8toui4, comnb_ui8toui4, UI8, UI4}, {comn_ui8toi1, comnb_ui8toi1, UI8, I1},
    {comn_i1toi2, comnb_i1toi2, I1, I2}, {comn_i1toi8, comnb_i1toi8, I1, I8}, {comn_i2toi8, comnb_i2toi8, I2, LONG},
    {comn_ui4toui8, comnb_ui4toui8, UI4, UI8},
};

// Every edge of every type and its neighbours first, then random values of
// random widths; each is taken modulo the source type.  The model: the
// stored value is the clamp, and the code names the edge that was passed.
TEST(IntConv, EveryPairAgreesWithTheClampModelInBothLayers)
{
    std::vector<uint64_t> values;
    for (const Type &t : {I1, I2, I4, I8, UI2, UI4, UI8})
        for (__int128 edge : {static_cast<__int128>(t.lo), static_cast<__int128>(t.hi)})
            for (int d : {-1, 0, 1})
                values.push_back(static_cast<uint64_t>(edge + d));
    std::mt19937_64 rng(20261122);
    while (values.size() < 3000)
        values.push_back((rng() >> (rng() % 64)) ^ (rng() % 2 ? ~0ull : 0));
    Context ctx;
    for (const Pair &p : kPairs) {
        for (uint64_t raw : values) {
            const __int128 v = read(p.src, &raw);
            SCOPED_TRACE(testing::Message() << "type " << p.src.code << " -> " << p.dst.code << " value "
                                            << static_cast<long long>(v) << (v > INT64_MAX ? " (unsigned)" : ""));
            const bool below = v < p.dst.lo, above = v > static_cast<__int128>(p.dst.hi);
            const __int128 want = below ? p.dst.lo : above ? p.dst.hi : v;
            CS_DATAFMT sf = fmt(p.src.code, p.src.size), df = fmt(p.dst.code, p.dst.size);
            uint64_t out = 0x5A5A5A5A5A5A5A5A;
            CS_INT len = -1;
            ASSERT_EQ(code_name(p.comn(ctx.get(), &sf, &raw, &df, &out, &len)),
                      code_name(below ? p.below : above ? CS_EOVERFLOW : CS_SUCCEED));
            ASSERT_TRUE(read(p.dst, &out) == want) << static_cast<long long>(read(p.dst, &out));
            ASSERT_EQ(len, p.dst.size);
            CAST_CONTEXT cc{};
            out = 0;
            __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&raw), p.src.size, p.src.size);
            __CONSTANT dest = constant(reinterpret_cast<CS_BYTE *>(&out), -1, p.dst.size);
            ASSERT_EQ(code_name(p.comnb(&cc, &src, &dest)), code_name(below || above ? CS_EOVERFLOW : CS_SUCCEED));
            ASSERT_TRUE(read(p.dst, &out) == want) << static_cast<long long>(read(p.dst, &out)) << " server";
            ASSERT_EQ(dest.len, below && p.below_len >= 0 ? p.below_len : p.dst.size);
        }
    }
}

// A bit other than 0 or 1 leaves the destination and its length alone; a
// bit becomes the character '1' even in bytes, and the CS_VARBINARY member
// leaves *destlen unwritten.
TEST(IntConv, BitConversions)
{
    struct Case {
        CS_CONV_FUNC f;
        CS_INT type, maxlength, format;
        CS_BIT bit;
        CS_RETCODE rc;
        const char *bytes; // what the destination starts with
        CS_INT len;
    };
    const Case cases[] = {
        {comn_bittoi4, CS_INT_TYPE, 4, 0, 2, CS_EDOMAIN, "5a", 77},
        {comn_bittochar, CS_CHAR_TYPE, 16, 0, 2, CS_EDOMAIN, "5a", 77},
        {comn_bittovarbin, CS_VARBINARY_TYPE, 258, 0, 2, CS_EDOMAIN, "5a", 77},
        {comn_bittoflt8, CS_FLOAT_TYPE, 8, 0, 2, CS_EDOMAIN, "5a", 77},
        {comn_bittovarbin, CS_VARBINARY_TYPE, 258, 0, 1, CS_SUCCEED, "010031", 77},
        {comn_bittobin, CS_BINARY_TYPE, 4, CS_FMT_PADNULL, 1, CS_SUCCEED, "01000000", 4},
        {comn_bittochar, CS_CHAR_TYPE, 0, CS_FMT_NULLTERM, 1, CS_EOVERFLOW, "5a", 1},
    };
    Context ctx;
    for (const Case &c : cases) {
        CS_BIT bit = c.bit;
        CS_DATAFMT sf = fmt(CS_BIT_TYPE, 1), df = fmt(c.type, c.maxlength, c.format);
        unsigned char out[300];
        std::memset(out, 0x5a, sizeof out);
        CS_INT len = 77;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, &bit, &df, out, &len)), code_name(c.rc)) << c.type << " " << +c.bit;
        EXPECT_EQ(hex(out, std::strlen(c.bytes) / 2), c.bytes) << c.type << " " << +c.bit;
        EXPECT_EQ(len, c.len) << c.type << " " << +c.bit;
    }
    CAST_CONTEXT cc{};
    CS_BIT three = 3;
    CS_INT out = 99;
    __CONSTANT src = constant(&three, 1, 1), dest = constant(reinterpret_cast<CS_BYTE *>(&out), 55, 4);
    EXPECT_EQ(comnb_bittoi4(&cc, &src, &dest), CS_EDOMAIN);
    EXPECT_EQ(dest.len, 55);
    EXPECT_EQ(out, 99);
}

TEST(IntConv, IntToCharFormatsAndCapacities)
{
    struct Case { CS_INT value, maxlength, format; CS_RETCODE code; std::string bytes; CS_INT destlen; };
    using namespace std::string_literals;
    const Case cases[] = {
        {INT32_MIN, 11, 0, CS_SUCCEED, "-2147483648", 11},
        // No room for the terminator: "*" and a NUL, and the length counts the NUL.
        {INT32_MIN, 11, CS_FMT_NULLTERM, CS_EOVERFLOW, "*\0"s, 2},
        {INT32_MIN, 12, CS_FMT_NULLTERM, CS_SUCCEED, "-2147483648\0"s, 12},
        {12, 1, 0, CS_EOVERFLOW, "~", 1}, {12, 0, 0, CS_EOVERFLOW, "~", 0}, // capacity 1 or 0: nothing written
        {123, 2, 0, CS_EOVERFLOW, "*\0"s, 1}, {7, 4, CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, "7  \0"s, 4},
        {0, 1, 0, CS_SUCCEED, "0", 1},
    };
    Context ctx;
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " maxlength " << c.maxlength << " format " << c.format);
        CS_INT v = c.value, len = -1;
        CS_DATAFMT sf = fmt(CS_INT_TYPE, 4), df = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        char out[32];
        std::memset(out, '~', sizeof out);
        EXPECT_EQ(code_name(comn_i4tochar(ctx.get(), &sf, &v, &df, out, &len)), code_name(c.code));
        EXPECT_EQ(std::string(out, c.bytes.size()), c.bytes);
        EXPECT_EQ(len, c.destlen);
    }
}

// The server layer writes nothing when the text does not fit; its varchar
// neither fills nor terminates.
TEST(IntConv, ServerLayerTextWritesNothingWhenItDoesNotFit)
{
    CAST_CONTEXT cc{};
    CS_UBIGINT v = UINT64_MAX;
    CS_BYTE out[32];
    std::memset(out, '~', sizeof out);
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8), dest = constant(out, -1, 5);
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
    EXPECT_EQ(out[20], '~');
}

// CS_VARCHAR gets the text with a terminator after len; bytes are the storage
// order, cut to the capacity.
TEST(IntConv, ToVarcharAndToBinary)
{
    Context ctx;
    CS_SMALLINT s = -32768;
    CS_DATAFMT sf = fmt(CS_SMALLINT_TYPE, 2), df = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR vc;
    std::memset(&vc, '~', sizeof vc);
    CS_INT len = 0;
    EXPECT_EQ(comn_i2tovarchar(ctx.get(), &sf, &s, &df, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(vc.len, 6);
    EXPECT_STREQ(vc.str, "-32768");
    EXPECT_EQ(len, 258);
    CS_INT v = 0x01020304;
    CS_BYTE out[8];
    std::memset(out, 0xee, sizeof out);
    sf = fmt(CS_INT_TYPE, 4);
    df = fmt(CS_BINARY_TYPE, 8, CS_FMT_PADNULL);
    EXPECT_EQ(comn_i4tobin(ctx.get(), &sf, &v, &df, out, &len), CS_SUCCEED);
    EXPECT_EQ(hex(out, 8), "0403020100000000");
    EXPECT_EQ(len, 8);
    std::memset(out, 0xee, sizeof out);
    df = fmt(CS_IMAGE_TYPE, 3);
    EXPECT_EQ(comn_i4tobin(ctx.get(), &sf, &v, &df, out, &len), CS_TRUNCATED);
    EXPECT_EQ(hex(out, 4), "040302ee");
    EXPECT_EQ(len, 3);
}

// The 64-bit sources clamp silently at fixed thresholds; one below converts.
TEST(IntConv, SixtyFourBitToFloatClamps)
{
    struct Case { bool is_unsigned, single; uint64_t value, bits; };
    auto b4 = [](float f) { return uint64_t{std::bit_cast<uint32_t>(f)}; };
    auto b8 = [](double d) { return std::bit_cast<uint64_t>(d); };
    const Case cases[] = {
        {false, true, 9223370000000000000ULL, 0x5efffffc}, {false, true, INT64_MAX, 0x5efffffc},
        {false, true, 9223369999999999999ULL, b4(9223369999999999999.0f)},
        {false, false, 9223372036854769664ULL, b8(9223372036854769664.0)},
        {false, false, INT64_MAX, b8(9223372036854769664.0)},
        {false, false, 1ULL << 63, b8(-9223372036854775808.0)}, // INT64_MIN
        {true, true, 18446700000000000000ULL, 0x5f7fffd8}, {true, false, UINT64_MAX, 0x43efffffffffffe7ULL},
        {true, false, 18446744073709500416ULL, 0x43efffffffffffe7ULL},
        // Below the threshold with the top bit set, the added 1 tips a tie upward.
        {true, false, (1ULL << 63) + 1024, b8(9223372036854777856.0)},
        {true, false, (1ULL << 63) - 1, b8(9223372036854775808.0)},
    };
    Context ctx;
    for (const Case &c : cases) {
        const CS_CONV_FUNC f = c.is_unsigned ? (c.single ? comn_ui8toflt4 : comn_ui8toflt8)
                                             : (c.single ? comn_i8toflt4 : comn_i8toflt8);
        CS_DATAFMT sf = fmt(c.is_unsigned ? CS_UBIGINT_TYPE : CS_BIGINT_TYPE, 8);
        CS_DATAFMT df = fmt(c.single ? CS_REAL_TYPE : CS_FLOAT_TYPE, c.single ? 4 : 8);
        uint64_t v = c.value, out = 0;
        CS_INT len;
        EXPECT_EQ(f(ctx.get(), &sf, &v, &df, &out, &len), CS_SUCCEED);
        EXPECT_EQ(out, c.bits) << c.value;
    }
    CAST_CONTEXT cc{};
    uint64_t v = UINT64_MAX, out = 0;
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    __CONSTANT dest = constant(reinterpret_cast<CS_BYTE *>(&out), -1, 8);
    EXPECT_EQ(comnb_ui8toflt8(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(out, 0x43efffffffffffe7ULL);
    EXPECT_EQ(dest.len, 8);
}

TEST(IntConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    CS_INT v = 1, len;
    CS_BIGINT big = 1;
    CS_SMALLINT out;
    CS_DATAFMT sf = fmt(CS_INT_TYPE, 4), df = fmt(CS_SMALLINT_TYPE, 2), wrong = fmt(CS_FLOAT_TYPE, 8);
    CS_DATAFMT longfmt = fmt(CS_LONG_TYPE, 8);
    EXPECT_BOMB(comn_i4toi2(ctx.get(), &wrong, &v, &df, &out, &len));
    EXPECT_NULL_POINTER(comn_i4toi2(ctx.get(), &sf, nullptr, &df, &out, &len));
    EXPECT_BOMB(comn_i8toi2(ctx.get(), &longfmt, &big, &df, &out, &len)); // CS_LONG reaches only members that admit it
}

} // namespace
