// The exported record operations on CS_NUMERIC: result precision and scale,
// validation, and the mapping of kernel statuses to result codes.
#include <algorithm>
#include <utility>

#include "errors/assert.h"
#include "kescomn/numeric.h"
#include "numeric/exctnume.h"
#include "numeric/records.h"
#include "numeric/shapes.h"

using namespace kes::numeric;

namespace {

bool valid(const CS_NUMERIC *n) { return n->precision >= 1 && n->precision <= kMaxPrec && n->scale <= kMaxPrec; }

// The value of a record as a kernel operand.
__CONSTANT operand(CS_NUMERIC *n)
{
    __CONSTANT c{};
    c.len = Com__Nume_Prec_To_Len[n->precision];
    c.maxlen = CS_MAX_NUMLEN;
    c.prec = n->precision;
    c.scale = n->scale;
    c.value = n->array;
    return c;
}

// A lost digit is an overflow here, never a truncation.
CS_RETCODE status_code(int st)
{
    switch (st) {
    case kOk: return CS_SUCCEED;
    case kOverflow:
    case kLostDigits: return KES_TRACE(CS_EOVERFLOW);
    case kMalformed: return KES_TRACE(CS_ESYNTAX);
    case kDivZero: return KES_TRACE(CS_EDIVZERO);
    default: return CS_SUCCEED;
    }
}

void set_shape(CS_NUMERIC *result, Shape shape)
{
    result->precision = static_cast<CS_BYTE>(shape.prec);
    result->scale = static_cast<CS_BYTE>(shape.scale);
}

// The result may be one of the operands: such an operand is read from a copy,
// since the result's shape is written before the kernel reads its bytes.
void unalias(CS_NUMERIC *&op, const CS_NUMERIC *result, CS_NUMERIC &copy)
{
    if (op == result) {
        copy = *op;
        op = &copy;
    }
}

// src widened to precision p and scale s (both at least its own) in dst:
// copy, shift, precision check.
CS_RETCODE widen(CS_NUMERIC *src, int p, int s, CS_NUMERIC *dst)
{
    dst->precision = static_cast<CS_BYTE>(p);
    dst->scale = static_cast<CS_BYTE>(s);
    const __CONSTANT in = operand(src);
    __CONSTANT out = operand(dst);
    if (com__exctnume_copy(&in, &out) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    if (com__exctnume_scale(&out, nullptr, s - src->scale, 0) != kOk ||
        com__exctnume_checkprecision(&out))
        return KES_TRACE(CS_EOVERFLOW);
    return CS_SUCCEED;
}

} // namespace

namespace kes::numeric {

CS_RETCODE bytes_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result, CS_INT operation)
{
    KES_NOT_NULL(oper1);
    KES_NOT_NULL(oper2);
    KES_NOT_NULL(result);
    KES_ASSERT(operation == 0 || operation == 1);
    if (!valid(oper1) || !valid(oper2))
        return KES_TRACE(CS_EDOMAIN);

    // Operands of different shape meet at a common one; an integer part that
    // no longer fits the capped precision is an overflow.
    int p = oper1->precision;
    int s = oper1->scale;
    const bool align = oper1->precision != oper2->precision || oper1->scale != oper2->scale;
    if (align) {
        const int intdig = std::max(oper1->precision - oper1->scale, oper2->precision - oper2->scale);
        s = std::max(oper1->scale, oper2->scale);
        p = std::min(s + intdig, kMaxPrec);
    }
    const Shape shape = sum_shape(p, s);
    CS_NUMERIC copy1, copy2;
    unalias(oper1, result, copy1);
    unalias(oper2, result, copy2);
    set_shape(result, shape);

    CS_NUMERIC wide1, wide2;
    if (align) {
        for (auto [op, tmp] : {std::pair{&oper1, &wide1}, std::pair{&oper2, &wide2}}) {
            if ((*op)->precision < p || (*op)->scale < s) {
                const CS_RETCODE rc = widen(*op, p, s, tmp);
                if (rc != CS_SUCCEED)
                    return rc;
                *op = tmp;
            }
        }
    }
    const __CONSTANT a = operand(oper1);
    const __CONSTANT b = operand(oper2);
    __CONSTANT r = operand(result);
    return status_code(com__exctnume_addorsub(&a, &b, &r, operation));
}

CS_RETCODE bytes_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result)
{
    KES_NOT_NULL(m1);
    KES_NOT_NULL(m2);
    KES_NOT_NULL(result);
    if (!valid(m1) || !valid(m2))
        return KES_TRACE(CS_EDOMAIN);
    const Shape shape = product_shape(m1->precision, m1->scale, m2->precision, m2->scale);
    CS_NUMERIC copy1, copy2;
    unalias(m1, result, copy1);
    unalias(m2, result, copy2);
    set_shape(result, shape);
    const __CONSTANT a = operand(m1);
    const __CONSTANT b = operand(m2);
    __CONSTANT r = operand(result);
    return status_code(com__exctnume_mul(&a, &b, &r));
}

CS_RETCODE bytes_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot)
{
    KES_NOT_NULL(dividend);
    KES_NOT_NULL(divisor);
    KES_NOT_NULL(quot);
    if (!valid(dividend) || !valid(divisor))
        return KES_TRACE(CS_EDOMAIN);
    const Shape shape = quotient_shape(dividend->precision, dividend->scale, divisor->scale);
    CS_NUMERIC copy1, copy2;
    unalias(dividend, quot, copy1);
    unalias(divisor, quot, copy2);
    set_shape(quot, shape);
    const __CONSTANT a = operand(dividend);
    const __CONSTANT b = operand(divisor);
    __CONSTANT q = operand(quot);
    return status_code(com__exctnume_div(&a, &b, &q, nullptr));
}

} // namespace kes::numeric

extern "C" {

CS_RETCODE comn_num_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result, CS_INT operation)
{
    return record_addorsub(oper1, oper2, result, operation, true);
}

CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump)
{
    return record_addorsub(add1p, add2p, sump, 0, true);
}

CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp)
{
    return record_addorsub(minp, subp, diffp, 1, true);
}

CS_RETCODE comn_nummul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result)
{
    return record_mul(m1, m2, result, true);
}

CS_RETCODE comn_numdivide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot)
{
    return record_divide(dividend, divisor, quot, true);
}

CS_INT comn_numcmp(CS_NUMERIC *n1, CS_NUMERIC *n2)
{
    KES_NOT_NULL(n1);
    KES_NOT_NULL(n2);
    KES_ASSERT(n1->precision >= 1 && n1->precision <= kMaxPrec);
    KES_ASSERT(n2->precision >= 1 && n2->precision <= kMaxPrec);
    const __CONSTANT a = operand(n1);
    const __CONSTANT b = operand(n2);
    return com__exctnume_cmp(&a, &b, 3);
}

CS_INT comn_num_getlen(CS_INT precision)
{
    KES_ASSERT(precision >= 1 && precision <= kMaxPrec);
    return Com__Nume_Prec_To_Len[precision];
}

CS_INT comn_num_getprec(CS_INT length)
{
    KES_ASSERT(length >= 0 && length <= kMaxLen);
    // A value of 0 or 1 bytes has no room for a digit.
    return length < 2 ? 0 : Com__Nume_Len_To_Prec[length - 2];
}

} // extern "C"
