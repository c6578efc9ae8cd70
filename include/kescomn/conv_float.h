#ifndef KESCOMN_CONV_FLOAT_H
#define KESCOMN_CONV_FLOAT_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_CONV_FLOAT_H */
