// The conversion matrix: which cells hold a function, the per-context copy,
// the user conversion list, and the type lengths.
#include <vector>
#include <map>

#include "conv/matrix.h"
#include "support/context.h"

namespace {

using kes::test::Context;

auto cell(int row, int col) { return Com__cnvrt_array[row * kConvDim + col]; }

// Non-null cells per source row as the families stand now (other rows: 0).
// A family that lands raises the counts of the rows it fills.
TEST(Matrix, CellCountPerRowFollowsTheRowPatterns)
{
    const std::map<int, int> counts = {
        {CS_TINYINT_TYPE, 23},  {CS_SMALLINT_TYPE, 23},  {CS_INT_TYPE, 23},          {CS_BIGINT_TYPE, 23},
        {CS_USMALLINT_TYPE, 23}, {CS_UINT_TYPE, 23},     {CS_UBIGINT_TYPE, 23},      {CS_BIT_TYPE, 21},
        {CS_REAL_TYPE, 23},     {CS_FLOAT_TYPE, 23},     {CS_MONEY_TYPE, 23},        {CS_MONEY4_TYPE, 23},
        {CS_NUMERIC_TYPE, 23},  {CS_DECIMAL_TYPE, 23},   {CS_CHAR_TYPE, 26},         {CS_LONGCHAR_TYPE, 26},
        {CS_TEXT_TYPE, 26},     {CS_VARCHAR_TYPE, 26},   {CS_BOUNDARY_TYPE, 5},      {CS_XML_TYPE, 9},
        {CS_BINARY_TYPE, 30},   {CS_LONGBINARY_TYPE, 30}, {CS_IMAGE_TYPE, 30},       {CS_VARBINARY_TYPE, 30},
        {CS_LONG_TYPE, 8},      {CS_SENSITIVITY_TYPE, 6}, {CS_TEXTLOCATOR_TYPE, 8},  {CS_IMAGELOCATOR_TYPE, 8},
        {CS_UNITEXTLOCATOR_TYPE, 8}, {CS_VOID_TYPE, 37},
    };
    for (int row = 0; row < kConvDim; row++) {
        int cells = 0;
        for (int col = 0; col < kConvDim; col++)
            cells += cell(row, col) != nullptr;
        EXPECT_EQ(cells, counts.contains(row) ? counts.at(row) : 0) << "row " << row;
    }
}

// The scalar pattern never reaches dates, XML, void, the unsupported 16-bit
// and blob codes or the locators; the 16-bit and blob codes are empty
// everywhere but in the void row.
TEST(Matrix, EmptyColumnsOfTheScalarRowsAndOfTheUnsupportedCodes)
{
    for (int row : {6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 30, 31, 32, 33})
        for (int col : {12, 13, 21, 22, 23, 24, 26, 27, 28, 34, 35, 36, 37, 38, 39})
            EXPECT_EQ(cell(row, col), nullptr) << row << "," << col;
    for (int i = 0; i < kConvDim; i++) {
        for (int code : {CS_USHORT_TYPE, CS_BLOB_TYPE}) {
            EXPECT_EQ(cell(code, i), nullptr) << code << "," << i;
            EXPECT_TRUE(i == CS_VOID_TYPE || cell(i, code) == nullptr) << i << "," << code;
        }
    }
}

// The 64-bit members serve CS_LONG and CS_BIGINT alike; the short CS_LONG row
// and its copies hold exactly the members that admit 20.  Codes out of range
// give nothing; 40 and up go to the (empty) user list.
TEST(Matrix, LookupRulesAndTheLongCells)
{
    Context ctx;
    struct Case { CS_INT src, dst; CS_CONV_FUNC f; };
    const Case cases[] = {
        {CS_INT_TYPE, CS_LONG_TYPE, comn_i4toi8},   {CS_INT_TYPE, CS_BIGINT_TYPE, comn_i4toi8},
        {CS_LONG_TYPE, CS_INT_TYPE, comn_i8toi4},   {CS_LONG_TYPE, CS_TINYINT_TYPE, nullptr},
        {CS_LONG_TYPE, CS_CHAR_TYPE, nullptr},      {CS_SENSITIVITY_TYPE, CS_INT_TYPE, comn_i8toi4},
        {-1, CS_INT_TYPE, nullptr},                 {CS_INT_TYPE, -5, nullptr},
        {CS_TINYINT_TYPE, CS_SMALLINT_TYPE, comn_i1toi2}, {40, CS_INT_TYPE, nullptr}, {CS_INT_TYPE, 40, nullptr},
    };
    for (const Case &c : cases)
        EXPECT_EQ(com_conv_func(ctx.get(), c.src, c.dst), c.f) << c.src << "," << c.dst;
    for (int row : {CS_LONG_TYPE, CS_TEXTLOCATOR_TYPE, CS_IMAGELOCATOR_TYPE, CS_UNITEXTLOCATOR_TYPE}) {
        EXPECT_EQ(com_conv_func(ctx.get(), row, CS_UBIGINT_TYPE), comn_i8toui8) << row;
        EXPECT_EQ(com_conv_func(ctx.get(), row, CS_LONG_TYPE), comn_i8toi8) << row;
    }
}

TEST(Matrix, InstallChangesOneContextOnlyAndDefaultRestores)
{
    Context a, b;
    ASSERT_EQ(com_conv_install(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE, comn_i4toi4), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(a.get(), CS_INT_TYPE, CS_INT_TYPE, nullptr), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i4toi4);
    EXPECT_EQ(com_conv_func(a.get(), CS_INT_TYPE, CS_INT_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(b.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i1toi2);
    ASSERT_EQ(com_conv_default(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), CS_SUCCEED);
    ASSERT_EQ(com_conv_default(a.get(), CS_INT_TYPE, CS_INT_TYPE), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i1toi2);
    EXPECT_EQ(com_conv_func(a.get(), CS_INT_TYPE, CS_INT_TYPE), comn_i4toi4);
}

// Source nodes chain through nextsrc, each source's destinations through
// nextdest; a second install replaces, default empties but keeps the node.
TEST(Matrix, UserListKeepsOneNodePerPairAndOrder)
{
    Context ctx;
    ASSERT_EQ(com_conv_install(ctx.get(), 41, 42, comn_i1toi1), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), 41, 42, comn_i2toi2), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), 41, CS_INT_TYPE, comn_i4toi4), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), CS_INT_TYPE, 50, comn_i8toi8), CS_SUCCEED);
    CsUsrCvtFunc *head = ctx->ctxusrcvttbl;
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->srctype, 41);
    EXPECT_EQ(head->desttype, 42);
    EXPECT_EQ(head->cvtfunc, comn_i2toi2);
    ASSERT_NE(head->nextdest, nullptr);
    EXPECT_EQ(head->nextdest->desttype, CS_INT_TYPE);
    EXPECT_EQ(head->nextdest->nextdest, nullptr);
    ASSERT_NE(head->nextsrc, nullptr);
    EXPECT_EQ(head->nextsrc->srctype, CS_INT_TYPE);
    EXPECT_EQ(head->nextsrc->nextsrc, nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), 41, CS_INT_TYPE), comn_i4toi4);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, 50), comn_i8toi8);
    EXPECT_EQ(com_conv_func(ctx.get(), 41, 43), nullptr);
    ASSERT_EQ(com_conv_default(ctx.get(), 41, 42), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(ctx.get(), 41, 42), nullptr);
    EXPECT_EQ(ctx->ctxusrcvttbl, head);
    EXPECT_EQ(com_conv_default(ctx.get(), 77, 78), CS_SUCCEED) << "an unknown pair is fine";
}

