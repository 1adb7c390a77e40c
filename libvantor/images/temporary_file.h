// TemporaryFile: a file that is written beside the one that it replaces in the end.
#pragma once

#include <filesystem>
#include <string_view>

namespace vantor {

/// A new file of a name of its own beside the target, removed again unless it replaces the target. Beside it, because a
/// rename is one step only within a file system. What goes wrong is thrown as a std::system_error.
class TemporaryFile {
  public:
    explicit TemporaryFile(std::filesystem::path final_path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    void write(std::string_view bytes);
    void replace_target();

  private:
    std::filesystem::path target;
    std::filesystem::path name;
    int descriptor = -1;
};

/// Removes what processes that were killed have left in the folder, as far as it can; empty stands for the working
/// folder. Nothing is thrown.
void remove_leftovers(const std::filesystem::path &folder) noexcept;

} // namespace vantor
