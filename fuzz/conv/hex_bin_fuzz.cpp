// Hexadecimal text to bytes and to server integers on random text.  Input:
// byte 0 the capacity, byte 1 the format bits (and the set of the server
// pass); the rest is the text.  Destinations sit in exact allocations
// followed by guard bytes.  Checks: a code of the hex set, nothing written
// past the capacity, length fields within it, and the server readers' codes.
#include <cstdint>
#include <cstring>
#include <vector>

#include "kescomn.h"
#include "scan_charset.h"

namespace {

using kes::fuzz::check;

constexpr size_t kGuard = 16;
constexpr CS_BYTE kGuardByte = 0xA5;

bool hex_code(CS_RETCODE rc)
{
    return rc == CS_SUCCEED || rc == CS_TRUNCATED || rc == CS_EOVERFLOW || rc == CS_ESYNTAX;
}

bool guard_intact(const std::vector<CS_BYTE> &buf, size_t from)
{
    for (size_t i = from; i < buf.size(); i++)
        if (buf[i] != kGuardByte)
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const CS_INT capacity = data[0] % 64;
    const CS_INT format = data[1] & (CS_FMT_NULLTERM | CS_FMT_PADNULL | CS_FMT_PADBLANK);
    static kes::fuzz::ScanCharset two(false);
    std::vector<char> text(data + 2, data + size);
    text.reserve(1); // a real buffer even for no text
    const CS_INT len = static_cast<CS_INT>(text.size());
    CS_CONTEXT context{};

    CS_DATAFMT srcfmt{};
    srcfmt.datatype = CS_CHAR_TYPE;
    srcfmt.maxlength = len;
    CS_DATAFMT binfmt{};
    binfmt.datatype = CS_BINARY_TYPE;
    binfmt.maxlength = capacity;
    binfmt.format = format;
    std::vector<CS_BYTE> bin(static_cast<size_t>(capacity) + kGuard, kGuardByte);
    CS_INT destlen = -1;
    const CS_RETCODE rc = comn_chartobin(&context, &srcfmt, text.data(), &binfmt, bin.data(), &destlen);
    check(hex_code(rc));
    check(destlen >= 0 && destlen <= capacity);
    check(guard_intact(bin, static_cast<size_t>(capacity)));

    CS_DATAFMT varfmt{};
    varfmt.datatype = CS_VARBINARY_TYPE;
    varfmt.maxlength = capacity;
    CS_VARBINARY vb;
    const CS_RETCODE rcv = comn_chartovarbin(&context, &srcfmt, text.data(), &varfmt, &vb, &destlen);
    check(rcv == CS_SUCCEED || rcv == CS_TRUNCATED || rcv == CS_ESYNTAX);
    check(vb.len >= 0 && vb.len <= CS_MAX_CHAR);

    if (len <= CS_MAX_CHAR) {
        CS_VARCHAR vc;
        vc.len = static_cast<CS_SMALLINT>(len);
        std::memcpy(vc.str, text.data(), text.size());
        CS_DATAFMT vcfmt{};
        vcfmt.datatype = CS_VARCHAR_TYPE;
        vcfmt.maxlength = sizeof vc;
        const CS_RETCODE rcb = comn_varchartobin(&context, &vcfmt, &vc, &binfmt, bin.data(), &destlen);
        check(rcb == CS_SUCCEED || rcb == CS_EOVERFLOW || rcb == CS_ESYNTAX);
        check(guard_intact(bin, static_cast<size_t>(capacity)));
        const CS_RETCODE rcvv = comn_varchartovarbin(&context, &vcfmt, &vc, &varfmt, &vb, &destlen);
        check(rcvv == CS_SUCCEED || rcvv == CS_EOVERFLOW || rcvv == CS_ESYNTAX);
    }

    CAST_CONTEXT cc{};
    cc.char_attrib = (data[1] & 0x80) ? &two.attr : nullptr;
    __CONSTANT src{};
    src.value = reinterpret_cast<CS_BYTE *>(text.data());
    src.len = len;
    for (int wide = 0; wide < 2; wide++) {
        std::vector<CS_BYTE> out(8 + kGuard, kGuardByte);
        __CONSTANT dest{};
        dest.value = out.data();
        dest.maxlen = wide ? 8 : 4;
        const CS_RETCODE rch = wide ? comnb_hextoi8(&cc, &src, &dest) : comnb_hextoi4(&cc, &src, &dest);
        check(hex_code(rch));
        check(guard_intact(out, wide ? 8 : 4));

        // And back: text of the value read, into a capacity from the input.
        std::vector<CS_BYTE> back(static_cast<size_t>(capacity) + kGuard, kGuardByte);
        __CONSTANT hexdest{};
        hexdest.value = back.data();
        hexdest.maxlen = capacity;
        const CS_RETCODE rct = wide ? comnb_i8tohex(&cc, &dest, &hexdest) : comnb_i4tohex(&cc, &dest, &hexdest);
        check(rct == CS_SUCCEED || rct == CS_EOVERFLOW || rct == CS_ESYNTAX);
        check(guard_intact(back, static_cast<size_t>(capacity)));
    }
    return 0;
}
