/*
** The fixed forms that machines write, read straight from their bytes in
** front of the date grammar, and the stored value of a record whose fields
** are all in range.  Inline, so that a reader keeps the fields in registers
** from the text to the stored value.
**
** A form is recognised only where the grammar would give the very same record
** and result 0; every other text, including every text with an error, is left
** to the grammar, so that the grammar alone decides every failure.  Likewise
** the in-range values leave every status to the calendar's make operations.
*/
#ifndef KESCOMN_DATETIME_PARSE_FAST_H
#define KESCOMN_DATETIME_PARSE_FAST_H

#include <cstdint>
#include <cstring>

#include "datetime/calendar.h"
#include "datetime/parse.h"
#include "kescomn/charattr.h"

namespace kes::datetext {
namespace fixed_detail {

using Byte = unsigned char;

// Eight bytes of text as one word, the first byte lowest.
[[gnu::always_inline]] inline uint64_t load8(const Byte *p)
{
    uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

inline constexpr uint64_t kZeros = 0x3030303030303030ULL; // "0" in every byte
inline constexpr uint64_t kHigh = 0xF0F0F0F0F0F0F0F0ULL;

// Whether the bytes of w that mask selects are all digits.  Past the exclusive
// or a digit is 0 to 9 and any other byte has a high nibble, or gains one when
// 6 is added; no byte of 0 to 15 carries into its neighbour.
[[gnu::always_inline]] inline bool all_digits(uint64_t w, uint64_t mask)
{
    const uint64_t x = (w ^ kZeros) & mask;
    return ((x | (x + 0x0606060606060606ULL)) & kHigh) == 0;
}

// Digit pairs: byte i of the result is 10 * digit i + digit i + 1, for the
// digits of w that mask selects.
[[gnu::always_inline]] inline uint64_t pairs(uint64_t w, uint64_t mask)
{
    const uint64_t x = (w ^ kZeros) & mask;
    return x * 10 + (x >> 8);
}

[[gnu::always_inline]] inline unsigned byte_at(uint64_t w, int i) { return static_cast<unsigned>(w >> (8 * i)) & 0xFF; }

// Two digits at p, or false.
[[gnu::always_inline]] inline bool two(const Byte *p, unsigned *value)
{
    const unsigned a = p[0] - '0', b = p[1] - '0';
    *value = a * 10 + b;
    return (a <= 9) & (b <= 9);
}

[[gnu::always_inline]] inline bool is_separator(Byte c) { return static_cast<unsigned>(c - '-') <= 2; } // - . /

// Whether the date may end at position at: the end of the text, or the blank
// or "T" before a time.  Any other byte is left to the grammar; a digit there
// would lengthen the last number.
[[gnu::always_inline]] inline bool date_ends(const Byte *p, int len, int at)
{
    return at == len || p[at] == ' ' || (p[at] | 0x20) == 't';
}

struct Fields {
    unsigned year, month, day;                // month counted from 1
    unsigned hour = 0, minute = 0, second = 0;
    CS_INT micros = -1;                       // -1 when the text has no fraction
};

// Whether the two short numbers of a numeric date with a 4-digit year are
// month then day: the order that the grammar settles from style and order,
// with the year already placed.  -1 where the grammar would not find a date
// this way (a style that does not take the 4-digit year, a bad order).
inline int month_first(int style, int order, bool year_leads)
{
    switch (style) {
    case 0: case 9:
        // A leading year makes the order year-first, unless it is the
        // year-day-month order.
        if (year_leads)
            return order == 4 ? 0 : 1;
        if (order < 1 || order > 6)
            return -1;
        return order % 2; // mdy, ymd and myd put the month before the day
    case 101: case 110: case 102: case 111:
        return 1;
    case 103: case 104: case 105:
        return 0;
    default:
        return -1;
    }
}

// "yyyy-mm-dd", "mm-dd-yyyy" (any of "-", "/", "." twice) or "yyyymmdd" at
// the start; the bytes taken, 0 for none of them.
[[gnu::always_inline]] inline int read_date(const Byte *p, int len, int style, int order, Fields *f)
{
    // Every form starts with a digit: names and blanks leave at once.
    if (len < 8 || static_cast<unsigned>(p[0] - '0') > 9)
        return 0;
    const uint64_t w = load8(p);
    if (len >= 10 && date_ends(p, len, 10)) {
        unsigned last;
        if (!two(p + 8, &last))
            return 0;
        unsigned a, b;
        bool year_leads;
        if (is_separator(p[4]) && is_separator(p[7])) {
            constexpr uint64_t kDigits = 0x00FFFF00FFFFFFFFULL; // dddd-dd-
            if (!all_digits(w, kDigits))
                return 0;
            const uint64_t v = pairs(w, kDigits);
            f->year = byte_at(v, 0) * 100 + byte_at(v, 2);
            a = byte_at(v, 5);
            b = last;
            year_leads = true;
        } else if (is_separator(p[2]) && is_separator(p[5])) {
            constexpr uint64_t kDigits = 0xFFFF00FFFF00FFFFULL; // dd-dd-dd
            if (!all_digits(w, kDigits))
                return 0;
            const uint64_t v = pairs(w, kDigits);
            a = byte_at(v, 0);
            b = byte_at(v, 3);
            f->year = byte_at(v, 6) * 100 + last;
            year_leads = false;
        } else {
            return 0;
        }
        const int mf = month_first(style, order, year_leads);
        if (mf < 0)
            return 0;
        f->month = mf ? a : b;
        f->day = mf ? b : a;
        return 10;
    }
    // Order and style play no part in the packed form.
    if (!all_digits(w, ~uint64_t{0}) || !date_ends(p, len, 8))
        return 0;
    const uint64_t v = pairs(w, ~uint64_t{0});
    f->year = byte_at(v, 0) * 100 + byte_at(v, 2);
    f->month = byte_at(v, 4);
    f->day = byte_at(v, 6);
    return 8;
}

// "hh:mm", "hh:mm:ss", "hh:mm:ss.f" with 1 to 6 fraction digits or
// "hh:mm:ss:mmm" with 1 to 3 millisecond digits, reaching the end.
[[gnu::always_inline]] inline bool read_time(const Byte *p, int len, Fields *f)
{
    if (len == 5)
        return p[2] == ':' && two(p, &f->hour) && two(p + 3, &f->minute);
    if (len < 8)
        return false;
    const uint64_t w = load8(p);
    constexpr uint64_t kColons = 0x0000FF0000FF0000ULL, kDigits = 0xFFFF00FFFF00FFFFULL; // dd:dd:dd
    if ((w & kColons) != 0x00003A00003A0000ULL || !all_digits(w, kDigits))
        return false;
    const uint64_t v = pairs(w, kDigits);
    f->hour = byte_at(v, 0);
    f->minute = byte_at(v, 3);
    f->second = byte_at(v, 6);
    if (len == 8)
        return true;
    const int n = len - 9;
    const Byte mark = p[8];
    if (n < 1 || (mark == '.' ? n > 6 : mark != ':' || n > 3))
        return false;
    CS_INT value = 0;
    for (int i = 9; i < len; i++) {
        const unsigned d = p[i] - '0';
        if (d > 9)
            return false;
        value = value * 10 + static_cast<CS_INT>(d);
    }
    // A fraction is scaled to microseconds by its count of digits, a
    // millisecond count is taken as it stands.
    static constexpr CS_INT kScale[] = {0, 100000, 10000, 1000, 100, 10, 1};
    f->micros = value * (mark == '.' ? kScale[n] : 1000);
    return true;
}

} // namespace fixed_detail

/* Results of read_fixed: the grammar's for a date and for a lone time, and
   none for a text that the grammar must read. */
inline constexpr int kFixedDate = 0;
inline constexpr int kFixedTime = 99;
inline constexpr int kNotFixed = -1;

/* Whether the fixed forms may be tried: they read bytes as they stand, which
   only the built-in character set guarantees. */
inline bool fixed_forms_apply(CHAR_ATTRIB *chatr) { return chatr == nullptr || chatr == com_get_charattrib(); }

/* "yyyy-mm-dd", "mm-dd-yyyy" where style and order settle month and day (any
   of "-", "/" and "." for the two separators), or "yyyymmdd"; each alone or
   followed by one blank or "T" and a time: "hh:mm", "hh:mm:ss", "hh:mm:ss.f"
   (1 to 6 digits) or "hh:mm:ss:m" (1 to 3 digits).  Or such a time alone,
   the only form taken for partonly 3, which looks at no date.  The grammar's
   result with parts and *truncated as the grammar leaves them, or kNotFixed
   with nothing written. */
[[gnu::always_inline]] inline int read_fixed(CS_DATEREC *parts, const char *text, int len, int partonly, int style,
                                             int order, CS_INT dt_type, CS_BOOL *truncated)
{
    using namespace fixed_detail;
    const auto *p = reinterpret_cast<const Byte *>(text);
    Fields f;
    const int date = partonly != 3 ? read_date(p, len, style, order, &f) : 0;
    if (date == 0) {
        // A lone time; the grammar leaves the year as it finds it.
        if (!read_time(p, len, &f))
            return kNotFixed;
    } else if (date < len && !read_time(p + date + 1, len - date - 1, &f)) {
        // One blank or "T" (read_date saw it) and a time, or nothing.
        return kNotFixed;
    }

    CS_INT ms = 0, frac = 0, prec = 0;
    if (f.micros >= 0) {
        if (dt_type == CS_BIGDATETIME_TYPE || dt_type == CS_BIGTIME_TYPE) {
            frac = f.micros;
            prec = 1000000;
        } else {
            if (f.micros % 1000 != 0)
                *truncated = 1;
            ms = (f.micros + 500) / 1000;
            if (ms == 1000)
                ms = 999;
        }
    }
    if (date != 0) {
        parts->dateyear = f.year;
        parts->datemonth = f.month - 1;
        parts->datedmonth = f.day;
    } else {
        parts->datemonth = 0;
        parts->datedmonth = 1;
    }
    parts->datehour = f.hour;
    parts->dateminute = f.minute;
    parts->datesecond = f.second;
    parts->datemsecond = ms;
    parts->datesecfrac = frac;
    parts->datesecprec = prec;
    return date != 0 ? kFixedDate : kFixedTime;
}

namespace fixed_detail {

// The day count of com__datemake's sum (0001-01-01 is day 1) for a date
// whose fields are all in range, else 0.
[[gnu::always_inline]] inline int64_t days_in_range(const CS_DATEREC &r)
{
    const auto year = static_cast<uint32_t>(r.dateyear);
    const auto month = static_cast<uint32_t>(r.datemonth);
    if ((year - 1 > 9998) | (month > 11))
        return 0;
    const MONTHCNT &m = kes::cal::month_row(year, month);
    if (static_cast<uint32_t>(r.datedmonth) - 1 >= static_cast<uint32_t>(m.daysinmonth))
        return 0;
    return kes::cal::days_before_year(year) + m.daysum + r.datedmonth;
}

// Seconds since midnight of an in-range time, else -1.
[[gnu::always_inline]] inline int64_t seconds_in_range(const CS_DATEREC &r)
{
    const auto hour = static_cast<uint32_t>(r.datehour), minute = static_cast<uint32_t>(r.dateminute),
               second = static_cast<uint32_t>(r.datesecond);
    if ((hour > 23) | (minute > 59) | (second > 59))
        return -1;
    return int64_t{hour} * 3600 + minute * 60 + second;
}

} // namespace fixed_detail

/* The dttime that com__timemake makes of a record whose time fields are all
   in range; false, with nothing written, when one is not. */
[[gnu::always_inline]] inline bool ticks_in_range(const CS_DATEREC &r, CS_INT *ticks)
{
    const int64_t seconds = fixed_detail::seconds_in_range(r);
    const auto ms = static_cast<uint32_t>(r.datesecprec == 1000000 ? r.datesecfrac / 1000 : r.datemsecond);
    if ((seconds < 0) | (ms > 999))
        return false;
    // 999 ms would round to 300 ticks, the next second.
    *ticks = static_cast<CS_INT>(seconds * kes::cal::kTicksPerSecond + (ms == 999 ? 299 : (3 * ms + 5) / 10));
    return true;
}

/* The time that com__bigtimemake makes of such a record. */
[[gnu::always_inline]] inline bool micros_in_range(const CS_DATEREC &r, CS_BIGTIME *micros)
{
    const int64_t seconds = fixed_detail::seconds_in_range(r);
    const int64_t frac = r.datesecprec == 1000000 ? int64_t{r.datesecfrac} : int64_t{r.datemsecond} * 1000;
    if ((seconds < 0) | (static_cast<uint64_t>(frac) > 999999))
        return false;
    *micros = static_cast<uint64_t>(seconds * kes::cal::kMicrosPerSecond + frac);
    return true;
}

/* The CS_DATETIME that com__timemake and com__datemake make of a record whose
   fields are all in range; false, with nothing written, when one is not, so
   that those report it. */
[[gnu::always_inline]] inline bool datetime_in_range(const CS_DATEREC &r, CS_DATETIME *dtp)
{
    const int64_t days = fixed_detail::days_in_range(r);
    CS_INT ticks;
    if (days == 0 || !ticks_in_range(r, &ticks))
        return false;
    dtp->dtdays = static_cast<CS_INT>(days - (kes::cal::kEpochDays + 1));
    dtp->dttime = ticks;
    return true;
}

/* The same for com__bigtimemake and com__bigdatemake: the CS_BIGDATETIME of
   the record. */
[[gnu::always_inline]] inline bool bigdatetime_in_range(const CS_DATEREC &r, CS_BIGDATETIME *bdt)
{
    const int64_t days = fixed_detail::days_in_range(r);
    CS_BIGTIME micros;
    if (days == 0 || !micros_in_range(r, &micros))
        return false;
    *bdt = static_cast<uint64_t>(days - 1) * kes::cal::kMicrosPerDay + kes::cal::kBigMin + micros;
    return true;
}

} // namespace kes::datetext

#endif
