// Null values: the built-in table, its fills under every format, replacement
// and reinstall, user nulls, the void row of the matrix, and the byte-pointer
// setters.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "conv/fill.h"
#include "conv/nulls.h"
#include "kesintl.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;
using kes::test::hex;

constexpr int kText = 1, kBinary = 2, kWhole = 3, kUnicode = 4;

struct Row {
    int size, pad;
};
// The table by row, written out from its definition: note rows 1 and 2.
constexpr Row kRows[CS_MAX_TYPE] = {
    {0, kText},   {0, kText},   {0, kBinary}, {0, kBinary}, {0, kText},   {0, kBinary}, {1, kWhole},
    {2, kWhole},  {4, kWhole},  {4, kWhole},  {8, kWhole},  {1, kWhole},  {8, kWhole},  {8, kWhole},
    {8, kWhole},  {8, kWhole},  {35, kWhole}, {35, kWhole}, {258, kWhole}, {258, kWhole}, {8, kWhole},
    {0, kText},   {0, kText},   {4, kWhole},  {2, kWhole},  {1, kUnicode}, {4, kWhole},  {4, kWhole},
    {4, kWhole},  {1, kUnicode}, {8, kWhole}, {2, kWhole},  {4, kWhole},  {8, kWhole},  {0, kText},
    {8, kWhole},  {8, kWhole},  {48, kWhole}, {48, kWhole}, {48, kWhole},
};

// The expected bytes of a row's null: zeros but for two types.
std::vector<CS_BYTE> builtin_bytes(int row)
{
    std::vector<CS_BYTE> v(static_cast<size_t>(kRows[row].size), 0);
    if (row == CS_NUMERIC_TYPE || row == CS_DECIMAL_TYPE)
        v[0] = 18;
    if (row >= CS_TEXTLOCATOR_TYPE) {
        const CS_INT tag = CS_LOCATOR_TAG;
        std::memcpy(v.data(), &tag, sizeof tag);
    }
    return v;
}

TEST(NullTable, EveryRowHasItsSizePadTypeAndBytes)
{
    for (int row = 0; row < CS_MAX_TYPE; row++) {
        EXPECT_EQ(Comv_values[row].dvsize, kRows[row].size) << "row " << row;
        EXPECT_EQ(Comv_values[row].dvpadtype, kRows[row].pad) << "row " << row;
        ASSERT_NE(Comv_values[row].dventity, nullptr) << "row " << row;
        const std::vector<CS_BYTE> want = builtin_bytes(row);
        EXPECT_EQ(hex(Comv_values[row].dventity, want.size()), hex(want.data(), want.size())) << "row " << row;
    }
    // The three locator rows share one entity.
    EXPECT_EQ(Comv_values[37].dventity, Comv_values[39].dventity);
}

TEST(NullTable, ContextCopyIsPrivate)
{
    Context ctx;
    ASSERT_EQ(ctx->ctxnulls.nulldim, CS_MAX_TYPE);
    for (int row = 0; row < CS_MAX_TYPE; row++) {
        EXPECT_NE(ctx->ctxnulls.nullvals[row].dventity, Comv_values[row].dventity) << row;
        EXPECT_EQ(ctx->ctxnulls.nullvals[row].dvsize, Comv_values[row].dvsize) << row;
    }
    EXPECT_EQ(ctx->ctxusrnulls, nullptr);
}

// Fills of the empty text and binary nulls, with maxlength 3.
struct FillCase {
    CS_INT format;
    CS_RETCODE text_code;
    const char *text; // bytes and length after a text fill
    const char *binary;
};
constexpr FillCase kFills[] = {
    {0, CS_SUCCEED, "", ""},
    {CS_FMT_NULLTERM, CS_SUCCEED, "00", ""},
    {CS_FMT_PADNULL, CS_SUCCEED, "000000", "000000"},
    {CS_FMT_PADBLANK, CS_SUCCEED, "202020", ""},
    {CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, "202000", ""},
    {CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_EFORMAT, nullptr, "000000"},
};

