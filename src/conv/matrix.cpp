// The 40 by 40 conversion matrix, built at compile time from the row patterns,
// its per-context copy, and the user conversion list.
#include "conv/matrix.h"

#include <cstring>
#include <initializer_list>
#include <utility>

#include "errors/assert.h"
#include "kescomn/conv_bin.h"
#include "kescomn/conv_float.h"
#include "kescomn/conv_int.h"
#include "kescomn/money.h"
#include "kescomn/numconv.h"
#include "kescomn/numeric.h"
#include "kescomn/conv_scan.h"
#include "kescomn/conv_string.h"
#include "kesintl.h"

namespace {

using F = CS_CONV_FUNC;
using Matrix = std::array<F, kConvDim * kConvDim>;

// Cells of a row of the scalar pattern, by destination.  A family that lands
// fills its members here; an empty member is a null cell.
struct ScalarCells {
    F tochar{}, tobin{}, toi1{}, toi2{}, toi4{}, toflt4{}, toflt8{}, tobit{}, tomoney{}, tomny4{},
        tonum{}, tovarchar{}, tovarbin{}, toi8{}, tounichar{}, toui2{}, toui4{}, toui8{};
};

// The text and binary patterns: the scalar cells plus the date columns.
struct TextCells {
    ScalarCells scalar;
    F todatetime{}, todate4{}, todatea{}, totimea{}, tobigdatetime{}, tobigtime{};
};

struct DateCells {
    F tochar{}, todate{}, todate4{}, tovarchar{}, tovarbin{}, tounichar{}, todatea{}, totimea{},
        tobigdatetime{}, tobigtime{};
};

constexpr void put(Matrix &m, int row, std::initializer_list<int> cols, F f)
{
    for (int col : cols)
        m[row * kConvDim + col] = f;
}

constexpr void scalar_row(Matrix &m, int row, const ScalarCells &c)
{
    put(m, row, {0, 2, 4}, c.tochar);
    put(m, row, {1, 3, 5}, c.tobin);
    put(m, row, {6}, c.toi1);
    put(m, row, {7}, c.toi2);
    put(m, row, {8}, c.toi4);
    put(m, row, {9}, c.toflt4);
    put(m, row, {10}, c.toflt8);
    put(m, row, {11}, c.tobit);
    put(m, row, {14}, c.tomoney);
    put(m, row, {15}, c.tomny4);
    put(m, row, {16, 17}, c.tonum);
    put(m, row, {18}, c.tovarchar);
    put(m, row, {19}, c.tovarbin);
    put(m, row, {20, 30}, c.toi8);
    put(m, row, {25, 29}, c.tounichar);
    put(m, row, {31}, c.toui2);
    put(m, row, {32}, c.toui4);
    put(m, row, {33}, c.toui8);
}

constexpr void text_row(Matrix &m, int row, const TextCells &c)
{
    scalar_row(m, row, c.scalar);
    put(m, row, {21, 22, 34}, c.scalar.tochar);
    put(m, row, {12, 35}, c.todatetime);
    put(m, row, {13}, c.todate4);
    put(m, row, {27}, c.todatea);
    put(m, row, {28, 36}, c.totimea);
}

constexpr void binary_row(Matrix &m, int row, const TextCells &c)
{
    text_row(m, row, c);
    put(m, row, {21, 22}, nullptr);
    put(m, row, {35}, c.tobigdatetime);
    put(m, row, {36}, c.tobigtime);
}

constexpr void date_row(Matrix &m, int row, const DateCells &c)
{
    put(m, row, {0, 2, 4}, c.tochar);
    put(m, row, {12}, c.todate);
    put(m, row, {13}, c.todate4);
    put(m, row, {18}, c.tovarchar);
    put(m, row, {19}, c.tovarbin);
    put(m, row, {25, 29}, c.tounichar);
    put(m, row, {27}, c.todatea);
    put(m, row, {28}, c.totimea);
    put(m, row, {35}, c.tobigdatetime);
    put(m, row, {36}, c.tobigtime);
}

// The CS_LONG row: the 64-bit functions whose assertions admit code 20.  Rows
// 21 and 37 to 39 carry some of the same cells, and those calls assert.
constexpr void long_cells(Matrix &m, int row)
{
    put(m, row, {8}, comn_i8toi4);
    put(m, row, {20, 30}, comn_i8toi8);
    put(m, row, {31}, comn_i8toui2);
    put(m, row, {32}, comn_i8toui4);
    put(m, row, {33}, comn_i8toui8);
    put(m, row, {16, 17}, comn_i8tonum);
}

// The money members go in the middle of the designated initializers, so the
// bit row, which has none, passes an empty money argument.
#define KES_SCALAR_CELLS(p, money)                                                           \
    ScalarCells                                                                              \
    {                                                                                        \
        .tochar = comn_##p##tochar, .tobin = comn_##p##tobin, .toi1 = comn_##p##toi1,        \
        .toi2 = comn_##p##toi2, .toi4 = comn_##p##toi4, .toflt4 = comn_##p##toflt4,          \
        .toflt8 = comn_##p##toflt8, .tobit = comn_##p##tobit, money                          \
        .tovarchar = comn_##p##tovarchar, .tovarbin = comn_##p##tovarbin, .toi8 = comn_##p##toi8, \
        .toui2 = comn_##p##toui2, .toui4 = comn_##p##toui4, .toui8 = comn_##p##toui8         \
    }
#define KES_MONEY_CELLS(p) .tomoney = comn_##p##tomoney, .tomny4 = comn_##p##tomny4,
#define KES_INT_CELLS(p) KES_SCALAR_CELLS(p, KES_MONEY_CELLS(p))

// Cells of the rows whose families have not all landed; a family that lands
// names its functions here.
// Text to text, numbers and bytes; the CS_CHAR and CS_VARCHAR rows alike.
#define KES_MONEY_NUM_CELLS(p) KES_MONEY_CELLS(p).tonum = comn_##p##tonum,
#define KES_TEXT_SCALAR_CELLS(p) KES_SCALAR_CELLS(p, KES_MONEY_NUM_CELLS(p))
#define KES_TEXT_CELLS(p) TextCells{.scalar = KES_TEXT_SCALAR_CELLS(p)}
// Bytes as every fixed type, as hexadecimal text and as bytes.
#define KES_BYTES_CELLS(p)                                                                   \
    TextCells                                                                                \
    {                                                                                        \
        .scalar = KES_TEXT_SCALAR_CELLS(p), .todatetime = comn_##p##todatetime,              \
        .todate4 = comn_##p##todate4, .todatea = comn_##p##todatea, .totimea = comn_##p##totimea, \
        .tobigdatetime = comn_##p##tobigdatetime, .tobigtime = comn_##p##tobigtime           \
    }
constexpr TextCells char_cells = KES_TEXT_CELLS(char);       // CS_CHAR, CS_LONGCHAR, CS_TEXT
constexpr TextCells varchar_cells = KES_TEXT_CELLS(varchar); // CS_VARCHAR
constexpr TextCells bin_cells = KES_BYTES_CELLS(bin);        // CS_BINARY, CS_LONGBINARY, CS_IMAGE
constexpr TextCells varbin_cells = KES_BYTES_CELLS(varbin);  // CS_VARBINARY
#undef KES_TEXT_CELLS
#undef KES_BYTES_CELLS
#undef KES_TEXT_SCALAR_CELLS
#undef KES_MONEY_NUM_CELLS
constexpr TextCells unichar_cells{}; // CS_UNICHAR, CS_UNITEXT
constexpr ScalarCells flt4_cells = KES_INT_CELLS(flt4); // floats fill the same members
constexpr ScalarCells flt8_cells = KES_INT_CELLS(flt8);
constexpr ScalarCells money_cells = KES_INT_CELLS(money);
constexpr ScalarCells mny4_cells = KES_INT_CELLS(mny4);
constexpr ScalarCells num_cells = KES_INT_CELLS(num); // CS_NUMERIC, CS_DECIMAL
constexpr DateCells date_cells{};  // CS_DATETIME
constexpr DateCells date4_cells{}; // CS_DATETIME4
constexpr DateCells datea_cells{}; // CS_DATE
constexpr DateCells timea_cells{}; // CS_TIME

constexpr Matrix build_matrix()
{
    Matrix m{};

    for (int row : {CS_CHAR_TYPE, CS_LONGCHAR_TYPE, CS_TEXT_TYPE})
        text_row(m, row, char_cells);
    text_row(m, CS_VARCHAR_TYPE, varchar_cells);
    for (int row : {CS_BINARY_TYPE, CS_LONGBINARY_TYPE, CS_IMAGE_TYPE})
        binary_row(m, row, bin_cells);
    binary_row(m, CS_VARBINARY_TYPE, varbin_cells);
    for (int row : {CS_UNICHAR_TYPE, CS_UNITEXT_TYPE}) {
        text_row(m, row, unichar_cells);
        put(m, row, {21, 22, 34}, nullptr);
    }

    scalar_row(m, CS_TINYINT_TYPE, KES_INT_CELLS(i1));
    scalar_row(m, CS_SMALLINT_TYPE, KES_INT_CELLS(i2));
    scalar_row(m, CS_INT_TYPE, KES_INT_CELLS(i4));
    scalar_row(m, CS_BIGINT_TYPE, KES_INT_CELLS(i8));
    scalar_row(m, CS_USMALLINT_TYPE, KES_INT_CELLS(ui2));
    scalar_row(m, CS_UINT_TYPE, KES_INT_CELLS(ui4));
    scalar_row(m, CS_UBIGINT_TYPE, KES_INT_CELLS(ui8));
    scalar_row(m, CS_BIT_TYPE, KES_SCALAR_CELLS(bit, )); // no money cells: bit to money is server-only
    // Integers to numeric; kept out of KES_INT_CELLS, which the float rows share.
    for (auto [row, f] : std::initializer_list<std::pair<int, F>>{
             {CS_TINYINT_TYPE, comn_i1tonum}, {CS_SMALLINT_TYPE, comn_i2tonum}, {CS_INT_TYPE, comn_i4tonum},
             {CS_BIGINT_TYPE, comn_i8tonum}, {CS_USMALLINT_TYPE, comn_ui2tonum}, {CS_UINT_TYPE, comn_ui4tonum},
             {CS_UBIGINT_TYPE, comn_ui8tonum}, {CS_BIT_TYPE, comn_bittonum}})
        put(m, row, {16, 17}, f);
    scalar_row(m, CS_REAL_TYPE, flt4_cells);
    scalar_row(m, CS_FLOAT_TYPE, flt8_cells);
    scalar_row(m, CS_MONEY_TYPE, money_cells);
    scalar_row(m, CS_MONEY4_TYPE, mny4_cells);
    scalar_row(m, CS_NUMERIC_TYPE, num_cells);
    scalar_row(m, CS_DECIMAL_TYPE, num_cells);
    // The numeric column of the float, money and numeric rows.
    for (auto [row, f] : std::initializer_list<std::pair<int, F>>{
             {CS_REAL_TYPE, comn_flt4tonum}, {CS_FLOAT_TYPE, comn_flt8tonum}, {CS_MONEY_TYPE, comn_moneytonum},
             {CS_MONEY4_TYPE, comn_mny4tonum}, {CS_NUMERIC_TYPE, comn_numtonum}, {CS_DECIMAL_TYPE, comn_numtonum}})
        put(m, row, {16, 17}, f);

    date_row(m, CS_DATETIME_TYPE, date_cells);
    date_row(m, CS_DATETIME4_TYPE, date4_cells);
    date_row(m, CS_DATE_TYPE, datea_cells);
    put(m, CS_DATE_TYPE, {28, 36}, nullptr); // a date has no time to give
    date_row(m, CS_TIME_TYPE, timea_cells);
    put(m, CS_TIME_TYPE, {27}, nullptr);

    long_cells(m, CS_LONG_TYPE);
    put(m, CS_SENSITIVITY_TYPE, {8}, comn_i8toi4);
    // The text-only character rows: each converts to the plain text types,
    // to itself and to CS_VARCHAR.
    put(m, CS_SENSITIVITY_TYPE, {0, 2, 4, 21}, comn_chartochar);
    put(m, CS_BOUNDARY_TYPE, {0, 2, 4, 22}, comn_chartochar);
    put(m, CS_XML_TYPE, {0, 2, 4, 34}, comn_chartochar);
    for (int row : {CS_SENSITIVITY_TYPE, CS_BOUNDARY_TYPE, CS_XML_TYPE})
        put(m, row, {18}, comn_chartovarchar);
    put(m, CS_XML_TYPE, {1, 3, 5}, comn_chartobin);
    put(m, CS_XML_TYPE, {19}, comn_chartovarbin);
    for (int locator : {CS_TEXTLOCATOR_TYPE, CS_IMAGELOCATOR_TYPE, CS_UNITEXTLOCATOR_TYPE})
        long_cells(m, locator);
    // A void source gives the destination's null; locators have none to give.
    for (int col = 0; col <= CS_BIGTIME_TYPE; col++)
        put(m, CS_VOID_TYPE, {col}, comn_voidtoany);
    put(m, CS_VOID_TYPE, {CS_VOID_TYPE}, comn_voidtovoid);
    return m;
}

#undef KES_INT_CELLS
#undef KES_MONEY_CELLS
#undef KES_SCALAR_CELLS

} // namespace

