#ifndef KESCOMN_NUMERIC_H
#define KESCOMN_NUMERIC_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_NUMERIC_H */
