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
#include "kescomn/charattr.h"
#include "kescomn/conv_string.h"
#include "kescomn/conv_scan.h"
#include "kescomn/conv_bin.h"
#include "kescomn/conv_float.h"
#include "kescomn/conv_legacy.h"
#include "kescomn/numeric.h"
#include "kescomn/money.h"
#include "kescomn/numconv.h"
#include "kescomn/datetime.h"
#include "kescomn/datetext.h"
#include "kescomn/intl_date.h"
#include "kescomn/nulls.h"
#include "kescomn/lm.h"
#include "kescomn/mm.h"
#include "kescomn/runtime.h"
#include "kescomn/paths.h"

#endif /* KESCOMN_H */
