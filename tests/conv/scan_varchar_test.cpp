// CS_VARCHAR sources: the text members read len bytes of str, and differ from
// the CS_CHAR forms only in how hexadecimal text is cut.
#include <string>
#include <string_view>

#include "support/context.h"

namespace {

using kes::test::Context;
using kes::test::code_name;
using kes::test::hex;

CS_VARCHAR varchar(std::string_view text)
{
    CS_VARCHAR vc;
    std::memset(&vc, 'Z', sizeof vc); // bytes past len must not be read
    vc.len = static_cast<CS_SMALLINT>(text.size());
    std::memcpy(vc.str, text.data(), text.size());
    return vc;
}

TEST(ScanVarchar, NumbersReadOnlyLenBytes)
{
    Context ctx;
    CS_DATAFMT sf = kes::test::fmt(CS_VARCHAR_TYPE, sizeof(CS_VARCHAR));
    struct NumCase {
        CS_CONV_FUNC f;
        CS_INT desttype;
        std::string_view text;
        CS_RETCODE rc;
        double value;
    };
    const NumCase cases[] = {
        {comn_varchartoi4, CS_INT_TYPE, " -42 ", CS_SUCCEED, -42},
        {comn_varchartoi4, CS_INT_TYPE, "4x", CS_ESYNTAX, 4},
        {comn_varchartoi1, CS_TINYINT_TYPE, "300", CS_EOVERFLOW, 44},
        {comn_varchartoi2, CS_SMALLINT_TYPE, "-7", CS_SUCCEED, -7},
        {comn_varchartoi8, CS_BIGINT_TYPE, "9223372036854775808", CS_EOVERFLOW, 9223372036854775807.0},
        {comn_varchartoui2, CS_USMALLINT_TYPE, "-0", CS_ESYNTAX, 0},
        {comn_varchartoui4, CS_UINT_TYPE, "4294967295", CS_SUCCEED, 4294967295.0},
        {comn_varchartoui8, CS_UBIGINT_TYPE, "1", CS_SUCCEED, 1},
        {comn_varchartobit, CS_BIT_TYPE, "-5", CS_SUCCEED, 1},
        {comn_varchartoflt8, CS_FLOAT_TYPE, "2.5", CS_SUCCEED, 2.5},
        {comn_varchartoflt4, CS_REAL_TYPE, "1e39", CS_EOVERFLOW, 3.4028234663852886e38},
    };
    for (const NumCase &c : cases) {
        SCOPED_TRACE(std::string(c.text));
        CS_VARCHAR vc = varchar(c.text);
        CS_DATAFMT df = kes::test::fmt(c.desttype);
        alignas(8) CS_BYTE dest[8] = {};
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, &vc, &df, dest, &destlen)), code_name(c.rc));
        double got = 0;
        switch (c.desttype) {
        case CS_INT_TYPE: got = *reinterpret_cast<CS_INT *>(dest); break;
        case CS_TINYINT_TYPE: got = dest[0]; break;
        case CS_BIT_TYPE: got = dest[0]; break;
        case CS_SMALLINT_TYPE: got = *reinterpret_cast<CS_SMALLINT *>(dest); break;
        case CS_USMALLINT_TYPE: got = *reinterpret_cast<CS_USMALLINT *>(dest); break;
        case CS_BIGINT_TYPE: got = static_cast<double>(*reinterpret_cast<CS_BIGINT *>(dest)); break;
        case CS_UINT_TYPE: got = *reinterpret_cast<CS_UINT *>(dest); break;
        case CS_UBIGINT_TYPE: got = static_cast<double>(*reinterpret_cast<CS_UBIGINT *>(dest)); break;
        case CS_FLOAT_TYPE: got = *reinterpret_cast<CS_FLOAT *>(dest); break;
        case CS_REAL_TYPE: got = *reinterpret_cast<CS_REAL *>(dest); break;
        }
        EXPECT_EQ(got, c.value);
    }
}

