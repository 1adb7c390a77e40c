// The libVantor.so under test, opened, and its functions by symbol.
#include "library.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

// The linker's message with the missing symbol, if it names one, as it reads in a program.
std::string with_readable_symbol(const std::string &message) {
    constexpr std::string_view before = "undefined symbol: ";
    const std::size_t found = message.find(before);
    if (found == std::string::npos)
        return message;
    const std::size_t begin = found + before.size();
    const std::size_t end = std::min(message.find_first_of(" ,\t", begin), message.size());
    return message.substr(0, begin) + readable(message.substr(begin, end - begin)) + message.substr(end);
}

} // namespace

// All functions are bound now, so that a missing one is named here and not met in the middle of a check.
Library::Library(const std::string &path) : handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle)
        throw Failure(with_readable_symbol(dlerror()));
}

void *Library::address(const std::string &symbol) const { return dlsym(handle, symbol.c_str()); }

void *Library::required(const std::string &symbol) const {
    if (void *found = address(symbol))
        return found;
    throw Failure("there is no " + readable(symbol));
}

std::string path_to_open(const std::string &name) {
    const bool is_bare = name.find('/') == std::string::npos;
    return is_bare && access(name.c_str(), F_OK) == 0 ? "./" + name : name;
}

std::string readable(const std::string &symbol) {
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, nullptr), &std::free);
    return name ? name.get() : symbol;
}
