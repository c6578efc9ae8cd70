// Binary sources: every fixed member at its size, one short and one long, the
// numeric header, the bit rules of the two layers, hexadecimal text at odd and
// exact capacities, bytes to binary and CS_VARBINARY, and the pattern that a
// CS_BINARY source is cut with CS_TRUNCATED and a CS_VARBINARY one with
// CS_EOVERFLOW.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "support/context.h"

namespace {

using kes::test::Context;
using kes::test::code_name;
using kes::test::hex;

struct FixedMember {
    const char *name;
    CS_CONV_FUNC bin;
    CS_CONV_FUNC varbin;
    CS_INT desttype;
    CS_INT size;
};

constexpr FixedMember kFixedMembers[] = {
    {"i1", comn_bintoi1, comn_varbintoi1, CS_TINYINT_TYPE, 1},
    {"i2", comn_bintoi2, comn_varbintoi2, CS_SMALLINT_TYPE, 2},
    {"i4", comn_bintoi4, comn_varbintoi4, CS_INT_TYPE, 4},
    {"i8", comn_bintoi8, comn_varbintoi8, CS_BIGINT_TYPE, 8},
    {"i8 as long", comn_bintoi8, comn_varbintoi8, CS_LONG_TYPE, 8},
    {"ui2", comn_bintoui2, comn_varbintoui2, CS_USMALLINT_TYPE, 2},
    {"ui4", comn_bintoui4, comn_varbintoui4, CS_UINT_TYPE, 4},
    {"ui8", comn_bintoui8, comn_varbintoui8, CS_UBIGINT_TYPE, 8},
    {"flt4", comn_bintoflt4, comn_varbintoflt4, CS_REAL_TYPE, 4},
    {"flt8", comn_bintoflt8, comn_varbintoflt8, CS_FLOAT_TYPE, 8},
    {"mny4", comn_bintomny4, comn_varbintomny4, CS_MONEY4_TYPE, 4},
    {"money", comn_bintomoney, comn_varbintomoney, CS_MONEY_TYPE, 8},
    {"date4", comn_bintodate4, comn_varbintodate4, CS_DATETIME4_TYPE, 4},
    {"datetime", comn_bintodatetime, comn_varbintodatetime, CS_DATETIME_TYPE, 8},
    {"bigdatetime", comn_bintobigdatetime, comn_varbintobigdatetime, CS_BIGDATETIME_TYPE, 8},
    {"bigtime", comn_bintobigtime, comn_varbintobigtime, CS_BIGTIME_TYPE, 8},
};

struct Moved {
    CS_RETCODE rc;
    CS_INT destlen;
    std::array<CS_BYTE, 12> dest;
};

// Source bytes 1, 2, 3, ... of the given length through a binary or a
// CS_VARBINARY source; the destination starts as 0xEE.
Moved move(Context &ctx, CS_CONV_FUNC f, bool varbin, CS_INT desttype, CS_INT n)
{
    std::vector<CS_BYTE> bytes(static_cast<size_t>(n));
    for (CS_INT i = 0; i < n; i++)
        bytes[static_cast<size_t>(i)] = static_cast<CS_BYTE>(i + 1);
    CS_VARBINARY vb{};
    vb.len = static_cast<CS_SMALLINT>(n);
    std::memcpy(vb.array, bytes.data(), bytes.size());
    CS_DATAFMT sf = kes::test::fmt(varbin ? CS_VARBINARY_TYPE : CS_BINARY_TYPE, varbin ? 258 : n);
    CS_DATAFMT df = kes::test::fmt(desttype, 0);
    Moved m{};
    m.dest.fill(0xEE);
    m.destlen = -1;
    m.rc = f(ctx.get(), &sf, varbin ? static_cast<CS_VOID *>(&vb) : bytes.data(), &df, m.dest.data(), &m.destlen);
    return m;
}

std::string counting(CS_INT n, CS_INT total)
{
    std::string s;
    for (CS_INT i = 0; i < total; i++)
        s += i < n ? hex(std::array<CS_BYTE, 1>{static_cast<CS_BYTE>(i + 1)}.data(), 1) : "ee";
    return s;
}

TEST(BinConv, FixedMembersAtTheirSizeOneShortAndOneLong)
{
    Context ctx;
    for (const FixedMember &m : kFixedMembers) {
        SCOPED_TRACE(m.name);
        for (bool varbin : {false, true}) {
            CS_CONV_FUNC f = varbin ? m.varbin : m.bin;
            const Moved exact = move(ctx, f, varbin, m.desttype, m.size);
            EXPECT_EQ(exact.rc, CS_SUCCEED);
            EXPECT_EQ(exact.destlen, m.size);
            EXPECT_EQ(hex(exact.dest.data(), 12), counting(m.size, 12));

            const Moved longer = move(ctx, f, varbin, m.desttype, m.size + 1);
            EXPECT_EQ(code_name(longer.rc), code_name(varbin ? CS_EOVERFLOW : CS_TRUNCATED));
            EXPECT_EQ(longer.destlen, m.size);
            EXPECT_EQ(hex(longer.dest.data(), 12), counting(m.size, 12));

            if (m.size > 1) {
                const Moved shorter = move(ctx, f, varbin, m.desttype, m.size - 1);
                EXPECT_EQ(shorter.rc, CS_EUNDERFLOW);
                EXPECT_EQ(shorter.destlen, m.size - 1);
                EXPECT_EQ(hex(shorter.dest.data(), 12), counting(m.size - 1, 12));
            }
        }
    }
}

TEST(BinConv, DateAndTimeFromVarbinaryAreNotRangeTested)
{
    Context ctx;
    const Moved date = move(ctx, comn_varbintodatea, true, CS_DATE_TYPE, 4);
    EXPECT_EQ(date.rc, CS_SUCCEED);
    const Moved time = move(ctx, comn_varbintotimea, true, CS_TIME_TYPE, 5);
    EXPECT_EQ(time.rc, CS_EOVERFLOW);
    EXPECT_EQ(time.destlen, 4);
}

TEST(BinConv, NumericTakesPrecisionAndScaleThenTheDigitArray)
{
    Context ctx;
    struct NumCase {
        CS_INT precision, scale, n;
        CS_RETCODE rc;
        CS_INT destlen;
    };
    constexpr NumCase cases[] = {
        {10, 2, 33, CS_SUCCEED, 35},  {10, 2, 3, CS_EUNDERFLOW, 35}, {77, 77, 34, CS_TRUNCATED, 35},
        {1, 0, 33, CS_SUCCEED, 35},   {0, 0, 33, CS_EPRECISION, -1}, {78, 0, 33, CS_EPRECISION, -1},
        {10, 78, 33, CS_ESCALE, -1},
    };
    for (const NumCase &c : cases) {
        SCOPED_TRACE(std::to_string(c.precision) + "," + std::to_string(c.scale) + " from " + std::to_string(c.n));
        std::vector<CS_BYTE> bytes(static_cast<size_t>(c.n), 0x05);
        CS_DATAFMT sf = kes::test::fmt(CS_BINARY_TYPE, c.n);
        CS_DATAFMT df = kes::test::fmt(CS_NUMERIC_TYPE, 35, 0, c.precision, c.scale);
        CS_NUMERIC num;
        std::memset(&num, 0xEE, sizeof num);
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_bintonum(ctx.get(), &sf, bytes.data(), &df, &num, &destlen)), code_name(c.rc));
        EXPECT_EQ(destlen, c.destlen);
        if (c.destlen == 35) {
            EXPECT_EQ(num.precision, c.precision);
            EXPECT_EQ(num.scale, c.scale);
            EXPECT_EQ(num.array[0], 0x05);
            EXPECT_EQ(num.array[CS_MAX_NUMLEN - 1], c.n >= 33 ? 0x05 : 0xEE);
        }
    }
}

