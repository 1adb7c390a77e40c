// Report: what is wrong with a scene, one line each on the standard error stream.
#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// Where the messages of all scenes go instead of the error stream; an empty one ends that. Called by one thread at a
/// time, with a text that ends with a null character.
using MessageHandler = std::function<void(bool is_mistake, const char *text)>;
void set_message_handler(MessageHandler handler);

/// The diagnostics of one scene. VANTOR_DIAGNOSTICS is read when the scene is made:
///
///     silent   nothing is printed (a message handler is called all the same)
///     warn     every diagnostic is printed (the default)
///     strict   likewise, and after the first one no render pass writes a picture
///
/// A diagnostic that comes again within a second is counted instead of printed: a mistake in a loop is one line and a
/// count. print_counts() says the counts that are left; a scene's end does, too.
class Report {
  public:
    Report();
    ~Report() { print_counts(); }
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    /// A mistake in the scene. Printed as "vantor: <text>".
    void diagnostic(std::string_view text);

    /// Something worth knowing that is no mistake; strict does not count it.
    void note(std::string_view text) const;

    /// Whether pictures are refused: strict, and something was wrong.
    bool refuses_pictures() const { return mode == Mode::Strict && count > 0; }
    long diagnostics() const { return count; }

    /// Prints how many times each repeated line was left out.
    void print_counts() noexcept;

  private:
    enum class Mode { Silent, Warn, Strict };

    // A line that was printed lately.
    struct Recent {
        std::string text;
        std::chrono::steady_clock::time_point printed;
        long repeats = 0; // since then
    };

    static void print_count(const Recent &line);

    Mode mode = Mode::Warn;
    long count = 0;
    std::vector<Recent> recent; // oldest first
};

/// The diagnostics of one call: each begins with the call, and the type if the call has one.
class CallReport {
  public:
    explicit CallReport(Report &all, std::string_view call) : report(all), prefix(call) {}
    CallReport(Report &all, std::string_view call, const char *type);

    /// "<call> "<type>": <text>"
    void diagnostic(std::string_view text) const;

    /// "<call> "<type>": item <i>: <text>", i being a position in the script's list, from 0.
    void diagnostic_at(long item, std::string_view text) const;

    /// How many there are of the scene: whether there are more than before.
    long diagnostics() const { return report.diagnostics(); }

  private:
    Report &report;
    std::string prefix;
};

/// The parts, one after the other.
std::string joined(std::initializer_list<std::string_view> parts);

/// "1 point", "2 points"; of nouns with a regular plural.
std::string counted(long count, std::string_view noun);

/// "leaves out point 3", or "leaves out 2 points, the first of them 3".
std::string left_out(std::size_t count, std::string_view noun, std::size_t first);

/// The text fit for a terminal's line: line breaks and tabs become spaces; other control characters, and bytes that are
/// no UTF-8, "?". Every line is printed so, whatever it quotes.
std::string printable(std::string_view text);

/// A text of the script in double quotes; long ones are cut. It is not named "quoted", which a call with a std::string
/// would also look up in std (std::quoted).
std::string in_quotes(std::string_view text);

/// A number in its shortest form, independent of the locale.
std::string text_of(double number);

/// For errors without a scene or without memory: prints without allocating.
void report_out_of_memory(const char *what_happened) noexcept;

} // namespace vantor
