/*
** libkesintl64: the sibling library under the common library.  It owns the
** allocators every library of the stack shares, bounded string copies, the
** home directory and the reader of locale files.
*/
#ifndef KESINTL_H
#define KESINTL_H

#include <stddef.h>

#if defined(__GNUC__)
#define KESINTL_API __attribute__((visibility("default")))
#else
#define KESINTL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The allocators of the stack: one heap, so a block allocated by one library
   may be freed by another.  comn_free of a null pointer does nothing. */
KESINTL_API void *comn_malloc(size_t size);
KESINTL_API void *comn_calloc(size_t count, size_t size);
KESINTL_API void *comn_realloc(void *ptr, size_t size);
KESINTL_API void comn_free(void *ptr);

/* Copies src into dest of size bytes, always NUL-terminated when size > 0.
   Returns the length of src, so a result >= size means the copy was cut. */
KESINTL_API size_t intl_strlcpy(char *dest, const char *src, size_t size);

/* Appends src to the NUL-terminated dest of size bytes, always terminating.
   Returns the length the whole string would have had. */
KESINTL_API size_t intl_strlcat(char *dest, const char *src, size_t size);

/* Negative results of the environment and home lookups. */
#define INTL_EBADARG (-1)  /* null buffer or name, or a size below 1 */
#define INTL_ENOSPACE (-2) /* the value does not fit in the buffer */
#define INTL_ENOHOME (-3)  /* no home directory is known */

/* Copies the value of the environment variable name into buf of buflen
   bytes and returns its length; 0 (buf empty) when it is not set.  A value
   that does not fit leaves buf alone and gives INTL_ENOSPACE. */
KESINTL_API int intlgetenv(char *buf, int buflen, const char *name);

/* Writes the home directory of the installation into buf and returns its
   length: the value of KESTOR when set and not empty, else the home this
   build was configured with.  Negative (INTL_*) on failure, buf untouched. */
KESINTL_API int intl_home(char *buf, int buflen);

#ifdef __cplusplus
}
#endif

#endif /* KESINTL_H */
