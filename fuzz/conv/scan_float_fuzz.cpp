// Text to floats on random text.  Input: byte 0 picks the character set of
// the server-layer pass; the rest is the text.  Checks: a code of the float
// set, the length fields, agreement of the two layers on byte text, strtod's
// value for accepted text, no infinity ever stored, and a CS_REAL never
// beyond its largest value.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kescomn.h"
#include "scan_charset.h"

namespace {

using kes::fuzz::check;

bool float_code(CS_RETCODE rc)
{
    return rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EUNDERFLOW || rc == CS_ESYNTAX;
}

bool same_bits(const void *a, const void *b, size_t n) { return std::memcmp(a, b, n) == 0; }

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
    CS_DATAFMT f8{}, f4{};
    f8.datatype = CS_FLOAT_TYPE;
    f4.datatype = CS_REAL_TYPE;
    CAST_CONTEXT cc{};
    cc.char_attrib = attr;
    __CONSTANT src{};
    src.value = reinterpret_cast<CS_BYTE *>(text.data());
    src.len = len;

    double d = 0, db = 0;
    CS_INT destlen = -1;
    const CS_RETCODE rc8 = comn_chartoflt8(&context, &srcfmt, text.data(), &f8, &d, &destlen);
    check(float_code(rc8));
    check(destlen == (rc8 == CS_ESYNTAX ? 0 : 8));
    check(!std::isinf(d));
    __CONSTANT dest8{};
    dest8.value = reinterpret_cast<CS_BYTE *>(&db);
    dest8.maxlen = 8;
    const CS_RETCODE rcb8 = comnb_chartoflt8(&cc, &src, &dest8);
    check(float_code(rcb8));
    check(dest8.len == 8);
    if (attr == nullptr)
        check(rc8 == rcb8 && same_bits(&d, &db, 8));
    // Whatever reader the library chose, an accepted text has strtod's value.
    if (rc8 == CS_SUCCEED) {
        std::string copy(text.begin(), text.end());
        const double expected = std::strtod(copy.c_str(), nullptr);
        check(same_bits(&d, &expected, 8) || (std::isnan(d) && std::isnan(expected)));
    }

    float f = 0, fb = 0;
    const CS_RETCODE rc4 = comn_chartoflt4(&context, &srcfmt, text.data(), &f4, &f, &destlen);
    check(float_code(rc4));
    check(destlen == (rc4 == CS_ESYNTAX ? 0 : 4));
    check(std::isnan(f) || std::fabs(f) <= 3.4028234663852886e38f);
    __CONSTANT dest4{};
    dest4.value = reinterpret_cast<CS_BYTE *>(&fb);
    dest4.maxlen = 4;
    const CS_RETCODE rcb4 = comnb_chartoflt4(&cc, &src, &dest4);
    check(float_code(rcb4));
    if (attr == nullptr)
        check(rc4 == rcb4 && same_bits(&f, &fb, 4));
    return 0;
}