constinit const Matrix Com__cnvrt_array = build_matrix();

extern "C" {

void com__get_ctbl(CS_CONV_FUNC **cvt_array, int *cvt_dim)
{
    *cvt_array = const_cast<CS_CONV_FUNC *>(Com__cnvrt_array.data());
    *cvt_dim = kConvDim;
}

CS_RETCODE com_conv_init(CS_CONTEXT *context)
{
    KES_NOT_NULL(context);
    CS_CONV_FUNC *table;
    int dim;
    com__get_ctbl(&table, &dim);
    const size_t bytes = sizeof(CS_CONV_FUNC) * static_cast<size_t>(dim) * static_cast<size_t>(dim);
    auto *copy = static_cast<CS_CONV_FUNC *>(comn_malloc(bytes));
    if (copy == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    std::memcpy(copy, table, bytes);
    context->ctxcvttbl.cvttbl = copy;
    context->ctxcvttbl.cvtdim = dim;
    context->ctxusrcvttbl = nullptr;
    return CS_SUCCEED;
}

CS_RETCODE com_conv_free(CS_CONTEXT *context)
{
    KES_NOT_NULL(context);
    comn_free(context->ctxcvttbl.cvttbl);
    context->ctxcvttbl.cvttbl = nullptr;
    context->ctxcvttbl.cvtdim = 0;
    return com__conv_usr_free(context);
}

CS_CONV_FUNC com_conv_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype)
{
    KES_NOT_NULL(context);
    if (srctype < 0 || desttype < 0)
        return nullptr;
    const int dim = context->ctxcvttbl.cvtdim;
    if (srctype < dim && desttype < dim)
        return context->ctxcvttbl.cvttbl[srctype * dim + desttype];
    return com__conv_usr_func(context, srctype, desttype);
}

CS_RETCODE com_conv_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype, CS_CONV_FUNC newfunc)
{
    KES_NOT_NULL(context);
    const int dim = context->ctxcvttbl.cvtdim;
    if (srctype < dim && desttype < dim) {
        context->ctxcvttbl.cvttbl[srctype * dim + desttype] = newfunc;
        return CS_SUCCEED;
    }
    return com__conv_usr_install(context, srctype, desttype, newfunc);
}

