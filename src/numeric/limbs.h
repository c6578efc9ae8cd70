/*
** Magnitude arithmetic behind the exact numeric kernel.  Values travel as
** big-endian base-256 bytes; addition, subtraction and multiplication run on
** 64-bit limbs, which gives the byte-exact results of byte-wise schoolbook
** arithmetic several times faster.  Division stays on bytes (Algorithm D in
** base 256), because its quotient and remainder are handed back in place.
*/
#ifndef KESCOMN_NUMERIC_LIMBS_H
#define KESCOMN_NUMERIC_LIMBS_H

#include "kescomn/types.h"

namespace kes::numeric::limbs {

// result = op1 + op2, or op1 - op2 (op1 >= op2) when subtract, magnitudes
// only, into result->len - 1 bytes; the sign byte is left alone.  1 when the
// sum does not fit, or when a non-zero byte of op1 lies beyond the result's
// reach in a subtraction.
int add_sub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, bool subtract);

// result = op1 * op2, magnitudes only; 1 when the product does not fit.
int mul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result);

// Knuth's Algorithm D in base 256, in place.  u[0..n] is the dividend with
// u[0] == 0, v[0..m-1] the divisor with v[0] != 0 and 2 <= m <= n.  The
// divisor is normalised only virtually.  Afterwards u[0..n-m] holds the
// quotient digits and u[n-m+1..n] the remainder.  Returns how often the
// add-back step ran, which only tests look at.
int knuth_d(CS_BYTE *u, int n, const CS_BYTE *v, int m);

} // namespace kes::numeric::limbs

#endif
