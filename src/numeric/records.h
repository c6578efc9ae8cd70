/*
** The record operations behind comn_numadd, comn_numsub, comn_num_addorsub,
** comn_nummul and comn_numdivide.  Each tries the word path first and
** leaves everything it declines to the byte kernel, which also makes the
** argument checks; with try_words false the byte kernel runs alone, which
** the tests hold the word path to.  The exported entries check the
** pointers and jump through a table to the instantiation for their
** operands' shape, which runs without the byte kernel's frame.
*/
#ifndef KESCOMN_NUMERIC_RECORDS_H
#define KESCOMN_NUMERIC_RECORDS_H

#include <array>
#include <cstddef>
#include <utility>

#include "kescomn/types.h"
#include "numeric/wordpath.h"

namespace kes::numeric {

// The byte kernel's record operations, argument checks included.  Kept out
// of line, so that their frames do not crowd the word path's registers.
[[gnu::noinline]] CS_RETCODE bytes_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                                            CS_INT operation);
[[gnu::noinline]] CS_RETCODE bytes_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result);
[[gnu::noinline]] CS_RETCODE bytes_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot);

// A sum (Operation 0) or difference (1) of two operands of precision P and
// one scale.
template <int P, CS_INT Operation> CS_RETCODE addorsub_at(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result)
{
    if (words::add_sub_at<P>(oper1, oper2, result, Operation == 1))
        return CS_SUCCEED;
    return bytes_addorsub(oper1, oper2, result, Operation);
}

using RecordOp = CS_RETCODE (*)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *);

template <CS_INT Operation, size_t... I>
constexpr std::array<RecordOp, sizeof...(I)> addorsub_row(std::index_sequence<I...>)
{
    return {&addorsub_at<static_cast<int>(I) + 1, Operation>...};
}

// addorsub_at<P, operation> at [operation][P - 1]: a column's sums run one
// instantiation.
inline constexpr std::array<RecordOp, words::kMaxWordPrec> kAddOrSubAt[2] = {
    addorsub_row<0>(std::make_index_sequence<words::kMaxWordPrec>{}),
    addorsub_row<1>(std::make_index_sequence<words::kMaxWordPrec>{})};

[[gnu::always_inline]] inline CS_RETCODE record_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2,
                                                         CS_NUMERIC *result, CS_INT operation, bool try_words)
{
    if (try_words && oper1 && oper2 && result && (operation == 0 || operation == 1)) {
        const unsigned p = oper1->precision;
        if (p - 1u < words::kMaxWordPrec && p == oper2->precision && oper1->scale == oper2->scale)
            return kAddOrSubAt[operation][p - 1](oper1, oper2, result);
    }
    return bytes_addorsub(oper1, oper2, result, operation);
}

// A product of operands of W1 and W2 words.
template <int W1, int W2> CS_RETCODE mul_at(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result)
{
    if (words::mul_at<W1, W2>(m1, m2, result))
        return CS_SUCCEED;
    return bytes_mul(m1, m2, result);
}

// mul_at by (W1 - 1) + 2 (W2 - 1).
inline constexpr RecordOp kMulAt[4] = {&mul_at<1, 1>, &mul_at<2, 1>, &mul_at<1, 2>, &mul_at<2, 2>};

[[gnu::always_inline]] inline CS_RETCODE record_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result, bool try_words)
{
    if (try_words && m1 && m2 && result) {
        const unsigned p1 = m1->precision, p2 = m2->precision;
        if (p1 - 1u < words::kMaxWordPrec && p2 - 1u < words::kMaxWordPrec)
            return kMulAt[words::words_for(p1) - 1 + 2 * (words::words_for(p2) - 1)](m1, m2, result);
    }
    return bytes_mul(m1, m2, result);
}

// A quotient of operands of W1 and W2 words.
template <int W1, int W2> CS_RETCODE divide_at(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot)
{
    if (words::div_at<W1, W2>(dividend, divisor, quot))
        return CS_SUCCEED;
    return bytes_divide(dividend, divisor, quot);
}

// divide_at by (W1 - 1) + 2 (W2 - 1).
inline constexpr RecordOp kDivideAt[4] = {&divide_at<1, 1>, &divide_at<2, 1>, &divide_at<1, 2>, &divide_at<2, 2>};

[[gnu::always_inline]] inline CS_RETCODE record_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot,
                                                       bool try_words)
{
    if (try_words && dividend && divisor && quot) {
        const unsigned p1 = dividend->precision, p2 = divisor->precision;
        if (p1 - 1u < words::kMaxWordPrec && p2 - 1u < words::kMaxWordPrec)
            return kDivideAt[words::words_for(p1) - 1 + 2 * (words::words_for(p2) - 1)](dividend, divisor, quot);
    }
    return bytes_divide(dividend, divisor, quot);
}

} // namespace kes::numeric

#endif
