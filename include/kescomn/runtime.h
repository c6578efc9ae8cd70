#ifndef KESCOMN_RUNTIME_H
#define KESCOMN_RUNTIME_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_RUNTIME_H */
