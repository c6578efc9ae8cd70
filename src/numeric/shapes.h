/*
** The precision and scale of a record operation's result.  A result keeps
** its precision in 1..77 and gives up decimals before integer digits.
*/
#ifndef KESCOMN_NUMERIC_SHAPES_H
#define KESCOMN_NUMERIC_SHAPES_H

#include <algorithm>

#include "numeric/nume_tables.h"

namespace kes::numeric {

struct Shape {
    int prec;
    int scale;
};

// A result of intdig integer digits, wanting scale decimals and precision
// digits in all.
constexpr Shape fit_shape(int intdig, int scale, int precision)
{
    precision = std::clamp(precision, 1, kMaxPrec);
    scale = std::min(scale, kMaxPrec);
    if (scale > precision - intdig)
        scale = precision - intdig;
    return {precision, scale};
}

// A sum or difference of operands brought to precision p and scale s: one
// digit more for the carry.
constexpr Shape sum_shape(int p, int s)
{
    const int intdig = p - s;
    return fit_shape(intdig, s, s + intdig < kMaxPrec ? s + intdig + 1 : kMaxPrec);
}

// A product: the integer digits of both and one more, the decimals of both.
constexpr Shape product_shape(int p1, int s1, int p2, int s2)
{
    const int intdig = std::min(p1 - s1 + p2 - s2 + 1, kMaxPrec);
    const int scale = std::min(s1 + s2, kMaxPrec);
    return fit_shape(intdig, scale, scale + intdig);
}

// A quotient: at least six decimals, else one more than the dividend's
// digits and the divisor's decimals.
constexpr Shape quotient_shape(int p1, int s1, int s2)
{
    const int intdig = std::min(p1 - s1 + s2, kMaxPrec);
    const int t = p1 + s2;
    const int scale = t < 6 ? 6 : std::min(t + 1, kMaxPrec);
    return fit_shape(intdig, scale, scale + intdig);
}

} // namespace kes::numeric

#endif
