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

// A product or quotient: the word path's instantiation Words, else the byte
// kernel's operation Bytes on the untouched records.
template <bool (*Words)(const CS_NUMERIC *, const CS_NUMERIC *, CS_NUMERIC *), RecordOp Bytes>
CS_RETCODE words_or_bytes(CS_NUMERIC *a, CS_NUMERIC *b, CS_NUMERIC *result)
{
    if (Words(a, b, result))
        return CS_SUCCEED;
    return Bytes(a, b, result);
}

// The instantiations of a product and a quotient by (W1 - 1) + 2 (W2 - 1).
inline constexpr RecordOp kMulAt[4] = {
    &words_or_bytes<&words::mul_at<1, 1>, &bytes_mul>, &words_or_bytes<&words::mul_at<2, 1>, &bytes_mul>,
    &words_or_bytes<&words::mul_at<1, 2>, &bytes_mul>, &words_or_bytes<&words::mul_at<2, 2>, &bytes_mul>};
inline constexpr RecordOp kDivideAt[4] = {
    &words_or_bytes<&words::div_at<1, 1>, &bytes_divide>, &words_or_bytes<&words::div_at<2, 1>, &bytes_divide>,
    &words_or_bytes<&words::div_at<1, 2>, &bytes_divide>, &words_or_bytes<&words::div_at<2, 2>, &bytes_divide>};

template <size_t... I> constexpr std::array<RecordOp, sizeof...(I)> mul_same_row(std::index_sequence<I...>)
{
    constexpr auto at = [](size_t i) { return static_cast<int>(i) + 1; };
    return {&words_or_bytes<&words::mul_at<words::words_for(at(I)), words::words_for(at(I)), at(I)>, &bytes_mul>...};
}

// The product of two operands of one precision P at [P - 1]: a column times
// a value of its own type, the common case, runs with constant offsets.
inline constexpr std::array<RecordOp, words::kMaxWordPrec> kMulSameAt =
    mul_same_row(std::make_index_sequence<words::kMaxWordPrec>{});

// a op b through the instantiation for the operands' word counts, when both
// have at most 38 digits; the byte kernel otherwise.  The table is read at
// constant indexes, so each instantiation is a direct call the compiler may
// inline: a jump through a computed address cost more than these branches.
[[gnu::always_inline]] inline CS_RETCODE by_word_counts(const RecordOp (&table)[4], RecordOp bytes, CS_NUMERIC *a,
                                                        CS_NUMERIC *b, CS_NUMERIC *result, bool try_words)
{
    if (try_words && a && b && result) {
        const unsigned p1 = a->precision, p2 = b->precision;
        if (p1 - 1u < words::kMaxWordPrec && p2 - 1u < words::kMaxWordPrec) {
            const bool wide1 = words::words_for(p1) == 2, wide2 = words::words_for(p2) == 2;
            if (wide1 && wide2)
                return table[3](a, b, result);
            if (wide1)
                return table[1](a, b, result);
            if (wide2)
                return table[2](a, b, result);
            return table[0](a, b, result);
        }
    }
    return bytes(a, b, result);
}

[[gnu::always_inline]] inline CS_RETCODE record_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result, bool try_words)
{
    if (try_words && m1 && m2 && result) {
        const unsigned p = m1->precision;
        if (p - 1u < words::kMaxWordPrec && p == m2->precision)
            return kMulSameAt[p - 1](m1, m2, result);
    }
    return by_word_counts(kMulAt, &bytes_mul, m1, m2, result, try_words);
}

[[gnu::always_inline]] inline CS_RETCODE record_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot,
                                                       bool try_words)
{
    return by_word_counts(kDivideAt, &bytes_divide, dividend, divisor, quot, try_words);
}

} // namespace kes::numeric

#endif
