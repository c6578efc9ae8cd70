// Integers into numerics in both layers: the length written first, the
// precision and scale checks, the source-value sentinel of the 64-bit
// sources, bit validation, and the matrix cells.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "kescomn/numeric.h"
#include "support/context.h"

namespace {

using kes::test::fmt;
using kes::test::hex;

struct Out {
    CS_NUMERIC num;
    CS_INT destlen = -1;
    Out() { std::memset(&num, 0xCC, sizeof num); }
};

// The source is the low bytes of value, as many as the type has.
CS_RETCODE run(CS_CONV_FUNC f, CS_INT srctype, int64_t value, CS_DATAFMT &dfmt, Out &out)
{
    kes::test::Context ctx;
    CS_DATAFMT sfmt = fmt(srctype, comn_typelen(srctype, 0));
    return f(ctx.get(), &sfmt, &value, &dfmt, &out.num, &out.destlen);
}

CS_BYTE *B(void *p) { return static_cast<CS_BYTE *>(p); }

TEST(IntToNum, ValuesAtPrecisionScaleAndOnePast)
{
    // bytes: precision, scale, then the value.
    struct Case { CS_CONV_FUNC f; CS_INT type; int64_t value; CS_INT prec, scale; CS_RETCODE rc; const char *bytes; };
    const Case cases[] = {
        {comn_i4tonum, CS_INT_TYPE, -123, 5, 2, CS_SUCCEED, "0502" "0100300c"}, // -123.00
        {comn_i4tonum, CS_INT_TYPE, 1000, 5, 2, CS_EOVERFLOW, nullptr},
        {comn_i4tonum, CS_INT_TYPE, 99999, 5, 0, CS_SUCCEED, "0500" "0001869f"},
        {comn_i4tonum, CS_INT_TYPE, 100000, 5, 0, CS_EOVERFLOW, nullptr},
        {comn_i4tonum, CS_INT_TYPE, 0, 1, 77, CS_SUCCEED, "014d" "0000"}, // zero at any scale
        {comn_i4tonum, CS_INT_TYPE, 1, 1, 1, CS_EOVERFLOW, nullptr},    // 1.0 has two digits
        {comn_i2tonum, CS_SMALLINT_TYPE, -32768, 5, 0, CS_SUCCEED, "0500" "01008000"},
        {comn_i8tonum, CS_BIGINT_TYPE, INT64_MIN, 19, 0, CS_SUCCEED, "1300" "018000000000000000"},
        {comn_i8tonum, CS_BIGINT_TYPE, INT64_MIN, 18, 0, CS_EOVERFLOW, nullptr},
        {comn_i8tonum, CS_LONG_TYPE, 7, 19, 0, CS_SUCCEED, "1300" "000000000000000007"},
        {comn_ui8tonum, CS_UBIGINT_TYPE, -1, 20, 0, CS_SUCCEED, "1400" "0000ffffffffffffffff"},
        {comn_bittonum, CS_BIT_TYPE, 1, 1, 0, CS_SUCCEED, "0100" "0001"},
    };
    for (const Case &k : cases) {
        SCOPED_TRACE(k.value);
        CS_DATAFMT d = fmt(CS_NUMERIC_TYPE, 35, 0, k.prec, k.scale);
        Out out;
        EXPECT_EQ(run(k.f, k.type, k.value, d, out), k.rc);
        EXPECT_EQ(out.destlen, 35);
        if (k.bytes) {
            EXPECT_EQ(hex(&out.num, std::strlen(k.bytes) / 2), k.bytes);
        }
    }
}

TEST(IntToNum, PrecisionAndScaleChecksComeAfterTheLength)
{
    struct Case { CS_INT prec, scale; CS_RETCODE rc; } cases[] = {
        {0, 0, CS_EPRECISION}, {78, 0, CS_EPRECISION}, {-1, 0, CS_EPRECISION},
        {5, 78, CS_ESCALE},    {5, -1, CS_ESCALE},     {77, 77, CS_SUCCEED},
    };
    for (const Case &k : cases) {
        CS_DATAFMT d = fmt(CS_NUMERIC_TYPE, 35, 0, k.prec, k.scale);
        Out out;
        EXPECT_EQ(run(comn_i1tonum, CS_TINYINT_TYPE, 0, d, out), k.rc) << k.prec << "," << k.scale;
        EXPECT_EQ(out.destlen, 35);
    }
    // Only the 64-bit sources know the sentinel.
    CS_DATAFMT d = fmt(CS_NUMERIC_TYPE, 35, 0, CS_SRC_VALUE, 0);
    Out out;
    EXPECT_EQ(run(comn_i4tonum, CS_INT_TYPE, 1, d, out), CS_EPRECISION);
}

TEST(IntToNum, SourceValueSentinel)
{
    // The format is marked 255 and the value stands in 10 bytes at the
    // largest precision they hold, scale 0.
    CS_DATAFMT d = fmt(CS_DECIMAL_TYPE, 35, 0, CS_SRC_VALUE, 4);
    Out out;
    EXPECT_EQ(run(comn_i8tonum, CS_BIGINT_TYPE, -42, d, out), CS_SUCCEED);
    EXPECT_EQ(d.precision, 255);
    EXPECT_EQ(d.scale, 4);
    EXPECT_EQ(hex(&out.num, 12), "1500" "0100000000000000002a");
    // The scale alone cannot be shifted by.
    d = fmt(CS_NUMERIC_TYPE, 35, 0, 10, CS_SRC_VALUE);
    EXPECT_EQ(run(comn_i8tonum, CS_BIGINT_TYPE, 1, d, out), CS_ESCALE);
    EXPECT_EQ(d.scale, 255);
}

TEST(IntToNum, BitIsValidatedBeforeAnythingIsWritten)
{
    CS_DATAFMT d = fmt(CS_NUMERIC_TYPE, 35, 0, 0, 0); // a bad precision too
    Out out;
    EXPECT_EQ(run(comn_bittonum, CS_BIT_TYPE, 2, d, out), CS_EDOMAIN);
    EXPECT_EQ(out.destlen, -1);
    CS_BYTE bit = 2, buf[40];
    __CONSTANT src = kes::test::constant(&bit, 1, 1), dest = kes::test::constant(buf, 0, 17);
    dest.prec = 5;
    EXPECT_EQ(comnb_bittonum(nullptr, &src, &dest), CS_EDOMAIN);
    EXPECT_EQ(dest.len, 0);
}

TEST(IntToNum, ServerLayerWritesTheLengthFirstAndHonoursMaxlen)
{
    CAST_CONTEXT cc{};
    CS_INT v = -1234;
    CS_BYTE buf[40];
    std::memset(buf, 0xCC, sizeof buf);
    __CONSTANT src = kes::test::constant(B(&v), 4, 4), dest = kes::test::constant(buf, 0, 4);
    dest.prec = 6;
    dest.scale = 1;
    EXPECT_EQ(comnb_i4tonum(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(hex(buf, 5), "01003034cc"); // -1234.0 in the four bytes of maxlen
    struct Case { int prec, scale; CS_RETCODE rc; } cases[] = {
        {0, 1, CS_EPRECISION}, {78, 1, CS_EPRECISION}, {5, 78, CS_ESCALE}, {5, 2, CS_EOVERFLOW}};
    for (const Case &k : cases) {
        dest.prec = static_cast<CS_BYTE>(k.prec);
        dest.scale = static_cast<CS_BYTE>(k.scale);
        dest.len = 0;
        EXPECT_EQ(comnb_i4tonum(&cc, &src, &dest), k.rc) << k.prec << "," << k.scale;
        EXPECT_EQ(dest.len, 4);
    }
    CS_UBIGINT big = UINT64_MAX;
    __CONSTANT src8 = kes::test::constant(B(&big), 8, 8), dest8 = kes::test::constant(buf, 0, 9);
    dest8.prec = 20;
    EXPECT_EQ(comnb_ui8tonum(&cc, &src8, &dest8), CS_SUCCEED);
    EXPECT_EQ(hex(buf, 9), "00ffffffffffffffff");
    dest8.maxlen = 8;
    EXPECT_EQ(comnb_ui8tonum(&cc, &src8, &dest8), CS_EOVERFLOW); // one byte short
}

// CS_LONG and the text locator take the 64-bit member.
TEST(IntToNum, MatrixCells)
{
    kes::test::Context ctx;
    const CsConvertTbl &t = ctx->ctxcvttbl;
    const struct { int row; CS_CONV_FUNC f; } rows[] = {
        {CS_TINYINT_TYPE, comn_i1tonum},  {CS_SMALLINT_TYPE, comn_i2tonum},   {CS_INT_TYPE, comn_i4tonum},
        {CS_BIGINT_TYPE, comn_i8tonum},   {CS_USMALLINT_TYPE, comn_ui2tonum}, {CS_UINT_TYPE, comn_ui4tonum},
        {CS_UBIGINT_TYPE, comn_ui8tonum}, {CS_BIT_TYPE, comn_bittonum},       {CS_LONG_TYPE, comn_i8tonum},
        {CS_TEXTLOCATOR_TYPE, comn_i8tonum},
    };
    for (const auto &r : rows)
        for (int col : {CS_NUMERIC_TYPE, CS_DECIMAL_TYPE})
            EXPECT_EQ(t.cvttbl[r.row * t.cvtdim + col], r.f) << r.row << " -> " << col;
}

TEST(IntToNumDeath, Assertions)
{
    kes::test::Context ctx;
    CS_INT v = 1, len;
    CS_DATAFMT s = fmt(CS_INT_TYPE, 4), d = fmt(CS_NUMERIC_TYPE, 35, 0, 5, 0), wrong = fmt(CS_MONEY_TYPE, 8);
    CS_NUMERIC n;
    EXPECT_BOMB(comn_i4tonum(ctx.get(), &s, &v, &wrong, &n, &len));
    EXPECT_BOMB(comn_i2tonum(ctx.get(), &s, &v, &d, &n, &len)); // source type mismatch
    EXPECT_NULL_POINTER(comn_i4tonum(ctx.get(), &s, &v, &d, &n, nullptr));
}

} // namespace
