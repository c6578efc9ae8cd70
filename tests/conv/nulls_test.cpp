// Null values: the built-in table and its fills under every format, the
// capacities of a get, replacement and reinstall, user nulls, the void row of
// the matrix, and the byte-pointer setters.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "conv/nulls.h"
#include "kesintl.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;
using kes::test::hex;

constexpr int kText = 1, kBinary = 2, kWhole = 3, kUnicode = 4;

// The table by row, written out from its definition: note rows 1 and 2.
struct Row { int size, pad; };
constexpr Row kRows[CS_MAX_TYPE] = {
    {0, kText},   {0, kText},   {0, kBinary}, {0, kBinary}, {0, kText},   {0, kBinary}, {1, kWhole},
    {2, kWhole},  {4, kWhole},  {4, kWhole},  {8, kWhole},  {1, kWhole},  {8, kWhole},  {8, kWhole},
    {8, kWhole},  {8, kWhole},  {35, kWhole}, {35, kWhole}, {258, kWhole}, {258, kWhole}, {8, kWhole},
    {0, kText},   {0, kText},   {4, kWhole},  {2, kWhole},  {1, kUnicode}, {4, kWhole},  {4, kWhole},
    {4, kWhole},  {1, kUnicode}, {8, kWhole}, {2, kWhole},  {4, kWhole},  {8, kWhole},  {0, kText},
    {8, kWhole},  {8, kWhole},  {48, kWhole}, {48, kWhole}, {48, kWhole},
};

// A row's null: zeros but for the numeric precision and the locator tag.
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

// A get into 300 bytes of ee: the bytes it counts and `extra` past them.
std::string get_null(CS_CONTEXT *ctx, CS_DATAFMT df, CS_INT destlen, size_t extra = 1)
{
    CS_BYTE dest[300];
    std::memset(dest, 0xee, sizeof dest);
    CS_INT outlen = -1;
    EXPECT_EQ(com_null_get(ctx, &df, dest, destlen, &outlen), CS_SUCCEED);
    return hex(dest, static_cast<size_t>(outlen) + extra);
}

// Fills of the empty text and binary nulls and of the one zero byte of a
// 16-bit text null, with maxlength 3; nullptr where only the code counts.
struct FillCase { CS_INT format; CS_RETCODE code; const char *text, *binary, *unicode; };
constexpr FillCase kFills[] = {
    {0, CS_SUCCEED, "", "", "00"},
    {CS_FMT_NULLTERM, CS_SUCCEED, "00", "", "000000"},
    {CS_FMT_PADNULL, CS_SUCCEED, "000000", "000000", "000000"},
    {CS_FMT_PADBLANK, CS_SUCCEED, "202020", "", "002000"},
    {CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, "202000", "", "000000"},
    {CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_EFORMAT, nullptr, "000000", nullptr}, // binary fills ignore blanks
};

TEST(NullTable, EveryRowItsContextCopyAndItsFillUnderEveryFormat)
{
    Context ctx;
    ASSERT_EQ(ctx->ctxnulls.nulldim, CS_MAX_TYPE);
    EXPECT_EQ(ctx->ctxusrnulls, nullptr);
    EXPECT_EQ(Comv_values[37].dventity, Comv_values[39].dventity) << "the locator rows share one entity";
    for (int row = 0; row < CS_MAX_TYPE; row++) {
        SCOPED_TRACE("row " + std::to_string(row));
        std::vector<CS_BYTE> bytes = builtin_bytes(row);
        EXPECT_EQ(Comv_values[row].dvsize, kRows[row].size);
        EXPECT_EQ(Comv_values[row].dvpadtype, kRows[row].pad);
        ASSERT_NE(Comv_values[row].dventity, nullptr);
        EXPECT_EQ(hex(Comv_values[row].dventity, bytes.size()), hex(bytes.data(), bytes.size()));
        EXPECT_NE(ctx->ctxnulls.nullvals[row].dventity, Comv_values[row].dventity) << "a private copy";
        EXPECT_EQ(ctx->ctxnulls.nullvals[row].dvsize, kRows[row].size);
        // Whole values ignore the format; a numeric takes precision and scale (0) from it.
        if (row == CS_NUMERIC_TYPE || row == CS_DECIMAL_TYPE)
            bytes[0] = 0;

        for (const FillCase &f : kFills) {
            CS_DATAFMT df = fmt(row, 3, f.format);
            CS_BYTE dest[300];
            std::memset(dest, 0xee, sizeof dest);
            CS_INT outlen = -1;
            const CS_RETCODE rc = com_null_get(ctx.get(), &df, dest, sizeof dest, &outlen);
            const int pad = kRows[row].pad;
            const char *want = pad == kText ? f.text : pad == kBinary ? f.binary : f.unicode;
            const std::string want_bytes = pad == kWhole ? hex(bytes.data(), bytes.size()) : want ? want : "";
            EXPECT_EQ(code_name(rc), code_name(pad == kText || pad == kUnicode ? f.code : CS_SUCCEED)) << f.format;
            if (pad == kWhole || want != nullptr) { // the length, the bytes and nothing past them
                EXPECT_EQ(hex(dest, static_cast<size_t>(outlen) + 1), want_bytes + "ee") << "format " << f.format;
            }
        }
    }
}

