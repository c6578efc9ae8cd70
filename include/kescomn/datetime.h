#ifndef KESCOMN_DATETIME_H
#define KESCOMN_DATETIME_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_DATETIME_H */
