// The tables of docs/vocabulary.md, made from the vocabulary.
#include "tests/libvantor/vocabulary_page.h"

#include "libvantor/base/report.h"
#include "libvantor/parameters/vocabulary_text.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using vantor::joined;

std::string value_of(const vantor::Parameter &parameter) {
    std::string words;
    for (const std::string_view choice : parameter.choices)
        words += joined({words.empty() ? "one of " : ", ", vantor::in_quotes(choice)});
    return words.empty() ? std::string(vantor::name_of(parameter.kind)) : words;
}

std::string tables() {
    std::string page;
    for (const vantor::EntityNames &words : vantor::vocabulary()) {
        page += joined({"\n## `", words.call, "`\n"});
        if (words.kind == vantor::EntityKind::Texture)
            page += "\nTakes the path of a picture file: PNG, JPEG, OpenEXR or Radiance.\n";
        for (const vantor::Type &type : words.types) {
            page += joined({"\n### `\"", type.name, "\"`\n\n", type.meaning, "\n\n",
                            "| parameter | value | unit | range | default | meaning |\n",
                            "| --- | --- | --- | --- | --- | --- |\n"});
            for (const vantor::Parameter &p : type.parameters)
                page += joined({"| `", p.name, "` | ", value_of(p), " | ", p.unit, " | ", p.range.text, " | ",
                                vantor::default_of(p), " | ", p.meaning, " |\n"});
        }
    }
    return page + "\n";
}

} // namespace

std::string with_tables(const std::string &page) {
    const std::string begin = "<!-- tables -->\n";
    const std::string end = "<!-- end of tables -->\n";
    const std::size_t from = page.find(begin);
    const std::size_t to = page.find(end);
    if (from == std::string::npos || to == std::string::npos || to < from)
        throw std::runtime_error("the page has no place for the tables");
    return joined({page.substr(0, from + begin.size()), tables(), page.substr(to)});
}

std::string contents_of(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