CS_RETCODE com_conv_default(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype)
{
    KES_NOT_NULL(context);
    KES_ASSERT(srctype >= 0 && desttype >= 0);
    if (srctype < kConvDim && desttype < kConvDim)
        return com_conv_install(context, srctype, desttype,
                                Com__cnvrt_array[srctype * kConvDim + desttype]);
    if (CsUsrCvtFunc *node = com__conv_usr_struct(context, srctype, desttype))
        node->cvtfunc = nullptr;
    return CS_SUCCEED;
}

CsUsrCvtFunc *com__conv_usr_struct(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype)
{
    for (CsUsrCvtFunc *src = context->ctxusrcvttbl; src != nullptr; src = src->nextsrc) {
        if (src->srctype != srctype)
            continue;
        for (CsUsrCvtFunc *node = src; node != nullptr; node = node->nextdest)
            if (node->desttype == desttype)
                return node;
        return nullptr;
    }
    return nullptr;
}

CS_CONV_FUNC com__conv_usr_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype)
{
    CsUsrCvtFunc *node = com__conv_usr_struct(context, srctype, desttype);
    return node != nullptr ? node->cvtfunc : nullptr;
}

CS_RETCODE com__conv_usr_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                 CS_CONV_FUNC newfunc)
{
    CsUsrCvtFunc *last_src = nullptr;
    CsUsrCvtFunc *source = nullptr;
    for (CsUsrCvtFunc *node = context->ctxusrcvttbl; node != nullptr; node = node->nextsrc) {
        last_src = node;
        if (node->srctype == srctype) {
            source = node;
            break;
        }
    }
    CsUsrCvtFunc *last_dest = nullptr;
    for (CsUsrCvtFunc *node = source; node != nullptr; node = node->nextdest) {
        last_dest = node;
        if (node->desttype == desttype) {
            node->cvtfunc = newfunc; // a second install replaces
            return CS_SUCCEED;
        }
    }
    auto *fresh = static_cast<CsUsrCvtFunc *>(comn_malloc(sizeof(CsUsrCvtFunc)));
    if (fresh == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    std::memset(fresh, 0, sizeof *fresh);
    fresh->srctype = srctype;
    fresh->desttype = desttype;
    fresh->cvtfunc = newfunc;
    if (context->ctxusrcvttbl == nullptr)
        context->ctxusrcvttbl = fresh;
    else if (source == nullptr)
        last_src->nextsrc = fresh;
    else
        last_dest->nextdest = fresh;
    return CS_SUCCEED;
}

CS_RETCODE com__conv_usr_free(CS_CONTEXT *context)
{
    CsUsrCvtFunc *source = context->ctxusrcvttbl;
    while (source != nullptr) {
        CsUsrCvtFunc *next_source = source->nextsrc;
        for (CsUsrCvtFunc *node = source; node != nullptr;) {
            CsUsrCvtFunc *next = node->nextdest;
            comn_free(node);
            node = next;
        }
        source = next_source;
    }
    context->ctxusrcvttbl = nullptr;
    return CS_SUCCEED;
}

CS_INT comn_typelen(CS_INT type, CS_INT len)
{
    switch (type) {
    case CS_TINYINT_TYPE: case CS_BIT_TYPE:
        return 1;
    case CS_SMALLINT_TYPE: case CS_UNICHAR_TYPE: case CS_USMALLINT_TYPE:
        return 2;
    case CS_INT_TYPE: case CS_REAL_TYPE: case CS_DATETIME4_TYPE: case CS_MONEY4_TYPE:
    case CS_DATE_TYPE: case CS_TIME_TYPE: case CS_UINT_TYPE:
        return 4;
    case CS_FLOAT_TYPE: case CS_DATETIME_TYPE: case CS_MONEY_TYPE: case CS_BIGINT_TYPE:
    case CS_UBIGINT_TYPE: case CS_BIGDATETIME_TYPE: case CS_BIGTIME_TYPE:
        return 8;
    case CS_NUMERIC_TYPE: case CS_DECIMAL_TYPE:
        return sizeof(CS_NUMERIC);
    case CS_VARCHAR_TYPE: case CS_VARBINARY_TYPE:
        return sizeof(CS_VARCHAR);
    default:
        return len;
    }
}

CS_RETCODE comn_voidtovoid(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                           CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    return CS_SUCCEED;
}

} // extern "C"
