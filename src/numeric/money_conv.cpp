// The money cells of the integer rows: comn_<p>tomoney / comn_<p>tomny4 and
// their server-layer twins, which alone also serve a bit source.
#include <type_traits>

#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kescomn/money.h"
#include "numeric/mny.h"

namespace {

using kes::conv::load;

template <class T, int Code> struct Token {
    using type = T;
    static constexpr int code = Code;
};
struct tok_i1 : Token<CS_TINYINT, CS_TINYINT_TYPE> {};
struct tok_i2 : Token<CS_SMALLINT, CS_SMALLINT_TYPE> {};
struct tok_i4 : Token<CS_INT, CS_INT_TYPE> {};
struct tok_i8 : Token<CS_BIGINT, CS_BIGINT_TYPE> {};
struct tok_ui2 : Token<CS_USMALLINT, CS_USMALLINT_TYPE> {};
struct tok_ui4 : Token<CS_UINT, CS_UINT_TYPE> {};
struct tok_ui8 : Token<CS_UBIGINT, CS_UBIGINT_TYPE> {};
struct tok_bit : Token<CS_BIT, CS_BIT_TYPE> {};
struct tok_money : Token<CS_MONEY, CS_MONEY_TYPE> {};
struct tok_mny4 : Token<CS_MONEY4, CS_MONEY4_TYPE> {};

// The kernels by widened source and destination.
int kernel(CS_INT v, CS_MONEY *d) { return com__inttomny(d, &v); }
int kernel(CS_INT v, CS_MONEY4 *d) { return com__inttomny4(d, &v); }
int kernel(CS_UINT v, CS_MONEY *d) { return com__uinttomny(d, &v); }
int kernel(CS_UINT v, CS_MONEY4 *d) { return com__uinttomny4(d, &v); }
int kernel(CS_BIGINT v, CS_MONEY *d) { return com__int8tomny(d, &v); }
int kernel(CS_BIGINT v, CS_MONEY4 *d) { return com__int8tomny4(d, &v); }
int kernel(CS_UBIGINT v, CS_MONEY *d) { return com__uint8tomny(d, &v); }
int kernel(CS_UBIGINT v, CS_MONEY4 *d) { return com__uint8tomny4(d, &v); }

// Narrow sources widen to CS_INT, or CS_UINT when unsigned.
template <class S>
using Widened = std::conditional_t<
    std::is_same_v<S, tok_i8>, CS_BIGINT,
    std::conditional_t<std::is_same_v<S, tok_ui8>, CS_UBIGINT,
                       std::conditional_t<std::is_same_v<S, tok_ui2> || std::is_same_v<S, tok_ui4>, CS_UINT, CS_INT>>>;

template <class S, class D> int to_money(typename S::type v, typename D::type *dest)
{
    return kernel(static_cast<Widened<S>>(v), dest);
}

template <class S, class D>
CS_RETCODE comn_convert(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                        CS_VOID *dest, CS_INT *destlen)
{
    KES_NOT_NULL(context);
    KES_NOT_NULL(srcfmt);
    KES_NOT_NULL(src);
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    KES_ASSERT(srcfmt->datatype == S::code);
    KES_ASSERT(destfmt->datatype == D::code);
    using DT = typename D::type;
    *destlen = sizeof(DT);
    DT out;
    const int status = to_money<S, D>(load<typename S::type>(src), &out);
    kes::conv::store<DT>(dest, out);
    return status == 1 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

template <class S, class D> CS_RETCODE comnb_convert(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    using ST = typename S::type;
    using DT = typename D::type;
    const ST v = load<ST>(src->value);
    if constexpr (std::is_same_v<S, tok_bit>) {
        if (v > 1)
            return KES_TRACE(CS_EDOMAIN);
    }
    dest->len = sizeof(DT);
    DT out;
    const int status = to_money<S, D>(v, &out);
    kes::conv::store<DT>(dest->value, out);
    return status == 1 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

} // namespace

#define KES_DEFINE_COMN(s, d)                                                                \
    extern "C" CS_RETCODE comn_##s##to##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) \
    {                                                                                        \
        return comn_convert<tok_##s, tok_##d>(context, srcfmt, src, destfmt, dest, destlen); \
    }
#define KES_DEFINE_COMNB(s, d)                                                               \
    extern "C" CS_RETCODE comnb_##s##to##d(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                        \
        return comnb_convert<tok_##s, tok_##d>(context, src, dest);                          \
    }
#define KES_DEFINE_ROW(s)                                                                    \
    KES_DEFINE_COMN(s, money) KES_DEFINE_COMN(s, mny4) KES_DEFINE_COMNB(s, money)            \
    KES_DEFINE_COMNB(s, mny4)

KES_DEFINE_ROW(i1)
KES_DEFINE_ROW(i2)
KES_DEFINE_ROW(i4)
KES_DEFINE_ROW(i8)
KES_DEFINE_ROW(ui2)
KES_DEFINE_ROW(ui4)
KES_DEFINE_ROW(ui8)
KES_DEFINE_COMNB(bit, money)
KES_DEFINE_COMNB(bit, mny4)
