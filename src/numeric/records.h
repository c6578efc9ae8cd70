/*
** The record operations behind comn_numadd, comn_numsub, comn_num_addorsub,
** comn_nummul and comn_numdivide.  Each tries the word path first and
** leaves everything it declines to the byte kernel, which also makes the
** argument checks; with try_words false the byte kernel runs alone, which
** the tests hold the word path to.  The dispatch and the word path are
** forced inline into the exported entries, so that the word path runs in
** their frame and without the byte kernel's.
*/
#ifndef KESCOMN_NUMERIC_RECORDS_H
#define KESCOMN_NUMERIC_RECORDS_H

#include "kescomn/types.h"
#include "numeric/wordpath.h"

namespace kes::numeric {

// The byte kernel's record operations, argument checks included.  Kept out
// of line, so that their frames do not crowd the word path's registers.
[[gnu::noinline]] CS_RETCODE bytes_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                                            CS_INT operation);
[[gnu::noinline]] CS_RETCODE bytes_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result);
[[gnu::noinline]] CS_RETCODE bytes_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot);

[[gnu::always_inline]] inline CS_RETCODE record_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2,
                                                         CS_NUMERIC *result, CS_INT operation, bool try_words)
{
    if (try_words && oper1 && oper2 && result && (operation == 0 || operation == 1) &&
        words::add_sub(oper1, oper2, result, operation == 1))
        return CS_SUCCEED;
    return bytes_addorsub(oper1, oper2, result, operation);
}

[[gnu::always_inline]] inline CS_RETCODE record_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result,
                                                    bool try_words)
{
    if (try_words && m1 && m2 && result && words::mul(m1, m2, result))
        return CS_SUCCEED;
    return bytes_mul(m1, m2, result);
}

[[gnu::always_inline]] inline CS_RETCODE record_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor,
                                                       CS_NUMERIC *quot, bool try_words)
{
    if (try_words && dividend && divisor && quot && words::div(dividend, divisor, quot))
        return CS_SUCCEED;
    return bytes_divide(dividend, divisor, quot);
}

} // namespace kes::numeric

#endif
