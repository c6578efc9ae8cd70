// The thread layer of a single-threaded process: every lock, event and
// thread operation succeeds and does nothing, and a thread-local key is a
// single process-wide cell.
#include <unistd.h>

#include "errors/assert.h"
#include "kescomn/runtime.h"
#include "kesintl.h"

namespace {

CS_RETCODE make_null(void **handle)
{
    KES_NOT_NULL(handle);
    *handle = nullptr;
    return CS_SUCCEED;
}

} // namespace

CS_RETCODE comn_create_mutex(void **mutex) { return make_null(mutex); }
CS_RETCODE comn_create_event(void **event) { return make_null(event); }
CS_RETCODE comn_create_sem(void **sem) { return make_null(sem); }

CS_RETCODE comn_delete_mutex(void *) { return CS_SUCCEED; }
CS_RETCODE comn_take_mutex(void *) { return CS_SUCCEED; }
CS_RETCODE comn_try_mutex(void *) { return CS_SUCCEED; }
CS_RETCODE comn_release_mutex(void *) { return CS_SUCCEED; }
CS_RETCODE comn_delete_event(void *) { return CS_SUCCEED; }
CS_RETCODE comn_reset_event(void *) { return CS_SUCCEED; }
CS_RETCODE comn_signal_event(void *) { return CS_SUCCEED; }
CS_RETCODE comn_waitfor_event(void *, CS_INT) { return CS_SUCCEED; }
CS_RETCODE comn_delete_sem(void *) { return CS_SUCCEED; }
CS_RETCODE comn_release_sem(void *) { return CS_SUCCEED; }

CS_RETCODE comn_create_thread(void **thread, CS_THREAD_FUNC, CS_VOID *) { return make_null(thread); }
CS_RETCODE comn_create_thread_no_alloc(void *, CS_THREAD_FUNC, CS_VOID *) { return CS_SUCCEED; }

void comn_lock_global(void) {}
void comn_unlock_global(void) {}
void comn_yield(void) {}

CS_INT comn_threadid(void) { return CS_UNUSED; }
CS_INT comn_thread_id(void) { return static_cast<CS_INT>(getpid()); }

CS_RETCODE comn_get_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    KES_NOT_NULL(buffer);
    KES_NOT_NULL(outlen);
    const CS_INT tid = CS_UNUSED;
    __builtin_memcpy(buffer, &tid, sizeof tid);
    *outlen = sizeof tid;
    return CS_SUCCEED;
}

CS_RETCODE comn_get_default_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    const CS_INT tid = 0;
    if (buflen < static_cast<CS_INT>(sizeof tid))
        return KES_TRACE(CS_FAIL);
    KES_NOT_NULL(buffer);
    __builtin_memcpy(buffer, &tid, sizeof tid);
    if (outlen != nullptr)
        *outlen = sizeof tid;
    return CS_SUCCEED;
}

CS_BOOL comn_thread_equal(CS_INT a, CS_INT b) { return a == b; }

CS_RETCODE comn_create_key(void **key)
{
    KES_NOT_NULL(key);
    void *cell = comn_calloc(1, sizeof(CS_VOID *));
    if (cell == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    *key = cell;
    return CS_SUCCEED;
}

CS_RETCODE comn_drop_key(void *key)
{
    comn_free(key);
    return CS_SUCCEED;
}

CS_VOID *comn_get_threaduserdata(void *key)
{
    KES_NOT_NULL(key);
    return *static_cast<CS_VOID **>(key);
}

CS_RETCODE comn_set_threaduserdata(void *key, CS_VOID *value)
{
    KES_NOT_NULL(key);
    *static_cast<CS_VOID **>(key) = value;
    return CS_SUCCEED;
}
