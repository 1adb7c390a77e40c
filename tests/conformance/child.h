// A child process that sends lines of text to this one.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

/// What became of a process, from what waitpid() says of it.
std::string how_it_ended(int status);

class Child {
  public:
    /// Sends one line; whatever is not printable ASCII becomes a question mark.
    using Send = std::function<void(const std::string &)>;
    enum class Received { Line, End, TooLate };

    /// Forks; the child does the work and exits without running destructors or exit handlers.
    explicit Child(const std::function<void(const Send &)> &work);
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    /// Ends the child if it still runs.
    ~Child();

    /// Waits for the next line, at most that many seconds. Lines are not empty.
    Received receive(std::string &line, int seconds);

    /// After End: waits for the process and says what became of it.
    std::string how_it_ended();

  private:
    pid_t process;
    int input;
    std::string unread;
};
