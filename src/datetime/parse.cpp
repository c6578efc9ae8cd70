// The date and time grammar: tokens, the time from its colons, the date from
// the named, numeric or packed form, and the check for left-over tokens.
#include "datetime/parse.h"

#include <cstring>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "kescomn/charattr.h"

namespace {

constexpr int kLookupMax = 30; // longest text datelookup compares

// Grammar results.
constexpr int kDateFound = 0;
constexpr int kNoDate = 99;
constexpr int kSyntax = -1;
constexpr int kLeftOver = -2;
constexpr int kBadYear = 1;
constexpr int kAmPmClash = 9;

// The character set as the reader sees it.  A single-byte set is read
// straight from its maps; a multi-byte set goes through the character
// functions, by whole characters.
class Chars {
public:
    explicit Chars(CHAR_ATTRIB *chatr) : chatr_(chatr)
    {
        const CS_ATTRIB *a = chatr != nullptr ? chatr : com_get_charattrib();
        norm_ = a->cs_norm_map;
        types_ = a->cs_type_map;
        single_ = a->cs_width_map == nullptr;
    }

    // Length in bytes of the character at p with left bytes before the end;
    // 0 for a character that the end cuts, which no map may look at.
    int length(const char *p, int left) const
    {
        if (single_)
            return 1;
        if (left >= 4) {
            const int n = comn_char_width(chatr_, p);
            return n <= left ? n : 0;
        }
        CS_INT bytes, part1, part2, count;
        comn_whole_char(chatr_, p, p + left, &bytes, &part1, &part2, &count);
        return count > 0 ? comn_char_width(chatr_, p) : 0;
    }

    // The ASCII twin of the character, 0 when it has none.
    int ascii(const char *p) const
    {
        if (!single_)
            return comn_to_ascii(chatr_, p);
        const auto b = static_cast<unsigned char>(*p);
        return norm_ != nullptr ? norm_->norm[b] : types_ != nullptr ? types_->chmap[b].char_lower : b;
    }

    // The twin, else the first byte marked so that it equals nothing the
    // grammar looks for.
    int normal(const char *p) const
    {
        const int a = ascii(p);
        return a != 0 ? a : static_cast<unsigned char>(*p) | 0x100;
    }

    bool single() const { return single_; }
    bool digit(const char *p) const { return has(p, CS_CT_DIGIT); }
    bool alpha(const char *p) const { return has(p, CS_CT_UPPER | CS_CT_LOWER); }

    // Appends the normal form of the character at p to out (a character
    // without one, or cut by the end, as it stands); the bytes it took.
    int normalise(const char *p, int left, char *out, int *outlen) const
    {
        const int n = length(p, left);
        const int a = n > 0 ? ascii(p) : 0;
        if (a != 0) {
            out[(*outlen)++] = static_cast<char>(a);
            return n;
        }
        const int bytes = n > 0 ? n : left;
        std::memcpy(out + *outlen, p, static_cast<size_t>(bytes));
        *outlen += bytes;
        return bytes;
    }

private:
    bool has(const char *p, int bits) const
    {
        if (single_ && types_ != nullptr) {
            const int type = types_->chmap[static_cast<unsigned char>(*p)].char_type;
            if (!(type & CS_CT_LEADBYTE))
                return (type & bits) != 0;
        }
        return bits == CS_CT_DIGIT ? comn_isdigit(chatr_, p) : comn_isalpha(chatr_, p);
    }

