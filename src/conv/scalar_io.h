/*
** Loads and stores of scalars at any address.  Caller buffers carry no
** alignment promise, so every fixed-size value moves through memcpy, which
** the compiler turns into one plain load or store.
*/
#ifndef KESCOMN_CONV_SCALAR_IO_H
#define KESCOMN_CONV_SCALAR_IO_H

#include <cstring>

namespace kes::conv {

template <class T> inline T load(const void *p)
{
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class T> inline void store(void *p, T v) { std::memcpy(p, &v, sizeof v); }

} // namespace kes::conv

#endif
