// Character classes, case, lengths and ASCII equivalents over any CS_ATTRIB.
#include <cstring>

#include "errors/assert.h"
#include "intl/charattr.h"
#include "intl/locale_records.h"

namespace {

using kes::intl::char_len;
using kes::intl::resolve;
using kes::intl::type_entry;

const CS_BYTE *bytes(const CS_CHAR *p) { return reinterpret_cast<const CS_BYTE *>(p); }

// Public single-character functions may read the byte after a lead byte.
CS_INT width_at(const CS_ATTRIB &ca, const CS_BYTE *p) { return char_len(ca, p, p + 2); }

CS_BOOL has_type(CS_ATTRIB *ca, const CS_CHAR *p, CS_BYTE bits)
{
    KES_NOT_NULL(p);
    const CHAR_MAP *e = type_entry(resolve(ca), bytes(p));
    return e != nullptr && (e->char_type & bits) != 0;
}

enum class Case { upper, lower };

CS_INT change_case(CS_ATTRIB *ca, const CS_CHAR *srcp, CS_CHAR *destp, Case to)
{
    KES_NOT_NULL(srcp);
    KES_NOT_NULL(destp);
    const CS_ATTRIB &attrib = resolve(ca);
    const CS_BYTE *p = bytes(srcp);
    auto *out = reinterpret_cast<CS_BYTE *>(destp);
    const CS_INT len = width_at(attrib, p);
    const CS_TYPE_MAP *tm = attrib.cs_type_map;
    if (tm != nullptr) {
        const CHAR_MAP &first = tm->chmap[p[0]];
        const auto other = [to](const CHAR_MAP &e) { return to == Case::upper ? e.char_upper : e.char_lower; };
        if ((first.char_type & CS_CT_LEADBYTE) && first.char_upper < attrib.cs_ntype) {
            // The plane holds the second byte in the other case; any further
            // bytes of a four-byte character go unchanged.
            const CS_BYTE second = other(tm[first.char_upper].chmap[p[1]]);
            std::memmove(out + 2, p + 2, static_cast<size_t>(len > 2 ? len - 2 : 0));
            out[0] = p[0];
            out[1] = second;
            return len < 2 ? 2 : len;
        }
        if (!(first.char_type & CS_CT_LEADBYTE) && other(first) != 0) {
            out[0] = other(first);
            return 1;
        }
    }
    std::memmove(out, p, static_cast<size_t>(len));
    return len;
}

} // namespace

CS_INT kes::intl::to_ascii(const CS_ATTRIB &ca, const CS_BYTE *p, CS_INT len)
{
    if (const CS_NORM_MAP *norm = ca.cs_norm_map) {
        // A four-byte set's provisional length 2 is never one byte, whatever
        // the second byte says.
        const bool one_byte = ca.cs_width_map == nullptr || (ca.cs_width_map[p[0]] & 0x0F) <= 1;
        if (one_byte)
            return norm->norm[p[0]];
        const CS_BYTE plane = norm->norm[p[0]];
        if (plane == 0 || plane >= ca.cs_nnorm || len < 2)
            return 0;
        return norm[plane].norm[p[1]];
    }
    if (ca.cs_type_map != nullptr)
        return ca.cs_type_map->chmap[p[0]].char_lower;
    return p[0];
}

extern "C" {

CS_BOOL comn_isalpha(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_UPPER | CS_CT_LOWER); }
CS_BOOL comn_isupper(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_UPPER); }
CS_BOOL comn_islower(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_LOWER); }
CS_BOOL comn_isdigit(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_DIGIT); }
CS_BOOL comn_isxdigit(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_XDIGIT); }
CS_BOOL comn_isspace(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_SPACE); }
CS_BOOL comn_ispunct(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_PUNCT); }
CS_BOOL comn_isgraph(CS_ATTRIB *ca, const CS_CHAR *p) { return has_type(ca, p, CS_CT_GRAPH); }

CS_INT comn_get_lex(CS_ATTRIB *ca, const CS_CHAR *p)
{
    KES_NOT_NULL(p);
    const CHAR_MAP *e = type_entry(resolve(ca), bytes(p));
    return e != nullptr ? e->char_lex : 0;
}

CS_INT comn_toupper(CS_ATTRIB *ca, const CS_CHAR *srcp, CS_CHAR *destp)
{
    return change_case(ca, srcp, destp, Case::upper);
}

CS_INT comn_tolower(CS_ATTRIB *ca, const CS_CHAR *srcp, CS_CHAR *destp)
{
    return change_case(ca, srcp, destp, Case::lower);
}

CS_INT comn_char_width(CS_ATTRIB *ca, const CS_CHAR *p)
{
    KES_NOT_NULL(p);
    return width_at(resolve(ca), bytes(p));
}

