// Null values: the built-in table, the per-context copy, user nulls, the void
// source of the matrix and the byte-pointer setters.
#include "conv/nulls.h"

#include <algorithm>
#include <cstring>

#include "conv/fill.h"
#include "errors/assert.h"
#include "kesintl.h"
#include "numeric/nume_tables.h"

namespace {

// How a null is finished: the fill routine of its kind.
enum PadType : CS_INT { kPadText = 1, kPadBinary = 2, kPadWhole = 3, kPadUnicode = 4 };

// The null entities.  Text and binary nulls are empty (the byte is there only
// to have an address); the rest are zero bytes of their size but for the
// numeric precision byte and the locator tag.
CS_BYTE Comp_CS_CHAR[1], Comp_CS_LONGCHAR[1], Comp_CS_BINARY[1], Comp_CS_LONGBINARY[1];
CS_BYTE Comp_CS_TEXT[1], Comp_CS_IMAGE[1], Comp_CS_SENSITIVITY[1], Comp_CS_BOUNDARY[1];
CS_BYTE Comp_CS_XML[1], Comp_CS_UNICHAR[1], Comp_CS_UNITEXT[1];
CS_TINYINT Comv_CS_TINYINT;
CS_SMALLINT Comv_CS_SMALLINT;
CS_INT Comv_CS_INT;
CS_REAL Comv_CS_REAL;
CS_FLOAT Comv_CS_FLOAT;
CS_BIT Comv_CS_BIT;
CS_BYTE Comv_CS_DATETIME[8], Comv_CS_DATETIME4[8]; // 8 bytes for the 4-byte type too
CS_BYTE Comv_CS_MONEY[8], Comv_CS_MONEY4[8];
CS_NUMERIC Comv_CS_NUMERIC{18, 0, {}};
CS_DECIMAL Comv_CS_DECIMAL{18, 0, {}};
CS_VARBINARY Comv_CS_VARBINARY;
CS_VARCHAR Comv_CS_VARCHAR;
CS_LONG Comv_CS_LONG;
CS_VOIDDATA Comv_CS_VOID;
CS_USHORT Comv_CS_USHORT;
CS_INT Comv_CS_BLOB;
CS_DATE Comv_CS_DATE;
CS_TIME Comv_CS_TIME;
CS_BIGINT Comv_CS_BIGINT;
CS_USMALLINT Comv_CS_USMALLINT;
CS_UINT Comv_CS_UINT;
CS_UBIGINT Comv_CS_UBIGINT;
CS_BIGDATETIME Comv_CS_BIGDATETIME;
CS_BIGTIME Comv_CS_BIGTIME;
CS_LOCATOR Comv_CS_LOCATOR{CS_LOCATOR_TAG, 0, 0, nullptr, 0, nullptr, 0};

bool is_numeric(CS_INT type) { return type == CS_NUMERIC_TYPE || type == CS_DECIMAL_TYPE; }

CS_VOID *copy_bytes(const CS_VOID *value, CS_INT len)
{
    auto *copy = comn_malloc(static_cast<size_t>(std::max<CS_INT>(len, 1)));
    if (copy != nullptr && len > 0)
        std::memcpy(copy, value, static_cast<size_t>(len));
    return copy;
}

void free_rows(CsDefVal *rows, int count)
{
    for (int i = 0; i < count; i++)
        comn_free(rows[i].dventity);
    comn_free(rows);
}

CsUsrNull *find_user(CS_CONTEXT *context, CS_INT type)
{
    for (CsUsrNull *node = context->ctxusrnulls; node != nullptr; node = node->nextnull)
        if (node->dttype == type)
            return node;
    return nullptr;
}

} // namespace

