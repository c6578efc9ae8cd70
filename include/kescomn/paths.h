/*
** File locations below the home directory (KESTOR), the environment
** variables of the stack, and the plain-words diagnosis of a context whose
** localization files cannot be found.
**
** Every composer writes a NUL-terminated path into pathname (pathsize bytes,
** at least 1) and returns CS_SUCCEED; CS_FAIL, with pathname emptied, when
** the path does not fit; CS_EINTLFILE when the home directory cannot be had,
** the library's code then going to ctxintlerr when there is a context.
*/
#ifndef KESCOMN_PATHS_H
#define KESCOMN_PATHS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Largest path the stack composes, with its NUL. */
#define COM_PATH_MAX 1025

/* home[/$KESTOR_XCS]/directory/filename: the variable's level only when xcs
   is 1 and it is set and not empty; directory and filename each only when
   not null.  pathname is zeroed first. */
KES_API CS_RETCODE com_path_anyfile(CS_CHAR *pathname, CS_INT pathsize, CS_CHAR *directory, CS_CHAR *filename,
                                    CS_BOOL xcs);

/* The server directory file: the value of KESXCS_IFILE when set, whole and
   as it is, else home/interfaces. */
KES_API CS_RETCODE com_path_ifile(CS_CONTEXT *context, CS_CHAR *pathname, CS_INT pathsize);

/* home[/$KESTOR_XCS]/config/cfgfile, the variable's level when xcs is not 0
   and it is set and not empty.  context may be null. */
KES_API CS_RETCODE com_path_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile, CS_CHAR *pathname, CS_INT pathsize,
                                    CS_BOOL xcs);

/* home/locales/message/lang/msgfile.  lang is NUL-terminated (langlen is not
   read); msgfilelen is a length or CS_NULLTERM.  pathname is zeroed first. */
KES_API CS_RETCODE com_path_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen, CS_CHAR *msgfile,
                                    CS_INT msgfilelen, CS_CHAR *pathname, CS_INT pathsize);

/* home/charsets[/charset][/filename[.fileext]]: a null filename names the
   set's directory, a null charset the directory of all sets. */
KES_API CS_RETCODE com_path_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename, CS_CHAR *fileext,
                                     CS_CHAR *pathname, CS_INT pathsize);

/* Sets the driver configuration path that com_get_tclcfg reports first; null
   clears it.  A path of 512 bytes or more is CS_FAIL and the old one stays.
   Process-wide, without a lock. */
KES_API CS_RETCODE com_set_tclcfg(char *path);

/* Writes the driver configuration path into buf and returns its length, 0
   when there is none or it does not fit: the path set by com_set_tclcfg,
   else KESXCS_TCL_CFG, else KESTOR_TCL_CFG, else the config file
   "libtcl64.cfg" below the home (with KESTOR_XCS). */
KES_API CS_INT com_get_tclcfg(char *buf, int buflen);

/* A copy of the variable's value (up to 255 bytes) that the caller frees
   with comn_free; null for a null name, an unset, empty or longer value, or
   a short allocator. */
KES_API CS_CHAR *com_getenv(char *envvar);

/* Whether the message file filename of the language of locale (the
   context's locale when null) can be read: its path goes into buffer, "*"
   when no path can be made or the locale has no language; CS_SUCCEED when
   readable, CS_FAIL when not, or the composer's failure. */
KES_API CS_RETCODE com_intl_verify_a_msgfile(CS_CONTEXT *context, CS_LOCALE *locale, CS_CHAR *filename,
                                             CS_CHAR *buffer, CS_INT buflen);

/* Explains on standard error (and in "kesinit.err", through com_perr) why
   the localization files of a context could not be loaded: the home
   directory, the object identifier and locale tables, and the locale name
   the environment gives.  CS_SUCCEED when none of these is missing, CS_FAIL
   at the first that stops the diagnosis. */
KES_API CS_RETCODE com_intl_verify_ctxloc(CS_CONTEXT *context);

KES_END_DECLS

#endif /* KESCOMN_PATHS_H */
