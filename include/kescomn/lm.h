#ifndef KESCOMN_LM_H
#define KESCOMN_LM_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_LM_H */
