// Drivers of table-defined state machines.  Every list is scanned linearly
// up to its 255 terminator; the tables are small and read on every event.
#include "errors/assert.h"
#include "kescomn/runtime.h"

namespace {

// The transition of event in a terminated list, or null.
const CS_EVENT_NS *find_transition(const CS_EVENT_NS *list, CS_EVENT event)
{
    KES_NOT_NULL(list);
    for (; list->ens_event != CS_ST_END; list++)
        if (list->ens_event == event)
            return list;
    return nullptr;
}

} // namespace

CS_BOOL com_st_ver(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event)
{
    KES_NOT_NULL(table);
    KES_NOT_NULL(table->st_ver);
    KES_ASSERT(state < table->st_numstates);
    const CS_EVENT *list = table->st_ver[state];
    KES_NOT_NULL(list);
    for (; *list != CS_ST_END; list++)
        if (*list == event)
            return 1;
    return 0;
}

CS_BOOL com_st_depend(CS_ST_TABLE *table, CS_EVENT event, CS_EVENT *depend_event)
{
    KES_NOT_NULL(table);
    KES_NOT_NULL(depend_event);
    if (table->st_depend == nullptr)
        return 0;
    for (const CS_DEPEND *d = table->st_depend; d->dep_event != CS_ST_END; d++)
        if (d->dep_event == event) {
            *depend_event = d->dep_depevent;
            return 1;
        }
    return 0;
}

CS_STATE com_st_trans(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event)
{
    KES_NOT_NULL(table);
    KES_NOT_NULL(table->st_trans);
    KES_ASSERT(state < table->st_numstates);
    const CS_EVENT_NS *t = find_transition(table->st_trans[state], event);
    if (t == nullptr)
        return CS_ST_NOTRANS;
    return t->ens_nstate == CS_ST_STAY ? state : t->ens_nstate;
}

CS_STATE com_ns_trans(CS_NS_TABLE *table, CS_STATE state, CS_EVENT event)
{
    KES_NOT_NULL(table);
    KES_NOT_NULL(table->nstable);
    KES_ASSERT(state < table->nsnumstates);
    const CS_EVENT_NS *t = find_transition(table->nstable[state], event);
    return t == nullptr ? CS_STATE{CS_ST_STAY} : t->ens_nstate;
}
