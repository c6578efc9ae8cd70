// Binary sources: bytes taken as each storage record, the numeric header, bit,
// hexadecimal text, binary destinations, and the range tests of dates and
// times.  A CS_BINARY source reports a cut as CS_TRUNCATED, a CS_VARBINARY
// one as CS_EOVERFLOW.
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "support/context.h"

namespace {

using namespace std::string_literals;
using kes::test::code_name;
using kes::test::fmt;
using kes::test::hex;

CS_CONTEXT *ctx() { static kes::test::Context c; return c.get(); }

struct Pair { CS_CONV_FUNC bin, varbin; }; // either may be null

// Calls the member for bytes 1, 2, 3, ... n as a CS_BINARY or CS_VARBINARY
// source (n <= 256 for the latter).
CS_RETCODE call(Pair f, bool varbin, CS_INT n, CS_DATAFMT df, void *dest, CS_INT *destlen)
{
    std::vector<CS_BYTE> bytes(static_cast<size_t>(n) + 1);
    for (CS_INT i = 0; i < n; i++)
        bytes[static_cast<size_t>(i)] = static_cast<CS_BYTE>(i + 1);
    CS_VARBINARY vb{};
    vb.len = static_cast<CS_SMALLINT>(varbin ? n : 0);
    std::memcpy(vb.array, bytes.data(), static_cast<size_t>(vb.len));
    CS_DATAFMT sf = varbin ? fmt(CS_VARBINARY_TYPE, sizeof vb) : fmt(CS_BINARY_TYPE, n);
    *destlen = -1;
    return varbin ? f.varbin(ctx(), &sf, &vb, &df, dest, destlen) : f.bin(ctx(), &sf, bytes.data(), &df, dest, destlen);
}

CS_RETCODE cut(bool varbin, CS_RETCODE rc) { return varbin && rc == CS_TRUNCATED ? CS_EOVERFLOW : rc; }

// Exactly the record's size succeeds, one more is cut, one fewer underflows;
// the bytes land unchanged and nothing past the size is written.
TEST(BinConv, FixedMembersTakeTheirSizeOneShortAndOneLong)
{
    struct Member { Pair f; CS_INT type, size; };
    const Member members[] = {
        {{comn_bintoi1, comn_varbintoi1}, CS_TINYINT_TYPE, 1}, {{comn_bintoi2, comn_varbintoi2}, CS_SMALLINT_TYPE, 2},
        {{comn_bintoi4, comn_varbintoi4}, CS_INT_TYPE, 4}, {{comn_bintoi8, comn_varbintoi8}, CS_BIGINT_TYPE, 8},
        {{comn_bintoi8, comn_varbintoi8}, CS_LONG_TYPE, 8}, {{comn_bintoui2, comn_varbintoui2}, CS_USMALLINT_TYPE, 2},
        {{comn_bintoui4, comn_varbintoui4}, CS_UINT_TYPE, 4}, {{comn_bintoui8, comn_varbintoui8}, CS_UBIGINT_TYPE, 8},
        {{comn_bintoflt4, comn_varbintoflt4}, CS_REAL_TYPE, 4}, {{comn_bintoflt8, comn_varbintoflt8}, CS_FLOAT_TYPE, 8},
        {{comn_bintomny4, comn_varbintomny4}, CS_MONEY4_TYPE, 4}, {{comn_bintomoney, comn_varbintomoney}, CS_MONEY_TYPE, 8},
        {{comn_bintodate4, comn_varbintodate4}, CS_DATETIME4_TYPE, 4},
        {{comn_bintodatetime, comn_varbintodatetime}, CS_DATETIME_TYPE, 8},
        {{comn_bintobigdatetime, comn_varbintobigdatetime}, CS_BIGDATETIME_TYPE, 8},
        {{comn_bintobigtime, comn_varbintobigtime}, CS_BIGTIME_TYPE, 8},
        // From a CS_VARBINARY the date and time bytes are not range tested.
        {{nullptr, comn_varbintodatea}, CS_DATE_TYPE, 4}, {{nullptr, comn_varbintotimea}, CS_TIME_TYPE, 4},
    };
    for (const Member &m : members) {
        for (bool varbin : {false, true}) {
            if (!varbin && m.f.bin == nullptr)
                continue;
            for (CS_INT n : {m.size - 1, m.size, m.size + 1}) {
                SCOPED_TRACE("type " + std::to_string(m.type) + (varbin ? " varbin " : " bin ") + std::to_string(n));
                if (n == 0)
                    continue;
                CS_BYTE dest[12];
                std::memset(dest, 0xEE, sizeof dest);
                CS_INT destlen;
                const CS_RETCODE rc = call(m.f, varbin, n, fmt(m.type), dest, &destlen);
                const CS_RETCODE want = n < m.size ? CS_EUNDERFLOW : n > m.size ? cut(varbin, CS_TRUNCATED) : CS_SUCCEED;
                const CS_INT stored = n < m.size ? n : m.size;
                EXPECT_EQ(code_name(rc), code_name(want));
                EXPECT_EQ(destlen, stored);
                EXPECT_EQ(hex(dest, 12), hex("\1\2\3\4\5\6\7\x8", static_cast<size_t>(stored)) +
                                             std::string(2 * static_cast<size_t>(12 - stored), 'e'));
            }
        }
    }
}

TEST(BinConv, NumericTakesPrecisionAndScaleThenTheDigitArray)
{
    struct Case { CS_INT precision, scale, n; CS_RETCODE rc; CS_INT destlen; };
    constexpr Case cases[] = {
        {10, 2, 33, CS_SUCCEED, 35}, {10, 2, 3, CS_EUNDERFLOW, 35}, {77, 77, 34, CS_TRUNCATED, 35},
        {1, 0, 33, CS_SUCCEED, 35},  {0, 0, 33, CS_EPRECISION, -1}, {78, 0, 33, CS_EPRECISION, -1},
        {10, 78, 33, CS_ESCALE, -1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::to_string(c.precision) + "," + std::to_string(c.scale) + " from " + std::to_string(c.n));
        CS_NUMERIC num;
        std::memset(&num, 0xEE, sizeof num);
        CS_INT destlen;
        const CS_RETCODE rc = call({comn_bintonum, nullptr}, false, c.n,
                                   fmt(CS_NUMERIC_TYPE, sizeof num, 0, c.precision, c.scale), &num, &destlen);
        EXPECT_EQ(code_name(rc), code_name(c.rc));
        EXPECT_EQ(destlen, c.destlen);
        if (c.destlen == 35) {
            EXPECT_EQ(num.precision, c.precision);
            EXPECT_EQ(num.scale, c.scale);
            EXPECT_EQ(num.array[0], 1);
            EXPECT_EQ(num.array[CS_MAX_NUMLEN - 1], c.n >= 33 ? 33 : 0xEE);
        }
    }
}

// The context layer's bit looks at the first byte only, the server's at all.
TEST(BinConv, BitFromTheFirstByteHereAndFromAnyByteInTheServerLayer)
{
    CS_BYTE bytes[] = {0x00, 0x01};
    CS_DATAFMT sf = fmt(CS_BINARY_TYPE, 2), df = fmt(CS_BIT_TYPE);
    CS_BIT bit = 7;
    CS_INT destlen = 0;
    EXPECT_EQ(comn_bintobit(ctx(), &sf, bytes, &df, &bit, &destlen), CS_SUCCEED);
    EXPECT_EQ(bit, 0);
    EXPECT_EQ(destlen, 1);
    CAST_CONTEXT cc{};
    __CONSTANT src = kes::test::constant(bytes, 2, 0), dest = kes::test::constant(&bit, 0, 1);
    EXPECT_EQ(comnb_bintobit(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(bit, 1);
    EXPECT_EQ(dest.len, 1);
}

// Hexadecimal text writes whole pairs only but counts an odd capacity whole;
// binary destinations are cut or filled.  '#' marks bytes left alone.
TEST(BinConv, TextAndBinaryDestinationsCutOrFill)
{
    const Pair text{comn_bintochar, comn_varbintochar}, bin{comn_bintobin, comn_varbintobin};
    struct Case { Pair f; CS_INT type, n, maxlength, format; CS_RETCODE rc; std::string dest; CS_INT destlen; };
    const Case cases[] = {
        {text, CS_CHAR_TYPE, 1, 8, 0, CS_SUCCEED, "01######", 2},
        {text, CS_CHAR_TYPE, 2, 3, 0, CS_TRUNCATED, "01######", 3},
        {text, CS_CHAR_TYPE, 2, 4, 0, CS_SUCCEED, "0102####", 4},
        {text, CS_CHAR_TYPE, 2, 5, CS_FMT_NULLTERM, CS_SUCCEED, "0102\0###"s, 5},
        {text, CS_CHAR_TYPE, 2, 4, CS_FMT_NULLTERM, CS_EOVERFLOW, "010\0####"s, 4},
        {text, CS_CHAR_TYPE, 2, 6, CS_FMT_PADBLANK, CS_SUCCEED, "0102  ##", 6},
        {text, CS_CHAR_TYPE, 2, 6, CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_EFORMAT, "0102####", 4},
        {text, CS_CHAR_TYPE, 3, 1, 0, CS_TRUNCATED, "########", 1},
        {text, CS_CHAR_TYPE, 3, 0, 0, CS_TRUNCATED, "########", 0},
        {{comn_bintochar, nullptr}, CS_CHAR_TYPE, 0, 4, CS_FMT_NULLTERM, CS_SUCCEED, "\0#######"s, 1},
        {bin, CS_IMAGE_TYPE, 3, 6, 0, CS_SUCCEED, "\1\2\3#####", 3},
        {bin, CS_IMAGE_TYPE, 3, 6, CS_FMT_PADNULL, CS_SUCCEED, "\1\2\3\0\0\0##"s, 6},
        {bin, CS_BINARY_TYPE, 3, 3, CS_FMT_PADNULL, CS_SUCCEED, "\1\2\3#####", 3},
        {bin, CS_BINARY_TYPE, 3, 2, CS_FMT_PADNULL, CS_TRUNCATED, "\1\2######", 2},
        {bin, CS_LONGBINARY_TYPE, 3, 0, 0, CS_TRUNCATED, "########", 0},
        {bin, CS_BINARY_TYPE, 1, 1, 0, CS_SUCCEED, "\1#######", 1},
    };
    for (const Case &c : cases) {
        for (bool varbin : {false, true}) {
            if (varbin && c.f.varbin == nullptr)
                continue;
            SCOPED_TRACE(std::to_string(c.n) + (varbin ? " varbin" : "") + " bytes into " + std::to_string(c.maxlength));
            char dest[8];
            std::memset(dest, '#', sizeof dest);
            CS_INT destlen;
            const CS_RETCODE rc = call(c.f, varbin, c.n, fmt(c.type, c.maxlength, c.format), dest, &destlen);
            EXPECT_EQ(code_name(rc), code_name(cut(varbin, c.rc)));
            EXPECT_EQ(std::string(dest, 8), c.dest);
            EXPECT_EQ(destlen, c.destlen);
        }
    }
}

// A CS_VARCHAR takes 256 digits, a CS_VARBINARY 256 bytes.
TEST(BinConv, VarcharAndVarbinaryDestinationsHold256)
{
    for (CS_INT n : {127, 128, 129, 255, 256, 257}) {
        for (bool varbin : {false, true}) {
            if (varbin && n > CS_MAX_CHAR)
                continue;
            SCOPED_TRACE(std::to_string(n) + (varbin ? " varbin bytes" : " bytes"));
            CS_VARCHAR vc{};
            CS_INT destlen;
            CS_RETCODE rc =
                call({comn_bintovarchar, comn_varbintovarchar}, varbin, n, fmt(CS_VARCHAR_TYPE, 258), &vc, &destlen);
            EXPECT_EQ(code_name(rc), code_name(cut(varbin, 2 * n > 256 ? CS_TRUNCATED : CS_SUCCEED)));
            EXPECT_EQ(vc.len, 2 * n > 256 ? 256 : 2 * n);
            const CS_BYTE last = static_cast<CS_BYTE>(vc.len / 2);
            EXPECT_EQ(std::string(vc.str, 4) + std::string(vc.str + vc.len - 2, 2), "0102" + hex(&last, 1));
            EXPECT_EQ(destlen, 258);
            CS_VARBINARY vb{};
            rc = call({comn_bintovarbin, comn_varbintovarbin}, varbin, n, fmt(CS_VARBINARY_TYPE, 258), &vb, &destlen);
            EXPECT_EQ(code_name(rc), code_name(n > 256 ? CS_TRUNCATED : CS_SUCCEED));
            EXPECT_EQ(vb.len, n > 256 ? 256 : n);
            EXPECT_EQ(vb.array[vb.len - 1], static_cast<CS_BYTE>(vb.len));
            EXPECT_EQ(destlen, 258);
        }
    }
}

// A time is a tick count of one day; a date's day must be in range.
TEST(BinConv, DateAndTimeFromBinaryAreRangeTested)
{
    constexpr CS_INT kTicksPerDay = 300 * 86400;
    const std::tuple<CS_CONV_FUNC, CS_INT, CS_INT, CS_INT, CS_RETCODE, CS_INT> cases[] = {
        {comn_bintotimea, CS_TIME_TYPE, 0, 4, CS_SUCCEED, 4},  {comn_bintotimea, CS_TIME_TYPE, -1, 4, CS_EDOMAIN, 0},
        {comn_bintotimea, CS_TIME_TYPE, kTicksPerDay - 1, 4, CS_SUCCEED, 4},
        {comn_bintotimea, CS_TIME_TYPE, kTicksPerDay, 4, CS_EDOMAIN, 0},
        {comn_bintotimea, CS_TIME_TYPE, 5, 5, CS_TRUNCATED, 4}, {comn_bintodatea, CS_DATE_TYPE, 0, 4, CS_SUCCEED, 4},
        {comn_bintodatea, CS_DATE_TYPE, 0x7FFFFFFF, 4, CS_EDOMAIN, 0},
    };
    for (auto [f, type, value, n, rc, len] : cases) {
        SCOPED_TRACE(std::to_string(value) + " from " + std::to_string(n));
        CS_BYTE bytes[8] = {};
        std::memcpy(bytes, &value, 4);
        CS_DATAFMT sf = fmt(CS_BINARY_TYPE, n), df = fmt(type);
        CS_INT out = 0, destlen = -1;
        EXPECT_EQ(code_name(f(ctx(), &sf, bytes, &df, &out, &destlen)), code_name(rc));
        EXPECT_EQ(destlen, len);
    }
}

// The server layer moves the bytes and then tests what the destination holds,
// so a short source is judged with the bytes it left alone; the big types
// answer CS_SUCCEED for any value in range, cut or not.  Numeric digits must
// fit the precision as they stand after the fill.
TEST(BinConvServer, RangeAndPrecisionAreTestedAfterTheMove)
{
    struct Case { CS_RETCODE (*f)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *); std::vector<CS_BYTE> bytes; CS_INT maxlen;
                  CS_RETCODE rc; CS_INT len; CS_BYTE fill = 0xEE; CS_INT format = 0, prec = 2; };
    const std::vector<CS_BYTE> zeros(9, 0), ones(8, 0xFF);
    const Case cases[] = {
        {comnb_bintodate, zeros, 8, CS_TRUNCATED, 8},
        {comnb_bintodate, {1, 0, 0, 0x80, 0, 0, 0, 0}, 8, CS_EDOMAIN, 0}, // day -2147483647
        {comnb_bintotimea, {0xFF, 0xFF, 0xFF, 0xFF}, 4, CS_EDOMAIN, 0}, {comnb_bintobigtime, zeros, 8, CS_SUCCEED, 8},
        {comnb_bintobigtime, ones, 8, CS_EDOMAIN, 0}, {comnb_bintobigdatetime, ones, 8, CS_EDOMAIN, 0},
        {comnb_bintodatea, {0, 0, 0}, 4, CS_EDOMAIN, 0}, {comnb_bintodatea, {0, 0, 0}, 4, CS_SUCCEED, 3, 0x00},
        {comnb_bintonum, {0x00, 0x63}, 2, CS_SUCCEED, 2}, {comnb_bintonum, {0x01, 0x63}, 2, CS_SUCCEED, 2},
        {comnb_bintonum, {0x00, 0x64}, 2, CS_EOVERFLOW, -1}, {comnb_bintonum, {0x02, 0x01}, 2, CS_EDOMAIN, -1},
        {comnb_bintonum, {0x00, 0x63}, 3, CS_SUCCEED, 2},
        {comnb_bintonum, {0x00, 0x63}, 3, CS_EOVERFLOW, -1, 0xEE, CS_FMT_PADNULL}, // 99 * 256 is too wide
        {comnb_bintonum, {0x00, 0x63}, 3, CS_SUCCEED, 3, 0xEE, CS_FMT_PADNULL, 5},
        {comnb_bintonum, {0x00, 0x00, 0x05}, 2, CS_TRUNCATED, 2},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(hex(c.bytes.data(), c.bytes.size()) + " into " + std::to_string(c.maxlen));
        CAST_CONTEXT cc{};
        cc.format = c.format;
        std::vector<CS_BYTE> in = c.bytes;
        CS_BYTE out[40];
        std::memset(out, c.fill, sizeof out);
        __CONSTANT src = kes::test::constant(in.data(), static_cast<CS_INT>(in.size()), 0);
        __CONSTANT dest = kes::test::constant(out, -1, c.maxlen);
        dest.prec = static_cast<CS_BYTE>(c.prec);
        EXPECT_EQ(code_name(c.f(&cc, &src, &dest)), code_name(c.rc));
        EXPECT_EQ(dest.len, c.len);
    }
}

TEST(BinConvDeath, EmptySourcesAndWrongTypes)
{
    CS_BYTE bytes[8] = {}, dest[64];
    CS_INT destlen;
    CS_DATAFMT empty = fmt(CS_BINARY_TYPE, 0), one = fmt(CS_BINARY_TYPE, 1), i4 = fmt(CS_INT_TYPE);
    CS_DATAFMT i2 = fmt(CS_SMALLINT_TYPE), vf = fmt(CS_VARBINARY_TYPE, 258);
    CS_VARBINARY none{};
    EXPECT_BOMB(comn_bintoi4(ctx(), &empty, bytes, &i4, dest, &destlen));
    EXPECT_BOMB(comn_bintoi4(ctx(), &one, bytes, &i2, dest, &destlen));
    EXPECT_BOMB(comn_varbintovarbin(ctx(), &vf, &none, &vf, dest, &destlen));
    EXPECT_NULL_POINTER(comn_bintochar(ctx(), &one, bytes, nullptr, dest, &destlen));
}

} // namespace
