// Diagnostic lines: what a line on the error stream is about, whatever its words.
#pragma once

#include <gtest/gtest.h>
#include <initializer_list>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

/// What a test expects of a diagnostic: where the mistake is and what would be right. Empty fields are compared, too,
/// but for `says`, a part of the line that tells it from others of its kind.
struct DiagnosticLine {
    std::string call;
    std::string type = "";
    int item = -1; ///< The position in the list; -1 if the line names none.
    std::string parameter = "";
    std::string suggestion = ""; ///< Of "did you mean".
    std::string says = "";
};

inline DiagnosticLine parsed_diagnostic(const std::string &line) {
    static const std::regex form(R"re(vantor: (\w+)(?: "((?:[^"])*)")?: (?:item (\d+): )?(.*))re");
    static const std::regex of_parameter(R"re((?:unknown )?parameter "([^"]*)".*)re");
    static const std::regex suggests(R"re(.*\(did you mean "([^"]*)"\?\).*)re");
    std::smatch found;
    DiagnosticLine result;
    if (!std::regex_match(line, found, form))
        return result;
    result.call = found[1];
    result.type = found[2];
    result.item = found[3].matched ? std::stoi(found[3]) : -1;
    const std::string text = found[4];
    if (std::regex_match(text, found, of_parameter))
        result.parameter = found[1];
    if (std::regex_match(text, found, suggests))
        result.suggestion = found[1];
    return result;
}

/// The lines are these diagnostics, in this order, and nothing else.
inline void expect_diagnostics(const std::string &lines, std::initializer_list<DiagnosticLine> expected) {
    std::vector<std::string> got;
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);)
        got.push_back(line);
    ASSERT_EQ(got.size(), expected.size()) << lines;
    std::size_t i = 0;
    for (const DiagnosticLine &e : expected) {
        const std::string &line = got[i++];
        const DiagnosticLine parsed = parsed_diagnostic(line);
        EXPECT_EQ(parsed.call, e.call) << line;
        EXPECT_EQ(parsed.type, e.type) << line;
        EXPECT_EQ(parsed.item, e.item) << line;
        EXPECT_EQ(parsed.parameter, e.parameter) << line;
        EXPECT_EQ(parsed.suggestion, e.suggestion) << line;
        EXPECT_NE(line.find(e.says), std::string::npos) << line << "\nlacks: " << e.says;
    }
}
