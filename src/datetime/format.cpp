// Date and time text by style: a table of layouts, one field writer, and the
// cut-to-length finish shared by every storage type.
#include "datetime/format.h"

#include <array>
#include <charconv>
#include <cstring>

#include "datetime/calendar.h"

using namespace kes::cal;

namespace {

constexpr int kMaxStyle = 140;
constexpr int kMonthNameMax = 9;
constexpr int kTextMax = 64; // the longest layout with a 9-byte month is 35

// Layout letters; every other character stands for itself.
//   M short month name    m month 01-12      d day 01-31      D day, blank-filled
//   y year, 2 digits      Y year, 4 digits   H hour 00-23     h hour 1-12, blank-filled
//   n minute              s second           f milliseconds   u microseconds
//   p AM or PM
using LayoutTable = std::array<const char *, kMaxStyle + 1>;

constexpr LayoutTable make_layouts()
{
    LayoutTable a{};
    a[0] = a[100] = "M D Y h:np";
    a[9] = a[109] = "M D Y h:n:s:fp";
    a[1] = "m/d/y";       a[101] = "m/d/Y";
    a[2] = "y.m.d";       a[102] = "Y.m.d";
    a[3] = "d/m/y";       a[103] = "d/m/Y";
    a[4] = "d.m.y";       a[104] = "d.m.Y";
    a[5] = "d-m-y";       a[105] = "d-m-Y";
    a[6] = "d M y";       a[106] = "d M Y";
    a[7] = "M d, y";      a[107] = "M d, Y";
    a[8] = a[108] = "H:n:s";
    a[10] = "m-d-y";      a[110] = "m-d-Y";
    a[11] = "y/m/d";      a[111] = "Y/m/d";
    a[12] = "ymd";        a[112] = "Ymd";
    a[13] = "y/d/m";      a[113] = "Y/d/m";
    a[14] = "m/y/d";      a[114] = "m/Y/d";
    a[15] = "d/y/m";      a[115] = "d/Y/m";
    a[16] = a[116] = "M D Y H:n:s";
    a[17] = a[117] = "h:np";
    a[18] = a[118] = "H:n";
    a[19] = "h:n:s:fp";
    a[20] = "H:n:s:f";
    a[21] = "y/m/d H:n:s"; a[121] = "Y/m/d H:n:s";
    a[22] = "y/m/d h:np";  a[122] = "Y/m/d h:np";
    a[23] = "Y-m-dTH:n:s";
    a[36] = a[136] = "h:n:s.up";
    a[37] = a[137] = "H:n:s.u";
    a[38] = "M D y h:n:s.up";  a[138] = "M D Y h:n:s.up";
    a[39] = "M D y H:n:s.u";   a[139] = "M D Y H:n:s.u";
    a[40] = "y-m-d H:n:s.u";   a[140] = "Y-m-d H:n:s.u";
    return a;
}

// A time of day alone: date-only styles give an empty text, 0 and 9 drop the
// date, 100 and 109 keep it with a blank-filled year ('B').
constexpr const char *kDateOnly = "";

constexpr LayoutTable make_time_layouts()
{
    LayoutTable a = make_layouts();
    for (int s : {1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15})
        a[s] = a[s + 100] = kDateOnly;
    a[0] = "h:np";
    a[9] = "h:n:s:fp";
    a[100] = "M D B h:np";
    a[109] = "M D B h:n:s:fp";
    return a;
}

constexpr LayoutTable kLayouts = make_layouts();
constexpr LayoutTable kTimeLayouts = make_time_layouts();

char kShortMonthText[12][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
char *kShortMonths[12] = {kShortMonthText[0], kShortMonthText[1], kShortMonthText[2],  kShortMonthText[3],
                          kShortMonthText[4], kShortMonthText[5], kShortMonthText[6],  kShortMonthText[7],
                          kShortMonthText[8], kShortMonthText[9], kShortMonthText[10], kShortMonthText[11]};
char kAmPmText[2][3] = {"AM", "PM"};
char *kAmPm[2] = {kAmPmText[0], kAmPmText[1]};

// The two low digits of a field that holds 0 to 99 in a valid record.
char *two_digits(char *p, int value)
{
    const unsigned v = static_cast<unsigned>(value) % 100;
    p[0] = static_cast<char>('0' + v / 10);
    p[1] = static_cast<char>('0' + v % 10);
    return p + 2;
}

int hour12(int hour) { return hour == 0 ? 12 : (hour > 12 ? hour - 12 : hour); }

// Writes the layout's text for r into out; its length.
int render(const char *layout, const CS_DATEREC *r, char **months, CS_INT secprec, char *out)
{
    const bool micro = secprec == 1000000;
    char *p = out;
    for (const char *l = layout; *l != '\0'; l++) {
        switch (*l) {
        case 'M': {
            const int m = r->datemonth;
            // A cracked record always has a month 0 to 11; anything else shows nothing.
            if (m >= 0 && m < 12 && months[m] != nullptr)
                p += com__cpchar(p, months[m], 0, kMonthNameMax);
            break;
        }
        case 'm': p = two_digits(p, r->datemonth + 1); break;
        case 'd': p = two_digits(p, r->datedmonth); break;
        case 'D': p += com__cpint(p, r->datedmonth, 0, 2); break;
        case 'y': p += com__cpint(p, r->dateyear, 0, -2); break;
        case 'Y': p += com__cpint(p, r->dateyear, 0, -4); break;
        case 'B': p += com__cpint(p, r->dateyear, 0, 4); break;
        case 'H': p = two_digits(p, r->datehour); break;
        case 'h': p += com__cpint(p, hour12(r->datehour), 0, 2); break;
        case 'n': p = two_digits(p, r->dateminute); break;
        case 's': p = two_digits(p, r->datesecond); break;
        case 'f': // rounded, but never carried into the second
            p += com__cpint(p, micro ? (r->datesecfrac + 500) / 1000 : r->datemsecond, 0, -3);
            break;
        case 'u': p += com__cpint(p, micro ? r->datesecfrac : r->datemsecond * 1000, 0, -6); break;
        case 'p': p += com__cpchar(p, kAmPm[r->datehour >= 12 ? 1 : 0], 0, 2); break;
        default: *p++ = *l; break;
        }
    }
    return static_cast<int>(p - out);
}

// Copies what fits of the text: its length when all of it did, else 0.
int finish(const char *text, int n, char *buf, int len)
{
    if (len >= 0 && len < n) {
        std::memcpy(buf, text, static_cast<size_t>(len));
        return 0;
    }
    std::memcpy(buf, text, static_cast<size_t>(n));
    return n;
}

int format_with(const LayoutTable &table, CS_DATEREC *r, char *buf, int len, int style, char **months,
                CS_INT secprec)
{
    if (style < 0 || style > kMaxStyle || table[style] == nullptr)
        return -1;
    const char *layout = table[style];
    if (layout == kDateOnly) {
        if (len == 0)
            return 0;
        buf[0] = '\0';
        return 1;
    }
    if (months == nullptr && std::strchr(layout, 'M') != nullptr)
        return -2;
    if (len < 0 || len >= kTextMax) // room for any layout: no staging copy
        return render(layout, r, months, secprec, buf);
    char text[kTextMax];
    return finish(text, render(layout, r, months, secprec, text), buf, len);
}

} // namespace

namespace kes::datetext {

char **en_short_months() { return kShortMonths; }
char **ampm() { return kAmPm; }

} // namespace kes::datetext

extern "C" {

int com__cpint(char *cp, int value, char padchar, int len)
{
    const int width = len < 0 ? -len : len;
    int i = width;
    unsigned v = static_cast<unsigned>(value);
    do {
        cp[--i] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0 && i > 0);
    std::memset(cp, len < 0 ? '0' : ' ', static_cast<size_t>(i));
    if (padchar == 0)
        return width;
    cp[width] = padchar;
    return width + 1;
}

int com__cpchar(char *cp, char *str, char padchar, int maxlen)
{
    // Names are a few bytes: a plain loop beats a length scan and a copy.
    int n = 0;
    while (n < maxlen && str[n] != '\0') {
        cp[n] = str[n];
        n++;
    }
    if (padchar == 0)
        return n;
    cp[n] = padchar;
    return n + 1;
}

int com__itochar(CS_INT val, char *buf, int len)
{
    char text[16];
    const int n = static_cast<int>(std::to_chars(text, text + sizeof text, val).ptr - text);
    if (len > 0 && n > len) {
        buf[0] = '*';
        return 1;
    }
    std::memcpy(buf, text, static_cast<size_t>(n));
    return n;
}

int com__daterectochar(CS_DATEREC *trparts, char *buf, int len, int style, char **shortmths, CS_INT secprec)
{
    return format_with(kLayouts, trparts, buf, len, style, shortmths, secprec);
}

int com__timerectochar(CS_DATEREC *trparts, char *buf, int len, int style, char **shortmths, CS_INT secprec)
{
    return format_with(kTimeLayouts, trparts, buf, len, style, shortmths, secprec);
}

int com__datetochar(CS_DATETIME *dtp, char *buf, int len, int style, char **shortmths)
{
    CS_DATEREC r{};
    com__datecrack(dtp, &r);
    com__timecrack(dtp, &r);
    return com__daterectochar(&r, buf, len, style, shortmths, 300);
}

int com__date4tochar(CS_DATETIME4 *dtp4, char *buf, int len, int style, char **shortmths)
{
    CS_DATETIME dt;
    com__date4todt(dtp4, &dt);
    return com__datetochar(&dt, buf, len, style, shortmths);
}

int com__bigdatetimetochar(CS_BIGDATETIME *bdt, char *buf, int len, int style, char **shortmths)
{
    CS_DATEREC r{};
    com__bigdatecrack(bdt, &r);
    com__bigtimecrack(bdt, &r);
    return com__daterectochar(&r, buf, len, style, shortmths, 1000000);
}

int com__dateatochar(CS_DATE *dp, char *buf, int len, int style, char **shortmths)
{
    CS_DATETIME dt{*dp, 0};
    if (style != 0 && style != 9)
        return com__datetochar(&dt, buf, len, style, shortmths);
    if (shortmths == nullptr)
        return -2;
    CS_DATEREC r{};
    com__datecrack(&dt, &r);
    char text[kTextMax];
    return finish(text, render("M D Y", &r, shortmths, 300, text), buf, len);
}

int com__timeatochar(CS_TIME *tp, char *buf, int len, int style, char **shortmths)
{
    CS_DATETIME dt{0, *tp};
    CS_DATEREC r{};
    com__datecrack(&dt, &r);
    com__timecrack(&dt, &r);
    return com__timerectochar(&r, buf, len, style, shortmths, 300);
}

int com__bigtimetochar(CS_BIGTIME *bt, char *buf, int len, int style, char **shortmths)
{
    CS_BIGDATETIME base = kBigMin;
    CS_DATEREC r{};
    com__bigdatecrack(&base, &r);
    com__bigtimecrack(bt, &r);
    return com__timerectochar(&r, buf, len, style, shortmths, 1000000);
}

} // extern "C"
