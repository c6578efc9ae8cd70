// The built-in ISO 8859-1 description, computed at compile time from the
// layout of the code page: C0 and C1 controls, ASCII, the Latin-1 symbols and
// the two letter blocks.  The table's deliberate oddities are spelled out as
// such below (0E-0F, 8E-8F, A0 and AD count as white space, DF as upper case).
#include "intl/charattr.h"

namespace {

constexpr bool in(int b, int lo, int hi) { return b >= lo && b <= hi; }

constexpr bool ascii_upper(int b) { return in(b, 'A', 'Z'); }
constexpr bool ascii_lower(int b) { return in(b, 'a', 'z'); }
constexpr bool ascii_digit(int b) { return in(b, '0', '9'); }

// Latin-1 letters: C0-FF without the multiplication and division signs.
constexpr bool latin_upper(int b) { return in(b, 0xC0, 0xDF) && b != 0xD7; }
constexpr bool latin_lower(int b) { return in(b, 0xE0, 0xFF) && b != 0xF7; }

// Sharp s and y diaeresis have no partner inside the code page.
constexpr bool has_lower_partner(int b) { return ascii_upper(b) || (latin_upper(b) && b != 0xDF); }
constexpr bool has_upper_partner(int b) { return ascii_lower(b) || (latin_lower(b) && b != 0xFF); }

constexpr bool space(int b)
{
    return in(b, 0x09, 0x0F) || b == ' ' || b == 0x8E || b == 0x8F || b == 0xA0 || b == 0xAD;
}

constexpr bool money_sign(int b) { return b == '$' || in(b, 0xA3, 0xA5); }

constexpr CS_BYTE char_type(int b)
{
    if (ascii_upper(b) || latin_upper(b))
        return CS_CT_UPPER | (in(b, 'A', 'F') ? CS_CT_XDIGIT : 0);
    if (ascii_lower(b) || latin_lower(b))
        return CS_CT_LOWER | (in(b, 'a', 'f') ? CS_CT_XDIGIT : 0);
    if (ascii_digit(b))
        return CS_CT_DIGIT | CS_CT_XDIGIT;
    if (space(b))
        return CS_CT_SPACE;
    if (in(b, 0x21, 0x7E) || in(b, 0xA1, 0xBF) || b == 0xD7 || b == 0xF7)
        return CS_CT_PUNCT;
    return 0; // controls and DEL
}

constexpr CS_BYTE char_lex(int b)
{
    if (b >= 0x80) // every high byte may stand in an identifier, save the money signs
        return money_sign(b) ? CS_LEX_MONEY : CS_LEX_IDENT;
    if (b <= ' ')
        return CS_LEX_SPACE;
    if (ascii_digit(b))
        return CS_LEX_DIGIT;
    if (ascii_upper(b) || ascii_lower(b) || b == '#' || b == '@' || b == '_')
        return CS_LEX_IDENT;
    if (b == '"' || b == '\'')
        return CS_LEX_QUOTE;
    if (money_sign(b))
        return CS_LEX_MONEY;
    return CS_LEX_PUNCT;
}

constexpr CS_TYPE_MAP build_type_map()
{
    CS_TYPE_MAP map{};
    for (int b = 0; b < 256; ++b) {
        CHAR_MAP &e = map.chmap[b];
        e.char_upper = static_cast<CS_BYTE>(has_upper_partner(b) ? b - 32 : b);
        e.char_lower = static_cast<CS_BYTE>(has_lower_partner(b) ? b + 32 : b);
        e.char_lex = char_lex(b);
        e.char_type = char_type(b);
    }
    return map;
}

// Soundex digit of each letter of the alphabet; Latin-1 letters all give '0'.
constexpr char kSoundexDigits[] = "01230120022455012623010202";

constexpr CS_SOUNDEX build_soundex()
{
    CS_SOUNDEX s{};
    for (int b = 0; b < 256; ++b) {
        if (ascii_upper(b))
            s.sound[b] = static_cast<CS_BYTE>(kSoundexDigits[b - 'A']);
        else if (ascii_lower(b))
            s.sound[b] = static_cast<CS_BYTE>(kSoundexDigits[b - 'a']);
        else if (latin_upper(b) || latin_lower(b))
            s.sound[b] = '0';
    }
    return s;
}

} // namespace

extern "C" {
constinit const CS_TYPE_MAP ISO_1_type_map = build_type_map();
constinit const CS_SOUNDEX ISO_1_soundex = build_soundex();
}

namespace {

constinit const CS_ATTRIB kIso1{
    .cs_status = 0,
    .cs_class = 1,
    .cs_id = 1,
    .cs_namelen = 5,
    .cs_name = {'i', 's', 'o', '_', '1'},
    .cs_maxcharlen = 1,
    .cs_ncharsize = 1,
    .cs_nnorm = 0,
    .cs_ntype = 1,
    .cs_nsoundex = 1,
    .spare = {},
    .cs_width_map = nullptr,
    .cs_norm_map = nullptr,
    // The record is constant; the C interface has no const, and nothing
    // writes through these pointers.
    .cs_type_map = const_cast<CS_TYPE_MAP *>(&ISO_1_type_map),
    .cs_soundex = const_cast<CS_SOUNDEX *>(&ISO_1_soundex),
};

} // namespace

const CS_ATTRIB &kes::intl::iso1_attrib() { return kIso1; }

extern "C" {

CS_ATTRIB *com_get_charattrib(void) { return const_cast<CS_ATTRIB *>(&kIso1); }

CS_TYPE_MAP *com_get_typemap(void) { return const_cast<CS_TYPE_MAP *>(&ISO_1_type_map); }

} // extern "C"
