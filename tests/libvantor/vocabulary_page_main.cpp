// Writes the tables of a vocabulary page anew: vocabulary_page docs/vocabulary.md
#include "tests/libvantor/vocabulary_page.h"

#include <exception>
#include <fstream>
#include <iostream>

int main(int count, char **arguments) {
    if (count != 2) {
        std::cerr << "usage: vocabulary_page PAGE\n";
        return 2;
    }
    try {
        const std::string page = with_tables(contents_of(arguments[1]));
        std::ofstream(arguments[1], std::ios::binary) << page;
        return 0;
    } catch (const std::exception &error) {
        std::cerr << "vocabulary_page: " << error.what() << "\n";
        return 1;
    }
}
