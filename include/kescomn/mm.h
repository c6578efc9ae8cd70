#ifndef KESCOMN_MM_H
#define KESCOMN_MM_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_MM_H */
