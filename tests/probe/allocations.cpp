// The native allocations of the module's sources, counted, and failing on demand.
//
// The linker sends every call of operator new and delete in this extension module to the functions named __wrap_ here;
// __real_ is the C++ library's own.
#include "allocations.h"

#include <cerrno>
#include <cstddef>
#include <new>

namespace {

int until_failure = 0;
long balance = 0;

void *counted(void *memory) {
    balance += memory != nullptr;
    return memory;
}

} // namespace

void allocations::fail(int n) { until_failure = n; }

long allocations::outstanding() { return balance; }

extern "C" {

void *__real__Znwm(std::size_t size);
void *__real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &nothrow);
void __real__ZdlPv(void *memory);

void *__wrap__Znwm(std::size_t size) { return counted(__real__Znwm(size)); }

void *__wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &nothrow) {
    if (until_failure > 0 && --until_failure == 0) {
        errno = ENOMEM;
        return nullptr;
    }
    return counted(__real__ZnwmRKSt9nothrow_t(size, nothrow));
}

void __wrap__ZdlPv(void *memory) {
    balance -= memory != nullptr;
    __real__ZdlPv(memory);
}

void __wrap__ZdlPvm(void *memory, std::size_t) { __wrap__ZdlPv(memory); }

void __wrap__ZdlPvRKSt9nothrow_t(void *memory, const std::nothrow_t &) { __wrap__ZdlPv(memory); }
}
