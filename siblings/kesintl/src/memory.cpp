// The shared allocators.  They are thin on purpose: every library of the stack
// must agree on one heap, and the C library's is the one they all can reach.
#include "kesintl.h"

#include <cstdlib>

extern "C" {

void *comn_malloc(size_t size) { return std::malloc(size); }

void *comn_calloc(size_t count, size_t size) { return std::calloc(count, size); }

void *comn_realloc(void *ptr, size_t size) { return std::realloc(ptr, size); }

void comn_free(void *ptr) { std::free(ptr); }

} // extern "C"