TEST(BinConv, BitFromTheFirstByteHereAndFromAnyByteInTheServerLayer)
{
    Context ctx;
    CS_BYTE bytes[] = {0x00, 0x01};
    CS_DATAFMT sf = kes::test::fmt(CS_BINARY_TYPE, 2);
    CS_DATAFMT df = kes::test::fmt(CS_BIT_TYPE);
    CS_BIT bit = 7;
    CS_INT destlen = 0;
    EXPECT_EQ(comn_bintobit(ctx.get(), &sf, bytes, &df, &bit, &destlen), CS_SUCCEED);
    EXPECT_EQ(bit, 0);
    EXPECT_EQ(destlen, 1);

    CS_VARBINARY vb{};
    vb.len = 1;
    vb.array[0] = 0x80;
    CS_DATAFMT vf = kes::test::fmt(CS_VARBINARY_TYPE, 258);
    EXPECT_EQ(comn_varbintobit(ctx.get(), &vf, &vb, &df, &bit, &destlen), CS_SUCCEED);
    EXPECT_EQ(bit, 1);

    CAST_CONTEXT cc{};
    struct ServerCase {
        std::vector<CS_BYTE> bytes;
        CS_BIT bit;
    };
    const ServerCase cases[] = {{{0x00, 0x01}, 1}, {{0x00, 0x00, 0x00}, 0}, {{}, 0}, {{0x10}, 1}};
    for (const ServerCase &c : cases) {
        std::vector<CS_BYTE> src_bytes = c.bytes;
        CS_BIT out = 7;
        __CONSTANT src = kes::test::constant(src_bytes.data(), static_cast<CS_INT>(src_bytes.size()), 0);
        __CONSTANT dest = kes::test::constant(&out, 0, 1);
        EXPECT_EQ(comnb_bintobit(&cc, &src, &dest), CS_SUCCEED);
        EXPECT_EQ(out, c.bit);
        EXPECT_EQ(dest.len, 1);
    }
}

