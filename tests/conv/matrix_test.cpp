// The conversion matrix: which cells hold a function, the per-context copy,
// and the user conversion list.
#include <array>

#include "conv/matrix.h"
#include "support/context.h"

namespace {

using kes::test::Context;

// Non-null cells per source row as the families stand now.  A family that
// lands raises the counts of the rows it fills.
struct RowCount {
    int row;
    int cells;
};
constexpr RowCount kRowCounts[] = {
    {CS_TINYINT_TYPE, 23}, {CS_SMALLINT_TYPE, 23}, {CS_INT_TYPE, 23},   {CS_BIGINT_TYPE, 23},
    {CS_USMALLINT_TYPE, 23}, {CS_UINT_TYPE, 23},   {CS_UBIGINT_TYPE, 23}, {CS_BIT_TYPE, 21},
    {CS_REAL_TYPE, 23},      {CS_FLOAT_TYPE, 23},      {CS_MONEY_TYPE, 23},    {CS_MONEY4_TYPE, 23},
    {CS_NUMERIC_TYPE, 23},   {CS_DECIMAL_TYPE, 23},
    {CS_CHAR_TYPE, 26},      {CS_LONGCHAR_TYPE, 26},   {CS_TEXT_TYPE, 26},     {CS_VARCHAR_TYPE, 26},
    {CS_BOUNDARY_TYPE, 5},   {CS_XML_TYPE, 9},
    {CS_BINARY_TYPE, 30},    {CS_LONGBINARY_TYPE, 30}, {CS_IMAGE_TYPE, 30},    {CS_VARBINARY_TYPE, 30},
    {CS_LONG_TYPE, 8},       {CS_SENSITIVITY_TYPE, 6}, {CS_TEXTLOCATOR_TYPE, 8},
    {CS_IMAGELOCATOR_TYPE, 8}, {CS_UNITEXTLOCATOR_TYPE, 8},
    {CS_VOID_TYPE, 37},
};

int expected_cells(int row)
{
    for (const RowCount &rc : kRowCounts)
        if (rc.row == row)
            return rc.cells;
    return 0;
}

TEST(Matrix, CellCountPerRowFollowsTheRowPatterns)
{
    for (int row = 0; row < kConvDim; row++) {
        int cells = 0;
        for (int col = 0; col < kConvDim; col++)
            cells += Com__cnvrt_array[row * kConvDim + col] != nullptr;
        EXPECT_EQ(cells, expected_cells(row)) << "row " << row;
    }
}

// The scalar pattern never reaches dates, XML, void, the unsupported 16-bit
// and blob codes or the locators.
TEST(Matrix, ScalarRowsLeaveTheirNullColumnsEmpty)
{
    constexpr int null_columns[] = {12, 13, 21, 22, 23, 24, 26, 27, 28, 34, 35, 36, 37, 38, 39};
    for (int row : {6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 30, 31, 32, 33})
        for (int col : null_columns)
            EXPECT_EQ(Com__cnvrt_array[row * kConvDim + col], nullptr) << row << "," << col;
}

TEST(Matrix, UshortAndBlobColumnsAreEmptyOutsideTheVoidRow)
{
    for (int row = 0; row < kConvDim; row++) {
        if (row == CS_VOID_TYPE)
            continue;
        EXPECT_EQ(Com__cnvrt_array[row * kConvDim + CS_USHORT_TYPE], nullptr) << row;
        EXPECT_EQ(Com__cnvrt_array[row * kConvDim + CS_BLOB_TYPE], nullptr) << row;
        EXPECT_EQ(Com__cnvrt_array[CS_USHORT_TYPE * kConvDim + row], nullptr) << row;
        EXPECT_EQ(Com__cnvrt_array[CS_BLOB_TYPE * kConvDim + row], nullptr) << row;
    }
}

// The 64-bit members serve CS_LONG and CS_BIGINT destinations alike, and the
// short CS_LONG row and its odd copies hold exactly the members that admit 20.
TEST(Matrix, LongCellsAreTheSixtyFourBitMembers)
{
    Context ctx;
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, CS_LONG_TYPE), comn_i4toi8);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, CS_BIGINT_TYPE), comn_i4toi8);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_LONG_TYPE, CS_INT_TYPE), comn_i8toi4);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_LONG_TYPE, CS_TINYINT_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_LONG_TYPE, CS_CHAR_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_SENSITIVITY_TYPE, CS_INT_TYPE), comn_i8toi4);
    for (int row : {CS_LONG_TYPE, CS_TEXTLOCATOR_TYPE, CS_IMAGELOCATOR_TYPE, CS_UNITEXTLOCATOR_TYPE}) {
        EXPECT_EQ(com_conv_func(ctx.get(), row, CS_UBIGINT_TYPE), comn_i8toui8) << row;
        EXPECT_EQ(com_conv_func(ctx.get(), row, CS_LONG_TYPE), comn_i8toi8) << row;
    }
}

TEST(Matrix, LookupRules)
{
    Context ctx;
    EXPECT_EQ(com_conv_func(ctx.get(), -1, CS_INT_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, -5), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i1toi2);
    // A code of 40 goes to the (empty) user list.
    EXPECT_EQ(com_conv_func(ctx.get(), 40, CS_INT_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, 40), nullptr);
}

