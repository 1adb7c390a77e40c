// Report: what is wrong with a scene, one line each on the standard error stream.
#include "libvantor/base/report.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace vantor {

namespace {

// How many bytes of the text are one UTF-8 character that may be shown; 0 if it does not begin with one.
std::size_t shown_character(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return first >= 0x20 && first != 0x7f ? 1 : 0;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
    const unsigned char second = byte(1);
    const bool is_control = first == 0xc2 && second < 0xa0;
    const bool is_overlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool is_surrogate = first == 0xed && second >= 0xa0;
    const bool is_beyond_unicode = first == 0xf4 && second >= 0x90;
    return is_control || is_overlong || is_surrogate || is_beyond_unicode ? 0 : length;
}

struct Messages {
    std::mutex telling;
    MessageHandler handler;
};

// Never destroyed: scenes may outlive it at the end of the process.
Messages &messages() {
    static Messages &only = *new Messages;
    return only;
}

// Calls the handler; false if there is none.
bool hand_over(bool is_mistake, std::string_view text) {
    const std::lock_guard lock(messages().telling);
    if (messages().handler)
        messages().handler(is_mistake, printable(text).c_str());
    return static_cast<bool>(messages().handler);
}

// One call, so that lines of several processes on one terminal do not mix.
void print_line(std::string_view text) {
    const std::string line = joined({"vantor: ", printable(text), "\n"});
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void tell(bool is_mistake, std::string_view text, bool is_printed) {
    if (!hand_over(is_mistake, text) && is_printed)
        print_line(text);
}

} // namespace

void set_message_handler(MessageHandler handler) {
    const std::lock_guard lock(messages().telling);
    messages().handler = std::move(handler);
}

Report::Report() {
    const char *wanted = std::getenv("VANTOR_DIAGNOSTICS");
    const std::string_view name = wanted ? wanted : "";
    if (name == "silent")
        mode = Mode::Silent;
    else if (name == "strict")
        mode = Mode::Strict;
    else if (!name.empty() && name != "warn")
        tell(true,
             joined({"VANTOR_DIAGNOSTICS is ", in_quotes(name), " (silent, warn and strict are known); warn is used"}),
             true);
}

void Report::diagnostic(std::string_view text) {
    ++count;
    // A handler gets every message and folds repeats itself.
    if (hand_over(true, text) || mode == Mode::Silent)
        return;
    const auto now = std::chrono::steady_clock::now();
    const auto known = std::ranges::find(recent, text, &Recent::text);
    long repeats = 0;
    if (known != recent.end()) {
        if (now - known->printed < std::chrono::seconds(1)) {
            ++known->repeats;
            return;
        }
        repeats = known->repeats;
        recent.erase(known);
    }
    // Enough for the mistakes of one loop; comparing with more would cost more than printing.
    constexpr std::size_t most_recent = 16;
    if (recent.size() == most_recent) {
        print_count(recent.front());
        recent.erase(recent.begin());
    }
    recent.push_back({std::string(text), now});
    print_line(repeats == 0 ? std::string(text) : joined({text, " (and ", counted(repeats, "time"), " before)"}));
}

void Report::print_count(const Recent &line) {
    if (line.repeats > 0)
        print_line(joined({line.text, " (", counted(line.repeats, "more time"), ")"}));
}

void Report::print_counts() noexcept {
    try {
        for (const Recent &line : recent)
            print_count(line);
        recent.clear();
    } catch (...) {
        report_out_of_memory("repeated diagnostics are not counted");
    }
}

void Report::note(std::string_view text) const { tell(false, text, mode != Mode::Silent); }

CallReport::CallReport(Report &all, std::string_view call, const char *type) : CallReport(all, call) {
    if (type)
        prefix = joined({call, " ", in_quotes(type)});
}

void CallReport::diagnostic(std::string_view text) const { report.diagnostic(joined({prefix, ": ", text})); }

void CallReport::diagnostic_at(long item, std::string_view text) const {
    diagnostic(joined({"item ", std::to_string(item), ": ", text}));
}

std::string counted(long count, std::string_view noun) {
    return joined({std::to_string(count), " ", noun, count == 1 ? "" : "s"});
}

std::string left_out(std::size_t count, std::string_view noun, std::size_t first) {
    const std::string number = std::to_string(first);
    return count == 1
               ? joined({"leaves out ", noun, " ", number})
               : joined({"leaves out ", counted(static_cast<long>(count), noun), ", the first of them ", number});
}

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string result;
    for (const std::string_view part : parts)
        result += part;
    return result;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = shown_character(text);
        if (length > 0)
            result += text.substr(0, length);
        else
            result += text[0] == '\n' || text[0] == '\r' || text[0] == '\t' ? ' ' : '?';
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string in_quotes(std::string_view text) {
    constexpr std::size_t longest = 60;
    std::string result = "\"";
    result += text.substr(0, longest);
    if (text.size() > longest) {
        // Not in the middle of a UTF-8 sequence; bytes that are none may leave nothing but the quote.
        while (result.size() > 1 && (static_cast<unsigned char>(text[result.size() - 1]) & 0xc0) == 0x80)
            result.pop_back();
        result += "...";
    }
    result += '"';
    return result;
}

std::string text_of(double number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return std::string(digits, end);
}

void report_out_of_memory(const char *what_happened) noexcept {
    char text[200];
    std::snprintf(text, sizeof text, "out of memory: %s", what_happened);
    if (!hand_over(true, text))
        std::fprintf(stderr, "vantor: %s\n", text);
}

} // namespace vantor