struct TextCase {
    std::vector<CS_BYTE> bytes;
    CS_INT maxlength;
    CS_INT format;
    CS_RETCODE rc;
    std::string text; // the first 8 bytes of the destination; '#' is untouched
    CS_INT destlen;
};

TEST(BinConv, HexTextPairsOnlyAndTheTextFill)
{
    const TextCase cases[] = {
        {{0xAB}, 8, 0, CS_SUCCEED, "ab######", 2},
        {{0xAB, 0x01}, 3, 0, CS_TRUNCATED, "ab######", 3},
        {{0xAB, 0x01}, 4, 0, CS_SUCCEED, "ab01####", 4},
        {{0xAB, 0x01}, 5, CS_FMT_NULLTERM, CS_SUCCEED, std::string("ab01\0###", 8), 5},
        {{0xAB, 0x01}, 4, CS_FMT_NULLTERM, CS_EOVERFLOW, std::string("ab0\0####", 8), 4},
        {{0xAB, 0x01}, 6, CS_FMT_PADBLANK, CS_SUCCEED, "ab01  ##", 6},
        {{0xAB, 0x01}, 6, CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_EFORMAT, "ab01####", 4},
        {{0xFF, 0x00, 0x7F}, 1, 0, CS_TRUNCATED, "########", 1},
        {{0xFF, 0x00, 0x7F}, 0, 0, CS_TRUNCATED, "########", 0},
        {{}, 4, CS_FMT_NULLTERM, CS_SUCCEED, std::string("\0#######", 8), 1},
    };
    Context ctx;
    for (bool varbin : {false, true}) {
        for (const TextCase &c : cases) {
            SCOPED_TRACE((varbin ? "varbin " : "bin ") + hex(c.bytes.data(), c.bytes.size()) + " capacity " +
                         std::to_string(c.maxlength));
            if (varbin && c.bytes.empty())
                continue;
            std::vector<CS_BYTE> bytes = c.bytes;
            bytes.reserve(1); // a real buffer even for no bytes
            CS_VARBINARY vb{};
            vb.len = static_cast<CS_SMALLINT>(bytes.size());
            std::memcpy(vb.array, bytes.data(), bytes.size());
            CS_DATAFMT sf = kes::test::fmt(varbin ? CS_VARBINARY_TYPE : CS_BINARY_TYPE, static_cast<CS_INT>(bytes.size()));
            CS_DATAFMT df = kes::test::fmt(CS_CHAR_TYPE, c.maxlength, c.format);
            char dest[8];
            std::memset(dest, '#', sizeof dest);
            CS_INT destlen = -1;
            const CS_RETCODE rc = varbin ? comn_varbintochar(ctx.get(), &sf, &vb, &df, dest, &destlen)
                                         : comn_bintochar(ctx.get(), &sf, bytes.data(), &df, dest, &destlen);
            const CS_RETCODE expected = varbin && c.rc == CS_TRUNCATED ? CS_EOVERFLOW : c.rc;
            EXPECT_EQ(code_name(rc), code_name(expected));
            EXPECT_EQ(std::string(dest, 8), c.text);
            EXPECT_EQ(destlen, c.destlen);
        }
    }
}

