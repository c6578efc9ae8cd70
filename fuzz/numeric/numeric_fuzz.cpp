// Record arithmetic on arbitrary bytes: any precision, scale, sign byte and
// magnitude, valid or not.  Nothing may crash, every code must be one of the
// operation's codes, a success must be a valid record whose zero is
// positive, and a sum minus its addend must compare equal to the augend.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "kescomn/numeric.h"
#include "numeric/exctnume.h"

namespace {

bool valid(const CS_NUMERIC &n) { return n.precision >= 1 && n.precision <= 77 && n.scale <= 77; }

void check(bool ok)
{
    if (!ok)
        std::abort();
}

// A successful result: valid shape, magnitude below 10^precision, zero positive.
void check_result(const CS_NUMERIC &r)
{
    check(valid(r));
    __CONSTANT c{};
    c.len = comn_num_getlen(r.precision);
    c.prec = r.precision;
    c.value = const_cast<CS_BYTE *>(r.array);
    check(com__exctnume_checkprecision(&c) == 0);
    if (com__exctnume_intcmp(&c, 0))
        check(r.array[0] == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1 + 2 * sizeof(CS_NUMERIC))
        return 0;
    CS_NUMERIC a, b, r, back;
    std::memcpy(&a, data + 1, sizeof a);
    std::memcpy(&b, data + 1 + sizeof a, sizeof b);
    // Out-of-range precisions and scales are the domain error's business;
    // keep a share of them, fold the rest into range so arithmetic runs.
    if (!(data[0] & 0x80)) {
        a.precision = static_cast<CS_BYTE>(a.precision % 77 + 1);
        b.precision = static_cast<CS_BYTE>(b.precision % 77 + 1);
        a.scale %= 78;
        b.scale %= 78;
    }
    CS_RETCODE rc;
    switch (data[0] % 5) {
    case 0:
        rc = comn_numadd(&a, &b, &r);
        check(rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EDOMAIN);
        if (rc == CS_SUCCEED && valid(a)) {
            check_result(r);
            if (comn_numsub(&r, &b, &back) == CS_SUCCEED)
                check(comn_numcmp(&back, &a) == 0);
        }
        break;
    case 1:
        rc = comn_numsub(&a, &b, &r);
        check(rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EDOMAIN);
        if (rc == CS_SUCCEED)
            check_result(r);
        break;
    case 2:
        rc = comn_nummul(&a, &b, &r);
        check(rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EDOMAIN || rc == CS_ESYNTAX);
        if (rc == CS_SUCCEED)
            check_result(r);
        break;
    case 3:
        rc = comn_numdivide(&a, &b, &r);
        check(rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EDOMAIN || rc == CS_EDIVZERO);
        if (rc == CS_SUCCEED)
            check_result(r);
        break;
    default:
        if (a.precision >= 1 && a.precision <= 77 && b.precision >= 1 && b.precision <= 77) {
            const CS_INT c = comn_numcmp(&a, &b);
            check(c >= -1 && c <= 1 && comn_numcmp(&b, &a) == -c);
        }
        break;
    }
    return 0;
}
