// The money cells of the integer rows: comn_<p>tomoney / comn_<p>tomny4 and
// their server-layer twins, which alone also serve a bit source.
#include <type_traits>

#include "conv/conv_common.h"
#include "conv/scalar_io.h"
#include "kescomn/money.h"
#include "numeric/mny.h"

namespace {

using namespace kes::conv;

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
    KES_CHECK_COMN_ARGS();
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

#define KES_DEFINE_ROW(s)                                                                   \
    KES_DEFINE_COMN(comn_convert, s, money) KES_DEFINE_COMN(comn_convert, s, mny4)          \
    KES_DEFINE_COMNB(comnb_convert, s, money) KES_DEFINE_COMNB(comnb_convert, s, mny4)

KES_DEFINE_ROW(i1)
KES_DEFINE_ROW(i2)
KES_DEFINE_ROW(i4)
KES_DEFINE_ROW(i8)
KES_DEFINE_ROW(ui2)
KES_DEFINE_ROW(ui4)
KES_DEFINE_ROW(ui8)
KES_DEFINE_COMNB(comnb_convert, bit, money)
KES_DEFINE_COMNB(comnb_convert, bit, mny4)