TEST(BinConv, HexTextIntoVarcharStopsAt256Digits)
{
    Context ctx;
    for (CS_INT n : {1, 127, 128, 129, 255}) {
        SCOPED_TRACE(n);
        std::vector<CS_BYTE> bytes(static_cast<size_t>(n), 0x5A);
        CS_DATAFMT sf = kes::test::fmt(CS_BINARY_TYPE, n);
        CS_DATAFMT df = kes::test::fmt(CS_VARCHAR_TYPE, 258);
        CS_VARCHAR vc;
        std::memset(&vc, '#', sizeof vc);
        CS_INT destlen = -1;
        const CS_RETCODE rc = comn_bintovarchar(ctx.get(), &sf, bytes.data(), &df, &vc, &destlen);
        const CS_INT digits = 2 * n < 256 ? 2 * n : 256;
        EXPECT_EQ(code_name(rc), code_name(2 * n > 256 ? CS_TRUNCATED : CS_SUCCEED));
        EXPECT_EQ(vc.len, digits);
        EXPECT_EQ(destlen, 258);
        EXPECT_EQ(vc.str[digits - 1], 'a');
        if (digits < 256) {
            EXPECT_EQ(vc.str[digits], '#');
        }

        CS_VARBINARY vb{};
        vb.len = static_cast<CS_SMALLINT>(n);
        std::memset(vb.array, 0x5A, static_cast<size_t>(n));
        CS_DATAFMT vf = kes::test::fmt(CS_VARBINARY_TYPE, 258);
        EXPECT_EQ(code_name(comn_varbintovarchar(ctx.get(), &vf, &vb, &df, &vc, &destlen)),
                  code_name(2 * n > 256 ? CS_EOVERFLOW : CS_SUCCEED));
    }
}

TEST(BinConv, BytesToBinaryCutOrFilled)
{
    struct BinCase {
        CS_INT n, maxlength, format;
        CS_RETCODE rc;
        CS_INT destlen;
        std::string dest; // 6 bytes, hex
    };
    constexpr CS_INT kPadNull = CS_FMT_PADNULL;
    const BinCase cases[] = {
        {3, 6, 0, CS_SUCCEED, 3, "010203eeeeee"},
        {3, 6, kPadNull, CS_SUCCEED, 6, "010203000000"},
        {3, 3, kPadNull, CS_SUCCEED, 3, "010203eeeeee"},
        {3, 2, kPadNull, CS_TRUNCATED, 2, "0102eeeeeeee"},
        {3, 0, 0, CS_TRUNCATED, 0, "eeeeeeeeeeee"},
        {1, 1, 0, CS_SUCCEED, 1, "01eeeeeeeeee"},
    };
    Context ctx;
    for (bool varbin : {false, true}) {
        for (const BinCase &c : cases) {
            SCOPED_TRACE(std::string(varbin ? "varbin " : "bin ") + std::to_string(c.n) + " into " +
                         std::to_string(c.maxlength));
            CS_BYTE bytes[] = {1, 2, 3};
            CS_VARBINARY vb{};
            vb.len = static_cast<CS_SMALLINT>(c.n);
            std::memcpy(vb.array, bytes, 3);
            CS_DATAFMT sf = kes::test::fmt(varbin ? CS_VARBINARY_TYPE : CS_BINARY_TYPE, c.n);
            CS_DATAFMT df = kes::test::fmt(CS_IMAGE_TYPE, c.maxlength, c.format);
            CS_BYTE dest[6];
            std::memset(dest, 0xEE, sizeof dest);
            CS_INT destlen = -1;
            const CS_RETCODE rc = varbin ? comn_varbintobin(ctx.get(), &sf, &vb, &df, dest, &destlen)
                                         : comn_bintobin(ctx.get(), &sf, bytes, &df, dest, &destlen);
            EXPECT_EQ(code_name(rc), code_name(varbin && c.rc == CS_TRUNCATED ? CS_EOVERFLOW : c.rc));
            EXPECT_EQ(destlen, c.destlen);
            EXPECT_EQ(hex(dest, 6), c.dest);
        }
    }
}