// A whole value is cut to the capacity; a numeric's length follows the
// precision (1 to 77; else the null's own size), its first two bytes are
// precision and scale (nullptr: all 35 bytes).
TEST(NullGet, CapacitiesAndNumericLengths)
{
    Context ctx;
    struct Case { CS_INT type, precision, scale, destlen; const char *bytes; };
    const Case cases[] = {
        {CS_INT_TYPE, 0, 0, 0, ""}, {CS_INT_TYPE, 0, 0, 3, "000000"}, {CS_INT_TYPE, 0, 0, 5, "00000000"},
        {CS_INT_TYPE, 0, 0, -1, ""}, {CS_DATETIME4_TYPE, 0, 0, 8, "0000000000000000"}, // 8 bytes for a 4-byte type
        {CS_BIGTIME_TYPE, 0, 0, 7, "00000000000000"}, {CS_NUMERIC_TYPE, 10, 2, 35, "0a02000000000000"},
        {CS_NUMERIC_TYPE, 1, 0, 35, "01000000"}, {CS_NUMERIC_TYPE, 38, 0, 10, "26000000000000000000"},
        {CS_NUMERIC_TYPE, 10, 2, 1, "0a"}, {CS_NUMERIC_TYPE, 77, 5, 35, nullptr},
        {CS_NUMERIC_TYPE, 0, 0, 35, nullptr}, {CS_NUMERIC_TYPE, 78, 0, 35, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.type << " precision " << c.precision << " in " << c.destlen);
        const std::string want = c.bytes ? c.bytes : hex(&c.precision, 1) + hex(&c.scale, 1) + std::string(66, '0');
        const CS_DATAFMT df = fmt(c.type, 1, CS_FMT_PADBLANK | CS_FMT_NULLTERM, c.precision, c.scale);
        EXPECT_EQ(get_null(ctx.get(), df, c.destlen), want + "ee") << "one past untouched";
    }
}

TEST(NullSet, ReplaceClearAndReinstall)
{
    Context ctx;
    auto get = [&](CS_INT type, CS_INT format) { return get_null(ctx.get(), fmt(type, 5, format), 5); };
    CS_BYTE two[2] = {0x12, 0x34};
    ASSERT_EQ(com_null_set(ctx.get(), CS_INT_TYPE, two, 2), CS_SUCCEED);
    EXPECT_EQ(get(CS_INT_TYPE, 0), "1234ee");
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_INT_TYPE), CS_SUCCEED); // into a larger buffer
    EXPECT_EQ(get(CS_INT_TYPE, 0), "00000000ee");

    // A replaced text null is filled like text; the built-in one is smaller.
    CS_BYTE abc[3] = {'a', 'b', 'c'};
    ASSERT_EQ(com_null_set(ctx.get(), CS_CHAR_TYPE, abc, 3), CS_SUCCEED);
    EXPECT_EQ(get(CS_CHAR_TYPE, CS_FMT_PADBLANK), "6162632020ee");
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_CHAR_TYPE), CS_SUCCEED);
    EXPECT_EQ(get(CS_CHAR_TYPE, CS_FMT_PADBLANK), "2020202020ee");

    // A cleared row comes back with a buffer of its own.
    ASSERT_EQ(com_null_set(ctx.get(), CS_CHAR_TYPE, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity, nullptr);
    ASSERT_EQ(com_null_reinstall(ctx.get(), CS_CHAR_TYPE), CS_SUCCEED);
    EXPECT_NE(ctx->ctxnulls.nullvals[CS_CHAR_TYPE].dventity, nullptr);
    EXPECT_EQ(get(CS_CHAR_TYPE, CS_FMT_PADBLANK), "2020202020ee");
}

