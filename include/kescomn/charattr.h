#ifndef KESCOMN_CHARATTR_H
#define KESCOMN_CHARATTR_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_CHARATTR_H */
