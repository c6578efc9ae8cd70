// The application global: a reference-counted record shared by the
// libraries of one process, either the process's static instance or a
// private one per caller.
#include <cstring>

#include "errors/assert.h"
#include "kesintl.h"
#include "runtime/appglobal.h"

CS_APPGLOBAL Application_global;

namespace {

CsCfgChainDrop cfg_drop = nullptr;

} // namespace

void com__appglobal_set_cfgdrop(CsCfgChainDrop drop) { cfg_drop = drop; }

CS_RETCODE com_appglobal_alloc(CsAppGlobal **global_ptr, CS_THREAD *ctxthread, CS_INT flags)
{
    KES_NOT_NULL(global_ptr);
    CS_APPGLOBAL *g = &Application_global;
    if ((flags & CS_AG_SHARED) == 0) {
        g = static_cast<CS_APPGLOBAL *>(comn_calloc(1, sizeof *g));
        if (g == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
    }
    if (g->ag_accesscnt == 0) {
        g->ag_ctxthread = ctxthread;
    } else {
        // A later user starts without the files an earlier one loaded; the
        // configuration reader relies on this to read its file afresh.
        g->ag_cfgchain = nullptr;
    }
    g->ag_accesscnt++;
    *global_ptr = g;
    return CS_SUCCEED;
}

CS_RETCODE com_appglobal_drop(CsAppGlobal *appg, CS_INT flags)
{
    KES_NOT_NULL(appg);
    bool shared = (flags & CS_AG_SHARED) != 0;
    KES_ASSERT(!shared || appg == &Application_global);
    appg->ag_accesscnt--;
    KES_ASSERT(appg->ag_accesscnt >= 0);
    if (appg->ag_accesscnt > 0)
        return CS_SUCCEED;
    for (CS_INT count : appg->ag_subscribers)
        KES_ASSERT(count == 0);
    if (appg->ag_cfgchain != nullptr && cfg_drop != nullptr)
        cfg_drop(appg->ag_cfgchain);
    std::memset(appg, 0, sizeof *appg);
    if (!shared)
        comn_free(appg);
    return CS_SUCCEED;
}
