#ifndef KESCOMN_MONEY_H
#define KESCOMN_MONEY_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

KES_END_DECLS

#endif /* KESCOMN_MONEY_H */
