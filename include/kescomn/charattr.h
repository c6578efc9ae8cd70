/*
** Character attributes: every character-level decision (class, case, length
** in bytes, ASCII equivalent) is a lookup in a CS_ATTRIB.  A null CS_ATTRIB
** stands for the built-in ISO 8859-1 description of com_get_charattrib.
**
** A character pointer p points at the first byte of a character.  Except in
** comn_whole_char, which is given an end, a lead byte must not be the last
** byte of the caller's buffer: the functions read the bytes after it.
**
** Multi-byte sets: the width map (256 bytes, one per first byte) gives the
** length in its low nibble and the display width in its high nibble.  When
** the high nibble of entry 255 is 15 the set has four-byte characters: a first
** byte of length 2 followed by a byte 0x30..0x39 starts a four-byte character.
** A type map entry with bit 0x80 is a lead byte; its char_upper is the plane
** (of 256 entries) that the second byte indexes.
*/
#ifndef KESCOMN_CHARATTR_H
#define KESCOMN_CHARATTR_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* ---- char_type bits and char_lex classes --------------------------------- */
#define CS_CT_UPPER 0x01
#define CS_CT_LOWER 0x02
#define CS_CT_DIGIT 0x04
#define CS_CT_SPACE 0x08
#define CS_CT_XDIGIT 0x10
#define CS_CT_PUNCT 0x20
#define CS_CT_GRAPH 0x40
#define CS_CT_LEADBYTE 0x80

#define CS_LEX_IDENT 1   /* letter or other character allowed in an identifier */
#define CS_LEX_DIGIT 2
#define CS_LEX_SPACE 8   /* white space or control */
#define CS_LEX_QUOTE 16
#define CS_LEX_PUNCT 32
#define CS_LEX_MONEY 64  /* money sign */

/* Image types of com_build_char_attrib. */
#define CS_1CLASS_IMAGE 1001
#define CS_2CLASS_IMAGE 1002

/* ---- the built-in description and the road to a value's attributes -------- */

/* The constant ISO 8859-1 record ("iso_1", class 1, id 1).  Never write
   through the pointer. */
KES_API CS_ATTRIB *com_get_charattrib(void);

/* The type map of the built-in record. */
KES_API CS_TYPE_MAP *com_get_typemap(void);

/* The attributes of dfmt->locale when set, else of the context's locale;
   com_get_charattrib() when neither is there or no character set is loaded
   in the locale.  Both arguments may be null. */
KES_API CS_ATTRIB *com_intl_charattr(CS_CONTEXT *context, CS_DATAFMT *dfmt);

/* Fills chatr from an image kept by the caller, without copying it.  type is
   CS_1CLASS_IMAGE (1285 bytes: type map plane, soundex at 1028) or
   CS_2CLASS_IMAGE (big-endian header of 44 bytes; its eight offset and size
   fields are converted in place, so an image is built once).  The name is cut
   to 29 bytes.  CS_FAIL for another type or a null image or record. */
KES_API CS_RETCODE com_build_char_attrib(CS_INT type, CS_INT id, CS_CHAR *cname, CS_VOID *imptr,
                                         CS_ATTRIB *chatr);

/* A zeroed record for com_build_char_attrib, or null when memory is short;
   released with com_free_char_attrib (which leaves the image alone). */
KES_API CS_ATTRIB *com_alloc_char_attrib(void);
KES_API void com_free_char_attrib(CS_ATTRIB *chatr);

/* ---- classes: non-zero when the character's entry has the bit ------------- */
KES_API CS_BOOL comn_isalpha(CS_ATTRIB *ca, const CS_CHAR *p); /* upper or lower */
KES_API CS_BOOL comn_isupper(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_islower(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_isdigit(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_isxdigit(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_isspace(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_ispunct(CS_ATTRIB *ca, const CS_CHAR *p);
KES_API CS_BOOL comn_isgraph(CS_ATTRIB *ca, const CS_CHAR *p);

/* The lexical class (char_lex) of the character: one of CS_LEX_*, or 0. */
KES_API CS_INT comn_get_lex(CS_ATTRIB *ca, const CS_CHAR *p);

/* Write the other-case form of the character at srcp to destp and return the
   bytes written.  A multi-byte character keeps its lead byte and takes its
   second byte from the plane; a single byte with a partner becomes that one
   byte; anything else is copied unchanged.  srcp and destp may be the same. */
KES_API CS_INT comn_toupper(CS_ATTRIB *ca, const CS_CHAR *srcp, CS_CHAR *destp);
KES_API CS_INT comn_tolower(CS_ATTRIB *ca, const CS_CHAR *srcp, CS_CHAR *destp);

/* ---- lengths and stepping -------------------------------------------------- */

/* The character's length in bytes: 1, or by the width map (1 to 15, or 4). */
KES_API CS_INT comn_char_width(CS_ATTRIB *ca, const CS_CHAR *p);

/* Display columns of the character: the width map's high nibble, 1 without
   a width map. */
KES_API CS_INT comn_disp_width(CS_ATTRIB *ca, const CS_CHAR *p);

/* Moves *p past the character it points at. */
KES_API void comn_inc_char(CS_ATTRIB *ca, CS_CHAR **p);

/* Walks [startp, endp) by characters.  *nchars gets the whole characters,
   *wcbytes their bytes.  When the last character runs past endp, *pc_part1
   says how many of its bytes lie before endp and *pc_part2 how many are
   missing; otherwise both are 0.  Reads nothing at or past endp. */
KES_API void comn_whole_char(CS_ATTRIB *ca, const CS_CHAR *startp, const CS_CHAR *endp,
                             CS_INT *wcbytes, CS_INT *pc_part1, CS_INT *pc_part2, CS_INT *nchars);

/* ---- ASCII equivalents ----------------------------------------------------- */

/* The ASCII equivalent byte of the character, 0 when it has none.  By the
   normalization map when there is one, else char_lower of the first byte's
   entry (so letters of a class 1 set come back lower case), else the byte. */
KES_API CS_INT comn_to_ascii(CS_ATTRIB *ca, const CS_CHAR *p);

/* Normalizes src_len bytes: each character with an equivalent becomes that
   one byte, the others are copied.  *dest_len gets the bytes written, never
   more than src_len, so cp_dest may be cp_src. */
KES_API void comn_str_to_ascii(const CS_CHAR *cp_src, CS_INT src_len, CS_CHAR *cp_dest,
                               CS_INT *dest_len, CS_ATTRIB *chatr);

/* The width map of the set (null for a single-byte set). */
KES_API CS_BYTE *comn_get_widthmap(CS_ATTRIB *chatr);

/* The first character of the NUL-terminated buf whose first byte is
   srch_char (compared as an unsigned byte), or null.  Trailing bytes of
   multi-byte characters never match; searching for 0 gives null. */
KES_API CS_CHAR *comn_mb_strchr(CS_ATTRIB *ca, CS_CHAR *buf, CS_INT srch_char);

KES_END_DECLS

#endif /* KESCOMN_CHARATTR_H */
