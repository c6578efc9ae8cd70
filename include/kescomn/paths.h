#ifndef KESCOMN_PATHS_H
#define KESCOMN_PATHS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_PATHS_H */
