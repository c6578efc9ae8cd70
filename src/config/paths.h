/* Private names of the file location module. */
#ifndef KESCOMN_CONFIG_PATHS_H
#define KESCOMN_CONFIG_PATHS_H

#include "kescomn/paths.h"

KES_BEGIN_DECLS

/* Kinds of locale data files of comn__path_locdata. */
#define COM_LOCDATA_MONEY 4
#define COM_LOCDATA_NUMERIC 5
#define COM_LOCDATA_DATE 6

/* home/locales[/lang[/charset]][/locfile]: charset only with a lang. */
CS_RETCODE com__path_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset, CS_CHAR *locfile,
                             CS_CHAR *pathname, CS_INT pathsize);

/* home/locales/<money|numeric|datetime>/filename.<mon|num|dt> for type 4, 5
   or 6; any other type is an assertion. */
CS_RETCODE comn__path_locdata(CS_CONTEXT *context, CS_INT type, CS_CHAR *filename, CS_CHAR *pathname,
                              CS_INT pathsize);

/* The running program's file name (the last component of /proc/self/exe)
   into appname, sanitized as comn__sanitize_name does.  CS_FAIL when the
   link reads empty. */
CS_RETCODE comn__genappname_from_exec(CS_CONTEXT *context, CS_CHAR *appname, CS_INT appnamesize,
                                      CS_INT sanitize);

/* Whether a message or character set file can be read: the path goes into
   buffer ("*" when it cannot be made, with the composer's result); then
   CS_SUCCEED if it is readable, CS_FAIL if not. */
CS_RETCODE com__verify_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen, CS_CHAR *filename,
                               CS_INT filenamelen, CS_CHAR *buffer, CS_INT buflen);
CS_RETCODE com__verify_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename, CS_CHAR *fileext,
                                CS_CHAR *buffer, CS_INT buflen);

KES_END_DECLS

#endif