TEST(NullGet, EveryRowUnderEveryFormat)
{
    Context ctx;
    for (int row = 0; row < CS_MAX_TYPE; row++) {
        for (const FillCase &f : kFills) {
            CS_DATAFMT df = fmt(row, 3, f.format);
            CS_BYTE dest[300];
            std::memset(dest, 0xee, sizeof dest);
            CS_INT outlen = -1;
            const CS_RETCODE rc = com_null_get(ctx.get(), &df, dest, sizeof dest, &outlen);
            const std::string where = "row " + std::to_string(row) + " format " + std::to_string(f.format);
            switch (kRows[row].pad) {
            case kText:
                EXPECT_EQ(code_name(rc), code_name(f.text_code)) << where;
                if (f.text != nullptr) {
                    EXPECT_EQ(outlen * 2, static_cast<CS_INT>(std::strlen(f.text))) << where;
                    EXPECT_EQ(hex(dest, static_cast<size_t>(outlen)), f.text) << where;
                }
                break;
            case kBinary:
                EXPECT_EQ(rc, CS_SUCCEED) << where;
                EXPECT_EQ(outlen * 2, static_cast<CS_INT>(std::strlen(f.binary))) << where;
                EXPECT_EQ(hex(dest, static_cast<size_t>(outlen)), f.binary) << where;
                break;
            case kUnicode: {
                // One zero byte handed to the 16-bit fill.
                CS_BYTE want[300];
                std::memset(want, 0xee, sizeof want);
                want[0] = 0;
                CS_INT wantlen = 1;
                EXPECT_EQ(rc, comn__padunichar(1, &df, want, &wantlen)) << where;
                EXPECT_EQ(outlen, wantlen) << where;
                EXPECT_EQ(hex(dest, 8), hex(want, 8)) << where;
                break;
            }
            default: {
                // Whole values ignore format; a numeric takes precision and
                // scale (here 0) from the format.
                std::vector<CS_BYTE> want = builtin_bytes(row);
                if (row == CS_NUMERIC_TYPE || row == CS_DECIMAL_TYPE)
                    want[0] = 0;
                EXPECT_EQ(rc, CS_SUCCEED) << where;
                EXPECT_EQ(outlen, kRows[row].size) << where;
                EXPECT_EQ(hex(dest, want.size()), hex(want.data(), want.size())) << where;
                EXPECT_EQ(dest[want.size()], 0xee) << where;
            }
            }
        }
    }
}

TEST(NullGet, CapacitiesOfAFixedNull)
{
    Context ctx;
    struct Case {
        CS_INT type, destlen, outlen;
    };
    constexpr Case cases[] = {
        {CS_INT_TYPE, 0, 0},        {CS_INT_TYPE, 1, 1},        {CS_INT_TYPE, 3, 3},
        {CS_INT_TYPE, 4, 4},        {CS_INT_TYPE, 5, 4},        {CS_INT_TYPE, -1, 0},
        {CS_DATETIME4_TYPE, 4, 4},  {CS_DATETIME4_TYPE, 8, 8},  {CS_MONEY4_TYPE, 4, 4},
        {CS_VARCHAR_TYPE, 258, 258}, {CS_LONG_TYPE, 8, 8},       {CS_BIGTIME_TYPE, 7, 7},
    };
    for (const Case &c : cases) {
        CS_DATAFMT df = fmt(c.type, 1, CS_FMT_PADBLANK | CS_FMT_NULLTERM);
        std::vector<CS_BYTE> dest(static_cast<size_t>(c.destlen > 0 ? c.destlen : 0) + 1, 0xee);
        CS_INT outlen = -1;
        EXPECT_EQ(com_null_get(ctx.get(), &df, dest.data(), c.destlen, &outlen), CS_SUCCEED) << c.type;
        EXPECT_EQ(outlen, c.outlen) << c.type << " destlen " << c.destlen;
        EXPECT_EQ(dest[static_cast<size_t>(c.outlen)], 0xee) << "one past, type " << c.type;
    }
}

