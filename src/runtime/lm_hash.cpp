// The key hash of the hash tables.  Its exact bits decide where entries sit
// and therefore the order of walks and the outcome of rebuilds, so it keeps
// its historic quirks: bytes are sign-extended as they are packed, and words
// are folded in pairs.
#include "runtime/lm_impl.h"

namespace {

// Packs up to four bytes big-endian, each sign-extended before it is ORed in,
// and pads on the right with 0x5A up to four bytes.
CS_UINT pack_word(const CS_CHAR *p, int n)
{
    CS_UINT w = 0;
    for (int i = 0; i < 4; i++) {
        signed char b = i < n ? static_cast<signed char>(p[i]) : 0x5A;
        w = (w << 8) | static_cast<CS_UINT>(static_cast<CS_INT>(b));
    }
    return w;
}

} // namespace

CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size, CS_UINT *value)
{
    KES_NOT_NULL(value);
    KES_ASSERT(key_size >= 0);
    *value = 0;
    if (key_size == 0)
        return CS_SUCCEED;
    KES_NOT_NULL(key);

    CS_UINT first = 0;
    CS_UINT acc = 0;
    CS_INT i = 0;
    for (; key_size - i >= 4; i += 4) {
        CS_UINT w = pack_word(key + i, 4);
        if (first == 0) {
            first = w;
            continue;
        }
        acc = acc == 0 ? first * 37 + w : (acc * 37 + first) * 37 + w;
        first = 0;
    }
    if (i == key_size) {
        if (first != 0)
            acc = acc * 37 + first;
        *value = acc;
        return CS_SUCCEED;
    }
    CS_UINT tail = pack_word(key + i, key_size - i);
    KES_ASSERT(tail != 0);
    if (first != 0)
        acc = acc == 0 ? first : acc * 37 + first;
    *value = acc * 37 + tail;
    return CS_SUCCEED;
}

CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash_key)
{
    KES_NOT_NULL(hash_key);
    *hash_key = 0;
    if (range <= 0)
        return KES_TRACE(CS_FAIL);
    CS_UINT v;
    lm___api_key_to_uint(key, key_size, &v);
    *hash_key = v % static_cast<CS_UINT>(range);
    return CS_SUCCEED;
}

CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash_key)
{
    KES_NOT_NULL(hash_key);
    *hash_key = 0;
    if (range <= 0)
        return KES_TRACE(CS_FAIL);
    KES_ASSERT(range > 1);
    CS_UINT v;
    lm___api_key_to_uint(key, key_size, &v);
    *hash_key = (v * 7) % static_cast<CS_UINT>(range - 1) + 1;
    return CS_SUCCEED;
}
