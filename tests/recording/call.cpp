// The record's file, how numbers and texts are written into it, and the faults.
#include "call.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace recording {

namespace {

// Never closed: a proxy may be destroyed while the process ends.
std::FILE *file() {
    static std::FILE *const opened = [] {
        const char *path = std::getenv("VANTOR_RECORD");
        std::FILE *f = path ? std::fopen(path, "a") : nullptr;
        if (path && !f)
            std::perror(path);
        return f;
    }();
    return opened;
}

bool asked_to_throw(const char *name, int place) {
    const char *asked = std::getenv("VANTOR_RECORD_THROW");
    const std::size_t length = std::strlen(name);
    if (!asked || std::strncmp(asked, name, length) != 0)
        return false;
    // The name ends here, or ":K" follows; VtArgList is not meant by VtArgList::Add.
    const char *rest = asked + length;
    if (*rest == '\0')
        return place == 1;
    return rest[0] == ':' && rest[1] != ':' && std::atoi(rest + 1) == place;
}

} // namespace

int new_serial() {
    static int last = 0;
    return ++last;
}

VtLong id_or(VtLong regular) {
    const char *asked = std::getenv("VANTOR_RECORD_ID");
    return asked ? static_cast<VtLong>(std::strtol(asked, nullptr, 10)) : regular;
}

std::string json(VtLong number) { return std::to_string(number); }

std::string json(double number) {
    if (std::isnan(number))
        return "NaN";
    if (std::isinf(number))
        return number < 0 ? "-Infinity" : "Infinity";
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number, std::chars_format::scientific).ptr};
}

std::string json(const void *address) { return std::to_string(reinterpret_cast<std::uintptr_t>(address)); }

std::string json(const char *text) {
    if (!text)
        return "null";
    std::string quoted = "\"";
    for (const char *c = text; *c; ++c) {
        if (*c == '"' || *c == '\\') {
            quoted += '\\';
            quoted += *c;
        } else if (static_cast<unsigned char>(*c) < ' ') {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(*c));
            quoted += escape;
        } else {
            quoted += *c;
        }
    }
    return quoted + '"';
}

Call::Call(const char *call_name, int place)
    : name(call_name), throws(asked_to_throw(call_name, place)), line("{\"call\": " + json(call_name)) {}

Call &Call::with_json(std::string_view key, std::string_view value) {
    line.append(", \"").append(key).append("\": ").append(value);
    return *this;
}

void Call::done() {
    if (throws)
        with_json("throws", "true");
    done_without_fault();
    if (throws)
        throw std::runtime_error(std::string(name) + " throws");
}

void Call::done_without_fault() noexcept {
    std::FILE *f = file();
    if (!f)
        return;
    line += "}\n";
    std::fwrite(line.data(), 1, line.size(), f);
    std::fflush(f);
}

} // namespace recording