TEST(NullGet, NumericLengthFollowsThePrecision)
{
    Context ctx;
    struct Case {
        CS_INT precision, scale, destlen, outlen;
    };
    constexpr Case cases[] = {
        {10, 2, 35, 8}, // 10 digits take 5 bytes and a sign byte, plus the 2 header bytes
        {1, 0, 35, 4},  {77, 5, 35, 35}, {38, 0, 35, 19}, {38, 0, 10, 10},
        {0, 0, 35, 35}, // outside 1 to 77: the null's own size
        {78, 0, 35, 35}, {10, 2, 1, 1},
    };
    for (const Case &c : cases) {
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, c.precision, c.scale);
        CS_BYTE dest[40];
        std::memset(dest, 0xee, sizeof dest);
        CS_INT outlen = -1;
        EXPECT_EQ(com_null_get(ctx.get(), &df, dest, c.destlen, &outlen), CS_SUCCEED);
        EXPECT_EQ(outlen, c.outlen) << "precision " << c.precision;
        EXPECT_EQ(dest[0], static_cast<CS_BYTE>(c.precision));
        if (c.destlen >= 2)
            EXPECT_EQ(dest[1], c.scale);
        else
            EXPECT_EQ(dest[1], 0xee) << "nothing beyond destlen";
        for (int i = 2; i < c.outlen; i++)
            EXPECT_EQ(dest[i], 0) << i;
        EXPECT_EQ(dest[c.outlen], 0xee);
    }
}

TEST(NullSet, ReplaceClearAndReinstall)
{
    Context ctx;
    CS_BYTE two[2] = {0x12, 0x34};
    ASSERT_EQ(com_null_set(ctx.get(), CS_INT_TYPE, two, 2), CS_SUCCEED);
    CS_DATAFMT df = fmt(CS_INT_TYPE, 4);
    CS_BYTE dest[8];
    std::memset(dest, 0xee, sizeof dest);
    CS_INT outlen = 0;
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 8, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 2);
    EXPECT_EQ(hex(dest, 3), "1234ee");

    const CS_VOID *replaced = ctx->ctxnulls.nullvals[CS_INT_TYPE].dventity;
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_INT_TYPE), CS_SUCCEED);
    EXPECT_NE(ctx->ctxnulls.nullvals[CS_INT_TYPE].dventity, replaced) << "a larger buffer";
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 8, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 4);
    EXPECT_EQ(hex(dest, 4), "00000000");

    // A text null with a value is filled like text; the pad type survives.
    CS_BYTE abc[3] = {'a', 'b', 'c'};
    ASSERT_EQ(com_null_set(ctx.get(), CS_CHAR_TYPE, abc, 3), CS_SUCCEED);
    CS_DATAFMT text = fmt(CS_CHAR_TYPE, 5, CS_FMT_PADBLANK);
    EXPECT_EQ(com_null_get(ctx.get(), &text, dest, 5, &outlen), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(dest), 5), "abc  ");
    const CS_VOID *kept = ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity;
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_CHAR_TYPE), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity, kept) << "a smaller null reuses the buffer";
    EXPECT_EQ(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dvsize, 0);

    // A cleared row comes back with a buffer of its own.
    ASSERT_EQ(com_null_set(ctx.get(), CS_CHAR_TYPE, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity, nullptr);
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_CHAR_TYPE), CS_SUCCEED);
    EXPECT_NE(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity, nullptr);
    EXPECT_EQ(com_null_get(ctx.get(), &text, dest, 5, &outlen), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(dest), 5), "     ");
}