TEST(BinConv, BytesToVarbinaryHoldAtMost256)
{
    Context ctx;
    struct VarCase {
        CS_INT n;
        CS_RETCODE rc;
        CS_SMALLINT len;
    };
    constexpr VarCase cases[] = {{1, CS_SUCCEED, 1}, {255, CS_SUCCEED, 255}, {256, CS_SUCCEED, 256},
                                 {257, CS_TRUNCATED, 256}, {1000, CS_TRUNCATED, 256}};
    for (const VarCase &c : cases) {
        std::vector<CS_BYTE> bytes(static_cast<size_t>(c.n), 0x42);
        CS_DATAFMT sf = kes::test::fmt(CS_LONGBINARY_TYPE, c.n);
        CS_DATAFMT df = kes::test::fmt(CS_VARBINARY_TYPE, 258);
        CS_VARBINARY vb;
        std::memset(&vb, 0, sizeof vb);
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_bintovarbin(ctx.get(), &sf, bytes.data(), &df, &vb, &destlen)), code_name(c.rc)) << c.n;
        EXPECT_EQ(vb.len, c.len) << c.n;
        EXPECT_EQ(vb.array[c.len - 1], 0x42) << c.n;
        EXPECT_EQ(destlen, 258);
    }
    CS_VARBINARY src{};
    src.len = 256;
    std::memset(src.array, 0x17, 256);
    CS_DATAFMT vf = kes::test::fmt(CS_VARBINARY_TYPE, 258);
    CS_VARBINARY out{};
    CS_INT destlen = -1;
    EXPECT_EQ(comn_varbintovarbin(ctx.get(), &vf, &src, &vf, &out, &destlen), CS_SUCCEED);
    EXPECT_EQ(out.len, 256);
    EXPECT_EQ(out.array[255], 0x17);
}

TEST(BinConv, DateAndTimeFromBinaryAreRangeTested)
{
    Context ctx;
    struct RangeCase {
        CS_CONV_FUNC f;
        CS_INT desttype;
        CS_INT value;
        CS_INT n; // source bytes
        CS_RETCODE rc;
        CS_INT destlen;
    };
    constexpr CS_INT kTicksPerDay = 300 * 86400;
    const RangeCase cases[] = {
        {comn_bintotimea, CS_TIME_TYPE, 0, 4, CS_SUCCEED, 4},
        {comn_bintotimea, CS_TIME_TYPE, kTicksPerDay - 1, 4, CS_SUCCEED, 4},
        {comn_bintotimea, CS_TIME_TYPE, kTicksPerDay, 4, CS_EDOMAIN, 0},
        {comn_bintotimea, CS_TIME_TYPE, -1, 4, CS_EDOMAIN, 0},
        {comn_bintotimea, CS_TIME_TYPE, 5, 5, CS_TRUNCATED, 4},
        {comn_bintodatea, CS_DATE_TYPE, 0, 4, CS_SUCCEED, 4},
        {comn_bintodatea, CS_DATE_TYPE, 0x7FFFFFFF, 4, CS_EDOMAIN, 0},
    };
    for (const RangeCase &c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " from " + std::to_string(c.n));
        CS_BYTE bytes[8] = {};
        std::memcpy(bytes, &c.value, 4);
        CS_DATAFMT sf = kes::test::fmt(CS_BINARY_TYPE, c.n);
        CS_DATAFMT df = kes::test::fmt(c.desttype);
        CS_INT out = 0, destlen = -1;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, bytes, &df, &out, &destlen)), code_name(c.rc));
        EXPECT_EQ(destlen, c.destlen);
    }
}

struct Server {
    CAST_CONTEXT cc{};
    std::vector<CS_BYTE> in;
    CS_BYTE out[40];
    __CONSTANT src{}, dest{};

    Server(std::vector<CS_BYTE> bytes, CS_INT maxlen) : in(std::move(bytes))
    {
        std::memset(out, 0xEE, sizeof out);
        src = kes::test::constant(in.data(), static_cast<CS_INT>(in.size()), 0);
        dest = kes::test::constant(out, -1, maxlen);
    }
};

std::vector<CS_BYTE> bytes_of(const void *p, size_t n)
{
    const auto *b = static_cast<const CS_BYTE *>(p);
    return std::vector<CS_BYTE>(b, b + n);
}