CS_INT comn_disp_width(CS_ATTRIB *ca, const CS_CHAR *p)
{
    KES_NOT_NULL(p);
    const CS_BYTE *wm = resolve(ca).cs_width_map;
    return wm != nullptr ? wm[bytes(p)[0]] >> 4 : 1;
}

void comn_inc_char(CS_ATTRIB *ca, CS_CHAR **p)
{
    KES_NOT_NULL(p);
    KES_NOT_NULL(*p);
    *p += width_at(resolve(ca), bytes(*p));
}

void comn_whole_char(CS_ATTRIB *ca, const CS_CHAR *startp, const CS_CHAR *endp, CS_INT *wcbytes,
                     CS_INT *pc_part1, CS_INT *pc_part2, CS_INT *nchars)
{
    KES_NOT_NULL(startp);
    KES_NOT_NULL(endp);
    KES_NOT_NULL(wcbytes);
    KES_NOT_NULL(pc_part1);
    KES_NOT_NULL(pc_part2);
    KES_NOT_NULL(nchars);
    const CS_INT span = endp > startp ? static_cast<CS_INT>(endp - startp) : 0;
    const kes::intl::Walk w = kes::intl::walk_chars(resolve(ca), bytes(startp), bytes(endp), span);
    *wcbytes = w.bytes;
    *nchars = w.chars;
    *pc_part1 = w.cut_len != 0 ? span - w.bytes : 0;
    *pc_part2 = w.cut_len != 0 ? w.cut_len - *pc_part1 : 0;
}

CS_INT comn_to_ascii(CS_ATTRIB *ca, const CS_CHAR *p)
{
    KES_NOT_NULL(p);
    const CS_ATTRIB &attrib = resolve(ca);
    return kes::intl::to_ascii(attrib, bytes(p), width_at(attrib, bytes(p)));
}

void comn_str_to_ascii(const CS_CHAR *cp_src, CS_INT src_len, CS_CHAR *cp_dest, CS_INT *dest_len,
                       CS_ATTRIB *chatr)
{
    KES_NOT_NULL(cp_src);
    KES_NOT_NULL(cp_dest);
    KES_NOT_NULL(dest_len);
    const CS_ATTRIB &attrib = resolve(chatr);
    const CS_BYTE *src = bytes(cp_src);
    const CS_BYTE *end = src + (src_len > 0 ? src_len : 0);
    auto *out = reinterpret_cast<CS_BYTE *>(cp_dest);
    CS_INT written = 0;
    for (const CS_BYTE *p = src; p < end;) {
        CS_INT len = char_len(attrib, p, end);
        // A character cut by the end of the run has no equivalent; its bytes
        // that are there are copied.
        const bool whole = len <= end - p;
        if (!whole)
            len = static_cast<CS_INT>(end - p);
        const CS_INT ascii = whole ? kes::intl::to_ascii(attrib, p, len) : 0;
        if (ascii != 0) {
            out[written++] = static_cast<CS_BYTE>(ascii);
        } else {
            std::memmove(out + written, p, static_cast<size_t>(len)); // may overlap in place
            written += len;
        }
        p += len;
    }
    *dest_len = written;
}

CS_BYTE *comn_get_widthmap(CS_ATTRIB *chatr) { return resolve(chatr).cs_width_map; }

CS_CHAR *comn_mb_strchr(CS_ATTRIB *ca, CS_CHAR *buf, CS_INT srch_char)
{
    KES_NOT_NULL(buf);
    const CS_BYTE wanted = static_cast<CS_BYTE>(srch_char);
    CS_CHAR *p = buf;
    while (*p != 0) {
        if (static_cast<CS_BYTE>(*p) == wanted)
            return p;
        // Measured on its first byte alone, so a four-byte character steps as
        // two pairs; a NUL among its trailing bytes still ends the search.
        CS_INT wc, part1, part2, n;
        comn_whole_char(ca, p, p + 1, &wc, &part1, &part2, &n);
        const CS_INT step = wc + part1 + part2;
        for (CS_INT i = 0; i < step && *p != 0; ++i)
            ++p;
    }
    return nullptr;
}

CS_ATTRIB *com_intl_charattr(CS_CONTEXT *context, CS_DATAFMT *dfmt)
{
    CS_LOCALE *locale = nullptr;
    if (dfmt != nullptr && dfmt->locale != nullptr)
        locale = dfmt->locale;
    else if (context != nullptr)
        locale = context->ctxlocale;
    // Until a locale with a loaded character set is at hand, the built-in
    // set serves.
    if (locale == nullptr)
        return com_get_charattrib();
    const auto *cache = static_cast<const CsLocCache *>(locale->ctypeptr);
    if (cache == nullptr || cache->locchardesc == nullptr || cache->locchardesc->char_attrib == nullptr)
        return com_get_charattrib();
    return cache->locchardesc->char_attrib;
}

} // extern "C"
