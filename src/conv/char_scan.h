/*
** The text scanners behind every text-to-number conversion of the three
** layers, and the trims and normalisation they share with the hex and
** numeric readers.
*/
#ifndef KESCOMN_CONV_CHAR_SCAN_H
#define KESCOMN_CONV_CHAR_SCAN_H

#include "kescomn/types.h"

/* Results of the integer scanners. */
#define COM_SCAN_VALUE 4     /* a value was read, or the text was blank */
#define COM_SCAN_EMPTY 0     /* len was 0 or negative; *valp is 0 */
#define COM_SCAN_OVERFLOW (-1)
#define COM_SCAN_SYNTAX (-2)

KES_BEGIN_DECLS

/* Integer scanners: blanks, one optional sign, digits, blanks.  chatr null
   or single-byte means plain bytes; otherwise characters are stepped by width
   and compared by their normalised value, so full-width digits count.  On a
   syntax error *valp holds the value read so far (0 when the fault is in the
   lead-in).  On overflow com__chtoi4_mb keeps the value so far (v or 10v), the
   64-bit and unsigned scanners saturate.  Unsigned scanners refuse "-". */
int com__chtoi4_mb(char *cp, int len, CS_INT *valp, CHAR_ATTRIB *chatr);
int com__chtoi8_mb(char *cp, int len, CS_BIGINT *valp, CHAR_ATTRIB *chatr);
int com__chtoui4_mb(char *cp, int len, CS_UINT *valp, CHAR_ATTRIB *chatr);
int com__chtoui8_mb(char *cp, int len, CS_UBIGINT *valp, CHAR_ATTRIB *chatr);

/* Narrow views of the 32-bit scanners: a value outside 0..255, -32768..32767
   or 0..65535 becomes an overflow, and after a read value the low bits are
   stored whatever the range; after any other result 0 is stored. */
int com__chtoi1_mb(char *cp, int len, CS_BYTE *valp, CHAR_ATTRIB *chatr);
int com__chtoi2_mb(char *cp, int len, short int *valp, CHAR_ATTRIB *chatr);
int com__chtoui2_mb(char *cp, int len, CS_USMALLINT *valp, CHAR_ATTRIB *chatr);

/* Trims hexadecimal text in place: trailing, then leading white space, then a
   "0x" or "0X" prefix. */
void comn__hex2binbytes(CS_CHAR **src, CS_INT *srclen);

/* Copies srclen bytes of text to dest replacing each character by its
   normalised single-byte value (characters without one are copied whole);
   stops at a NUL byte or when destsize - 1 bytes are written, and ends dest
   with a NUL.  Returns the bytes written before the NUL. */
CS_INT com__conv2ascii(const CS_CHAR *src, CS_INT srclen, CS_CHAR *dest, CS_INT destsize,
                       CHAR_ATTRIB *chatr);

KES_END_DECLS

#endif
