// Report: what is wrong with a scene, one line each on the standard error stream.
#include "libvantor/base/report.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace vantor {

namespace {

// One call, so that lines of several processes on one terminal do not mix.
void print_line(std::string_view text) {
    const std::string line = joined({"vantor: ", text, "\n"});
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace

Report::Report() {
    const char *wanted = std::getenv("VANTOR_DIAGNOSTICS");
    const std::string_view name = wanted ? wanted : "";
    if (name == "silent")
        mode = Mode::Silent;
    else if (name == "strict")
        mode = Mode::Strict;
    else if (!name.empty() && name != "warn")
        print_line(
            joined({"VANTOR_DIAGNOSTICS is ", in_quotes(name), " (silent, warn and strict are known); warn is used"}));
}

void Report::diagnostic(std::string_view text) {
    ++count;
    if (mode != Mode::Silent)
        print_line(text);
}

void Report::note(std::string_view text) const {
    if (mode != Mode::Silent)
        print_line(text);
}

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

std::string in_quotes(std::string_view text) {
    constexpr std::size_t longest = 60;
    std::string result = "\"";
    for (const char c : text.substr(0, longest)) {
        const auto byte = static_cast<unsigned char>(c);
        result += byte < 0x20 || byte == 0x7f ? '?' : c;
    }
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
    std::fprintf(stderr, "vantor: out of memory: %s\n", what_happened);
}

} // namespace vantor