    CHAR_ATTRIB *chatr_;
    const CS_NORM_MAP *norm_;
    const CS_TYPE_MAP *types_;
    bool single_;
};

int set(struct com__datecrack *dc, int kind, CS_INT value = 0, int length = 0)
{
    dc->dctoken = kind;
    dc->dcvalue = value;
    dc->dclength = length;
    return kind;
}

int number_kind(int digits)
{
    switch (digits) {
    case 1: case 2: case 3: return DC_NUMBER;
    case 4: return DC_NUMBER4;
    case 5: return DC_NUMBER5;
    case 6: case 8: return DC_PACKED;
    default: return DC_ERROR;
    }
}

// The token at *cpp, read through chars (the view of chatr).  Inlined into
// the grammar's loop: the work per token is small beside a call.
[[gnu::always_inline]] inline int read_token(const Chars &chars, char **cpp, int *lenp, struct com__datecrack *dc, char **mths,
               char **shortmths, CHAR_ATTRIB *chatr)
{
    char *cp = *cpp;
    int len = *lenp;
    auto advance = [&](int n) {
        cp += n;
        len -= n;
    };
    // Whole characters only: a character cut by the end is an error token.
    auto is_digit = [&] { return len > 0 && chars.length(cp, len) > 0 && chars.digit(cp); };
    auto is_alpha = [&] { return len > 0 && chars.length(cp, len) > 0 && chars.alpha(cp); };
    int kind = DC_ERROR;
    for (;;) {
        if (len <= 0) {
            kind = set(dc, DC_END);
            break;
        }
        const int width = chars.length(cp, len);
        if (width == 0) {
            kind = set(dc, DC_ERROR);
            break;
        }
        const int c = chars.normal(cp);
        if (c == '/' || c == '-') {
            advance(width);
            kind = set(dc, DC_SEPARATOR, 0);
        } else if (c == 'T' || c == 't') {
            advance(width);
            kind = set(dc, DC_T);
        } else if (c == ':') {
            advance(width);
            kind = set(dc, DC_COLON);
        } else if (c == ',') {
            advance(width);
            kind = set(dc, DC_COMMA);
        } else if (c == '.') {
            advance(width);
            kind = set(dc, DC_SEPARATOR, -1);
        } else if (c == ' ') {
            advance(width);
            continue;
        } else if (is_digit()) {
            int digits = 0;
            CS_INT value = 0;
            while (is_digit()) {
                const int d = chars.normal(cp) - '0';
                if (d < 0 || d > 9)
                    break;
                if (digits < 9)
                    value = value * 10 + d;
                digits++;
                advance(chars.length(cp, len));
            }
            kind = set(dc, digits == 0 ? DC_ERROR : number_kind(digits), value, digits);
        } else if (is_alpha()) {
            char *word = cp;
            int count = 0;
            while (is_alpha()) {
                count++;
                advance(chars.length(cp, len));
            }
            const int bytes = static_cast<int>(cp - word);
            int hit = count == 2 ? datelookup(word, bytes, com__get_ampm(), 2, chatr) : -1;
            if (hit >= 0) {
                kind = set(dc, DC_AMPM, hit);
            } else if (mths == nullptr || shortmths == nullptr) {
                kind = set(dc, DC_ERROR);
            } else {
                hit = datelookup(word, bytes, mths, 12, chatr);
                if (hit < 0)
                    hit = datelookup(word, bytes, shortmths, 12, chatr);
                kind = hit >= 0 ? set(dc, DC_MONTH, hit) : set(dc, DC_ERROR);
            }
        } else {
            advance(width);
            kind = set(dc, DC_ERROR);
        }
        break;
    }
    *cpp = cp;
    *lenp = len;
    return kind;
}

// ---- the grammar over the token array --------------------------------------

struct Tokens {
    struct com__datecrack dc[DC_MAXTOKENS];
    int count = 0;        // tokens before the end token
    int unused = 0;       // of those, not yet taken
    unsigned present = 0; // a bit per kind read; taking a token never adds one