TEST(Matrix, InstallChangesOneContextOnlyAndDefaultRestores)
{
    Context a, b;
    ASSERT_EQ(com_conv_install(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE, comn_i4toi4), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i4toi4);
    EXPECT_EQ(com_conv_func(b.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i1toi2);
    ASSERT_EQ(com_conv_install(a.get(), CS_INT_TYPE, CS_INT_TYPE, nullptr), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(a.get(), CS_INT_TYPE, CS_INT_TYPE), nullptr);
    ASSERT_EQ(com_conv_default(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), CS_SUCCEED);
    ASSERT_EQ(com_conv_default(a.get(), CS_INT_TYPE, CS_INT_TYPE), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(a.get(), CS_TINYINT_TYPE, CS_SMALLINT_TYPE), comn_i1toi2);
    EXPECT_EQ(com_conv_func(a.get(), CS_INT_TYPE, CS_INT_TYPE), comn_i4toi4);
}

TEST(Matrix, UserListKeepsOneNodePerPairAndOrder)
{
    Context ctx;
    ASSERT_EQ(com_conv_install(ctx.get(), 41, 42, comn_i1toi1), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), 41, 42, comn_i2toi2), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), 41, CS_INT_TYPE, comn_i4toi4), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(ctx.get(), CS_INT_TYPE, 50, comn_i8toi8), CS_SUCCEED);

    // Source nodes chain through nextsrc; each source's destinations through nextdest.
    CsUsrCvtFunc *head = ctx->ctxusrcvttbl;
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->srctype, 41);
    EXPECT_EQ(head->desttype, 42);
    EXPECT_EQ(head->cvtfunc, comn_i2toi2); // the second install replaced
    ASSERT_NE(head->nextdest, nullptr);
    EXPECT_EQ(head->nextdest->desttype, CS_INT_TYPE);
    EXPECT_EQ(head->nextdest->nextdest, nullptr);
    ASSERT_NE(head->nextsrc, nullptr);
    EXPECT_EQ(head->nextsrc->srctype, CS_INT_TYPE);
    EXPECT_EQ(head->nextsrc->nextsrc, nullptr);

    EXPECT_EQ(com_conv_func(ctx.get(), 41, CS_INT_TYPE), comn_i4toi4);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_INT_TYPE, 50), comn_i8toi8);
    EXPECT_EQ(com_conv_func(ctx.get(), 41, 43), nullptr);

    // Default empties the function and keeps the node; an unknown pair is fine.
    ASSERT_EQ(com_conv_default(ctx.get(), 41, 42), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(ctx.get(), 41, 42), nullptr);
    EXPECT_EQ(ctx->ctxusrcvttbl, head);
    EXPECT_EQ(com_conv_default(ctx.get(), 77, 78), CS_SUCCEED);
}

TEST(Matrix, TypeLengths)
{
    struct Case {
        CS_INT type, len, expected;
    };
    constexpr Case cases[] = {
        {CS_TINYINT_TYPE, 7, 1},   {CS_BIT_TYPE, 7, 1},       {CS_SMALLINT_TYPE, 7, 2},
        {CS_UNICHAR_TYPE, 7, 2},   {CS_USMALLINT_TYPE, 7, 2}, {CS_INT_TYPE, 7, 4},
        {CS_REAL_TYPE, 7, 4},      {CS_DATETIME4_TYPE, 7, 4}, {CS_MONEY4_TYPE, 7, 4},
        {CS_DATE_TYPE, 7, 4},      {CS_TIME_TYPE, 7, 4},      {CS_UINT_TYPE, 7, 4},
        {CS_FLOAT_TYPE, 7, 8},     {CS_DATETIME_TYPE, 7, 8},  {CS_MONEY_TYPE, 7, 8},
        {CS_BIGINT_TYPE, 7, 8},    {CS_UBIGINT_TYPE, 7, 8},   {CS_BIGDATETIME_TYPE, 7, 8},
        {CS_BIGTIME_TYPE, 7, 8},   {CS_NUMERIC_TYPE, 7, 35},  {CS_DECIMAL_TYPE, 7, 35},
        {CS_VARCHAR_TYPE, 7, 258}, {CS_VARBINARY_TYPE, 7, 258},
        // Types without a fixed size answer the length they were given.
        {CS_CHAR_TYPE, 7, 7},      {CS_LONG_TYPE, 7, 7},      {CS_USHORT_TYPE, 7, 7},
        {CS_UNITEXT_TYPE, 7, 7},   {CS_VOID_TYPE, 7, 7},      {CS_BLOB_TYPE, 7, 7},
        {CS_TEXTLOCATOR_TYPE, 7, 7}, {45, 7, 7},               {CS_IMAGE_TYPE, -3, -3},
    };
    for (const Case &c : cases)
        EXPECT_EQ(comn_typelen(c.type, c.len), c.expected) << "type " << c.type;
}

TEST(Matrix, VoidToVoidTouchesNothing)
{
    CS_INT destlen = 1234;
    EXPECT_EQ(comn_voidtovoid(nullptr, nullptr, nullptr, nullptr, nullptr, &destlen), CS_SUCCEED);
    EXPECT_EQ(destlen, 1234);
}

TEST(MatrixDeath, DefaultOfANegativeCodeBombs)
{
    Context ctx;
    EXPECT_BOMB(com_conv_default(ctx.get(), -1, 3));
    EXPECT_NULL_POINTER(com_conv_init(nullptr));
}

} // namespace
