// A second, independent statement of the list manager's key hash, written
// from the rules rather than from the library's code: bytes are widened one
// at a time through arithmetic, and the pairing of words is tracked with an
// explicit word list.  The tests hold the library to it.
#ifndef KESCOMN_TESTS_RUNTIME_LM_REFERENCE_H
#define KESCOMN_TESTS_RUNTIME_LM_REFERENCE_H

#include <cstdint>
#include <string_view>
#include <vector>

namespace lmref {

// Appends one byte the way the packer does: the byte as a signed value,
// widened to 32 bits, ORed over the word shifted left by 8.
inline uint32_t push_byte(uint32_t word, unsigned char b)
{
    int64_t widened = b >= 0x80 ? int64_t(b) - 256 : int64_t(b);
    return uint32_t((uint64_t(word) << 8) | uint64_t(uint32_t(int32_t(widened))));
}

inline uint32_t fold(std::string_view key)
{
    if (key.empty())
        return 0;
    std::vector<uint32_t> words;
    size_t full = key.size() / 4 * 4;
    for (size_t i = 0; i < full; i += 4) {
        uint32_t w = 0;
        for (size_t j = 0; j < 4; j++)
            w = push_byte(w, static_cast<unsigned char>(key[i + j]));
        words.push_back(w);
    }
    uint32_t acc = 0, first = 0;
    for (uint32_t w : words) {
        if (first == 0) {
            first = w;
        } else {
            acc = acc == 0 ? first * 37u + w : (acc * 37u + first) * 37u + w;
            first = 0;
        }
    }
    if (full == key.size())
        return first != 0 ? acc * 37u + first : acc;
    uint32_t tail = 0;
    for (size_t j = 0; j < 4; j++)
        tail = push_byte(tail, full + j < key.size() ? static_cast<unsigned char>(key[full + j]) : 0x5A);
    if (first != 0)
        acc = acc == 0 ? first : acc * 37u + first;
    return acc * 37u + tail;
}

inline uint32_t home(std::string_view key, int32_t range) { return fold(key) % uint32_t(range); }
inline uint32_t second(std::string_view key, int32_t range) { return fold(key) * 7u % uint32_t(range - 1) + 1; }
inline uint32_t probe_start(std::string_view key, int32_t range)
{
    return (home(key, range) + second(key, range)) % uint32_t(range);
}

} // namespace lmref

#endif
