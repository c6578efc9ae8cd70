/*
** What every test executable shares: a context with the conversion state set
** up, formats made in one call, and checks of a conversion's outcome.
*/
#ifndef KESCOMN_TESTS_SUPPORT_CONTEXT_H
#define KESCOMN_TESTS_SUPPORT_CONTEXT_H

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "kescomn.h"

namespace kes::test {

// A CS_CONTEXT with its conversion table; freed on destruction.
class Context {
public:
    Context();
    ~Context();
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
    CS_CONTEXT *get() { return &ctx_; }
    CS_CONTEXT *operator->() { return &ctx_; }

private:
    CS_CONTEXT ctx_;
};

// A CS_DATAFMT with the fields a conversion reads.
CS_DATAFMT fmt(CS_INT datatype, CS_INT maxlength = 0, CS_INT format = 0, CS_INT precision = 0,
               CS_INT scale = 0);

// A __CONSTANT over a caller buffer.
__CONSTANT constant(CS_BYTE *value, CS_INT len, CS_INT maxlen);

// Bytes as lower-case hex, for readable failure messages.
std::string hex(const void *data, size_t len);

// The name of a result code ("CS_EOVERFLOW"), or its number.
std::string code_name(CS_RETCODE code);

} // namespace kes::test

// Death-test helpers: the two assertions end the process with SIGABRT and
// print their line on standard error.
#define EXPECT_BOMB(stmt) EXPECT_DEATH(stmt, "assertion failed, file")
#define EXPECT_NULL_POINTER(stmt) EXPECT_DEATH(stmt, "Invalid NULL pointer")

#endif
