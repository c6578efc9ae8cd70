// Arbitrary values and parts through every calendar kernel: nothing may fault,
// and what comes back in range must stay in range and round-trip.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "datetime/calendar.h"

namespace {

struct Input {
    int32_t part;
    int32_t value;
    int32_t days[2];
    int32_t ticks[2];
    uint64_t big[2];
    int32_t firstday;
};

void check(bool ok)
{
    if (!ok)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Input in{};
    std::memcpy(&in, data, size < sizeof in ? size : sizeof in);
    CS_DATETIME a{in.days[0], in.ticks[0]}, b{in.days[1], in.ticks[1]};
    const int part = static_cast<int>(static_cast<uint32_t>(in.part) % 15);

    // Crack and make: any input cracks; a valid date makes back.
    CS_DATEREC rec;
    com__datecrack(&a, &rec);
    com__timecrack(&a, &rec);
    check(rec.datedweek >= 0 && rec.datedweek < 7 && rec.datemonth >= 0 && rec.datemonth < 12);
    CS_DATETIME made{};
    const int status = com__datemake(&made, &rec);
    if (a.dtdays >= kes::cal::kMinDays && a.dtdays <= kes::cal::kMaxDays)
        check(status == 0 && made.dtdays == a.dtdays);

    // Parts, names (with garbage weekdays and months) and differences.
    char name[40];
    com__datename(in.part, &a, name, com__get_months(), com__get_weekdays());
    com__datenameval(in.part, name, com__get_months(), com__get_weekdays(), in.value, in.days[1]);
    (void)com__datepart(part, &a, in.firstday);
    CS_INT diff;
    com__datediff(in.part, &a, &b, &diff);

    // Addition keeps a successful result in range.
    CS_DATETIME sum = a;
    if (com__date_add(part % 14, in.value, &sum) == 0 && part % 14 != 0 && part % 14 != 1 &&
        part % 14 != 2 && part % 14 != 11)
        check(sum.dtdays >= kes::cal::kMinDays && sum.dtdays <= kes::cal::kMaxDays);

    CS_BIGDATETIME big = in.big[0], other = in.big[1];
    com__bigdatecrack(&big, &rec);
    com__bigtimecrack(&big, &rec);
    (void)com__bigdatepart(part, &big, in.firstday);
    CS_BIGINT bigdiff;
    com__bigdatediff(in.part, &big, &other, &bigdiff);
    const bool was_valid = !com__bigdatetime_check_range(&big);
    if (com__bigdate_add(part, in.value, &big, 187) == 0 && was_valid)
        check(!com__bigdatetime_check_range(&big));

    // The descriptor forms with whatever lengths and types the input gives.
    CS_BYTE src_bytes[8], dest_bytes[8];
    std::memcpy(src_bytes, &a, 8);
    __CONSTANT src{}, dest{};
    src.value = src_bytes;
    src.len = in.ticks[1] & 15;
    src.type = static_cast<CS_BYTE>(in.days[1]);
    dest.value = dest_bytes;
    dest.maxlen = (in.ticks[1] >> 4) & 15;
    dest.type = static_cast<CS_BYTE>(in.days[1] >> 8);
    if (dest.maxlen > 8)
        dest.maxlen = 8;
    com__dateadd_both(part % 14, in.value, &src, &dest);
    com__bigdateadd_both(part, in.value, &src, &dest);
    com__valid_datetime(&src, nullptr);
    return 0;
}
