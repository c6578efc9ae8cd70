/*
** The names of the library's result codes, as the tool prints them and as the
** tests report them.
*/
#ifndef KESCOMN_TOOLS_RETCODE_NAMES_H
#define KESCOMN_TOOLS_RETCODE_NAMES_H

#include "kescomn/types.h"

namespace kescomn_cli {

// The name of a result code, or null for a code that has none.
inline const char *known_retcode_name(CS_RETCODE code)
{
    switch (code) {
    case CS_SUCCEED: return "CS_SUCCEED";
    case CS_FAIL: return "CS_FAIL";
    case CS_MEM_ERROR: return "CS_MEM_ERROR";
    case CS_EOVERFLOW: return "CS_EOVERFLOW";
    case CS_EUNDERFLOW: return "CS_EUNDERFLOW";
    case CS_EPRECISION: return "CS_EPRECISION";
    case CS_ESCALE: return "CS_ESCALE";
    case CS_ESYNTAX: return "CS_ESYNTAX";
    case CS_EFORMAT: return "CS_EFORMAT";
    case CS_EDOMAIN: return "CS_EDOMAIN";
    case CS_EDIVZERO: return "CS_EDIVZERO";
    case CS_TRUNCATED: return "CS_TRUNCATED";
    case CS_ESTYLE: return "CS_ESTYLE";
    case CS_EBADXLT: return "CS_EBADXLT";
    case CS_ENOXLT: return "CS_ENOXLT";
    case CS_EREPLACED: return "CS_EREPLACED";
    case CS_END_DATA: return "CS_END_DATA";
    case CS_EINTLFILE: return "CS_EINTLFILE";
    case CS_EOPENFILE: return "CS_EOPENFILE";
    default: return nullptr;
    }
}

} // namespace kescomn_cli

#endif
