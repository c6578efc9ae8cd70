// Hexadecimal text to binary and CS_VARBINARY from CS_CHAR and CS_VARCHAR
// sources: trims and the prefix, odd digit counts, capacities 0, 1, exact and
// one short, bad digits inside and beyond the capacity, and the fill.
#include <string>
#include <string_view>

#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::fmt;
using kes::test::hex;

CS_CONTEXT *ctx() { static kes::test::Context c; return c.get(); }

// The text as a CS_CHAR or a CS_VARCHAR source, with its format.
struct Source {
    std::string chars;
    CS_VARCHAR vc;
    CS_DATAFMT fmt;
    Source(std::string_view text, bool varchar) : chars(text), vc{}
    {
        vc.len = static_cast<CS_SMALLINT>(varchar ? text.size() : 0);
        std::memcpy(vc.str, text.data(), static_cast<size_t>(vc.len));
        fmt = varchar ? kes::test::fmt(CS_VARCHAR_TYPE, sizeof vc)
                      : kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(chars.size()));
    }
    CS_VOID *data() { return fmt.datatype == CS_VARCHAR_TYPE ? static_cast<CS_VOID *>(&vc) : chars.data(); }
};

// White space is trimmed, then one "0x" prefix; an odd count has a leading 0.
// A cut is CS_TRUNCATED from CS_CHAR and CS_EOVERFLOW from CS_VARCHAR.
TEST(ScanHex, ToBinaryAtEveryCapacity)
{
    struct Case { std::string_view text; CS_INT maxlength, format; CS_RETCODE rc; std::string_view bytes; CS_INT destlen; };
    constexpr Case cases[] = {
        {"0xABC", 4, 0, CS_SUCCEED, "0abc", 2}, {"ABC", 2, 0, CS_SUCCEED, "0abc", 2},
        {"ABC", 1, 0, CS_TRUNCATED, "0a", 1}, {"abc", 0, 0, CS_EOVERFLOW, "", 0}, {"ab", 0, 0, CS_TRUNCATED, "", 0},
        {"0102", 2, 0, CS_SUCCEED, "0102", 2}, {"010203", 2, 0, CS_TRUNCATED, "0102", 2},
        {"0x", 4, 0, CS_SUCCEED, "", 0}, {"0x", 3, CS_FMT_PADNULL, CS_SUCCEED, "000000", 3},
        {"0x01", 3, CS_FMT_PADNULL, CS_SUCCEED, "010000", 3}, {"01", 3, CS_FMT_PADBLANK, CS_SUCCEED, "01", 1},
        {"  0X0102  ", 2, 0, CS_SUCCEED, "0102", 2}, {"\t0xAB\n", 2, 0, CS_SUCCEED, "ab", 1},
        {"0x0x1", 4, 0, CS_ESYNTAX, "", 0}, {" 0 x1", 4, 0, CS_ESYNTAX, "", 0}, {"G12", 4, 0, CS_ESYNTAX, "", 0},
        {"12G4", 4, 0, CS_ESYNTAX, "", 0},
        {"0102zz", 1, 0, CS_TRUNCATED, "01", 1}, // digits beyond the capacity are not looked at
        {"FfeE", 2, 0, CS_SUCCEED, "ffee", 2},
    };
    for (const Case &c : cases) {
        for (bool varchar : {false, true}) {
            SCOPED_TRACE((varchar ? "varchar \"" : "char \"") + std::string(c.text) + "\" into " +
                         std::to_string(c.maxlength));
            Source src(c.text, varchar);
            CS_DATAFMT df = fmt(CS_BINARY_TYPE, c.maxlength, c.format);
            CS_BYTE dest[8];
            std::memset(dest, 0xEE, sizeof dest);
            CS_INT destlen = -1;
            const CS_RETCODE rc = (varchar ? comn_varchartobin : comn_chartobin)(ctx(), &src.fmt, src.data(), &df,
                                                                                 dest, &destlen);
            EXPECT_EQ(code_name(rc), code_name(varchar && c.rc == CS_TRUNCATED ? CS_EOVERFLOW : c.rc));
            EXPECT_EQ(destlen, c.destlen);
            EXPECT_EQ(hex(dest, static_cast<size_t>(c.destlen)), c.bytes);
            EXPECT_EQ(dest[c.maxlength], 0xEE) << "written past the capacity";
        }
    }
}

// CS_CHAR stores 0xFF for a bad odd first digit and ignores the capacity; a
// CS_VARCHAR refuses the digit and calls a full capacity an overflow.
TEST(ScanHex, ToVarbinaryDiffersBySource)
{
    struct Case { bool varchar; std::string text; CS_INT maxlength; CS_RETCODE rc; CS_SMALLINT len; std::string head;
                  CS_INT destlen; };
    const Case cases[] = {
        {false, "G12", 2, CS_SUCCEED, 2, "ff12", 258}, {false, "ABC", 258, CS_SUCCEED, 2, "0abc", 258},
        {false, "0x", 258, CS_SUCCEED, 0, "", 258}, {false, "12G4", 258, CS_ESYNTAX, 0, "", 0},
        {false, std::string(511, 'a'), 258, CS_SUCCEED, 256, "0aaa", 258},
        {false, std::string(512, 'a'), 258, CS_SUCCEED, 256, "aaaa", 258},
        {false, std::string(513, 'a'), 258, CS_TRUNCATED, 256, "0aaa", 258},
        {false, std::string(514, 'a'), 258, CS_TRUNCATED, 256, "aaaa", 258}, {true, "G12", 258, CS_ESYNTAX, 0, "", 0},
        {true, "ABC", 2, CS_EOVERFLOW, 2, "0abc", 258}, {true, "ABC", 3, CS_SUCCEED, 2, "0abc", 258},
        {true, std::string(256, 'f'), 258, CS_SUCCEED, 128, "ffff", 258},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE((c.varchar ? "varchar " : "char ") + c.text.substr(0, 8) + " length " +
                     std::to_string(c.text.size()) + " capacity " + std::to_string(c.maxlength));
        Source src(c.text, c.varchar);
        CS_DATAFMT df = fmt(CS_VARBINARY_TYPE, c.maxlength);
        CS_VARBINARY vb;
        std::memset(&vb, 0xEE, sizeof vb);
        CS_INT destlen = -1;
        const CS_RETCODE rc = (c.varchar ? comn_varchartovarbin : comn_chartovarbin)(ctx(), &src.fmt, src.data(),
                                                                                     &df, &vb, &destlen);
        EXPECT_EQ(code_name(rc), code_name(c.rc));
        EXPECT_EQ(vb.len, c.len);
        EXPECT_EQ(destlen, c.destlen);
        EXPECT_EQ(hex(vb.array, c.head.size() / 2), c.head);
    }
}

TEST(ScanHexDeath, DestinationTypesAreAsserted)
{
    char text[] = "12";
    CS_BYTE dest[4];
    CS_INT destlen;
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 2), varbin = fmt(CS_VARBINARY_TYPE, 258), bin = fmt(CS_BINARY_TYPE, 4);
    EXPECT_BOMB(comn_chartobin(ctx(), &sf, text, &varbin, dest, &destlen));
    EXPECT_BOMB(comn_chartovarbin(ctx(), &sf, text, &bin, dest, &destlen));
}

} // namespace
