// The tables of docs/vocabulary.md, made from the vocabulary.
#pragma once

#include <string>

/// The page with its tables made anew: all between "<!-- tables -->" and "<!-- end of tables -->".
std::string with_tables(const std::string &page);

/// The whole file; empty if there is none.
std::string contents_of(const std::string &path);