TEST(NullUser, DefaultInstallReplaceAndRemove)
{
    Context ctx;
    auto get = [&](CS_INT type, CS_INT destlen) { return get_null(ctx.get(), fmt(type, 10), destlen, 0); };
    EXPECT_EQ(get(100, 10), "") << "a user type without a null has an empty one";
    CS_BYTE abc[3] = {'a', 'b', 'c'}, xy[2] = {'x', 'y'};
    ASSERT_EQ(com_null_set(ctx.get(), 100, abc, 3), CS_SUCCEED);
    ASSERT_EQ(com_null_set(ctx.get(), 101, xy, 2), CS_SUCCEED);
    // The length counts a NUL after the bytes, written one past destlen when they fill it.
    struct Case { CS_INT type, destlen; const char *bytes; };
    for (const Case &c : {Case{100, 10, "61626300"}, {100, 3, "61626300"}, {100, 2, "616200"}, {100, 0, "00"},
                          {101, 10, "787900"}})
        EXPECT_EQ(get(c.type, c.destlen), c.bytes) << c.type << " in " << c.destlen;

    ASSERT_EQ(com_null_set(ctx.get(), 100, xy, 2), CS_SUCCEED);
    EXPECT_EQ(get(100, 10), "787900") << "replaced in place";
    ASSERT_EQ(com_null_set(ctx.get(), 100, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(get(100, 10), "00") << "an empty user null is a lone NUL";
    EXPECT_EQ(com_null_reinstall(ctx.get(), 100), CS_SUCCEED);
    EXPECT_EQ(com_null_reinstall(ctx.get(), 102), CS_SUCCEED) << "no node is no error";
    EXPECT_EQ(get(100, 10), "");
    ASSERT_NE(ctx->ctxusrnulls, nullptr);
    EXPECT_EQ(ctx->ctxusrnulls->dttype, 101);
    EXPECT_EQ(ctx->ctxusrnulls->nextnull, nullptr);

    // Freeing drops the nodes but leaves the values to their holders.
    CS_VOID *value = ctx->ctxusrnulls->dventity;
    EXPECT_EQ(com_null_free(ctx.get()), CS_SUCCEED);
    EXPECT_EQ(ctx->ctxusrnulls, nullptr);
    EXPECT_EQ(ctx->ctxnulls.nullvals, nullptr);
    comn_free(value);
    ASSERT_EQ(com_null_init(ctx.get()), CS_SUCCEED);
}

TEST(VoidRow, EveryColumnGivesTheDestinationNull)
{
    Context ctx;
    for (int col = 0; col < CS_MAX_TYPE; col++) {
        const CS_CONV_FUNC f = com_conv_func(ctx.get(), CS_VOID_TYPE, col);
        if (col >= CS_TEXTLOCATOR_TYPE || col == CS_VOID_TYPE) {
            EXPECT_EQ(f, col == CS_VOID_TYPE ? comn_voidtovoid : nullptr) << col;
            continue;
        }
        ASSERT_EQ(f, comn_voidtoany) << col;
        CS_DATAFMT src = fmt(CS_VOID_TYPE), dst = fmt(col, 10);
        std::vector<CS_BYTE> dest(300, 0xee);
        CS_INT destlen = -1;
        EXPECT_EQ(f(ctx.get(), &src, nullptr, &dst, dest.data(), &destlen), CS_SUCCEED) << col;
        if (kRows[col].pad == kWhole && col != CS_NUMERIC_TYPE && col != CS_DECIMAL_TYPE) {
            // The capacity is the type's size, not maxlength: the 8-byte
            // entries of the two 4-byte types are cut to 4.
            const CS_INT want = col == CS_DATETIME4_TYPE || col == CS_MONEY4_TYPE ? 4 : kRows[col].size;
            EXPECT_EQ(destlen, want) << col;
            EXPECT_EQ(hex(dest.data(), static_cast<size_t>(want)), hex(builtin_bytes(col).data(), want)) << col;
        }
    }
}

TEST(SetNull, FixedSizesTextFormsAndTheirOverflow)
{
    using Setter = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);
    struct Case { Setter set; CS_INT destlen; const char *value; CS_INT result; const char *bytes; };
    // bytes: the start of dest (ee before); value nullptr: no value.
    const Case cases[] = {
        // Fixed sizes: the value cut or zero-extended to the size, whatever destlen says.
        {com_seti1null, 12, "\x01\x02", 1, "01ee"}, {com_seti2null, 0, "\x01\x02\x03", 2, "0102ee"},
        {com_seti4null, 12, "\x01", 4, "01000000ee"}, {com_setbitnull, 12, nullptr, 1, "00ee"},
        {com_setmoneynull, 12, "\x01\x02\x03\x04\x05\x06\x07\x08\x09", 8, "0102030405060708ee"},
        {com_setmny4null, 12, nullptr, 4, "00000000ee"}, {com_setflt4null, 12, "\x07", 4, "07000000ee"},
        {com_setflt8null, 12, "\x07", 8, "0700000000000000ee"}, {com_setdatetimenull, 12, "", 8, "0000000000000000ee"},
        {com_setdatetime4null, 12, "\x01\x02\x03\x04\x05", 4, "01020304ee"},
        // Text forms: -5 when the value does not fit, a text then cut to destlen - 2 and ended by NULs.
        {com_setcharnull, 5, "ab", 2, "6162202020ee"},    {com_setcharnull, 2, "ab", 2, "6162ee"},
        {com_setcharnull, 2, "abc", -5, "0000ee"},        {com_setcharnull, 4, "abcde", -5, "61620000ee"},
        {com_setcharnull, 3, "", 0, "202020ee"},          {com_setstringnull, 5, "ab", 2, "6162202000ee"},
        {com_setstringnull, 3, "ab", 2, "616200ee"},      {com_setstringnull, 2, "ab", -5, "0000ee"},
        {com_setntbstringnull, 5, "ab", 2, "616200ee"},   {com_setntbstringnull, 2, "ab", -5, "0000ee"},
        {com_setntbstringnull, -1, "ab", 2, "616200ee"},  {com_setbinarynull, 4, "ab", 2, "61620000ee"},
        {com_setbinarynull, 1, "ab", -5, "61ee"},         {com_setvarycharnull, 6, "ab", 2, "02006162ee"},
        {com_setvarycharnull, 3, "ab", -5, "010061ee"},   {com_setvarybinnull, 4, "ab", 2, "02006162ee"},
    };
    for (const Case &c : cases) {
        CS_BYTE dest[16];
        std::memset(dest, 0xee, sizeof dest);
        std::string value = c.value ? c.value : "";
        const auto len = c.value ? static_cast<CS_INT>(value.size()) : 8;
        auto *bytes = c.value ? reinterpret_cast<CS_BYTE *>(value.data()) : nullptr;
        EXPECT_EQ(c.set(dest, c.destlen, bytes, len), c.result) << c.bytes;
        EXPECT_EQ(hex(dest, std::strlen(c.bytes) / 2), c.bytes);
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
    EXPECT_BOMB({ // a cleared built-in null cannot be read back
        com_null_set(ctx.get(), CS_INT_TYPE, nullptr, 0);
        CS_BYTE dest[4];
        com_null_get(ctx.get(), &df, dest, 4, &outlen);
    });
}

} // namespace
