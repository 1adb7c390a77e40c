// The vocabulary: its tables are sound, and the page that documents them is theirs.
#include "tests/libvantor/vocabulary_page.h"

#include "libvantor/parameters/reader.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace vantor;

// How many of a default's three numbers count.
std::size_t used_numbers(ValueKind kind) {
    switch (kind) {
    case ValueKind::Number:
    case ValueKind::NumberOrPattern:
    case ValueKind::Integer:
    case ValueKind::Switch:
        return 1;
    case ValueKind::Vector2:
        return 2;
    case ValueKind::Color:
    case ValueKind::ColorOrPattern:
    case ValueKind::Vector3:
        return 3;
    default:
        return 0;
    }
}

TEST(Vocabulary, EntriesStandInTheOrderOfTheirKinds) {
    const auto all = vocabulary();
    ASSERT_EQ(all.size(), 10u);
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(static_cast<std::size_t>(all[i].kind), i);
}

TEST(Vocabulary, NamesAreUniqueAndDefaultsInRange) {
    for (const EntityNames &words : vocabulary()) {
        std::set<std::string_view> types;
        for (const Type &type : words.types) {
            EXPECT_TRUE(types.insert(type.name).second) << type.name;
            std::set<std::string_view> names;
            for (const Parameter &parameter : type.parameters) {
                EXPECT_TRUE(names.insert(parameter.name).second) << parameter.name;
                EXPECT_FALSE(parameter.meaning.empty());
                if (parameter.presence != Presence::Default)
                    continue;
                for (std::size_t i = 0; i < used_numbers(parameter.kind); ++i) {
                    EXPECT_GE(parameter.fallback[i], parameter.range.low) << parameter.name;
                    EXPECT_LE(parameter.fallback[i], parameter.range.high) << parameter.name;
                }
            }
        }
    }
}

TEST(Vocabulary, PageIsUpToDate) {
    const std::string page = contents_of(VOCABULARY_PAGE);
    EXPECT_EQ(page, with_tables(page)) << "run vocabulary_page " << VOCABULARY_PAGE;
}

} // namespace