    int kind(int i) const { return i >= 0 && i < count ? dc[i].dctoken : DC_END; }
    bool is(int i, int k) const { return kind(i) == k; }
    bool is_point(int i) const { return is(i, DC_SEPARATOR) && dc[i].dcvalue == -1; }
    // findtoken, skipping kinds that were never read and, for "any token
    // left", a search once everything is taken.
    int find(int token)
    {
        if (token >= 0 ? !(present & (1u << token)) : (token == -DC_USED && unused == 0))
            return -1;
        return findtoken(dc, token);
    }
    CS_INT take(int i)
    {
        if (dc[i].dctoken != DC_USED)
            unused--;
        dc[i].dctoken = DC_USED;
        return dc[i].dcvalue;
    }
};

// A fraction of n digits in microseconds.
CS_INT micros_of(CS_INT value, int digits)
{
    static constexpr CS_INT kScale[] = {1, 100000, 10000, 1000, 100, 10};
    return digits >= 1 && digits <= 5 ? value * kScale[digits] : value;
}

// The time, found from its first colon or else from an AM/PM mark.
int parse_time(Tokens &t, CS_DATEREC *parts, CS_INT dt_type, CS_BOOL *truncated)
{
    const int colon = t.find(DC_COLON);
    int next;
    if (colon > 0) {
        if (!t.is(colon - 1, DC_NUMBER) || !t.is(colon + 1, DC_NUMBER))
            return kSyntax;
        parts->datehour = t.take(colon - 1);
        t.take(colon);
        parts->dateminute = t.take(colon + 1);
        next = colon + 2;
        if (t.is(next, DC_COLON)) {
            if (!t.is(next + 1, DC_NUMBER))
                return kSyntax;
            t.take(next);
            parts->datesecond = t.take(next + 1);
            next += 2;
            CS_INT micros = -1;
            if (t.is(next, DC_COLON)) {
                if (!t.is(next + 1, DC_NUMBER))
                    return kSyntax;
                t.take(next);
                micros = t.take(next + 1) * 1000;
                next += 2;
            } else if (t.is_point(next)) {
                const int k = t.kind(next + 1);
                if (k != DC_NUMBER && k != DC_NUMBER4 && k != DC_PACKED && k != DC_NUMBER5)
                    return kSyntax;
                t.take(next);
                const int digits = t.dc[next + 1].dclength;
                micros = micros_of(t.take(next + 1), digits);
                next += 2;
            }
            if (micros >= 0) {
                if (dt_type == CS_BIGDATETIME_TYPE || dt_type == CS_BIGTIME_TYPE) {
                    parts->datesecfrac = micros;
                    parts->datesecprec = 1000000;
                } else {
                    if (micros % 1000 != 0)
                        *truncated = 1;
                    CS_INT ms = (micros + 500) / 1000;
                    if (ms == 1000)
                        ms = 999;
                    if (ms > 999)
                        return kSyntax;
                    parts->datemsecond = ms;
                }
            }
        }
        if (!t.is(next, DC_AMPM))
            return 0;
    } else {
        next = t.find(DC_AMPM);
        if (next <= 0)
            return 0;
        if (!t.is(next - 1, DC_NUMBER))
            return kSyntax;
        parts->datehour = t.take(next - 1);
    }
    return com__amcheck(parts, t.take(next)) != 0 ? kAmPmClash : 0;
}

// A month name at index m; the year is a 4-digit number or the second of two
// short numbers, and the day defaults to 1 beside a 4-digit year.
int parse_named(Tokens &t, CS_DATEREC *parts, int m)
{
    parts->datemonth = t.take(m);
    if (t.is(m - 1, DC_SEPARATOR)) {
        t.take(m - 1);
        if (t.is(m + 1, DC_SEPARATOR) || t.is(m + 1, DC_COMMA))
            t.take(m + 1);
    } else if (t.is(m + 1, DC_COMMA)) {
        t.take(m + 1);
    }
    auto take_day = [&](int i) {
        parts->datedmonth = t.take(i);
        if (t.is(i + 1, DC_COMMA))
            t.take(i + 1);
    };
    const int year4 = t.find(DC_NUMBER4);
    if (year4 >= 0) {
        parts->dateyear = t.take(year4);
        const int day = t.find(DC_NUMBER);
        if (day >= 0)
            take_day(day);
        return kDateFound;
    }
    const int day = t.find(DC_NUMBER);
    if (day < 0)
        return kSyntax;
    take_day(day);
    const int year = t.find(DC_NUMBER);
    if (year < 0)
        return kSyntax;
    parts->dateyear = com__year2digit(t.take(year));
    return parts->dateyear == 1 ? kBadYear : kDateFound;
}

// The field order of each date order (1 to 6): 'm', 'd' and 'y'.
constexpr const char *kOrders[7] = {nullptr, "mdy", "dmy", "ymd", "ydm", "myd", "dym"};

// Three numbers between two separators, placed by order and style.
int parse_numeric(Tokens &t, CS_DATEREC *parts, int first_sep, int style, int order)
{
    const int second_sep = [&] {
        for (int i = first_sep + 1; i < DC_MAXTOKENS && !t.is(i, DC_END); i++)
            if (t.is(i, DC_SEPARATOR))
                return i;
        return -1;
    }();
    if (second_sep < 0)
        return kSyntax;
    t.take(first_sep);
    t.take(second_sep);

    bool year_found = false;
    auto take_year4 = [&] {
        const int y = t.find(DC_NUMBER4);
        if (y < 0)
            return false;
        // A leading year means year-first unless the order puts the day there.
        if (y == t.find(-DC_USED) && order != 4)
            order = 3;
        parts->dateyear = t.take(y);
        year_found = true;
        return true;
    };
    switch (style) {
    case 0: case 9:
        take_year4();
        break;
    case 1: case 10:
        order = 1;
        break;
    case 2: case 11: case 21: case 22: case 23:
        order = 3;
        break;
    case 3: case 4: case 5:
        order = 2;
        break;
    case 101: case 110: case 102: case 111: case 103: case 104: case 105: {
        const int y = t.find(DC_NUMBER4);
        if (y < 0)
            return kSyntax;
        parts->dateyear = t.take(y);
        year_found = true;
        order = (style == 101 || style == 110) ? 1 : (style == 102 || style == 111) ? 3 : 2;
        break;
    }
    default:
        return kSyntax;
    }
    if (order < 1 || order > 6)
        return kSyntax;

    for (const char *field = kOrders[order]; *field != '\0'; field++) {
        if (*field == 'y' && year_found)
            continue;
        const int i = t.find(DC_NUMBER);
        if (i < 0)
            return kSyntax;
        const CS_INT v = t.take(i);
        if (*field == 'm') {
            parts->datemonth = v - 1;
        } else if (*field == 'd') {
            parts->datedmonth = v;
        } else {
            parts->dateyear = com__year2digit(v);
            if (parts->dateyear == 1)
                return kBadYear;
        }
    }
    return kDateFound;
}

// yyyymmdd or yymmdd, or a year alone; otherwise no date at all.
int parse_packed(Tokens &t, CS_DATEREC *parts)
{
    const int packed = t.find(DC_PACKED);
    if (packed >= 0) {
        const int digits = t.dc[packed].dclength;
        const CS_INT v = t.take(packed);
        parts->datedmonth = v % 100;
        parts->datemonth = v / 100 % 100 - 1;
        parts->dateyear = v / 10000;
        if (digits == 6) {
            parts->dateyear = com__year2digit(parts->dateyear);
            if (parts->dateyear == 1)
                return kBadYear;
        }
        return kDateFound;
    }
    const int year = t.find(DC_NUMBER4);
    if (year >= 0) {
        parts->dateyear = t.take(year);
        return kDateFound;
    }
    return t.find(-DC_USED) < 0 ? kNoDate : kLeftOver;
}

int parse_date(Tokens &t, CS_DATEREC *parts, int style, int order)
{
    const int tee = t.find(DC_T);
    if (tee >= 0) {
        t.take(tee);
        for (int i = tee + 1; !t.is(i, DC_END); i++)
            if (!t.is(i, DC_USED))
                return kSyntax;
    }
    const int month = t.find(DC_MONTH);
    if (month >= 0)
        return parse_named(t, parts, month);
    const int sep = t.find(DC_SEPARATOR);
    if (sep > 0)
        return parse_numeric(t, parts, sep, style, order);
    return parse_packed(t, parts);
}

} // namespace

