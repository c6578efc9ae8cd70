/*
** What the conversion families share: the type tokens their member names are
** made of, the type assertions of the context layer, the number-to-text rule
** of both layers, and the macros that stamp out the extern "C" members from
** one generic body.
*/
#ifndef KESCOMN_CONV_CONV_COMMON_H
#define KESCOMN_CONV_CONV_COMMON_H

#include <type_traits>

#include "errors/assert.h"
#include "kescomn/types.h"

namespace kes::conv {

// ---- type tokens: the name fragments of the members -------------------------
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
struct tok_flt4 : Token<CS_REAL, CS_REAL_TYPE> {};
struct tok_flt8 : Token<CS_FLOAT, CS_FLOAT_TYPE> {};
struct tok_money : Token<CS_MONEY, CS_MONEY_TYPE> {};
struct tok_mny4 : Token<CS_MONEY4, CS_MONEY4_TYPE> {};
struct tok_char {};
struct tok_varchar {};
struct tok_bin {};
struct tok_varbin {};

template <class T, class... Ts> constexpr bool is_one_of = (std::is_same_v<T, Ts> || ...);

template <class T> constexpr bool is_int_token =
    is_one_of<T, tok_i1, tok_i2, tok_i4, tok_i8, tok_ui2, tok_ui4, tok_ui8>;
template <class T> constexpr bool is_float_token = is_one_of<T, tok_flt4, tok_flt8>;
template <class T> constexpr bool is_money_token = is_one_of<T, tok_money, tok_mny4>;
// The unsigned types wider than a byte: the context layer reports a value
// below their range as CS_EUNDERFLOW.
template <class T> constexpr bool is_unsigned_wide = is_one_of<T, tok_ui2, tok_ui4, tok_ui8>;

enum class Layer { comn, comnb };

// The types whose values are text, and those whose values are plain bytes.
constexpr bool is_char_family(CS_INT code)
{
    return code == CS_CHAR_TYPE || code == CS_LONGCHAR_TYPE || code == CS_TEXT_TYPE ||
           code == CS_SENSITIVITY_TYPE || code == CS_BOUNDARY_TYPE || code == CS_XML_TYPE;
}

constexpr bool is_binary_family(CS_INT code)
{
    return code == CS_BINARY_TYPE || code == CS_LONGBINARY_TYPE || code == CS_IMAGE_TYPE;
}

// The destination codes a member admits: a 64-bit integer member serves
// CS_LONG too, and the text and byte members serve their whole family.
template <class D> constexpr bool admits_dest(CS_INT code)
{
    if constexpr (std::is_same_v<D, tok_i8>)
        return code == CS_BIGINT_TYPE || code == CS_LONG_TYPE;
    else if constexpr (std::is_same_v<D, tok_char>)
        return code == CS_CHAR_TYPE || code == CS_LONGCHAR_TYPE || code == CS_TEXT_TYPE;
    else if constexpr (std::is_same_v<D, tok_bin>)
        return is_binary_family(code);
    else if constexpr (std::is_same_v<D, tok_varchar>)
        return code == CS_VARCHAR_TYPE;
    else if constexpr (std::is_same_v<D, tok_varbin>)
        return code == CS_VARBINARY_TYPE;
    else
        return code == D::code;
}

// ---- a number as text -----------------------------------------------------------

// True when n bytes of text fit, with the terminator that format may ask for.
inline bool text_has_room(CS_INT maxlength, CS_INT n, CS_INT format)
{
    return maxlength >= n && !((format & CS_FMT_NULLTERM) && maxlength == n);
}

// A number's text into a context-layer character destination: the text
// whole, or "*" (capacity above 1) and CS_EOVERFLOW when it does not fit.
CS_RETCODE comn_number_text_out(const char *text, CS_INT n, CS_DATAFMT *destfmt, CS_VOID *dest,
                                CS_INT *destlen);

// The server layer writes nothing when the text does not fit.
CS_RETCODE comnb_number_text_out(CAST_CONTEXT *context, const char *text, CS_INT n, __CONSTANT *dest);

} // namespace kes::conv

// The six argument checks every context-layer member starts with.
#define KES_CHECK_COMN_ARGS()        \
    do {                             \
        KES_NOT_NULL(context);       \
        KES_NOT_NULL(srcfmt);        \
        KES_NOT_NULL(src);           \
        KES_NOT_NULL(destfmt);       \
        KES_NOT_NULL(dest);          \
        KES_NOT_NULL(destlen);       \
    } while (0)

// comn_<s>to<d> and comnb_<s>to<d> as calls of generic<tok_s, tok_d>.
#define KES_DEFINE_COMN(generic, s, d)                                                              \
    extern "C" CS_RETCODE comn_##s##to##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,    \
                                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)      \
    {                                                                                               \
        return generic<kes::conv::tok_##s, kes::conv::tok_##d>(context, srcfmt, src, destfmt, dest, \
                                                                destlen);                           \
    }
#define KES_DEFINE_COMNB(generic, s, d)                                                             \
    extern "C" CS_RETCODE comnb_##s##to##d(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                               \
        return generic<kes::conv::tok_##s, kes::conv::tok_##d>(context, src, dest);                 \
    }

#endif
