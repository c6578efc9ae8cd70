// The numeric row of the conversion matrix in the context (comn_) and server
// (comnb_) layers, and the numeric cells of the text, float and money rows.
// One generic body per layer; the extern "C" members at the bottom are
// stamped out from the destination list.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "conv/char_scan.h"
#include "conv/fill.h"
#include "conv/scalar_io.h"
#include "conv/conv_common.h"
#include "errors/assert.h"
#include "kescomn/charattr.h"
#include "kescomn/debug.h"
#include "kescomn/numconv.h"
#include "kescomn/numeric.h"
#include "numeric/exctnume.h"
#include "numeric/mny.h"
#include "numeric/numconv.h"

using namespace kes::numeric;
using kes::conv::load;
using kes::conv::store;

namespace {

enum class Layer { comn, comnb };

// ---- destination tokens ----------------------------------------------------------

// Integers reached through the double of the value, with their range, the
// stores outside it and the code a negative value gets in each layer.
template <class T, int Code, long long Lo, long long Hi, CS_RETCODE NegComn, CS_RETCODE NegComnb> struct ViaFloat {
    using type = T;
    static constexpr int code = Code;
    static constexpr double lo = static_cast<double>(Lo), hi = static_cast<double>(Hi);
    static constexpr CS_RETCODE neg(Layer l) { return l == Layer::comn ? NegComn : NegComnb; }
};
using to_i1 = ViaFloat<CS_TINYINT, CS_TINYINT_TYPE, 0, 255, CS_EOVERFLOW, CS_EOVERFLOW>;
using to_i2 = ViaFloat<CS_SMALLINT, CS_SMALLINT_TYPE, -32768, 32767, CS_EOVERFLOW, CS_EOVERFLOW>;
using to_i4 = ViaFloat<CS_INT, CS_INT_TYPE, INT32_MIN, INT32_MAX, CS_EOVERFLOW, CS_EOVERFLOW>;
using to_ui2 = ViaFloat<CS_USMALLINT, CS_USMALLINT_TYPE, 0, 65535, CS_EUNDERFLOW, CS_EOVERFLOW>;
using to_ui4 = ViaFloat<CS_UINT, CS_UINT_TYPE, 0, UINT32_MAX, CS_EUNDERFLOW, CS_EOVERFLOW>;

template <class T> struct Via64 {
    using type = T;
};
struct to_i8 : Via64<CS_BIGINT> {};
struct to_ui8 : Via64<CS_UBIGINT> {};
struct to_bit {};
struct to_flt4 {};
struct to_flt8 {};
struct to_money {};
struct to_mny4 {};
struct to_char {};
struct to_varchar {};
struct to_bin {};
struct to_varbin {};

template <class D> constexpr bool is_via_float = false;
template <class T, int C, long long L, long long H, CS_RETCODE A, CS_RETCODE B>
constexpr bool is_via_float<ViaFloat<T, C, L, H, A, B>> = true;

template <class D> constexpr bool admits_dest(CS_INT code)
{
    if constexpr (is_via_float<D>)
        return code == D::code;
    else if constexpr (std::is_same_v<D, to_i8>)
        return code == CS_BIGINT_TYPE || code == CS_LONG_TYPE;
    else if constexpr (std::is_same_v<D, to_ui8>)
        return code == CS_UBIGINT_TYPE;
    else if constexpr (std::is_same_v<D, to_bit>)
        return code == CS_BIT_TYPE;
    else if constexpr (std::is_same_v<D, to_flt4>)
        return code == CS_REAL_TYPE;
    else if constexpr (std::is_same_v<D, to_flt8>)
        return code == CS_FLOAT_TYPE;
    else if constexpr (std::is_same_v<D, to_money>)
        return code == CS_MONEY_TYPE;
    else if constexpr (std::is_same_v<D, to_mny4>)
        return code == CS_MONEY4_TYPE;
    else if constexpr (std::is_same_v<D, to_char>)
        return code == CS_CHAR_TYPE || code == CS_LONGCHAR_TYPE || code == CS_TEXT_TYPE;
    else if constexpr (std::is_same_v<D, to_varchar>)
        return code == CS_VARCHAR_TYPE;
    else if constexpr (std::is_same_v<D, to_bin>)
        return kes::conv::is_binary_family(code);
    else
        return code == CS_VARBINARY_TYPE;
}

constexpr bool is_numeric_code(CS_INT code) { return code == CS_NUMERIC_TYPE || code == CS_DECIMAL_TYPE; }

// ---- values ----------------------------------------------------------------------

// The record's value, or false when its precision or scale is invalid.
bool record_value(CS_NUMERIC *n, __CONSTANT *out)
{
    if (n->precision < 1 || n->precision > kMaxPrec || n->scale > kMaxPrec)
        return false;
    *out = value_view(n->array, Com__Nume_Prec_To_Len[n->precision], n->precision, n->scale);
    return true;
}

bool valid_server_value(const __CONSTANT *c)
{
    return c->prec >= 1 && c->prec <= kMaxPrec && c->scale <= kMaxPrec && c->len >= 1 && c->len <= kMaxLen;
}

// The value's text in buf; -1 (after the assertion) when it has none.
struct NumText {
    char buf[kNumTextBuf];
    int at;
    const char *p() const { return buf + at; }
    int len() const { return kNumTextBuf - at; }
    // Where the "." stands in the text, or the text's length without one.
    int point() const
    {
        const void *dot = std::memchr(p(), '.', static_cast<size_t>(len()));
        return dot ? static_cast<int>(static_cast<const char *>(dot) - p()) : len();
    }
};

bool make_text(__CONSTANT *c, NumText *t)
{
    t->at = com__subexctnumetochar(c, t->buf, kNumTextBuf);
    if (t->at >= 0)
        return true;
    com_bomb(__FILE__, __LINE__); // every valid value but one fits the buffer
    return false;
}

// ---- numeric to scalars --------------------------------------------------------

template <Layer L, class D> CS_RETCODE via_float(__CONSTANT *c, void *dest)
{
    using T = typename D::type;
    CS_FLOAT d;
    if (com__subexctnumetoflt8(c, &d) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    if (d < D::lo) {
        store<T>(dest, static_cast<T>(D::lo));
        return KES_TRACE(D::neg(L));
    }
    if (d > D::hi) {
        store<T>(dest, static_cast<T>(D::hi));
        return KES_TRACE(CS_EOVERFLOW);
    }
    const auto t = static_cast<T>(d);
    store<T>(dest, t);
    if (L == Layer::comnb && static_cast<double>(t) != d)
        return KES_TRACE(CS_TRUNCATED);
    return CS_SUCCEED;
}

template <Layer L, class D> CS_RETCODE via_64(__CONSTANT *c, void *dest)
{
    using T = typename D::type;
    T v = 0;
    int st;
    if constexpr (std::is_same_v<T, CS_BIGINT>)
        st = com__subexctnumetolonglong(c, &v);
    else
        st = com__subexctnumetoulonglong(c, &v);
    store<T>(dest, v);
    if (st == kOverflow)
        return KES_TRACE(CS_EOVERFLOW);
    if (st == kUnderflow)
        return KES_TRACE(CS_EUNDERFLOW);
    if constexpr (L == Layer::comnb) {
        // The stored integer back at the source's precision and scale.
        CS_BYTE back[kMaxLen];
        CS_BYTE prec = c->prec, scale = c->scale;
        int bst;
        if constexpr (std::is_same_v<T, CS_BIGINT>)
            bst = com__longlongtoexctnume(v, back, c->len, &prec, &scale);
        else
            bst = com__ulonglongtoexctnume(v, back, c->len, &prec, &scale);
        const __CONSTANT b = value_view(back, c->len, prec, scale);
        if (bst != kOk || com__exctnume_cmp(c, &b, 0) != 0)
            return KES_TRACE(CS_TRUNCATED);
    }
    return CS_SUCCEED;
}

template <Layer L> CS_RETCODE to_float(__CONSTANT *c, void *dest, bool single)
{
    CS_FLOAT d;
    if (com__subexctnumetoflt8(c, &d) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    if (!single) {
        store<CS_FLOAT>(dest, d);
        return CS_SUCCEED;
    }
    if (std::fabs(d) > static_cast<double>(FLT_MAX)) {
        store<CS_REAL>(dest, d > 0 ? FLT_MAX : -FLT_MAX);
        return KES_TRACE(CS_EOVERFLOW);
    }
    store<CS_REAL>(dest, static_cast<CS_REAL>(d));
    return CS_SUCCEED;
}

CS_RETCODE to_money_bytes(__CONSTANT *c, void *dest, bool four)
{
    CS_BYTE m[sizeof(CS_MONEY)];
    if (com__exctnumetomny8(c, m) == 0)
        return KES_TRACE(CS_EOVERFLOW);
    if (!four) {
        std::memcpy(dest, m, sizeof m);
        return CS_SUCCEED;
    }
    CS_MONEY wide;
    std::memcpy(&wide, m, sizeof wide);
    CS_MONEY4 narrow;
    const int r = com__mnytomny4(&wide, &narrow);
    store<CS_MONEY4>(dest, narrow);
    return r < 0 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

// The scalar destinations shared by both layers: *len is set to the size.
template <Layer L, class D> CS_RETCODE numeric_to_scalar(__CONSTANT *c, void *dest, CS_INT *len)
{
    if constexpr (is_via_float<D>) {
        *len = sizeof(typename D::type);
        return via_float<L, D>(c, dest);
    } else if constexpr (std::is_same_v<D, to_i8> || std::is_same_v<D, to_ui8>) {
        *len = 8;
        return via_64<L, D>(c, dest);
    } else if constexpr (std::is_same_v<D, to_bit>) {
        *len = 1;
        if constexpr (L == Layer::comnb) {
            store<CS_BIT>(dest, com__exctnume_intcmp(c, 0) ? 0 : 1);
            return CS_SUCCEED;
        } else {
            CS_FLOAT d;
            if (com__subexctnumetoflt8(c, &d) != kOk)
                return KES_TRACE(CS_EOVERFLOW);
            store<CS_BIT>(dest, d != 0.0 ? 1 : 0);
            return CS_SUCCEED;
        }
    } else if constexpr (std::is_same_v<D, to_flt4> || std::is_same_v<D, to_flt8>) {
        *len = std::is_same_v<D, to_flt4> ? 4 : 8;
        return to_float<L>(c, dest, std::is_same_v<D, to_flt4>);
    } else {
        static_assert(std::is_same_v<D, to_money> || std::is_same_v<D, to_mny4>);
        *len = std::is_same_v<D, to_mny4> ? 4 : 8;
        return to_money_bytes(c, dest, std::is_same_v<D, to_mny4>);
    }
}

template <class D>
CS_RETCODE comn_numto(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(is_numeric_code(srcfmt->datatype));
    KES_ASSERT(admits_dest<D>(destfmt->datatype));
    auto *num = static_cast<CS_NUMERIC *>(src);
    if constexpr (std::is_same_v<D, to_bin>) {
        return comn_fixedtobin(context, srcfmt, num->array, destfmt, dest, destlen, CS_MAX_NUMLEN);
    } else if constexpr (std::is_same_v<D, to_varbin>) {
        return comn_fixedtovarbin(context, srcfmt, num->array, destfmt, dest, destlen, CS_MAX_NUMLEN);
    } else {
        if constexpr (std::is_same_v<D, to_varchar>)
            *destlen = sizeof(CS_VARCHAR);
        else if constexpr (!std::is_same_v<D, to_char>)
            *destlen = comn_typelen(destfmt->datatype, 0); // before any check
        __CONSTANT c;
        if (!record_value(num, &c))
            return KES_TRACE(CS_EDOMAIN);
        if constexpr (std::is_same_v<D, to_char>) {
            NumText t;
            if (!make_text(&c, &t))
                return KES_TRACE(CS_EOVERFLOW);
            const CS_INT n = t.len() < destfmt->maxlength ? t.len() : destfmt->maxlength;
            std::memcpy(dest, t.p(), static_cast<size_t>(n > 0 ? n : 0));
            *destlen = n > 0 ? n : 0;
            return comn__padchar(t.len(), destfmt, dest, destlen);
        } else if constexpr (std::is_same_v<D, to_varchar>) {
            NumText t;
            if (!make_text(&c, &t))
                return KES_TRACE(CS_EOVERFLOW);
            auto *vc = static_cast<CS_VARCHAR *>(dest);
            const int n = t.len() < CS_MAX_CHAR ? t.len() : CS_MAX_CHAR;
            std::memcpy(vc->str, t.p(), static_cast<size_t>(n));
            vc->len = static_cast<CS_SMALLINT>(n);
            return n < t.len() ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
        } else {
            return numeric_to_scalar<Layer::comn, D>(&c, dest, destlen);
        }
    }
}

template <class D> CS_RETCODE comnb_numto(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (!valid_server_value(src))
        return KES_TRACE(CS_EDOMAIN);
    if constexpr (std::is_same_v<D, to_char> || std::is_same_v<D, to_varchar>) {
        NumText t;
        if (!make_text(src, &t))
            return KES_TRACE(CS_EOVERFLOW);
        dest->len = t.len() < dest->maxlen ? t.len() : dest->maxlen;
        std::memcpy(dest->value, t.p(), static_cast<size_t>(dest->len));
        if constexpr (std::is_same_v<D, to_char>) {
            const CS_RETCODE rc = comnb__padchar(context, dest);
            if (rc != CS_SUCCEED)
                return rc;
        }
        if (t.len() <= dest->maxlen)
            return CS_SUCCEED;
        return KES_TRACE(dest->maxlen >= t.point() ? CS_TRUNCATED : CS_EOVERFLOW);
    } else {
        return numeric_to_scalar<Layer::comnb, D>(src, dest->value, &dest->len);
    }
}

// ---- into numeric ------------------------------------------------------------------

// Statuses of a kernel into a numeric destination, by layer: digits lost are
// an overflow in the context layer and a truncation in the server layer.
CS_RETCODE into_code(int st, Layer l)
{
    switch (st) {
    case kOk: return CS_SUCCEED;
    case kMalformed: return KES_TRACE(CS_ESYNTAX);
    case kLostDigits: return KES_TRACE(l == Layer::comn ? CS_EOVERFLOW : CS_TRUNCATED);
    default: return KES_TRACE(CS_EOVERFLOW);
    }
}

// A numeric destination record: precision and scale checked and written.
CS_RETCODE prepare_record(CS_DATAFMT *destfmt, CS_NUMERIC *num)
{
    if (destfmt->precision < 1 || destfmt->precision > kMaxPrec)
        return KES_TRACE(CS_EPRECISION);
    if (destfmt->scale < 0 || destfmt->scale > kMaxPrec)
        return KES_TRACE(CS_ESCALE);
    num->precision = static_cast<CS_BYTE>(destfmt->precision);
    num->scale = static_cast<CS_BYTE>(destfmt->scale);
    return CS_SUCCEED;
}

// The server layer's destination: its length is its capacity, its precision
// and scale are checked.  The value is built at the precision's own length
// and copied in right-aligned.
CS_RETCODE prepare_server(__CONSTANT *dest)
{
    dest->len = dest->maxlen;
    if (dest->prec == 0 || dest->prec > kMaxPrec)
        return KES_TRACE(CS_EPRECISION);
    if (dest->scale > kMaxPrec)
        return KES_TRACE(CS_ESCALE);
    return CS_SUCCEED;
}

CS_RETCODE finish_server(CS_BYTE *work, int worklen, __CONSTANT *dest, CS_RETCODE rc)
{
    const __CONSTANT w = value_view(work, worklen, dest->prec, dest->scale);
    if (com__exctnume_copy(&w, dest) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    return rc;
}

// Text of len bytes (already plain ASCII or to be normalised through attr)
// into a work value; CS_SRC_VALUE is told by precision 0 and scale 255.
int text_kernel(const CS_CHAR *text, CS_INT len, CHAR_ATTRIB *attr, CS_BYTE *work, CS_INT *worklen,
                CS_BYTE **value, CS_BYTE *prec, CS_BYTE *scale, int flag)
{
    char buf[kNumScratch];
    const CS_INT n = com__conv2ascii(text, len, buf, kNumScratch, attr);
    *value = work;
    return com__subchartoexctnume(buf, n, value, worklen, prec, scale, flag);
}

constexpr CS_BYTE kTextScale = 255; // any scale above 77: the text's own

CS_RETCODE comn_text_to_num(CS_CONTEXT *context, CS_DATAFMT *srcfmt, const CS_CHAR *text, CS_INT len,
                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    *destlen = sizeof(CS_NUMERIC);
    const bool src_prec = destfmt->precision == CS_SRC_VALUE;
    const bool src_scale = destfmt->scale == CS_SRC_VALUE;
    if (!src_prec && (destfmt->precision < 1 || destfmt->precision > kMaxPrec))
        return KES_TRACE(CS_EPRECISION);
    if (!src_scale && (destfmt->scale < 0 || destfmt->scale > kMaxPrec))
        return KES_TRACE(CS_ESCALE);
    if (len >= kNumScratch)
        return KES_TRACE(CS_ESYNTAX);
    CS_BYTE prec = src_prec ? 0 : static_cast<CS_BYTE>(destfmt->precision);
    CS_BYTE scale = src_scale ? kTextScale : static_cast<CS_BYTE>(destfmt->scale);
    CS_BYTE work[kMaxLen];
    CS_INT worklen = src_prec ? kMaxLen : Com__Nume_Prec_To_Len[prec];
    CS_BYTE *value;
    const int st = text_kernel(text, len, com_intl_charattr(context, srcfmt), work, &worklen, &value, &prec,
                               &scale, 0);
    if (st != kOk)
        return into_code(st, Layer::comn);
    auto *num = static_cast<CS_NUMERIC *>(dest);
    num->precision = prec;
    num->scale = src_scale && scale > kMaxPrec ? 0 : scale;
    std::memset(num->array, 0, sizeof num->array);
    std::memcpy(num->array, value, static_cast<size_t>(worklen));
    return CS_SUCCEED;
}

template <class S>
CS_RETCODE comn_float_to_num(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->datatype == (std::is_same_v<S, CS_REAL> ? CS_REAL_TYPE : CS_FLOAT_TYPE));
    KES_ASSERT(is_numeric_code(destfmt->datatype));
    *destlen = sizeof(CS_NUMERIC);
    auto *num = static_cast<CS_NUMERIC *>(dest);
    if (const CS_RETCODE rc = prepare_record(destfmt, num); rc != CS_SUCCEED)
        return rc;
    const int st = com__doubletoexctnume(load<S>(src), num->array, Com__Nume_Prec_To_Len[num->precision],
                                         &num->precision, &num->scale);
    return st == kOverflow ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

template <class S> CS_RETCODE comnb_float_to_num(CAST_CONTEXT *, __CONSTANT *src, __CONSTANT *dest)
{
    if (const CS_RETCODE rc = prepare_server(dest); rc != CS_SUCCEED)
        return rc;
    CS_BYTE work[kMaxLen];
    const int worklen = Com__Nume_Prec_To_Len[dest->prec];
    CS_BYTE prec = dest->prec, scale = dest->scale;
    const int st = com__doubletoexctnume(load<S>(src->value), work, worklen, &prec, &scale);
    if (st != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    return finish_server(work, worklen, dest, CS_SUCCEED);
}

template <bool Four>
CS_RETCODE comn_money_to_num(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->datatype == (Four ? CS_MONEY4_TYPE : CS_MONEY_TYPE));
    KES_ASSERT(is_numeric_code(destfmt->datatype));
    *destlen = sizeof(CS_NUMERIC);
    auto *num = static_cast<CS_NUMERIC *>(dest);
    if (const CS_RETCODE rc = prepare_record(destfmt, num); rc != CS_SUCCEED)
        return rc;
    CS_MONEY m;
    if constexpr (Four) {
        CS_MONEY4 m4 = load<CS_MONEY4>(src);
        com__mny4tomny(&m4, &m);
    } else {
        m = load<CS_MONEY>(src);
    }
    const int st = com__mny8toexctnume(&m, num->array, Com__Nume_Prec_To_Len[num->precision], &num->precision,
                                       &num->scale, 0);
    return st == kOk ? CS_SUCCEED : KES_TRACE(CS_EOVERFLOW);
}

template <bool Four> CS_RETCODE comnb_money_to_num(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (const CS_RETCODE rc = prepare_server(dest); rc != CS_SUCCEED)
        return rc;
    CS_MONEY m;
    if constexpr (Four) {
        CS_MONEY4 m4 = load<CS_MONEY4>(src->value);
        com__mny4tomny(&m4, &m);
    } else {
        m = load<CS_MONEY>(src->value);
    }
    const bool tolerant = (context->flags & 1) != 0;
    CS_BYTE work[kMaxLen];
    const int worklen = Com__Nume_Prec_To_Len[dest->prec];
    CS_BYTE prec = dest->prec, scale = dest->scale;
    const int st = com__mny8toexctnume(&m, work, worklen, &prec, &scale, tolerant ? 1 : 0);
    if (st == kLostDigits && tolerant)
        return finish_server(work, worklen, dest, CS_SUCCEED);
    if (st != kOk && st != kLostDigits)
        return KES_TRACE(CS_EOVERFLOW);
    return finish_server(work, worklen, dest, st == kOk ? CS_SUCCEED : KES_TRACE(CS_TRUNCATED));
}

} // namespace

// ---- the members ------------------------------------------------------------------------

#define KES_NUM_DESTS(X) \
    X(bit) X(i1) X(i2) X(i4) X(i8) X(ui2) X(ui4) X(ui8) X(flt4) X(flt8) X(money) X(mny4) X(char) X(varchar)

#define KES_DEFINE_NUM_COMN(d)                                                                   \
    extern "C" CS_RETCODE comn_numto##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,  \
                                        CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)   \
    {                                                                                        \
        return comn_numto<to_##d>(context, srcfmt, src, destfmt, dest, destlen);             \
    }
#define KES_DEFINE_NUM_COMNB(d)                                                                  \
    extern "C" CS_RETCODE comnb_numto##d(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                        \
        return comnb_numto<to_##d>(context, src, dest);                                      \
    }
KES_NUM_DESTS(KES_DEFINE_NUM_COMN)
KES_NUM_DESTS(KES_DEFINE_NUM_COMNB)
KES_DEFINE_NUM_COMN(bin)
KES_DEFINE_NUM_COMN(varbin)

extern "C" {

CS_RETCODE comn_numtonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                         CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(is_numeric_code(srcfmt->datatype));
    KES_ASSERT(is_numeric_code(destfmt->datatype));
    auto *in = static_cast<CS_NUMERIC *>(src);
    auto *out = static_cast<CS_NUMERIC *>(dest);
    __CONSTANT s;
    if (!record_value(in, &s))
        return KES_TRACE(CS_EDOMAIN);
    const int prec = destfmt->precision == CS_SRC_VALUE ? in->precision : destfmt->precision;
    const int scale = destfmt->scale == CS_SRC_VALUE ? in->scale : destfmt->scale;
    if (prec < 1 || prec > kMaxPrec)
        return KES_TRACE(CS_EPRECISION);
    if (scale < 0 || scale > kMaxPrec)
        return KES_TRACE(CS_ESCALE);
    // The source may be the destination: work from a copy.
    CS_BYTE bytes[kMaxLen];
    std::memcpy(bytes, s.value, static_cast<size_t>(s.len));
    s.value = bytes;
    out->precision = static_cast<CS_BYTE>(prec);
    out->scale = static_cast<CS_BYTE>(scale);
    __CONSTANT d = value_view(out->array, Com__Nume_Prec_To_Len[prec], prec, scale);
    if (com__exctnume_copy(&s, &d) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    *destlen = d.len + 2;
    const int st = com__exctnume_scale(&d, nullptr, scale - s.scale, 0);
    if (st == kOverflow)
        return KES_TRACE(CS_EOVERFLOW);
    KES_ASSERT(st == kOk || st == kLostDigits);
    if (com__exctnume_checkprecision(&d))
        return KES_TRACE(CS_EOVERFLOW);
    return st == kLostDigits ? KES_TRACE(CS_TRUNCATED) : CS_SUCCEED;
}

CS_RETCODE comnb_numtonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (dest->prec >= 1 && dest->prec <= kMaxPrec)
        dest->len = Com__Nume_Prec_To_Len[dest->prec];
    if (!valid_server_value(src))
        return KES_TRACE(CS_EDOMAIN);
    if (dest->prec == 0 || dest->prec > kMaxPrec)
        return KES_TRACE(CS_EPRECISION);
    if (dest->scale > kMaxPrec)
        return KES_TRACE(CS_ESCALE);
    const bool tolerant = (context->flags & 1) != 0;
    // Shift in a buffer as long as the longer of the two, then fit.
    CS_BYTE work[kMaxLen];
    const bool direct = dest->len >= src->len;
    __CONSTANT w = value_view(direct ? dest->value : work, direct ? dest->len : src->len, dest->prec, dest->scale);
    (void)com__exctnume_copy(src, &w);
    const int st = com__exctnume_scale(&w, nullptr, dest->scale - src->scale, 0);
    if (st == kOverflow)
        return KES_TRACE(CS_EOVERFLOW);
    if (st == kLostDigits && !tolerant && !direct)
        return KES_TRACE(CS_TRUNCATED);
    if (!direct && com__exctnume_copy(&w, dest) != kOk)
        return KES_TRACE(CS_EOVERFLOW);
    if (com__exctnume_checkprecision(dest))
        return KES_TRACE(CS_EOVERFLOW);
    return st == kLostDigits && !tolerant ? KES_TRACE(CS_TRUNCATED) : CS_SUCCEED;
}

CS_RETCODE comn_chartonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                          CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->maxlength >= 1);
    KES_ASSERT(is_numeric_code(destfmt->datatype));
    return comn_text_to_num(context, srcfmt, static_cast<CS_CHAR *>(src), srcfmt->maxlength, destfmt, dest,
                            destlen);
}

