// The money and money4 rows of the conversion matrix in the context (comn_)
// and server (comnb_) layers, and money text into money.  One generic body
// per layer over the source (CS_MONEY or CS_MONEY4) and the destination.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "conv/char_scan.h"
#include "conv/fill.h"
#include "conv/conv_common.h"
#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kescomn/charattr.h"
#include "kescomn/conv.h"
#include "kescomn/debug.h"
#include "kescomn/numconv.h"
#include "numeric/mny.h"

namespace {

using namespace kes::conv;

template <class S> CS_MONEY wide(const void *src)
{
    if constexpr (std::is_same_v<S, tok_money>) {
        return load<CS_MONEY>(src);
    } else {
        CS_MONEY4 m4 = load<CS_MONEY4>(src);
        CS_MONEY m;
        com__mny4tomny(&m4, &m);
        return m;
    }
}

// Money text of the given style: the text's first character and its length.
struct MoneyText {
    char buf[24];
    const char *p;
    int len;
};

template <class S> bool money_text(const void *src, int style, MoneyText *t)
{
    char *first;
    if constexpr (std::is_same_v<S, tok_money>) {
        CS_MONEY m = load<CS_MONEY>(src);
        first = com__mnytochar(&m, t->buf, sizeof t->buf, style);
    } else {
        CS_MONEY4 m4 = load<CS_MONEY4>(src);
        first = com__mny4tochar(&m4, t->buf, sizeof t->buf, style);
    }
    if (first == nullptr) {
        com_bomb(__FILE__, __LINE__); // 24 bytes hold every money text
        return false;
    }
    t->p = first;
    t->len = static_cast<int>(t->buf + sizeof t->buf - first);
    return true;
}

// A 32-bit reading clamped into a narrower range with CS_EOVERFLOW.
template <class T> CS_RETCODE clamp_store(long long v, long long lo, long long hi, void *dest, bool over)
{
    if (v < lo) {
        store<T>(dest, static_cast<T>(lo));
        return KES_TRACE(CS_EOVERFLOW);
    }
    if (v > hi) {
        store<T>(dest, static_cast<T>(hi));
        return KES_TRACE(CS_EOVERFLOW);
    }
    store<T>(dest, static_cast<T>(v));
    return over ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

// i8 and ui8 through the two-decimal text: cut at the point, parsed, and
// moved one away from zero when the first decimal is 5 or more.
template <class D> CS_RETCODE through_text(const CS_MONEY &m, void *dest)
{
    MoneyText t;
    CS_MONEY copy = m;
    if (!money_text<tok_money>(&copy, 0, &t))
        return KES_TRACE(CS_EOVERFLOW);
    const char *dot = static_cast<const char *>(std::memchr(t.p, '.', static_cast<size_t>(t.len)));
    const bool mark = dot != nullptr && dot + 1 < t.p + t.len && dot[1] > '4';
    const int n = dot ? static_cast<int>(dot - t.p) : t.len;
    using T = typename D::type;
    T v = 0;
    int r;
    if constexpr (std::is_same_v<D, tok_i8>)
        r = com__chtoi8_mb(const_cast<char *>(t.p), n, &v, nullptr);
    else
        r = com__chtoui8_mb(const_cast<char *>(t.p), n, &v, nullptr);
    store<T>(dest, v);
    if (r == COM_SCAN_SYNTAX)
        return KES_TRACE(CS_ESYNTAX);
    if (r == COM_SCAN_OVERFLOW)
        return KES_TRACE(CS_EOVERFLOW);
    if (!mark)
        return CS_SUCCEED;
    if constexpr (std::is_same_v<D, tok_i8>) {
        if (v == INT64_MAX || v == INT64_MIN)
            return KES_TRACE(CS_EOVERFLOW);
        KES_ASSERT(v != 0); // zero has no side to move away from
        store<T>(dest, v < 0 ? v - 1 : v + 1);
    } else {
        if (v == UINT64_MAX)
            return KES_TRACE(CS_EOVERFLOW);
        store<T>(dest, v + 1);
    }
    return CS_SUCCEED;
}

// The destinations shared by both layers; *len gets the destination's size.
template <Layer L, class S, class D> CS_RETCODE money_to_scalar(const void *src, void *dest, CS_INT *len)
{
    CS_MONEY m = wide<S>(src);
    if constexpr (!std::is_same_v<D, tok_char> && !std::is_same_v<D, tok_varchar>)
        *len = sizeof(typename D::type);
    if constexpr (std::is_same_v<D, tok_bit>) {
        store<CS_BIT>(dest, m.mnyhigh != 0 || m.mnylow != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_i1> || std::is_same_v<D, tok_i2> || std::is_same_v<D, tok_i4>) {
        CS_INT v;
        const int st = com__mnytoint(&m, &v);
        if constexpr (std::is_same_v<D, tok_i1>) {
            if (st != 0)
                return KES_TRACE(CS_EOVERFLOW); // nothing fits 32 bits: nothing stored
            return clamp_store<CS_TINYINT>(v, 0, 255, dest, false);
        } else if constexpr (std::is_same_v<D, tok_i2>) {
            return clamp_store<CS_SMALLINT>(v, -32768, 32767, dest, st != 0);
        } else {
            store<CS_INT>(dest, v);
            return st != 0 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
        }
    } else if constexpr (std::is_same_v<D, tok_ui2> || std::is_same_v<D, tok_ui4>) {
        CS_UINT v;
        const int st = com__mnytouint(&m, &v);
        if (st != 0 && kes::money::value(m) < 0)
            return KES_TRACE(CS_EOVERFLOW); // nothing stored for a negative value
        if constexpr (std::is_same_v<D, tok_ui2>) {
            return clamp_store<CS_USMALLINT>(v, 0, 65535, dest, st != 0);
        } else {
            store<CS_UINT>(dest, v);
            return st != 0 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
        }
    } else if constexpr (std::is_same_v<D, tok_i8> || std::is_same_v<D, tok_ui8>) {
        if constexpr (L == Layer::comnb && std::is_same_v<S, tok_mny4>) {
            // The server's money4 has kernels of its own here, no text.
            CS_MONEY4 m4 = load<CS_MONEY4>(src);
            typename D::type v;
            int st;
            if constexpr (std::is_same_v<D, tok_i8>)
                st = com__mny4toint8(&m4, &v);
            else
                st = com__mny4touint8(&m4, &v);
            if (st != 0)
                return KES_TRACE(CS_EOVERFLOW);
            store<typename D::type>(dest, v);
            return CS_SUCCEED;
        } else {
            return through_text<D>(m, dest);
        }
    } else if constexpr (std::is_same_v<D, tok_flt8> || std::is_same_v<D, tok_flt4>) {
        CS_FLOAT d;
        com__mnytoflt8(&m, 8, &d, 8, 0);
        if constexpr (std::is_same_v<D, tok_flt8>) {
            store<CS_FLOAT>(dest, d);
        } else {
            if (std::fabs(d) > static_cast<double>(FLT_MAX)) {
                store<CS_REAL>(dest, d > 0 ? FLT_MAX : -FLT_MAX);
                return KES_TRACE(CS_EOVERFLOW);
            }
            store<CS_REAL>(dest, static_cast<CS_REAL>(d));
        }
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_money>) {
        store<CS_MONEY>(dest, m);
        return CS_SUCCEED;
    } else {
        static_assert(std::is_same_v<D, tok_mny4>);
        CS_MONEY4 m4;
        const int r = com__mnytomny4(&m, &m4);
        store<CS_MONEY4>(dest, m4);
        return r < 0 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
    }
}

template <class S, class D>
CS_RETCODE comn_convert(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                        CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->datatype == S::code);
    KES_ASSERT(admits_dest<D>(destfmt->datatype));
    if constexpr (std::is_same_v<D, tok_bin>) {
        return comn_fixedtobin(context, srcfmt, src, destfmt, dest, destlen, sizeof(typename S::type));
    } else if constexpr (std::is_same_v<D, tok_varbin>) {
        return comn_fixedtovarbin(context, srcfmt, src, destfmt, dest, destlen, sizeof(typename S::type));
    } else if constexpr (std::is_same_v<D, tok_char>) {
        const CS_INT prec = destfmt->precision < 0 ? 0 : destfmt->precision;
        MoneyText t;
        if (!money_text<S>(src, prec << 8, &t))
            return KES_TRACE(CS_EOVERFLOW);
        const CS_INT n = t.len < destfmt->maxlength ? t.len : (destfmt->maxlength > 0 ? destfmt->maxlength : 0);
        std::memcpy(dest, t.p, static_cast<size_t>(n));
        *destlen = n;
        return comn__padchar(t.len, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, tok_varchar>) {
        MoneyText t;
        if (!money_text<S>(src, 0, &t))
            return KES_TRACE(CS_EOVERFLOW);
        auto *vc = static_cast<CS_VARCHAR *>(dest);
        std::memcpy(vc->str, t.p, static_cast<size_t>(t.len));
        vc->len = static_cast<CS_SMALLINT>(t.len);
        *destlen = sizeof(CS_VARCHAR);
        return CS_SUCCEED;
    } else {
        return money_to_scalar<Layer::comn, S, D>(src, dest, destlen);
    }
}

template <class S, class D> CS_RETCODE comnb_convert(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if constexpr (std::is_same_v<D, tok_char> || std::is_same_v<D, tok_varchar>) {
        MoneyText t;
        if (!money_text<S>(src->value, context->style, &t))
            return KES_TRACE(CS_EOVERFLOW);
        const CS_INT n = t.len < dest->maxlen ? t.len : (dest->maxlen > 0 ? dest->maxlen : 0);
        const bool right = (context->format & CS_FMT_JUSTIFY_RT) != 0;
        std::memcpy(dest->value + (right ? dest->maxlen - n : 0), t.p, static_cast<size_t>(n));
        dest->len = n;
        if (n < t.len)
            return KES_TRACE(CS_EOVERFLOW);
        if constexpr (std::is_same_v<D, tok_char>)
            return comnb__padchar(context, dest);
        else
            return CS_SUCCEED;
    } else {
        return money_to_scalar<Layer::comnb, S, D>(src->value, dest->value, &dest->len);
    }
}

// ---- money text into money ------------------------------------------------------

template <class D> CS_RETCODE text_to_money(CS_CHAR *text, CS_INT len, CHAR_ATTRIB *attr, void *dest)
{
    int st;
    if constexpr (std::is_same_v<D, tok_money>) {
        CS_MONEY m{};
        st = com__mnyfromchar_mb(&m, text, len, 0, attr);
        store<CS_MONEY>(dest, m);
    } else {
        CS_MONEY4 m4{};
        st = com__mny4fromchar_mb(&m4, text, len, 0, attr);
        store<CS_MONEY4>(dest, m4);
    }
    if (st == 0)
        return CS_SUCCEED;
    if (st == 1)
        return KES_TRACE(CS_EOVERFLOW);
    KES_ASSERT(st == 2);
    return KES_TRACE(CS_ESYNTAX);
}

template <class D, bool Var>
CS_RETCODE comn_text_to_money(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                              CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(destfmt->datatype == D::code);
    CS_CHAR *text;
    CS_INT len;
    if constexpr (Var) {
        KES_ASSERT(srcfmt->datatype == CS_VARCHAR_TYPE);
        auto *vc = static_cast<CS_VARCHAR *>(src);
        KES_ASSERT(vc->len >= 0 && vc->len <= CS_MAX_CHAR);
        text = vc->str;
        len = vc->len;
    } else {
        KES_ASSERT(srcfmt->maxlength >= 1);
        text = static_cast<CS_CHAR *>(src);
        len = srcfmt->maxlength;
    }
    *destlen = sizeof(typename D::type);
    return text_to_money<D>(text, len, com_intl_charattr(context, srcfmt), dest);
}

} // namespace

// ---- the members ------------------------------------------------------------------------

#define KES_COMNB_DESTS(X, s)                                                                \
    X(s, bit) X(s, i1) X(s, i2) X(s, i4) X(s, i8) X(s, ui2) X(s, ui4) X(s, ui8) X(s, flt4)  \
    X(s, flt8) X(s, money) X(s, mny4) X(s, char) X(s, varchar)
#define KES_COMN_DESTS(X, s) KES_COMNB_DESTS(X, s) X(s, bin) X(s, varbin)

#define KES_DEFINE_MONEY_COMN(s, d) KES_DEFINE_COMN(comn_convert, s, d)
#define KES_DEFINE_MONEY_COMNB(s, d) KES_DEFINE_COMNB(comnb_convert, s, d)
#define KES_DEFINE_ROW(s) KES_COMN_DESTS(KES_DEFINE_MONEY_COMN, s) KES_COMNB_DESTS(KES_DEFINE_MONEY_COMNB, s)
KES_DEFINE_ROW(money)
KES_DEFINE_ROW(mny4)

#define KES_DEFINE_TEXT_TO(d)                                                                \
    extern "C" CS_RETCODE comn_charto##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                                         CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)  \
    {                                                                                        \
        return comn_text_to_money<tok_##d, false>(context, srcfmt, src, destfmt, dest, destlen); \
    }                                                                                        \
    extern "C" CS_RETCODE comn_varcharto##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) \
    {                                                                                        \
        return comn_text_to_money<tok_##d, true>(context, srcfmt, src, destfmt, dest, destlen); \
    }                                                                                        \
    extern "C" CS_RETCODE comnb_charto##d(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                        \
        dest->len = sizeof(tok_##d::type);                                                   \
        return text_to_money<tok_##d>(reinterpret_cast<CS_CHAR *>(src->value), src->len,     \
                                      context->char_attrib, dest->value);                    \
    }
KES_DEFINE_TEXT_TO(money)
KES_DEFINE_TEXT_TO(mny4)
