// The libVantor.so under test, and its functions by symbol.
#pragma once

#include <string>

class Report;

/// A shared library, open until the process ends.
class Library {
  public:
    /// Throws std::runtime_error with the linker's reason.
    explicit Library(const char *path);

    /// The address of a symbol that the library exports, itself or through one it is linked with; null if none does.
    void *address(const std::string &symbol) const;

    /// The function of that symbol. A member function takes its object first, and a constructor the room for it: that
    /// is how this platform's C++ ABI calls them. Throws std::runtime_error if there is none.
    template <class Function> Function *function(const std::string &symbol) const {
        return reinterpret_cast<Function *>(required(symbol));
    }

  private:
    void *required(const std::string &symbol) const;

    void *handle;
};

/// The name that the symbol has in a program.
std::string readable(const std::string &symbol);
