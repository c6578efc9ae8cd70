// CS_ATTRIB records over character set images that the caller keeps.
#include <cstring>

#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "intl/charattr.h"
#include "kesintl.h"

namespace {

// Class 1 image: one type map plane of 257 entries, then 257 soundex codes.
constexpr size_t kClass1SoundexOffset = 1028;

// Class 2 image header: fixed bytes, then eight big-endian offset/size words.
enum Class2Header : size_t {
    kStatus = 0,
    kClass = 2,
    kMaxCharLen = 3,
    kNCharSize = 4,
    kNType = 5,
    kNNorm = 6,
    kNSoundex = 7,
    kOffWidth = 12,
    kSizeWidth = 16,
    kOffNorm = 20,
    kSizeNorm = 24,
    kOffType = 28,
    kSizeType = 32,
    kOffSoundex = 36,
    kSizeSoundex = 40,
    kHeaderEnd = 44,
};

CS_UINT from_big_endian(CS_UINT v) { return __builtin_bswap32(v); }

void set_name(CS_ATTRIB *chatr, const CS_CHAR *cname)
{
    std::memset(chatr->cs_name, 0, sizeof chatr->cs_name);
    auto *name = reinterpret_cast<char *>(chatr->cs_name);
    if (cname != nullptr)
        intl_strlcpy(name, cname, sizeof chatr->cs_name); // at most 29 bytes and a NUL
    chatr->cs_namelen = static_cast<CS_SMALLINT>(std::strlen(name));
}

} // namespace

extern "C" {

CS_RETCODE com_build_char_attrib(CS_INT type, CS_INT id, CS_CHAR *cname, CS_VOID *imptr, CS_ATTRIB *chatr)
{
    if (imptr == nullptr || chatr == nullptr || (type != CS_1CLASS_IMAGE && type != CS_2CLASS_IMAGE))
        return KES_TRACE(CS_FAIL);
    auto *image = static_cast<CS_BYTE *>(imptr);
    std::memset(chatr, 0, sizeof *chatr);
    chatr->cs_id = static_cast<CS_BYTE>(id);
    set_name(chatr, cname);

    if (type == CS_1CLASS_IMAGE) {
        chatr->cs_class = 1;
        chatr->cs_maxcharlen = 1;
        chatr->cs_ncharsize = 1;
        chatr->cs_ntype = 1;
        chatr->cs_nsoundex = 1;
        chatr->cs_type_map = reinterpret_cast<CS_TYPE_MAP *>(image);
        chatr->cs_soundex = reinterpret_cast<CS_SOUNDEX *>(image + kClass1SoundexOffset);
        return CS_SUCCEED;
    }

    for (size_t at = kOffWidth; at < kHeaderEnd; at += 4)
        kes::conv::store<CS_UINT>(image + at, from_big_endian(kes::conv::load<CS_UINT>(image + at)));
    const auto word = [image](size_t at) { return kes::conv::load<CS_UINT>(image + at); };
    const auto part = [&](size_t off, size_t size) { return word(size) != 0 ? image + word(off) : nullptr; };

    chatr->cs_status = static_cast<CS_SMALLINT>((image[kStatus] << 8) | image[kStatus + 1]);
    chatr->cs_class = image[kClass];
    chatr->cs_maxcharlen = image[kMaxCharLen];
    chatr->cs_ncharsize = image[kNCharSize];
    chatr->cs_ntype = image[kNType];
    chatr->cs_nnorm = image[kNNorm];
    chatr->cs_nsoundex = image[kNSoundex];
    chatr->cs_width_map = part(kOffWidth, kSizeWidth);
    chatr->cs_norm_map = reinterpret_cast<CS_NORM_MAP *>(part(kOffNorm, kSizeNorm));
    chatr->cs_type_map = reinterpret_cast<CS_TYPE_MAP *>(image + word(kOffType));
    chatr->cs_soundex = reinterpret_cast<CS_SOUNDEX *>(image + word(kOffSoundex));
    return CS_SUCCEED;
}

CS_ATTRIB *com_alloc_char_attrib(void)
{
    return static_cast<CS_ATTRIB *>(comn_calloc(1, sizeof(CS_ATTRIB)));
}

void com_free_char_attrib(CS_ATTRIB *chatr) { comn_free(chatr); }

} // extern "C"
