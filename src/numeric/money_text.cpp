// Money as text and text as money.  Output is always "." and ",", with no
// currency sign: locale data plays no part.  Input classifies each character
// through the caller's character attributes, so digits, blanks and currency
// signs of any width are understood.
#include <cstring>

#include "errors/assert.h"
#include "kescomn/charattr.h"
#include "kescomn/money.h"
#include "numeric/mny.h"

namespace {

using kes::money::magnitude;
using kes::money::set;
using kes::money::value;

// ---- money to text ------------------------------------------------------------

// Writes backward from the end of [begin, end); null once it runs out.
class BackWriter {
public:
    BackWriter(char *begin, int len) : begin_(begin), p_(len > 0 ? begin + len : begin) {}
    bool put(char c)
    {
        if (p_ == begin_)
            return false;
        *--p_ = c;
        return true;
    }
    char *pos() const { return p_; }
    void skip_back() { ++p_; } // the last character written no longer counts

private:
    char *begin_;
    char *p_;
};

char *money_to_text(int64_t v, char *cp, int len, int style)
{
    const bool grouped = (style & 0xFF) == 1;
    int wanted = style >> 8;
    if (wanted == 0)
        wanted = 2;
    uint64_t mag = magnitude(v);

    // Only the last removed digit decides the rounding.
    int decimals = 4;
    unsigned last = 0;
    for (; decimals > wanted && decimals > 0; --decimals) {
        last = static_cast<unsigned>(mag % 10);
        mag /= 10;
    }
    if (last > 4)
        ++mag;

    BackWriter out(cp, len);
    for (int i = 0; i < decimals; ++i, mag /= 10)
        if (!out.put(static_cast<char>('0' + mag % 10)))
            return nullptr;
    if (!out.put('.'))
        return nullptr;
    bool comma_last = false;
    int digits = 0;
    do {
        if (!out.put(static_cast<char>('0' + mag % 10)))
            return nullptr;
        mag /= 10;
        comma_last = false;
        if (grouped && ++digits % 3 == 0) {
            if (!out.put(','))
                return nullptr;
            comma_last = true;
        }
    } while (mag != 0);
    // A mark in front of the first digit gives way to a blank, and the text
    // starts after it (a sign takes that byte).
    if (comma_last) {
        *out.pos() = ' ';
        out.skip_back();
    }
    if (v < 0 && !out.put('-'))
        return nullptr;
    return out.pos();
}

// ---- text to money ---------------------------------------------------------------

// What one character of the text is, after normalisation.
enum class Kind { digit, plus, minus, blank, point, comma, currency, other };

struct Char {
    Kind kind;
    int digit;
    bool space; // of the space class: allowed in the tail
    int width;
};

// Classifies the character at p, of which rest bytes remain.  The attribute
// functions may read the bytes after a lead byte, so a character that runs
// past the end is looked at through a zero-padded copy.
Char classify(CS_ATTRIB *ca, const char *p, int rest)
{
    char local[8] = {};
    std::memcpy(local, p, static_cast<size_t>(rest < 4 ? rest : 4));
    Char c{};
    c.width = comn_char_width(ca, local);
    if (c.width < 1)
        c.width = 1;
    if (c.width > rest)
        c.width = rest;
    const int ascii = comn_to_ascii(ca, local);
    switch (ascii) {
    case '+': c.kind = Kind::plus; break;
    case '-': c.kind = Kind::minus; break;
    case ' ': c.kind = Kind::blank; c.space = true; break;
    case '.': c.kind = Kind::point; break;
    case ',': c.kind = Kind::comma; break;
    default:
        if (ascii >= '0' && ascii <= '9') {
            c.kind = Kind::digit;
            c.digit = ascii - '0';
        } else {
            c.kind = comn_get_lex(ca, local) == CS_LEX_MONEY ? Kind::currency : Kind::other;
            c.space = comn_isspace(ca, local) != 0;
        }
    }
    return c;
}

// Brings a text with n decimals to four, indexed by n.
constexpr int scalebuf[] = {10000, 1000, 100, 10, 1, 0};

// 922337203685477580: one more digit 8 makes the magnitude of the most
// negative value, which is not a positive 63-bit number.
constexpr uint64_t kTenthOfMin = 0x0CCCCCCCCCCCCCCCULL;

int parse_money(CS_MONEY *mp, const char *icp, int ilen, CS_ATTRIB *chatr)
{
    set(*mp, 0);
    const char *p = icp;
    const char *const end = icp + (ilen > 0 ? ilen : 0);

    // Lead-in: signs, blanks and one currency sign in any order.
    bool negative = false, signed_ = false, currency = false;
    Char c{};
    for (; p < end; p += c.width) {
        c = classify(chatr, p, static_cast<int>(end - p));
        if (c.kind == Kind::plus || c.kind == Kind::minus) {
            if (signed_)
                return 2;
            signed_ = true;
            negative = c.kind == Kind::minus;
        } else if (c.kind == Kind::currency) {
            if (currency)
                return 2;
            currency = true;
        } else if (c.kind != Kind::blank) {
            break;
        }
    }

    // Digits, one point and group marks.  The group counter starts at -4,
    // counts every digit and restarts at each mark; a mark is in place while
    // the counter is negative or exactly 3.
    bool point = false, most_negative = false;
    int decimals = 0, group = -4;
    for (; p < end; p += c.width) {
        c = classify(chatr, p, static_cast<int>(end - p));
        if (c.kind == Kind::digit) {
            ++group;
            if (!point || decimals < 4) {
                if (negative && static_cast<uint64_t>(value(*mp)) == kTenthOfMin && c.digit == 8) {
                    com__maxnegmny(mp);
                    most_negative = true;
                } else if (const int status = com__mnyscale(mp, 10, c.digit); status != 0) {
                    return status;
                }
                if (point)
                    ++decimals;
            } else if (++decimals == 5) {
                if (most_negative && c.digit >= 1)
                    return 1;
                if (c.digit >= 5)
                    (void)com__mnyinc(mp); // a carry into the sign is judged at the end
            }
        } else if (c.kind == Kind::point && !point) {
            point = true;
        } else if (c.kind == Kind::comma && (group < 0 || group == 3)) {
            group = 0;
        } else {
            break;
        }
    }

    // Tail: nothing but space.
    for (; p < end; p += c.width) {
        c = classify(chatr, p, static_cast<int>(end - p));
        if (!c.space)
            return 2;
    }

    if (decimals < 4)
        if (const int status = com__mnyscale(mp, scalebuf[decimals], 0); status != 0)
            return status;
    const int64_t v = value(*mp);
    if (v >= 0) {
        if (negative)
            set(*mp, -v);
        return 0;
    }
    return negative ? 0 : 1; // only the most negative value gets here
}

} // namespace