TEST(ScanVarchar, HexToBinaryCutIsAnOverflow)
{
    Context ctx;
    CS_DATAFMT sf = kes::test::fmt(CS_VARCHAR_TYPE, sizeof(CS_VARCHAR));
    CS_VARCHAR vc = varchar("010203");
    CS_DATAFMT df = kes::test::fmt(CS_BINARY_TYPE, 2);
    CS_BYTE dest[4] = {};
    CS_INT destlen = -1;
    EXPECT_EQ(comn_varchartobin(ctx.get(), &sf, &vc, &df, dest, &destlen), CS_EOVERFLOW);
    EXPECT_EQ(destlen, 2);
    EXPECT_EQ(hex(dest, 2), "0102");
    vc = varchar("0x0102");
    EXPECT_EQ(comn_varchartobin(ctx.get(), &sf, &vc, &df, dest, &destlen), CS_SUCCEED);
}

TEST(ScanVarchar, HexToVarbinaryTestsTheOddDigitAndTheCapacity)
{
    Context ctx;
    CS_DATAFMT sf = kes::test::fmt(CS_VARCHAR_TYPE, sizeof(CS_VARCHAR));
    struct VarCase {
        std::string text;
        CS_INT maxlength;
        CS_RETCODE rc;
        CS_SMALLINT len;
        CS_INT destlen;
    };
    const VarCase cases[] = {
        {"G12", 258, CS_ESYNTAX, 0, 0},
        {"ABC", 258, CS_SUCCEED, 2, 258},
        {"ABC", 2, CS_EOVERFLOW, 2, 258},
        {"ABC", 3, CS_SUCCEED, 2, 258},
        {std::string(256, 'f'), 258, CS_SUCCEED, 128, 258},
    };
    for (const VarCase &c : cases) {
        SCOPED_TRACE(c.text.substr(0, 8) + " capacity " + std::to_string(c.maxlength));
        CS_VARCHAR vc = varchar(c.text);
        CS_DATAFMT df = kes::test::fmt(CS_VARBINARY_TYPE, c.maxlength);
        CS_VARBINARY vb{};
        CS_INT destlen = -1;
        EXPECT_EQ(code_name(comn_varchartovarbin(ctx.get(), &sf, &vc, &df, &vb, &destlen)), code_name(c.rc));
        EXPECT_EQ(vb.len, c.len);
        EXPECT_EQ(destlen, c.destlen);
    }
}

TEST(ScanVarchar, ServerMembersReadTheGivenText)
{
    CAST_CONTEXT cc{};
    std::string text = " 17 ";
    CS_INT value = 0;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), 4, 0);
    __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&value), 0, 4);
    EXPECT_EQ(comnb_varchartoi4(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(value, 17);
    CS_BIT bit = 7;
    __CONSTANT bitdest = kes::test::constant(&bit, 0, 1);
    EXPECT_EQ(comnb_varchartobit(&cc, &src, &bitdest), CS_SUCCEED);
    EXPECT_EQ(bit, 1);
}

TEST(ScanVarcharDeath, EmptyAndOversizedLengths)
{
    Context ctx;
    CS_DATAFMT sf = kes::test::fmt(CS_VARCHAR_TYPE, sizeof(CS_VARCHAR));
    CS_DATAFMT df = kes::test::fmt(CS_INT_TYPE);
    CS_DATAFMT wrong = kes::test::fmt(CS_CHAR_TYPE, 4);
    CS_INT value, destlen;
    CS_VARCHAR empty = varchar("");
    CS_VARCHAR huge = varchar("1");
    huge.len = 300;
    EXPECT_BOMB(comn_varchartoi4(ctx.get(), &sf, &empty, &df, &value, &destlen));
    EXPECT_BOMB(comn_varchartoi4(ctx.get(), &sf, &huge, &df, &value, &destlen));
    EXPECT_BOMB(comn_varchartoi4(ctx.get(), &wrong, &empty, &df, &value, &destlen));
}

} // namespace