// Types without a fixed size (0 here) answer the length they were given.
TEST(Matrix, TypeLengths)
{
    const std::pair<CS_INT, std::vector<CS_INT>> sizes[] = {
        {1, {CS_TINYINT_TYPE, CS_BIT_TYPE}},
        {2, {CS_SMALLINT_TYPE, CS_UNICHAR_TYPE, CS_USMALLINT_TYPE}},
        {4, {CS_INT_TYPE, CS_REAL_TYPE, CS_DATETIME4_TYPE, CS_MONEY4_TYPE, CS_DATE_TYPE, CS_TIME_TYPE, CS_UINT_TYPE}},
        {8, {CS_FLOAT_TYPE, CS_DATETIME_TYPE, CS_MONEY_TYPE, CS_BIGINT_TYPE, CS_UBIGINT_TYPE, CS_BIGDATETIME_TYPE,
             CS_BIGTIME_TYPE}},
        {35, {CS_NUMERIC_TYPE, CS_DECIMAL_TYPE}},
        {258, {CS_VARCHAR_TYPE, CS_VARBINARY_TYPE}},
        {0, {CS_CHAR_TYPE, CS_LONG_TYPE, CS_USHORT_TYPE, CS_UNITEXT_TYPE, CS_VOID_TYPE, CS_BLOB_TYPE,
             CS_TEXTLOCATOR_TYPE, 45}},
    };
    for (const auto &[size, types] : sizes)
        for (CS_INT type : types)
            EXPECT_EQ(comn_typelen(type, 7), size ? size : 7) << "type " << type;
    EXPECT_EQ(comn_typelen(CS_IMAGE_TYPE, -3), -3);
    CS_INT destlen = 1234;
    EXPECT_EQ(comn_voidtovoid(nullptr, nullptr, nullptr, nullptr, nullptr, &destlen), CS_SUCCEED);
    EXPECT_EQ(destlen, 1234) << "void to void touches nothing";
}

TEST(MatrixDeath, DefaultOfANegativeCodeBombs)
{
    Context ctx;
    EXPECT_BOMB(com_conv_default(ctx.get(), -1, 3));
    EXPECT_NULL_POINTER(com_conv_init(nullptr));
}

} // namespace