extern "C" {

int datetoken(char **cpp, int *lenp, struct com__datecrack *dc, char **mths, char **shortmths,
              CHAR_ATTRIB *chatr)
{
    return read_token(Chars(chatr), cpp, lenp, dc, mths, shortmths, chatr);
}

int datelookup(char *cp, int len, char **list, int cnt, CHAR_ATTRIB *chatr)
{
    if (len > kLookupMax || list == nullptr)
        return -1;
    const Chars chars(chatr);
    char text[kLookupMax];
    int textlen = 0;
    for (int at = 0; at < len;)
        at += chars.normalise(cp + at, len - at, text, &textlen);

    for (int i = 0; i < cnt; i++) {
        const char *entry = list[i];
        if (entry == nullptr)
            continue;
        if (chars.single()) {
            // One byte per character: compare as the entry is walked, no
            // length needed.
            const char *e = entry;
            int at = 0;
            for (; *e != '\0' && at < textlen; e++, at++) {
                const int a = chars.ascii(e);
                if ((a != 0 ? static_cast<char>(a) : *e) != text[at])
                    break;
            }
            if (*e == '\0' && at == textlen)
                return i;
            continue;
        }
        const int entrylen = static_cast<int>(std::strlen(entry));
        char norm[kLookupMax + 16]; // the text's length plus one character
        int normlen = 0;
        bool same = true;
        // Normalised character by character, the entry is dropped at its
        // first difference from the text.
        for (int at = 0; same && at < entrylen;) {
            const int from = normlen;
            at += chars.normalise(entry + at, entrylen - at, norm, &normlen);
            same = normlen <= textlen && std::memcmp(norm + from, text + from, static_cast<size_t>(normlen - from)) == 0;
        }
        if (same && normlen == textlen)
            return i;
    }
    return -1;
}

int findtoken(struct com__datecrack *dc, int token)
{
    for (int i = 0; i < DC_MAXTOKENS && dc[i].dctoken != DC_END; i++) {
        const int kind = dc[i].dctoken;
        if (token >= 0 ? kind == token : kind != -token)
            return i;
    }
    return -1;
}

int com__amcheck(CS_DATEREC *pp, int pmflag)
{
    if (pmflag) {
        if (pp->datehour == 0)
            return 1;
        if (pp->datehour < 12)
            pp->datehour += 12;
    } else {
        if (pp->datehour > 12)
            return 1;
        if (pp->datehour == 12)
            pp->datehour = 0;
    }
    return 0;
}

} // extern "C"