TEST(NullUser, InstallReplaceAndRemove)
{
    Context ctx;
    CS_DATAFMT df = fmt(100, 10);
    CS_BYTE dest[16];
    CS_INT outlen = -1;
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 10, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 0) << "a user type without a null has an empty one";

    CS_BYTE abc[3] = {'a', 'b', 'c'};
    CS_BYTE xy[2] = {'x', 'y'};
    ASSERT_EQ(com_null_set(ctx.get(), 100, abc, 3), CS_SUCCEED);
    ASSERT_EQ(com_null_set(ctx.get(), 101, xy, 2), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxusrnulls->dttype, 101) << "new nodes go to the head";

    struct Case {
        CS_INT type, destlen;
        const char *bytes;
        CS_INT outlen;
    };
    const Case cases[] = {
        {100, 10, "61626300", 4}, {100, 3, "61626300", 4}, // the NUL goes one past destlen
        {100, 2, "616200", 3},    {100, 0, "00", 1},       {101, 10, "787900", 3},
    };
    for (const Case &c : cases) {
        std::memset(dest, 0xee, sizeof dest);
        CS_DATAFMT f = fmt(c.type, 10);
        EXPECT_EQ(com_null_get(ctx.get(), &f, dest, c.destlen, &outlen), CS_SUCCEED);
        EXPECT_EQ(outlen, c.outlen) << c.type << "/" << c.destlen;
        EXPECT_EQ(hex(dest, static_cast<size_t>(c.outlen)), c.bytes) << c.type << "/" << c.destlen;
    }

    ASSERT_EQ(com_null_set(ctx.get(), 100, xy, 2), CS_SUCCEED);
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 10, &outlen), CS_SUCCEED);
    EXPECT_EQ(hex(dest, 3), "787900");
    ASSERT_EQ(com_null_set(ctx.get(), 100, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 10, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 1) << "an empty user null is a lone NUL";

    EXPECT_EQ(com_null_reinstall(ctx.get(), 100), CS_SUCCEED);
    EXPECT_EQ(com_null_reinstall(ctx.get(), 102), CS_SUCCEED) << "no node is no error";
    EXPECT_EQ(com_null_get(ctx.get(), &df, dest, 10, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 0);
    ASSERT_NE(ctx->ctxusrnulls, nullptr);
    EXPECT_EQ(ctx->ctxusrnulls->dttype, 101);
    EXPECT_EQ(ctx->ctxusrnulls->nextnull, nullptr);

    // Dropping the context frees the nodes and leaves the values to their
    // holders.
    CS_VOID *value = ctx->ctxusrnulls->dventity;
    EXPECT_EQ(com_null_free(ctx.get()), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxusrnulls, nullptr);
    EXPECT_EQ(ctx->ctxnulls.nulldim, 0);
    EXPECT_EQ(ctx->ctxnulls.nullvals, nullptr);
    comn_free(value);
    ASSERT_EQ(com_null_init(ctx.get()), CS_SUCCEED);
}

TEST(VoidRow, EveryColumnGivesTheDestinationNull)
{
    Context ctx;
    for (int col = 0; col < CS_MAX_TYPE; col++) {
        const CS_CONV_FUNC f = com_conv_func(ctx.get(), CS_VOID_TYPE, col);
        if (col >= CS_TEXTLOCATOR_TYPE) {
            EXPECT_EQ(f, nullptr) << col;
            continue;
        }
        ASSERT_NE(f, nullptr) << col;
        if (col == CS_VOID_TYPE) {
            EXPECT_EQ(f, comn_voidtovoid);
            continue;
        }
        EXPECT_EQ(f, comn_voidtoany) << col;
        CS_DATAFMT src = fmt(CS_VOID_TYPE);
        CS_DATAFMT dst = fmt(col, 300);
        std::vector<CS_BYTE> dest(300, 0xee);
        CS_INT destlen = -1;
        EXPECT_EQ(f(ctx.get(), &src, nullptr, &dst, dest.data(), &destlen), CS_SUCCEED) << col;
        if (kRows[col].pad == kWhole && col != CS_NUMERIC_TYPE && col != CS_DECIMAL_TYPE) {
            // The capacity is the type's own size where it has one.
            const CS_INT want = std::min(kRows[col].size, comn_typelen(col, 300));
            EXPECT_EQ(destlen, want) << col;
            const std::vector<CS_BYTE> bytes = builtin_bytes(col);
            EXPECT_EQ(hex(dest.data(), static_cast<size_t>(want)), hex(bytes.data(), static_cast<size_t>(want))) << col;
        }
    }
    CS_DATAFMT dst = fmt(CS_VARCHAR_TYPE, 10);
    std::vector<CS_BYTE> dest(300, 0xee);
    CS_INT destlen = -1;
    EXPECT_EQ(comn_voidtoany(ctx.get(), nullptr, nullptr, &dst, dest.data(), &destlen), CS_SUCCEED);
    EXPECT_EQ(destlen, 258);
    EXPECT_EQ(std::count(dest.begin(), dest.begin() + 258, 0), 258);
    EXPECT_EQ(dest[258], 0xee);
}

TEST(SetNull, FixedTypes)
{
    struct Case {
        CS_INT (*set)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);
        CS_INT size;
    };
    const Case cases[] = {
        {com_seti1null, 1},    {com_seti2null, 2},     {com_seti4null, 4},         {com_setbitnull, 1},
        {com_setmoneynull, 8}, {com_setmny4null, 4},   {com_setflt4null, 4},       {com_setflt8null, 8},
        {com_setdatetimenull, 8}, {com_setdatetime4null, 4},
    };
    CS_BYTE value[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const Case &c : cases) {
        CS_BYTE dest[12];
        std::memset(dest, 0xee, sizeof dest);
        EXPECT_EQ(c.set(dest, 12, value, 8), c.size);
        EXPECT_EQ(hex(dest, static_cast<size_t>(c.size) + 1), hex(value, static_cast<size_t>(c.size)) + "ee");
        EXPECT_EQ(c.set(dest, 12, nullptr, 8), c.size);
        EXPECT_EQ(hex(dest, static_cast<size_t>(c.size)), std::string(static_cast<size_t>(c.size) * 2, '0'));
        std::memset(dest, 0xee, sizeof dest);
        EXPECT_EQ(c.set(dest, 12, value, 1), c.size) << "a short value is zero-extended";
        EXPECT_EQ(hex(dest, static_cast<size_t>(c.size)), "01" + std::string(static_cast<size_t>(c.size) * 2 - 2, '0'));
    }
}

