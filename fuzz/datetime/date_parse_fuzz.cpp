// Random text, order, style and storage type through the date reader: every
// result is one the reader documents, and a success is a value of the type's
// range that the formatter can show.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "kescomn/charattr.h"

namespace {

using namespace kes::cal;

#define CHECK(cond)                \
    do {                           \
        if (!(cond))               \
            __builtin_trap();      \
    } while (0)

// A two-byte set: lead bytes 0x81 and 0x82, full-width digits 0x82 0x30..0x39
// normalised to ASCII, so that the reader's whole-character walk is exercised.
struct WideSet {
    CS_TYPE_MAP types[2]{};
    CS_NORM_MAP norm[2]{};
    CS_BYTE widths[256]{};
    CS_ATTRIB attrib{};

    WideSet()
    {
        for (int b = 0; b < 256; b++) {
            types[0].chmap[b] = com_get_typemap()->chmap[b];
            widths[b] = 0x11;
            norm[0].norm[b] = static_cast<CS_BYTE>(b);
        }
        for (int lead : {0x81, 0x82}) {
            widths[lead] = 0x22;
            types[0].chmap[lead] = {1, 1, 0, 0x80};
            norm[0].norm[lead] = 1;
        }
        for (int d = 0; d < 10; d++) {
            types[1].chmap[0x30 + d] = {0, 0, 2, CS_CT_DIGIT};
            norm[1].norm[0x30 + d] = static_cast<CS_BYTE>('0' + d);
        }
        attrib.cs_class = 2;
        attrib.cs_maxcharlen = 2;
        attrib.cs_width_map = widths;
        attrib.cs_norm_map = norm;
        attrib.cs_type_map = types;
        attrib.cs_nnorm = 2;
        attrib.cs_ntype = 2;
    }
};

constexpr int kStyles[] = {0, 1, 2, 3, 4, 5, 9, 10, 11, 21, 22, 23, 101, 102, 103, 104, 105, 110, 111, 6, 24, -1};

bool documented(int rc)
{
    switch (rc) {
    case 0: case -1: case -2: case 1: case 2: case 3: case 4: case 5: case 6: case 7: case 9:
        return true;
    default:
        return false;
    }
}

// The tick and day types fold every bad hour, minute, second or fraction into 1.
bool documented_small(int rc) { return documented(rc) && (rc < 4 || rc > 7); }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    static WideSet wide;
    const int order = data[0] % 8;
    const int type = data[1] % 6;
    const bool multibyte = data[1] & 0x80;
    const int style = kStyles[data[2] % std::size(kStyles)];
    // An exact-size copy, so that any read past the text is caught.
    std::vector<char> text(data + 3, data + size);
    char *cp = text.data();
    const int len = static_cast<int>(text.size());
    char **months = com__get_months();
    char **shorts = com__get_shortmonths();
    CS_ATTRIB *chatr = multibyte ? &wide.attrib : nullptr;
    CS_BOOL truncated = 2;
    char out[64];
    switch (type) {
    case 0: {
        CS_DATETIME dt;
        const int rc = com__datefromchar_mb(&dt, cp, len, style, order, months, shorts, chatr, &truncated);
        CHECK(documented_small(rc));
        CHECK(truncated == 0 || truncated == 1);
        if (rc == 0) {
            CHECK(dt.dtdays >= kMinDatetimeDays && dt.dtdays <= kMaxDays);
            CHECK(dt.dttime >= 0 && dt.dttime < kTicksPerDay);
            CHECK(com__datetochar(&dt, out, sizeof out, 9, shorts) > 0);
        }
        break;
    }
    case 1: {
        CS_BIGDATETIME bdt;
        const int rc = com__bigdatetimefromchar_mb(&bdt, cp, len, style, order, months, shorts, chatr);
        CHECK(documented(rc));
        if (rc == 0) {
            CHECK(!com__bigdatetime_check_range(&bdt));
            CHECK(com__bigdatetimetochar(&bdt, out, sizeof out, 140, shorts) > 0);
        }
        break;
    }
    case 2: {
        CS_DATETIME4 d4;
        const int rc = com__date4fromchar_mb(&d4, cp, len, style, order, months, shorts, chatr);
        CHECK(documented_small(rc));
        if (rc == 0)
            CHECK(d4.minutes < 1440);
        break;
    }
    case 3: {
        CS_DATE d;
        const int rc = com__dateafromchar_mb(&d, cp, len, style, order, months, shorts, chatr);
        CHECK(documented_small(rc));
        if (rc == 0) {
            CHECK(!com__datea_check_range(&d));
            CHECK(com__dateatochar(&d, out, sizeof out, 0, shorts) > 0);
        }
        break;
    }
    case 4: {
        CS_TIME t;
        const int rc = com__timeafromchar_mb(&t, cp, len, style, order, months, shorts, chatr, &truncated);
        CHECK(documented_small(rc));
        if (rc == 0)
            CHECK(!com__timea_check_range(&t));
        break;
    }
    default: {
        // A date in the text puts a CS_BIGTIME past one day: it counts from
        // 0001-01-01, and only a lone time is a time of day.
        CS_BIGTIME bt;
        const int rc = com__bigtimefromchar_mb(&bt, cp, len, style, order, months, shorts, chatr);
        CHECK(documented(rc));
        if (rc == 0) {
            CHECK(bt < kBigEnd - kBigMin);
            CHECK(com__bigtimetochar(&bt, out, sizeof out, 37, shorts) > 0);
        }
        CS_DATETIME dt;
        const int trc = com__timefromchar_mb(&dt, cp, len, style, chatr, &truncated);
        CHECK(trc == 0 || trc == 1 || trc == -1 || trc == -2 || trc == 9);
        break;
    }
    }
    return 0;
}