int kes::datetext::daterec_by_grammar(CS_DATEREC *parts, char *origcp, int origlen, int partonly, int style,
                                      int order, char **mths, char **shortmths, CHAR_ATTRIB *chatr,
                                      CS_INT dt_type, CS_BOOL *truncated)
{
    CS_BOOL ignored;
    if (truncated == nullptr)
        truncated = &ignored;
    *truncated = 0;
    Tokens t;
    const Chars chars(chatr);
    char *cp = origcp;
    int len = origlen;
    for (int i = 0;; i++) {
        const int kind = read_token(chars, &cp, &len, &t.dc[i], mths, shortmths, chatr);
        t.present |= 1u << kind;
        if (kind == DC_ERROR)
            return kSyntax;
        if (kind == DC_END)
            break;
        if (i == DC_MAXTOKENS - 1)
            return kSyntax; // a 21st token that is not the end
        t.count = t.unused = i + 1;
    }

    parts->datehour = parts->dateminute = parts->datesecond = parts->datemsecond = 0;
    parts->datesecfrac = parts->datesecprec = 0;
    parts->datemonth = 0;
    parts->datedmonth = 1;

    const int time = parse_time(t, parts, dt_type, truncated);
    if (time != 0)
        return time;
    if (partonly == 3)
        return t.find(-DC_USED) < 0 ? kNoDate : kLeftOver;
    const int date = parse_date(t, parts, style, order);
    if (date != kDateFound)
        return date;
    if (partonly == 0 && t.find(-DC_USED) >= 0)
        return kLeftOver;
    return kDateFound;
}
