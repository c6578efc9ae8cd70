/*
** How the scanners walk text: a plain byte reader for single-byte sets and a
** reader that steps by character width and compares normalised values for
** multi-byte sets.  Everything the scanners know about a CS_ATTRIB is here.
*/
#ifndef KESCOMN_CONV_CHAR_SCAN_TEXT_H
#define KESCOMN_CONV_CHAR_SCAN_TEXT_H

#include "intl/charattr.h"
#include "kescomn/types.h"

namespace kes::conv {

// A set is scanned byte by byte unless it has characters wider than one byte.
inline bool is_multibyte(const CS_ATTRIB *a) { return a != nullptr && a->cs_maxcharlen >= 2; }

// Bytes of the character at p, never past end.
inline int char_width(const CS_ATTRIB *a, const unsigned char *p, const unsigned char *end)
{
    const CS_INT w = kes::intl::char_len(*a, p, end);
    return end - p < w ? static_cast<int>(end - p) : static_cast<int>(w);
}

// The value a scanner compares: the ASCII equivalent of the character, 0 when
// it has none or is cut by the end of the text.
inline unsigned char_value(const CS_ATTRIB *a, const unsigned char *p, const unsigned char *end)
{
    const CS_INT w = kes::intl::char_len(*a, p, end);
    return w <= end - p ? static_cast<unsigned>(kes::intl::to_ascii(*a, p, w)) : 0;
}

// The built-in set's ASCII equivalents differ from its bytes only in letter
// case, which no number reader minds, so its text can be read as it stands.
inline bool reads_as_bytes(const CS_ATTRIB *a)
{
    return a == nullptr || (a->cs_maxcharlen < 2 && a->cs_norm_map == nullptr && a->cs_type_map == &ISO_1_type_map);
}

// White space as the trims see it: the space class of the built-in set,
// whatever the text's own set.
inline bool is_white_space(unsigned char c) { return (ISO_1_type_map.chmap[c].char_type & CS_CT_SPACE) != 0; }

// Text of a single-byte set: each byte is a character and its own value.
struct ByteText {
    const unsigned char *p;
    const unsigned char *end;
    bool done() const { return p >= end; }
    unsigned value() const { return *p; }
    void next() { ++p; }
};

// Text of a multi-byte set.
struct MbText {
    const unsigned char *p;
    const unsigned char *end;
    const CS_ATTRIB *attr;
    bool done() const { return p >= end; }
    unsigned value() const { return char_value(attr, p, end); }
    int width() const { return char_width(attr, p, end); }
    void next() { p += width(); }
};

} // namespace kes::conv

#endif
