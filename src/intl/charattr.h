/*
** Private side of the character attributes: the built-in ISO 8859-1 tables
** and the bounded lookups that the public functions and the string
** conversions share.  The bounded forms never read at or past `end`.
*/
#ifndef KESCOMN_INTL_CHARATTR_H
#define KESCOMN_INTL_CHARATTR_H

#include "kescomn/charattr.h"

KES_BEGIN_DECLS

/* The type map and soundex map of the built-in ISO 8859-1 record. */
extern const CS_TYPE_MAP ISO_1_type_map;
extern const CS_SOUNDEX ISO_1_soundex;

KES_END_DECLS

namespace kes::intl {

// The record a null CS_ATTRIB stands for.
const CS_ATTRIB &iso1_attrib();

inline const CS_ATTRIB &resolve(const CS_ATTRIB *ca) { return ca != nullptr ? *ca : iso1_attrib(); }

// True when the set marks four-byte characters (high nibble 15 in entry 255).
inline bool has_four_byte(const CS_BYTE *width_map) { return (width_map[255] >> 4) == 15; }

// Length of the character at p.  A provisional two-byte length becomes four
// only when the second byte is inside [p, end) and is 0x30..0x39.  A width
// entry of 0 counts as 1, so no walk can stall on a broken map.
inline CS_INT char_len(const CS_ATTRIB &ca, const CS_BYTE *p, const CS_BYTE *end)
{
    const CS_BYTE *wm = ca.cs_width_map;
    if (wm == nullptr)
        return 1;
    const CS_INT w = wm[*p] & 0x0F;
    if (w == 0)
        return 1;
    if (w == 2 && has_four_byte(wm) && end - p > 1 && p[1] >= 0x30 && p[1] <= 0x39)
        return 4;
    return w;
}

// The type map entry of the character at p, or null without a type map.  A
// lead byte's plane that the record does not have leaves the first entry.
inline const CHAR_MAP *type_entry(const CS_ATTRIB &ca, const CS_BYTE *p)
{
    const CS_TYPE_MAP *tm = ca.cs_type_map;
    if (tm == nullptr)
        return nullptr;
    const CHAR_MAP *first = &tm->chmap[p[0]];
    if ((first->char_type & CS_CT_LEADBYTE) && first->char_upper < ca.cs_ntype)
        return &tm[first->char_upper].chmap[p[1]];
    return first;
}

// comn_to_ascii for a character of len bytes already measured.
CS_INT to_ascii(const CS_ATTRIB &ca, const CS_BYTE *p, CS_INT len);

// The whole characters at the start of a run.  `bytes` and `chars` count
// those that fit in `limit` bytes; `cut_len` is the length of the character
// that would have passed `limit` (0 when the walk ended exactly on it).
// Second bytes are looked at only below `peek_end`.
struct Walk {
    CS_INT bytes;
    CS_INT chars;
    CS_INT cut_len;
};

inline Walk walk_chars(const CS_ATTRIB &ca, const CS_BYTE *p, const CS_BYTE *peek_end, CS_INT limit)
{
    if (ca.cs_width_map == nullptr)
        return {limit, limit, 0};
    const CS_BYTE *wm = ca.cs_width_map;
    CS_INT at = 0;
    CS_INT chars = 0;
    while (at < limit) {
        // One-byte characters step without waiting for the table load, so a
        // run of them costs about a cycle a byte.
        if ((wm[p[at]] & 0x0F) <= 1) {
            ++at;
            ++chars;
            continue;
        }
        const CS_INT len = char_len(ca, p + at, peek_end);
        if (len > limit - at)
            return {at, chars, len};
        at += len;
        ++chars;
    }
    return {at, chars, 0};
}

} // namespace kes::intl

#endif
