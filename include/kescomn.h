/*
** libkescomn64: the common runtime library of the database stack.  Include
** this one header; the ones below it group the interface by subsystem.
*/
#ifndef KESCOMN_H
#define KESCOMN_H

#include "kescomn/types.h"
#include "kescomn/debug.h"
#include "kescomn/conv.h"
#include "kescomn/conv_int.h"

#endif /* KESCOMN_H */
