// A second statement of the list manager's key hash, written from its rules
// rather than from the library's code: each byte is widened as a signed value
// through 64-bit arithmetic, and words are paired from an explicit list.
#ifndef KESCOMN_TESTS_RUNTIME_LM_REFERENCE_H
#define KESCOMN_TESTS_RUNTIME_LM_REFERENCE_H

#include <cstdint>
#include <string_view>
#include <vector>

namespace lmref {

// Four bytes from `at` (0x5A past the end), each ORed in sign-extended over
// the word shifted left by 8, so a high byte smears over those before it.
inline uint32_t word(std::string_view key, size_t at)
{
    uint32_t w = 0;
    for (size_t j = at; j < at + 4; j++) {
        const int64_t b = j < key.size() ? int64_t(static_cast<unsigned char>(key[j])) : 0x5A;
        w = uint32_t((uint64_t(w) << 8) | uint64_t(uint32_t(int32_t(b >= 0x80 ? b - 256 : b))));
    }
    return w;
}

// Whole words pair up (a zero word while none is waiting counts for
// nothing); a word left waiting and a padded tail join at the end.
inline uint32_t fold(std::string_view key)
{
    std::vector<uint32_t> words;
    for (size_t i = 0; i + 4 <= key.size(); i += 4)
        words.push_back(word(key, i));
    uint32_t acc = 0, first = 0;
    for (uint32_t w : words) {
        if (first == 0)
            first = w;
        else
            acc = (acc == 0 ? first * 37u : (acc * 37u + first) * 37u) + w, first = 0;
    }
    if (key.size() % 4 == 0)
        return first != 0 ? acc * 37u + first : acc;
    if (first != 0)
        acc = acc == 0 ? first : acc * 37u + first;
    return acc * 37u + word(key, key.size() / 4 * 4);
}

inline uint32_t home(std::string_view key, int32_t range) { return fold(key) % uint32_t(range); }
inline uint32_t second(std::string_view key, int32_t range) { return fold(key) * 7u % uint32_t(range - 1) + 1; }
inline uint32_t probe_start(std::string_view key, int32_t range)
{
    return (home(key, range) + second(key, range)) % uint32_t(range);
}

} // namespace lmref

#endif
