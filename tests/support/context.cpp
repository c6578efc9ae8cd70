#include "support/context.h"

#include <cstdio>

#include "retcode_names.h"

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
    const char *name = kescomn_cli::known_retcode_name(code);
    return name != nullptr ? name : std::to_string(code);
}

} // namespace kes::test