TEST(SetNull, TextFormsAndTheirOverflow)
{
    struct Case {
        CS_INT (*set)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);
        CS_INT destlen;
        const char *value;
        CS_INT result;
        const char *bytes; // hex of the first destlen bytes (or 8 when unbounded)
    };
    const Case cases[] = {
        {com_setcharnull, 5, "ab", 2, "6162202020"},
        {com_setcharnull, 2, "ab", 2, "6162"},
        {com_setcharnull, 2, "abc", -5, "0000"},         // cut to destlen - 2, then NULs
        {com_setcharnull, 4, "abcde", -5, "61620000"},
        {com_setcharnull, 3, "", 0, "202020"},
        {com_setstringnull, 5, "ab", 2, "6162202000"},
        {com_setstringnull, 3, "ab", 2, "616200"},
        {com_setstringnull, 2, "ab", -5, "0000"},
        {com_setntbstringnull, 5, "ab", 2, "616200eeee"},
        {com_setntbstringnull, 2, "ab", -5, "0000"},
        {com_setntbstringnull, -1, "ab", 2, "616200eeeeeeeeee"},
        {com_setbinarynull, 4, "ab", 2, "61620000"},
        {com_setbinarynull, 1, "ab", -5, "61"},
        {com_setvarycharnull, 6, "ab", 2, "02006162eeee"},
        {com_setvarycharnull, 3, "ab", -5, "010061"},
        {com_setvarybinnull, 4, "ab", 2, "02006162"},
    };
    for (const Case &c : cases) {
        CS_BYTE dest[16];
        std::memset(dest, 0xee, sizeof dest);
        const auto len = static_cast<CS_INT>(std::strlen(c.value));
        std::vector<CS_BYTE> value(c.value, c.value + len);
        EXPECT_EQ(c.set(dest, c.destlen, value.data(), len), c.result) << c.value << " in " << c.destlen;
        const size_t shown = c.destlen < 0 ? 8 : static_cast<size_t>(c.destlen);
        EXPECT_EQ(hex(dest, shown), c.bytes) << c.value << " in " << c.destlen;
        if (c.destlen >= 0)
            EXPECT_EQ(dest[c.destlen], 0xee) << "one past destlen";
    }
}

TEST(NullDeath, AssertionsOfTheNullTable)
{
    Context ctx;
    CS_BYTE byte = 0;
    EXPECT_BOMB(com_null_set(ctx.get(), CS_INT_TYPE, &byte, -1));
    EXPECT_NULL_POINTER(com_null_init(nullptr));
    CS_DATAFMT df = fmt(CS_INT_TYPE, 4);
    CS_INT outlen;
    EXPECT_NULL_POINTER(com_null_get(ctx.get(), &df, nullptr, 4, &outlen));
    // A cleared built-in null cannot be read back.
    EXPECT_BOMB({
        com_null_set(ctx.get(), CS_INT_TYPE, nullptr, 0);
        CS_BYTE dest[4];
        com_null_get(ctx.get(), &df, dest, 4, &outlen);
    });
}

} // namespace
