// The libVantor.so under test, and its functions by symbol.
#include "library.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

Library::Library(const char *path) : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    if (!handle)
        throw std::runtime_error(dlerror());
}

void *Library::address(const std::string &symbol) const { return dlsym(handle, symbol.c_str()); }

void *Library::required(const std::string &symbol) const {
    if (void *found = address(symbol))
        return found;
    throw std::runtime_error("there is no " + readable(symbol));
}

std::string readable(const std::string &symbol) {
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, nullptr), &std::free);
    return name ? name.get() : symbol;
}
