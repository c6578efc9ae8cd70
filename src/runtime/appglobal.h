/*
** The application global's link to the configuration reader, which sits
** above this layer: the reader registers how its chains are dropped, so that
** the last reference to the global can release the files still loaded.
*/
#ifndef KESCOMN_RUNTIME_APPGLOBAL_H
#define KESCOMN_RUNTIME_APPGLOBAL_H

#include "kescomn/runtime.h"

/* The process's shared record (com_appglobal_alloc with CS_AG_SHARED). */
extern CS_APPGLOBAL Application_global;

/* Drops every configuration chain from cfgchain on, whatever its count. */
typedef void (*CsCfgChainDrop)(CS_VOID *cfgchain);

/* Registers the dropper of ag_cfgchain; null unregisters.  Without one a
   chain is left alone: only the reader creates chains, and it registers
   before it links the first. */
void com__appglobal_set_cfgdrop(CsCfgChainDrop drop);

#endif /* KESCOMN_RUNTIME_APPGLOBAL_H */