extern "C" {

const CsDefVal Comv_values[CS_MAX_TYPE] = {
    {Comp_CS_CHAR, 0, kPadText},
    {Comp_CS_LONGCHAR, 0, kPadText}, // row of CS_BINARY: text entry, kept as it stands
    {Comp_CS_BINARY, 0, kPadBinary}, // row of CS_LONGCHAR: binary entry
    {Comp_CS_LONGBINARY, 0, kPadBinary},
    {Comp_CS_TEXT, 0, kPadText},
    {Comp_CS_IMAGE, 0, kPadBinary},
    {&Comv_CS_TINYINT, 1, kPadWhole},
    {&Comv_CS_SMALLINT, 2, kPadWhole},
    {&Comv_CS_INT, 4, kPadWhole},
    {&Comv_CS_REAL, 4, kPadWhole},
    {&Comv_CS_FLOAT, 8, kPadWhole},
    {&Comv_CS_BIT, 1, kPadWhole},
    {Comv_CS_DATETIME, 8, kPadWhole},
    {Comv_CS_DATETIME4, 8, kPadWhole},
    {Comv_CS_MONEY, 8, kPadWhole},
    {Comv_CS_MONEY4, 8, kPadWhole},
    {&Comv_CS_NUMERIC, 35, kPadWhole},
    {&Comv_CS_DECIMAL, 35, kPadWhole},
    {&Comv_CS_VARBINARY, 258, kPadWhole}, // row of CS_VARCHAR
    {&Comv_CS_VARCHAR, 258, kPadWhole},
    {&Comv_CS_LONG, 8, kPadWhole},
    {Comp_CS_SENSITIVITY, 0, kPadText},
    {Comp_CS_BOUNDARY, 0, kPadText},
    {&Comv_CS_VOID, 4, kPadWhole},
    {&Comv_CS_USHORT, 2, kPadWhole},
    {Comp_CS_UNICHAR, 1, kPadUnicode},
    {&Comv_CS_BLOB, 4, kPadWhole},
    {&Comv_CS_DATE, 4, kPadWhole},
    {&Comv_CS_TIME, 4, kPadWhole},
    {Comp_CS_UNITEXT, 1, kPadUnicode},
    {&Comv_CS_BIGINT, 8, kPadWhole},
    {&Comv_CS_USMALLINT, 2, kPadWhole},
    {&Comv_CS_UINT, 4, kPadWhole},
    {&Comv_CS_UBIGINT, 8, kPadWhole},
    {Comp_CS_XML, 0, kPadText},
    {&Comv_CS_BIGDATETIME, 8, kPadWhole},
    {&Comv_CS_BIGTIME, 8, kPadWhole},
    {&Comv_CS_LOCATOR, 48, kPadWhole},
    {&Comv_CS_LOCATOR, 48, kPadWhole},
    {&Comv_CS_LOCATOR, 48, kPadWhole},
};

CS_RETCODE com_null_init(CS_CONTEXT *context)
{
    KES_NOT_NULL(context);
    auto *rows = static_cast<CsDefVal *>(comn_calloc(CS_MAX_TYPE, sizeof(CsDefVal)));
    if (rows == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    for (int i = 0; i < CS_MAX_TYPE; i++) {
        rows[i] = Comv_values[i];
        rows[i].dventity = copy_bytes(Comv_values[i].dventity, Comv_values[i].dvsize);
        if (rows[i].dventity == nullptr) {
            free_rows(rows, i);
            return KES_TRACE(CS_MEM_ERROR);
        }
    }
    context->ctxnulls.nullvals = rows;
    context->ctxnulls.nulldim = CS_MAX_TYPE;
    context->ctxusrnulls = nullptr;
    return CS_SUCCEED;
}

CS_RETCODE com_null_free(CS_CONTEXT *context)
{
    KES_NOT_NULL(context);
    if (context->ctxnulls.nullvals != nullptr)
        free_rows(context->ctxnulls.nullvals, context->ctxnulls.nulldim);
    context->ctxnulls.nullvals = nullptr;
    context->ctxnulls.nulldim = 0;
    return com__null_usr_free(context);
}

CS_RETCODE com_null_get(CS_CONTEXT *context, CS_DATAFMT *datafmt, CS_VOID *dest, CS_INT destlen,
                        CS_INT *outlen)
{
    KES_NOT_NULL(context);
    KES_NOT_NULL(datafmt);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(outlen);
    const CS_INT type = datafmt->datatype;
    KES_ASSERT(type >= 0);
    if (type >= context->ctxnulls.nulldim)
        return com__null_usr_get(context, type, dest, destlen, outlen);

    const CsDefVal &row = context->ctxnulls.nullvals[type];
    KES_ASSERT(row.dventity != nullptr);
    const CS_INT room = std::max<CS_INT>(destlen, 0);
    const CS_INT precision = datafmt->precision;
    const bool numeric = is_numeric(type);
    const CS_INT len = numeric && precision >= CS_MIN_PREC && precision <= CS_MAX_PREC
                           ? std::min<CS_INT>(Com__Nume_Prec_To_Len[precision] + 2, room)
                           : std::min(room, row.dvsize);
    // A replaced null may be shorter than a numeric length asks for.
    const CS_INT have = std::min(len, row.dvsize);
    auto *out = static_cast<CS_BYTE *>(dest);
    std::memcpy(out, row.dventity, static_cast<size_t>(std::max<CS_INT>(have, 0)));
    if (len > have)
        std::memset(out + have, 0, static_cast<size_t>(len - have));
    *outlen = len;

    switch (row.dvpadtype) {
    case kPadText:
        return comn__padchar(*outlen, datafmt, dest, outlen);
    case kPadBinary:
        return comn__padbin(*outlen, datafmt, dest, outlen);
    case kPadUnicode:
        return comn__padunichar(*outlen, datafmt, dest, outlen);
    default:
        if (numeric) {
            const CS_BYTE head[2] = {static_cast<CS_BYTE>(precision), static_cast<CS_BYTE>(datafmt->scale)};
            std::memcpy(out, head, static_cast<size_t>(std::min<CS_INT>(room, 2)));
        }
        return CS_SUCCEED;
    }
}

CS_RETCODE com_null_set(CS_CONTEXT *context, CS_INT type, CS_VOID *value, CS_INT len)
{
    KES_NOT_NULL(context);
    KES_ASSERT(type >= 0);
    KES_ASSERT(len >= 0);
    if (len > 0)
        KES_NOT_NULL(value);
    if (type >= context->ctxnulls.nulldim)
        return com__null_usr_set(context, type, value, len);

    CsDefVal &row = context->ctxnulls.nullvals[type];
    comn_free(row.dventity);
    row.dventity = nullptr;
    row.dvsize = 0;
    if (len > 0) {
        row.dventity = copy_bytes(value, len);
        if (row.dventity == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
    }
    row.dvsize = len;
    return CS_SUCCEED;
}

CS_RETCODE com_null_reinstall(CS_CONTEXT *context, CS_INT type)
{
    KES_NOT_NULL(context);
    KES_ASSERT(type >= 0);
    if (type >= context->ctxnulls.nulldim)
        return com__null_usr_reinstall(context, type);

    CsDefVal &row = context->ctxnulls.nullvals[type];
    const CsDefVal &builtin = Comv_values[type];
    row.dvpadtype = builtin.dvpadtype;
    // A cleared row has no buffer at all, whatever its size says.
    if (builtin.dvsize > row.dvsize || row.dventity == nullptr) {
        CS_VOID *fresh = copy_bytes(builtin.dventity, builtin.dvsize);
        if (fresh == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        comn_free(row.dventity);
        row.dventity = fresh;
    } else if (builtin.dvsize > 0) {
        std::memcpy(row.dventity, builtin.dventity, static_cast<size_t>(builtin.dvsize));
    }
    row.dvsize = builtin.dvsize;
    return CS_SUCCEED;
}

CS_RETCODE com__null_usr_get(CS_CONTEXT *context, CS_INT type, CS_VOID *dest, CS_INT destlen,
                             CS_INT *outlen)
{
    const CsUsrNull *node = find_user(context, type);
    if (node == nullptr) {
        *outlen = 0;
        return CS_SUCCEED;
    }
    const CS_INT len = std::max<CS_INT>(std::min(destlen, node->dvsize), 0);
    auto *out = static_cast<CS_BYTE *>(dest);
    if (len > 0)
        std::memcpy(out, node->dventity, static_cast<size_t>(len));
    out[len] = 0; // delivered as a terminated string: the caller's extra byte
    *outlen = len + 1;
    return CS_SUCCEED;
}

CS_RETCODE com__null_usr_set(CS_CONTEXT *context, CS_INT type, CS_VOID *value, CS_INT len)
{
    CsUsrNull *node = find_user(context, type);
    if (node == nullptr) {
        node = static_cast<CsUsrNull *>(comn_calloc(1, sizeof(CsUsrNull)));
        if (node == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        node->dttype = type;
        node->nextnull = context->ctxusrnulls;
        context->ctxusrnulls = node;
    }
    comn_free(node->dventity);
    node->dventity = nullptr;
    node->dvsize = 0;
    if (len > 0) {
        node->dventity = copy_bytes(value, len);
        if (node->dventity == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
    }
    node->dvsize = len;
    return CS_SUCCEED;
}

CS_RETCODE com__null_usr_reinstall(CS_CONTEXT *context, CS_INT type)
{
    for (CsUsrNull **link = &context->ctxusrnulls; *link != nullptr; link = &(*link)->nextnull) {
        CsUsrNull *node = *link;
        if (node->dttype == type) {
            *link = node->nextnull;
            comn_free(node->dventity);
            comn_free(node);
            break;
        }
    }
    return CS_SUCCEED;
}

CS_RETCODE com__null_usr_free(CS_CONTEXT *context)
{
    CsUsrNull *node = context->ctxusrnulls;
    while (node != nullptr) {
        CsUsrNull *next = node->nextnull;
        comn_free(node); // the value stays: callers may still hold it
        node = next;
    }
    context->ctxusrnulls = nullptr;
    return CS_SUCCEED;
}

CS_RETCODE comn_voidtoany(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                          CS_VOID *dest, CS_INT *destlen)
{
    KES_NOT_NULL(destfmt);
    return com_null_get(context, destfmt, dest, comn_typelen(destfmt->datatype, destfmt->maxlength),
                        destlen);
}

} // extern "C"

// ---- the byte-pointer setters ----------------------------------------------

namespace {

// A fixed-size null: the given bytes (at most size, zeros after) or zeros.
CS_INT set_fixed(CS_BYTE *dest, const CS_BYTE *value, CS_INT len, CS_INT size)
{
    const CS_INT n = value != nullptr && len > 0 ? std::min(len, size) : 0;
    if (n > 0)
        std::memcpy(dest, value, static_cast<size_t>(n));
    std::memset(dest + n, 0, static_cast<size_t>(size - n));
    return size;
}

enum class Form { text, string, ntbstring, binary, vary };

constexpr CS_INT kUnbounded = -1;
constexpr CS_INT kNoFit = -5;

// A text or byte null in the form of its setter.
CS_INT set_form(Form form, CS_BYTE *dest, CS_INT destlen, const CS_BYTE *value, CS_INT len)
{
    if (value == nullptr || len < 0)
        len = 0;
    const bool unbounded = destlen == kUnbounded;
    const CS_INT overhead = form == Form::vary ? 2 : (form == Form::string || form == Form::ntbstring ? 1 : 0);
    const bool fits = (unbounded || len + overhead <= destlen) && (form != Form::vary || len <= CS_MAX_CHAR);
    if (form == Form::vary) {
        CS_INT n = len;
        if (!fits)
            n = std::clamp<CS_INT>(unbounded ? CS_MAX_CHAR : std::min(destlen - 2, CS_MAX_CHAR), 0, len);
        if (unbounded || destlen >= 2) {
            const auto stored = static_cast<CS_SMALLINT>(n);
            std::memcpy(dest, &stored, sizeof stored);
            if (n > 0)
                std::memcpy(dest + 2, value, static_cast<size_t>(n));
        }
        return fits ? len : kNoFit;
    }
    if (!fits) {
        if (form == Form::binary) {
            if (destlen > 0)
                std::memcpy(dest, value, static_cast<size_t>(destlen));
        } else if (destlen > 0) {
            const CS_INT kept = std::max<CS_INT>(destlen - 2, 0);
            if (kept > 0)
                std::memcpy(dest, value, static_cast<size_t>(kept));
            std::memset(dest + kept, 0, static_cast<size_t>(destlen - kept));
        }
        return kNoFit;
    }
    if (len > 0)
        std::memcpy(dest, value, static_cast<size_t>(len));
    switch (form) {
    case Form::text:
        if (!unbounded)
            std::memset(dest + len, ' ', static_cast<size_t>(destlen - len));
        break;
    case Form::string:
        if (!unbounded) {
            std::memset(dest + len, ' ', static_cast<size_t>(destlen - 1 - len));
            dest[destlen - 1] = 0;
        } else {
            dest[len] = 0;
        }
        break;
    case Form::ntbstring:
        dest[len] = 0;
        break;
    case Form::binary:
        if (!unbounded)
            std::memset(dest + len, 0, static_cast<size_t>(destlen - len));
        break;
    case Form::vary:
        break;
    }
    return len;
}

} // namespace

extern "C" {

#define KES_FIXED_NULL(name, size)                                              \
    CS_INT name(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len)      \
    {                                                                           \
        KES_NOT_NULL(dest);                                                     \
        return set_fixed(dest, value, len, size);                               \
    }
KES_FIXED_NULL(com_seti1null, 1)
KES_FIXED_NULL(com_seti2null, 2)
KES_FIXED_NULL(com_seti4null, 4)
KES_FIXED_NULL(com_setbitnull, 1)
KES_FIXED_NULL(com_setmoneynull, 8)
KES_FIXED_NULL(com_setmny4null, 4)
KES_FIXED_NULL(com_setflt4null, 4)
KES_FIXED_NULL(com_setflt8null, 8)
KES_FIXED_NULL(com_setdatetimenull, 8)
KES_FIXED_NULL(com_setdatetime4null, 4)
#undef KES_FIXED_NULL

#define KES_FORM_NULL(name, form)                                               \
    CS_INT name(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len)      \
    {                                                                           \
        KES_NOT_NULL(dest);                                                     \
        return set_form(form, dest, destlen, value, len);                       \
    }
KES_FORM_NULL(com_setcharnull, Form::text)
KES_FORM_NULL(com_setstringnull, Form::string)
KES_FORM_NULL(com_setntbstringnull, Form::ntbstring)
KES_FORM_NULL(com_setbinarynull, Form::binary)
KES_FORM_NULL(com_setvarycharnull, Form::vary)
KES_FORM_NULL(com_setvarybinnull, Form::vary)
#undef KES_FORM_NULL

} // extern "C"
