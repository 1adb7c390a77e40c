// The libVantor.so under test, and its functions by symbol.
#pragma once

#include "check.h"

#include <string>

/// A shared library, open until the process ends.
class Library {
  public:
    /// Throws a Failure with the linker's reason, which names the symbol if one is missing.
    explicit Library(const std::string &path);

    /// The address of a symbol that the library exports, itself or through one it is linked with; null if none does.
    void *address(const std::string &symbol) const;

    /// The function of that symbol. A member function takes its object first, and a constructor the room for it: that
    /// is how this platform's C++ ABI calls them. Throws a Failure if there is none.
    template <class Function> Function *function(const std::string &symbol) const {
        return reinterpret_cast<Function *>(required(symbol));
    }

  private:
    void *required(const std::string &symbol) const;

    void *handle;
};

/// What to open for the name that a user gives: a file of that name if there is one, also one without a slash, which
/// the linker alone would look for elsewhere; otherwise the name itself, for the linker to search.
std::string path_to_open(const std::string &name);

/// The name that the symbol has in a program.
std::string readable(const std::string &symbol);
