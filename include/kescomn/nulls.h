#ifndef KESCOMN_NULLS_H
#define KESCOMN_NULLS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_NULLS_H */