extern "C" {

char *com__mnytochar(CS_MONEY *mp, char *cp, int len, int style)
{
    return money_to_text(value(*mp), cp, len, style);
}

char *com__mny4tochar(CS_MONEY4 *m4p, char *cp, int len, int style)
{
    CS_MONEY wide;
    com__mny4tomny(m4p, &wide);
    return com__mnytochar(&wide, cp, len, style);
}

int com__mnyfromchar_mb(CS_MONEY *mp, char *icp, int ilen, int style, CS_ATTRIB *chatr)
{
    KES_NOT_NULL(mp);
    if (ilen > 0)
        KES_NOT_NULL(icp);
    return parse_money(mp, icp, ilen, chatr);
}

int com__mny4fromchar_mb(CS_MONEY4 *m4p, char *icp, int ilen, int style, CS_ATTRIB *chatr)
{
    CS_MONEY wide;
    const int status = com__mnyfromchar_mb(&wide, icp, ilen, style, chatr);
    if (status != 0)
        return status;
    return com__mnytomny4(&wide, m4p) < 0 ? 1 : 0;
}

CS_CHAR *com_cvtmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style)
{
    KES_NOT_NULL(mp);
    KES_NOT_NULL(cp);
    return com__mnytochar(mp, cp, len, style);
}

CS_CHAR *com_cvtmny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len, CS_INT style)
{
    KES_NOT_NULL(m4p);
    KES_NOT_NULL(cp);
    return com__mny4tochar(m4p, cp, len, style);
}

CS_CHAR *com_precmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style, CS_INT prec)
{
    return com_cvtmnytochar(mp, cp, len, style | prec << 8);
}

} // extern "C"
