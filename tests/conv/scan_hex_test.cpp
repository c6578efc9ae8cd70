// Hexadecimal text to binary: trims, the "0x" prefix, odd digit counts, a
// capacity of 0, 1, exact and one short, bad digits inside and beyond the
// capacity, the fill, and the CS_VARBINARY form with its 0xFF first byte.
#include <string>
#include <string_view>

#include "conv/char_scan.h"
#include "support/context.h"

namespace {

using kes::test::Context;
using kes::test::code_name;
using kes::test::hex;

TEST(ScanHex, TrimsWhiteSpaceThenThePrefix)
{
    struct TrimCase {
        std::string_view text;
        std::string_view rest;
    };
    constexpr TrimCase cases[] = {
        {"  0x12  ", "12"}, {"\t0XAB\n", "AB"}, {"0x", ""},       {"   ", ""},
        {"x12", "x12"},     {" 0 x1", "0 x1"},  {"0x0x1", "0x1"}, {"0", "0"},
    };
    for (const TrimCase &c : cases) {
        std::string text(c.text);
        CS_CHAR *p = text.data();
        CS_INT n = static_cast<CS_INT>(text.size());
        comn__hex2binbytes(&p, &n);
        EXPECT_EQ(std::string_view(p, static_cast<size_t>(n)), c.rest) << c.text;
    }
}

struct BinCase {
    std::string_view text;
    CS_INT maxlength;
    CS_INT format;
    CS_RETCODE rc;
    std::string_view bytes; // the first destlen bytes, as hex
    CS_INT destlen;
};

TEST(ScanHex, ToBinaryAtEveryCapacity)
{
    constexpr BinCase cases[] = {
        {"0xABC", 4, 0, CS_SUCCEED, "0abc", 2},
        {"ABC", 2, 0, CS_SUCCEED, "0abc", 2},
        {"ABC", 1, 0, CS_TRUNCATED, "0a", 1},
        {"abc", 0, 0, CS_EOVERFLOW, "", 0},
        {"ab", 0, 0, CS_TRUNCATED, "", 0},
        {"0102", 2, 0, CS_SUCCEED, "0102", 2},
        {"010203", 2, 0, CS_TRUNCATED, "0102", 2},
        {"0x", 4, 0, CS_SUCCEED, "", 0},
        {"0x", 3, CS_FMT_PADNULL, CS_SUCCEED, "000000", 3},
        {"0x01", 3, CS_FMT_PADNULL, CS_SUCCEED, "010000", 3},
        {"01", 3, CS_FMT_PADBLANK, CS_SUCCEED, "01", 1},
        {"  0X0102  ", 2, 0, CS_SUCCEED, "0102", 2},
        {"0xG", 4, 0, CS_ESYNTAX, "", 0},
        {"G12", 4, 0, CS_ESYNTAX, "", 0},
        {"12G4", 4, 0, CS_ESYNTAX, "", 0},
        {"01 02", 4, 0, CS_ESYNTAX, "", 0},
        {"0x0x12", 4, 0, CS_ESYNTAX, "", 0},
        // Digits beyond the capacity are not looked at.
        {"0102zz", 1, 0, CS_TRUNCATED, "01", 1},
        {"FfeE", 2, 0, CS_SUCCEED, "ffee", 2},
    };
    Context ctx;
    for (const BinCase &c : cases) {
        SCOPED_TRACE("text \"" + std::string(c.text) + "\" capacity " + std::to_string(c.maxlength));
        std::string text(c.text);
        CS_DATAFMT sf = kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(text.size()));
        CS_DATAFMT df = kes::test::fmt(CS_BINARY_TYPE, c.maxlength, c.format);
        CS_BYTE dest[8];
        std::memset(dest, 0xEE, sizeof dest);
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_chartobin(ctx.get(), &sf, text.data(), &df, dest, &destlen)), code_name(c.rc));
        EXPECT_EQ(destlen, c.destlen);
        if (c.rc != CS_ESYNTAX) {
            EXPECT_EQ(hex(dest, static_cast<size_t>(c.destlen)), c.bytes);
        }
        EXPECT_EQ(dest[c.maxlength], 0xEE) << "written past the capacity";
    }
}

TEST(ScanHex, ToVarbinaryStoresFFForABadOddDigit)
{
    struct VarCase {
        std::string text;
        CS_RETCODE rc;
        CS_SMALLINT len;
        std::string head; // the first bytes, as hex
        CS_INT destlen;
    };
    const VarCase cases[] = {
        {"G12", CS_SUCCEED, 2, "ff12", 258},
        {"ABC", CS_SUCCEED, 2, "0abc", 258},
        {"0x", CS_SUCCEED, 0, "", 258},
        {"12G4", CS_ESYNTAX, 0, "", 0},
        {std::string(512, 'a'), CS_SUCCEED, 256, "aaaa", 258},
        {std::string(511, 'a'), CS_SUCCEED, 256, "0aaa", 258},
        {std::string(513, 'a'), CS_TRUNCATED, 256, "0aaa", 258},
        {std::string(514, 'a'), CS_TRUNCATED, 256, "aaaa", 258},
    };
    Context ctx;
    for (const VarCase &c : cases) {
        SCOPED_TRACE("length " + std::to_string(c.text.size()));
        std::string text = c.text;
        CS_DATAFMT sf = kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(text.size()));
        CS_DATAFMT df = kes::test::fmt(CS_VARBINARY_TYPE, sizeof(CS_VARBINARY));
        CS_VARBINARY vb;
        std::memset(&vb, 0xEE, sizeof vb);
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_chartovarbin(ctx.get(), &sf, text.data(), &df, &vb, &destlen)), code_name(c.rc));
        EXPECT_EQ(vb.len, c.len);
        EXPECT_EQ(destlen, c.destlen);
        EXPECT_EQ(hex(vb.array, c.head.size() / 2), c.head);
    }
}

TEST(ScanHexDeath, DestinationTypesAreAsserted)
{
    Context ctx;
    char text[] = "12";
    CS_BYTE dest[4];
    CS_INT destlen;
    CS_DATAFMT sf = kes::test::fmt(CS_CHAR_TYPE, 2);
    CS_DATAFMT varbin = kes::test::fmt(CS_VARBINARY_TYPE, 258);
    CS_DATAFMT bin = kes::test::fmt(CS_BINARY_TYPE, 4);
    EXPECT_BOMB(comn_chartobin(ctx.get(), &sf, text, &varbin, dest, &destlen));
    EXPECT_BOMB(comn_chartovarbin(ctx.get(), &sf, text, &bin, dest, &destlen));
}

} // namespace
