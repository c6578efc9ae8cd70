// Date and time text by style: a table of layouts, each compiled into its own
// straight-line writer, and the cut-to-length finish shared by every storage
// type.
#include "datetime/format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>

#include "datetime/calendar.h"

using namespace kes::cal;

namespace {

constexpr int kMaxStyle = 140;
constexpr int kMonthNameMax = 9;
constexpr int kTextMax = 64; // the longest layout with a 9-byte month is 35

// Layout letters; every other character stands for itself.
//   M short month name    m month 01-12      d day 01-31      D day, blank-filled
//   y year, 2 digits      Y year, 4 digits   B year, blank-filled
//   H hour 00-23          h hour 1-12, blank-filled
//   n minute              s second           f milliseconds   u microseconds
//   p AM or PM

// "00" to "99": one two-byte copy per field instead of a divide per digit.
constexpr std::array<char, 200> make_pairs()
{
    std::array<char, 200> a{};
    for (int i = 0; i < 100; i++) {
        a[2 * i] = static_cast<char>('0' + i / 10);
        a[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return a;
}

constexpr std::array<char, 200> kPairs = make_pairs();

// The low 2*K digits of v, zero-filled: what com__cpint writes for len -2*K.
template <int K>
inline char *pairs(char *p, unsigned v)
{
    if constexpr (K > 1)
        p = pairs<K - 1>(p, v / 100);
    std::memcpy(p, &kPairs[2 * (v % 100)], 2);
    return p + 2;
}

// The low three digits of v, zero-filled (com__cpint, len -3).
inline char *three_digits(char *p, unsigned v)
{
    v %= 1000;
    *p = static_cast<char>('0' + v / 100);
    return pairs<1>(p + 1, v);
}

// com__cpint with len 2: blank-filled only while the value itself is short.
inline char *blank2(char *p, unsigned v)
{
    if (v < 10) {
        p[0] = ' ';
        p[1] = static_cast<char>('0' + v);
        return p + 2;
    }
    return pairs<1>(p, v);
}

int hour12(int hour) { return hour == 0 ? 12 : (hour > 12 ? hour - 12 : hour); }

// A layout string as a template argument, so that each style gets its own
// straight-line writer.
template <size_t N>
struct Layout {
    char text[N];
    constexpr Layout(const char (&s)[N]) { std::copy_n(s, N, text); }
    constexpr bool has(char c) const { return std::find(text, text + N - 1, c) != text + N - 1; }
};

// One layout letter (see the list above) or a literal byte.
template <char C>
inline char *put(char *p, const CS_DATEREC *r, char **months, bool micro)
{
    const auto u = [](int v) { return static_cast<unsigned>(v); };
    if constexpr (C == 'M') {
        const int m = r->datemonth;
        // A cracked record always has a month 0 to 11; anything else shows nothing.
        if (m >= 0 && m < 12 && months[m] != nullptr)
            p += com__cpchar(p, months[m], 0, kMonthNameMax);
        return p;
    } else if constexpr (C == 'm') {
        return pairs<1>(p, u(r->datemonth + 1));
    } else if constexpr (C == 'd') {
        return pairs<1>(p, u(r->datedmonth));
    } else if constexpr (C == 'D') {
        return blank2(p, u(r->datedmonth));
    } else if constexpr (C == 'y') {
        return pairs<1>(p, u(r->dateyear));
    } else if constexpr (C == 'Y') {
        return pairs<2>(p, u(r->dateyear));
    } else if constexpr (C == 'B') {
        return p + com__cpint(p, r->dateyear, 0, 4);
    } else if constexpr (C == 'H') {
        return pairs<1>(p, u(r->datehour));
    } else if constexpr (C == 'h') {
        return blank2(p, u(hour12(r->datehour)));
    } else if constexpr (C == 'n') {
        return pairs<1>(p, u(r->dateminute));
    } else if constexpr (C == 's') {
        return pairs<1>(p, u(r->datesecond));
    } else if constexpr (C == 'f') { // rounded, but never carried into the second
        return three_digits(p, micro ? u((r->datesecfrac + 500) / 1000) : u(r->datemsecond));
    } else if constexpr (C == 'u') {
        return pairs<3>(p, micro ? u(r->datesecfrac) : u(r->datemsecond * 1000));
    } else if constexpr (C == 'p') {
        // The marks are the fixed list Com__ampm, whatever the language.
        p[0] = r->datehour >= 12 ? 'P' : 'A';
        p[1] = 'M';
        return p + 2;
    } else {
        *p = C;
        return p + 1;
    }
}

using Writer = int (*)(const CS_DATEREC *, char **, bool, char *);

// Writes layout L's text for r into out; its length.
template <Layout L>
int render(const CS_DATEREC *r, char **months, bool micro, char *out)
{
    char *p = out;
    [&]<size_t... I>(std::index_sequence<I...>) {
        ((p = put<L.text[I]>(p, r, months, micro)), ...);
    }(std::make_index_sequence<sizeof L.text - 1>{});
    return static_cast<int>(p - out);
}

// A style's writer; date_only marks the empty text of a time alone.
struct Style {
    Writer write = nullptr;
    bool months = false;
    bool date_only = false;
};

template <Layout L>
constexpr Style style_of()
{
    return Style{&render<L>, L.has('M'), false};
}

using StyleTable = std::array<Style, kMaxStyle + 1>;

constexpr StyleTable make_styles()
{
    StyleTable a{};
    a[0] = a[100] = style_of<"M D Y h:np">();
    a[9] = a[109] = style_of<"M D Y h:n:s:fp">();
    a[1] = style_of<"m/d/y">();       a[101] = style_of<"m/d/Y">();
    a[2] = style_of<"y.m.d">();       a[102] = style_of<"Y.m.d">();
    a[3] = style_of<"d/m/y">();       a[103] = style_of<"d/m/Y">();
    a[4] = style_of<"d.m.y">();       a[104] = style_of<"d.m.Y">();
    a[5] = style_of<"d-m-y">();       a[105] = style_of<"d-m-Y">();
    a[6] = style_of<"d M y">();       a[106] = style_of<"d M Y">();
    a[7] = style_of<"M d, y">();      a[107] = style_of<"M d, Y">();
    a[8] = a[108] = style_of<"H:n:s">();
    a[10] = style_of<"m-d-y">();      a[110] = style_of<"m-d-Y">();
    a[11] = style_of<"y/m/d">();      a[111] = style_of<"Y/m/d">();
    a[12] = style_of<"ymd">();        a[112] = style_of<"Ymd">();
    a[13] = style_of<"y/d/m">();      a[113] = style_of<"Y/d/m">();
    a[14] = style_of<"m/y/d">();      a[114] = style_of<"m/Y/d">();
    a[15] = style_of<"d/y/m">();      a[115] = style_of<"d/Y/m">();
    a[16] = a[116] = style_of<"M D Y H:n:s">();
    a[17] = a[117] = style_of<"h:np">();
    a[18] = a[118] = style_of<"H:n">();
    a[19] = style_of<"h:n:s:fp">();
    a[20] = style_of<"H:n:s:f">();
    a[21] = style_of<"y/m/d H:n:s">(); a[121] = style_of<"Y/m/d H:n:s">();
    a[22] = style_of<"y/m/d h:np">();  a[122] = style_of<"Y/m/d h:np">();
    a[23] = style_of<"Y-m-dTH:n:s">();
    a[36] = a[136] = style_of<"h:n:s.up">();
    a[37] = a[137] = style_of<"H:n:s.u">();
    a[38] = style_of<"M D y h:n:s.up">();  a[138] = style_of<"M D Y h:n:s.up">();
    a[39] = style_of<"M D y H:n:s.u">();   a[139] = style_of<"M D Y H:n:s.u">();
    a[40] = style_of<"y-m-d H:n:s.u">();   a[140] = style_of<"Y-m-d H:n:s.u">();
    return a;
}

// A time of day alone: date-only styles give an empty text, 0 and 9 drop the
// date, 100 and 109 keep it with a blank-filled year ('B').
constexpr StyleTable make_time_styles()
{
    StyleTable a = make_styles();
    for (int s : {1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15})
        a[s] = a[s + 100] = Style{nullptr, false, true};
    a[0] = style_of<"h:np">();
    a[9] = style_of<"h:n:s:fp">();
    a[100] = style_of<"M D B h:np">();
    a[109] = style_of<"M D B h:n:s:fp">();
    return a;
}

constexpr StyleTable kStyles = make_styles();
constexpr StyleTable kTimeStyles = make_time_styles();

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

// Runs a writer into buf when it has room for any layout, else through a
// staging copy that finish() cuts.
int write_into(Writer write, const CS_DATEREC *r, char **months, bool micro, char *buf, int len)
{
    if (len < 0 || len >= kTextMax)
        return write(r, months, micro, buf);
    char text[kTextMax];
    return finish(text, write(r, months, micro, text), buf, len);
}

int format_with(const StyleTable &table, CS_DATEREC *r, char *buf, int len, int style, char **months,
                CS_INT secprec)
{
    if (style < 0 || style > kMaxStyle)
        return -1;
    const Style &s = table[style];
    if (s.date_only) {
        if (len == 0)
            return 0;
        buf[0] = '\0';
        return 1;
    }
    if (s.write == nullptr)
        return -1;
    if (months == nullptr && s.months)
        return -2;
    return write_into(s.write, r, months, secprec == 1000000, buf, len);
}

} // namespace

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
    return format_with(kStyles, trparts, buf, len, style, shortmths, secprec);
}

int com__timerectochar(CS_DATEREC *trparts, char *buf, int len, int style, char **shortmths, CS_INT secprec)
{
    return format_with(kTimeStyles, trparts, buf, len, style, shortmths, secprec);
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
    return write_into(&render<"M D Y">, &r, shortmths, false, buf, len);
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
