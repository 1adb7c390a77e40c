// TemporaryFile: a file that is written beside the one that it replaces in the end.
#include "libvantor/images/temporary_file.h"

#include "libvantor/base/report.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantor {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".vantor.";

[[noreturn]] void throw_errno(int number) { throw std::system_error(number, std::generic_category()); }

// The process in the name of a temporary file; 0 if it is none.
pid_t process_in(std::string_view name) {
    if (!name.starts_with(prefix))
        return 0;
    const char *const end = name.data() + name.size();
    pid_t process = 0;
    unsigned number = 0;
    const auto [dot, is_bad] = std::from_chars(name.data() + prefix.size(), end, process);
    if (is_bad != std::errc() || process < 1 || dot == end || *dot != '.')
        return 0;
    const auto [rest, is_bad_too] = std::from_chars(dot + 1, end, number);
    return is_bad_too == std::errc() && rest == end ? process : 0;
}

// Whether nobody has the file open for writing. A process in a container or on another machine cannot be asked by its
// number, but the lock that it holds is seen where the file system has locks; where it has none, the file stays.
bool is_abandoned(const fs::path &file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat found;
    const bool is_unlocked =
        fstat(descriptor, &found) == 0 && S_ISREG(found.st_mode) && flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    close(descriptor);
    return is_unlocked;
}

} // namespace

TemporaryFile::TemporaryFile(fs::path final_path) : target(std::move(final_path)) {
    static std::atomic<unsigned> number = 0;
    constexpr mode_t everything = 0777;
    struct stat replaced;
    const bool replaces = stat(target.c_str(), &replaced) == 0;
    const mode_t mode = replaces ? replaced.st_mode & everything : 0666;
    for (int attempt = 0; attempt < 100; ++attempt) {
        // Hidden, and with the process in its name, so that processes do not meet. Short, as the target's own name
        // may be as long as a name can be.
        fs::path candidate = target;
        candidate.replace_filename(joined({prefix, std::to_string(getpid()), ".", std::to_string(number++)}));
        descriptor = open(candidate.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode);
        if (descriptor >= 0) {
            name = std::move(candidate);
            // For is_abandoned() of other processes; the kernel unlocks it however this one ends.
            static_cast<void>(flock(descriptor, LOCK_EX | LOCK_NB));
            // What the process's mask took away. Not every file system has modes; it then keeps the few it has.
            if (replaces)
                static_cast<void>(fchmod(descriptor, mode));
            return;
        }
        if (errno != EEXIST)
            throw_errno(errno);
    }
    throw_errno(EEXIST);
}

TemporaryFile::~TemporaryFile() {
    if (descriptor >= 0)
        close(descriptor);
    if (!name.empty())
        unlink(name.c_str());
}

void TemporaryFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw_errno(errno);
    }
}

void TemporaryFile::replace_target() {
    // Some file systems tell only now that there was no room.
    if (close(std::exchange(descriptor, -1)) != 0)
        throw_errno(errno);
    if (std::rename(name.c_str(), target.c_str()) != 0)
        throw_errno(errno);
    name.clear();
}

void remove_leftovers(const fs::path &folder) noexcept {
    try {
        for (const fs::directory_entry &entry : fs::directory_iterator(folder.empty() ? "." : folder)) {
            const pid_t process = process_in(entry.path().filename().native());
            const bool is_gone = process != 0 && kill(process, 0) != 0 && errno == ESRCH;
            if (is_gone && is_abandoned(entry.path()))
                unlink(entry.path().c_str());
        }
    } catch (const std::exception &) {
        // Whether the folder can be written to is found out by writing to it.
        return;
    }
}

} // namespace vantor
