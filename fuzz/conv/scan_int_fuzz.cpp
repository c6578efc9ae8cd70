// The integer and bit scanners on random text.  Input: byte 0 picks the
// character set of the server-layer pass (none, double-byte, four-byte); the
// rest is the text.  Every member of both layers runs on it; checks: a code
// of the scanners' set, the length fields, agreement of the two layers on
// byte text, and the narrow views' low bits matching the 32-bit reading.
#include <cstdint>
#include <cstring>
#include <vector>

#include "conv/char_scan.h"
#include "kescomn.h"
#include "scan_charset.h"

namespace {

using kes::fuzz::check;

bool scan_code(CS_RETCODE rc) { return rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_ESYNTAX; }

struct Member {
    CS_CONV_FUNC comn;
    CS_RETCODE (*comnb)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);
    CS_INT desttype;
    CS_INT size;
};

const Member kMembers[] = {
    {comn_chartoi1, comnb_chartoi1, CS_TINYINT_TYPE, 1},   {comn_chartoi2, comnb_chartoi2, CS_SMALLINT_TYPE, 2},
    {comn_chartoi4, comnb_chartoi4, CS_INT_TYPE, 4},       {comn_chartoi8, comnb_chartoi8, CS_BIGINT_TYPE, 8},
    {comn_chartoui2, comnb_chartoui2, CS_USMALLINT_TYPE, 2}, {comn_chartoui4, comnb_chartoui4, CS_UINT_TYPE, 4},
    {comn_chartoui8, comnb_chartoui8, CS_UBIGINT_TYPE, 8}, {comn_chartobit, comnb_chartobit, CS_BIT_TYPE, 1},
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    kes::fuzz::ScanInput in(data, size);
    CS_ATTRIB *attr = in.attr;
    std::vector<char> &text = in.text;
    const CS_INT len = in.len();

    CS_CONTEXT context{};
    CS_DATAFMT srcfmt{};
    srcfmt.datatype = CS_CHAR_TYPE;
    srcfmt.maxlength = len;
    CAST_CONTEXT cc{};
    cc.char_attrib = attr;
    for (const Member &m : kMembers) {
        CS_BYTE out[8] = {}, outb[8] = {};
        CS_DATAFMT destfmt{};
        destfmt.datatype = m.desttype;
        __CONSTANT src{}, dest{};
        src.value = reinterpret_cast<CS_BYTE *>(text.data());
        src.len = len;
        dest.value = outb;
        dest.maxlen = m.size;
        const CS_RETCODE rcb = m.comnb(&cc, &src, &dest);
        check(scan_code(rcb));
        check(dest.len == m.size);
        if (len == 0)
            continue;
        CS_INT destlen = -1;
        const CS_RETCODE rc = m.comn(&context, &srcfmt, text.data(), &destfmt, out, &destlen);
        check(scan_code(rc));
        check(destlen == (rc == CS_ESYNTAX ? 0 : m.size));
        if (attr == nullptr && m.comn != comn_chartobit) {
            check(rc == rcb);
            check(std::memcmp(out, outb, static_cast<size_t>(m.size)) == 0);
        }
    }

    // The 8- and 16-bit views are the low bits of the 32-bit reading.
    CS_INT wide;
    const int r = com__chtoi4_mb(text.data(), len, &wide, attr);
    check(r == COM_SCAN_VALUE || r == COM_SCAN_EMPTY || r == COM_SCAN_OVERFLOW || r == COM_SCAN_SYNTAX);
    short narrow;
    const int rn = com__chtoi2_mb(text.data(), len, &narrow, attr);
    if (r == COM_SCAN_VALUE)
        check(narrow == static_cast<short>(wide) && rn == (wide == narrow ? COM_SCAN_VALUE : COM_SCAN_OVERFLOW));
    else
        check(narrow == 0 && rn == r);
    return 0;
}
