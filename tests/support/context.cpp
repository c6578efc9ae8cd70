#include "support/context.h"

#include <cstdio>

namespace kes::test {

Context::Context()
{
    std::memset(&ctx_, 0, sizeof ctx_);
    if (com_conv_init(&ctx_) != CS_SUCCEED || com_null_init(&ctx_) != CS_SUCCEED)
        throw std::runtime_error("context set-up failed");
}

Context::~Context()
{
    com_null_free(&ctx_);
    com_conv_free(&ctx_);
}

CS_DATAFMT fmt(CS_INT datatype, CS_INT maxlength, CS_INT format, CS_INT precision, CS_INT scale)
{
    CS_DATAFMT f;
    std::memset(&f, 0, sizeof f);
    f.datatype = datatype;
    f.maxlength = maxlength;
    f.format = format;
    f.precision = precision;
    f.scale = scale;
    return f;
}

__CONSTANT constant(CS_BYTE *value, CS_INT len, CS_INT maxlen)
{
    __CONSTANT c;
    std::memset(&c, 0, sizeof c);
    c.value = value;
    c.len = len;
    c.maxlen = maxlen;
    return c;
}

std::string hex(const void *data, size_t len)
{
    std::string out;
    const auto *p = static_cast<const unsigned char *>(data);
    char two[3];
    for (size_t i = 0; i < len; i++) {
        std::snprintf(two, sizeof two, "%02x", p[i]);
        out += two;
    }
    return out;
}

std::string code_name(CS_RETCODE code)
{
    switch (code) {
    case CS_SUCCEED: return "CS_SUCCEED";
    case CS_FAIL: return "CS_FAIL";
    case CS_MEM_ERROR: return "CS_MEM_ERROR";
    case CS_EOVERFLOW: return "CS_EOVERFLOW";
    case CS_EUNDERFLOW: return "CS_EUNDERFLOW";
    case CS_EPRECISION: return "CS_EPRECISION";
    case CS_ESCALE: return "CS_ESCALE";
    case CS_ESYNTAX: return "CS_ESYNTAX";
    case CS_EFORMAT: return "CS_EFORMAT";
    case CS_EDOMAIN: return "CS_EDOMAIN";
    case CS_EDIVZERO: return "CS_EDIVZERO";
    case CS_TRUNCATED: return "CS_TRUNCATED";
    case CS_ESTYLE: return "CS_ESTYLE";
    case CS_EBADXLT: return "CS_EBADXLT";
    case CS_ENOXLT: return "CS_ENOXLT";
    case CS_EREPLACED: return "CS_EREPLACED";
    default: return std::to_string(code);
    }
}

} // namespace kes::test