CS_RETCODE comn_varchartonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->datatype == CS_VARCHAR_TYPE);
    KES_ASSERT(is_numeric_code(destfmt->datatype));
    auto *vc = static_cast<CS_VARCHAR *>(src);
    KES_ASSERT(vc->len >= 0 && vc->len <= CS_MAX_CHAR);
    return comn_text_to_num(context, srcfmt, vc->str, vc->len, destfmt, dest, destlen);
}

CS_RETCODE comnb_chartonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (const CS_RETCODE rc = prepare_server(dest); rc != CS_SUCCEED)
        return rc;
    if (src->len >= kNumScratch)
        return KES_TRACE(CS_ESYNTAX);
    CS_BYTE work[kMaxLen];
    CS_INT worklen = Com__Nume_Prec_To_Len[dest->prec];
    CS_BYTE prec = dest->prec, scale = dest->scale;
    CS_BYTE *value;
    const int st = text_kernel(reinterpret_cast<CS_CHAR *>(src->value), src->len, context->char_attrib, work,
                               &worklen, &value, &prec, &scale, (context->flags & 1) ? 1 : 0);
    if (st != kOk) // digits refused by the strict reader leave no value to keep
        return into_code(st, Layer::comnb);
    return finish_server(value, worklen, dest, CS_SUCCEED);
}

CS_RETCODE comn_flt4tonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                          CS_INT *destlen)
{
    return comn_float_to_num<CS_REAL>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_flt8tonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                          CS_INT *destlen)
{
    return comn_float_to_num<CS_FLOAT>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comnb_flt4tonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_float_to_num<CS_REAL>(context, src, dest);
}

CS_RETCODE comnb_flt8tonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_float_to_num<CS_FLOAT>(context, src, dest);
}

CS_RETCODE comn_moneytonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen)
{
    return comn_money_to_num<false>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_mny4tonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                          CS_INT *destlen)
{
    return comn_money_to_num<true>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comnb_moneytonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_money_to_num<false>(context, src, dest);
}

CS_RETCODE comnb_mny4tonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_money_to_num<true>(context, src, dest);
}

} // extern "C"