TEST(BinConvServer, DateBytesAreTestedAfterTheMove)
{
    const CS_DATETIME good{0, 0};
    Server ok(bytes_of(&good, 8), 8);
    EXPECT_EQ(comnb_bintodate(&ok.cc, &ok.src, &ok.dest), CS_SUCCEED);
    EXPECT_EQ(ok.dest.len, 8);

    const CS_DATETIME bad{-2147483647, 0};
    Server refused(bytes_of(&bad, 8), 8);
    EXPECT_EQ(comnb_bintodate(&refused.cc, &refused.src, &refused.dest), CS_EDOMAIN);
    EXPECT_EQ(refused.dest.len, 0);

    const CS_INT time = -1;
    Server t(bytes_of(&time, 4), 4);
    EXPECT_EQ(comnb_bintotimea(&t.cc, &t.src, &t.dest), CS_EDOMAIN);
    EXPECT_EQ(t.dest.len, 0);

    // A big time in range answers CS_SUCCEED even when the move cut it.
    std::vector<CS_BYTE> nine(9, 0);
    Server cut(nine, 8);
    EXPECT_EQ(comnb_bintobigtime(&cut.cc, &cut.src, &cut.dest), CS_SUCCEED);
    EXPECT_EQ(cut.dest.len, 8);
    Server far(std::vector<CS_BYTE>(8, 0xFF), 8);
    EXPECT_EQ(comnb_bintobigtime(&far.cc, &far.src, &far.dest), CS_EDOMAIN);
    Server big(std::vector<CS_BYTE>(8, 0xFF), 8);
    EXPECT_EQ(comnb_bintobigdatetime(&big.cc, &big.src, &big.dest), CS_EDOMAIN);
    EXPECT_EQ(big.dest.len, 0);
    // The test reads the destination, so a short source is judged together
    // with the byte it left alone.
    const CS_INT day = 0;
    Server shorter(bytes_of(&day, 3), 4);
    EXPECT_EQ(comnb_bintodatea(&shorter.cc, &shorter.src, &shorter.dest), CS_EDOMAIN);
    Server cleared(bytes_of(&day, 3), 4);
    std::memset(cleared.out, 0, sizeof cleared.out);
    EXPECT_EQ(comnb_bintodatea(&cleared.cc, &cleared.src, &cleared.dest), CS_SUCCEED);
    EXPECT_EQ(cleared.dest.len, 3);
}

TEST(BinConvServer, NumericSignAndPrecisionAfterTheFill)
{
    struct NumCase {
        std::vector<CS_BYTE> bytes;
        CS_INT maxlen, format, prec;
        CS_RETCODE rc;
        CS_INT len;
    };
    const NumCase cases[] = {
        {{0x00, 0x63}, 2, 0, 2, CS_SUCCEED, 2},
        {{0x01, 0x63}, 2, 0, 2, CS_SUCCEED, 2},
        {{0x00, 0x64}, 2, 0, 2, CS_EOVERFLOW, -1},
        {{0x02, 0x01}, 2, 0, 2, CS_EDOMAIN, -1},
        {{0x00, 0x63}, 3, 0, 2, CS_SUCCEED, 2},
        // Filled with a NUL the magnitude is 99 * 256, too wide for 2 digits.
        {{0x00, 0x63}, 3, CS_FMT_PADNULL, 2, CS_EOVERFLOW, -1},
        {{0x00, 0x63}, 3, CS_FMT_PADNULL, 5, CS_SUCCEED, 3},
        {{0x00, 0x00, 0x05}, 2, 0, 2, CS_TRUNCATED, 2},
    };
    for (const NumCase &c : cases) {
        SCOPED_TRACE(hex(c.bytes.data(), c.bytes.size()) + " into " + std::to_string(c.maxlen));
        Server s(c.bytes, c.maxlen);
        s.cc.format = c.format;
        s.dest.prec = static_cast<CS_BYTE>(c.prec);
        EXPECT_EQ(code_name(comnb_bintonum(&s.cc, &s.src, &s.dest)), code_name(c.rc));
        EXPECT_EQ(s.dest.len, c.len);
    }
}

TEST(BinConvDeath, EmptySourcesAndWrongTypes)
{
    Context ctx;
    CS_BYTE bytes[8] = {};
    CS_BYTE dest[64];
    CS_INT destlen;
    CS_DATAFMT empty = kes::test::fmt(CS_BINARY_TYPE, 0);
    CS_DATAFMT one = kes::test::fmt(CS_BINARY_TYPE, 1);
    CS_DATAFMT i4 = kes::test::fmt(CS_INT_TYPE);
    CS_DATAFMT i2 = kes::test::fmt(CS_SMALLINT_TYPE);
    CS_DATAFMT vf = kes::test::fmt(CS_VARBINARY_TYPE, 258);
    CS_VARBINARY none{};
    EXPECT_BOMB(comn_bintoi4(ctx.get(), &empty, bytes, &i4, dest, &destlen));
    EXPECT_BOMB(comn_bintoi4(ctx.get(), &one, bytes, &i2, dest, &destlen));
    EXPECT_BOMB(comn_varbintovarbin(ctx.get(), &vf, &none, &vf, dest, &destlen));
    EXPECT_BOMB(comn_varbintoi4(ctx.get(), &vf, &none, &i4, dest, &destlen));
    EXPECT_NULL_POINTER(comn_bintochar(ctx.get(), &one, bytes, nullptr, dest, &destlen));
}

} // namespace
