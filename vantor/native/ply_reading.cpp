// Reading PLY files. Turk, "The PLY Polygon File Format", 1994.
#include "vantor/native/ply_reading.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

enum class Type { Int8, Uint8, Int16, Uint16, Int32, Uint32, Float32, Float64 };

std::size_t size_of(Type type) {
    constexpr std::size_t sizes[] = {1, 1, 2, 2, 4, 4, 4, 8};
    return sizes[static_cast<std::size_t>(type)];
}

bool is_whole(Type type) { return type != Type::Float32 && type != Type::Float64; }

struct Property {
    std::string_view name;
    Type type;
    bool is_list = false;
    Type count_type = Type::Uint8;
};

struct Element {
    std::string_view name;
    std::int64_t count;
    std::vector<Property> properties;
};

[[noreturn]] void refuse(const std::string &why) { throw std::runtime_error(why); }

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The words of a text, one after the other.
std::string_view next_word(std::string_view &text) {
    const auto begin = std::find_if_not(text.begin(), text.end(), is_blank);
    const auto end = std::find_if(begin, text.end(), is_blank);
    const std::string_view word(begin, end);
    text = std::string_view(end, text.end());
    return word;
}

Type type_named(std::string_view name) {
    constexpr std::pair<std::string_view, Type> names[] = {
        {"char", Type::Int8},     {"int8", Type::Int8},       {"uchar", Type::Uint8},    {"uint8", Type::Uint8},
        {"short", Type::Int16},   {"int16", Type::Int16},     {"ushort", Type::Uint16},  {"uint16", Type::Uint16},
        {"int", Type::Int32},     {"int32", Type::Int32},     {"uint", Type::Uint32},    {"uint32", Type::Uint32},
        {"float", Type::Float32}, {"float32", Type::Float32}, {"double", Type::Float64}, {"float64", Type::Float64}};
    for (const auto &[known, type] : names)
        if (name == known)
            return type;
    refuse("the header has a property of no known type");
}

// The numbers after the header.
class Values {
  public:
    enum class Form { Text, LittleEndian, BigEndian };

    Values() = default;
    Values(std::string_view after_header, Form of_file)
        : left(after_header), is_text(of_file == Form::Text),
          is_swapped((of_file == Form::BigEndian) == (std::endian::native == std::endian::little)) {}

    double next(Type type) {
        if (is_text)
            return next_of_text();
        switch (type) {
        case Type::Int8:
            return load<std::int8_t>();
        case Type::Uint8:
            return load<std::uint8_t>();
        case Type::Int16:
            return load<std::int16_t>();
        case Type::Uint16:
            return load<std::uint16_t>();
        case Type::Int32:
            return load<std::int32_t>();
        case Type::Uint32:
            return load<std::uint32_t>();
        case Type::Float32:
            return load<float>();
        default:
            return load<double>();
        }
    }

    // The length of a list, or an index.
    std::int64_t next_whole(Type type) {
        const double number = next(type);
        constexpr double largest = std::numeric_limits<std::int32_t>::max();
        if (!(number >= 0 && number <= largest))
            refuse("the file has a number that cannot be a length or an index");
        return static_cast<std::int64_t>(number);
    }

    // Before memory is taken for so many rows.
    void check_room(const Element &element) const {
        std::size_t least = 0;
        for (const Property &property : element.properties)
            least += is_text ? 2 : size_of(property.is_list ? property.count_type : property.type);
        // The last number of a text has no blank behind it.
        if (least == 0 || static_cast<std::uint64_t>(element.count) > (left.size() + 1) / least)
            refuse("the file is too short for what its header says");
    }

  private:
    template <class Number> Number load() {
        if (left.size() < sizeof(Number))
            refuse("the file ends too early");
        char bytes[sizeof(Number)];
        std::memcpy(bytes, left.data(), sizeof bytes);
        if (is_swapped)
            std::reverse(bytes, bytes + sizeof bytes);
        left.remove_prefix(sizeof bytes);
        Number number;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }

    double next_of_text() {
        const std::string_view word = next_word(left);
        double number;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (word.empty())
            refuse("the file ends too early");
        if (error != std::errc() || end != word.data() + word.size())
            refuse("the file has a word where a number is expected");
        return number;
    }

    std::string_view left;
    bool is_text = true;
    bool is_swapped = false;
};

struct Header {
    std::vector<Element> elements;
    Values values;
};

Header read_header(std::string_view file) {
    Header header;
    auto form = Values::Form::Text;
    if (!file.starts_with("ply"))
        refuse("it does not begin as a PLY file");
    for (;;) {
        const std::size_t end = file.find('\n');
        if (end == std::string_view::npos)
            refuse("the header has no end");
        std::string_view line = file.substr(0, end);
        file.remove_prefix(end + 1);
        const std::string_view word = next_word(line);
        if (word == "end_header")
            break;
        if (word == "format") {
            const std::string_view name = next_word(line);
            form = name == "binary_little_endian" ? Values::Form::LittleEndian
                   : name == "binary_big_endian"  ? Values::Form::BigEndian
                                                  : Values::Form::Text;
        } else if (word == "element") {
            Element element{next_word(line), 0, {}};
            const std::string_view count = next_word(line);
            const auto [last, error] = std::from_chars(count.data(), count.data() + count.size(), element.count);
            if (error != std::errc() || element.count < 0 || element.count > std::numeric_limits<std::int32_t>::max())
                refuse("the header has an element without a good count");
            header.elements.push_back(std::move(element));
        } else if (word == "property") {
            if (header.elements.empty())
                refuse("the header has a property of no element");
            std::string_view type = next_word(line);
            Property property{{}, Type::Uint8};
            property.is_list = type == "list";
            if (property.is_list) {
                property.count_type = type_named(next_word(line));
                type = next_word(line);
            }
            property.type = type_named(type);
            property.name = next_word(line);
            header.elements.back().properties.push_back(property);
        }
    }
    header.values = Values(file, form);
    return header;
}

// The numbers of a point that a mesh can use, in this order.
constexpr std::size_t slots = 11;
constexpr std::size_t no_slot = slots;

std::size_t slot_of(std::string_view name) {
    constexpr std::pair<std::string_view, std::size_t> names[] = {{"x", 0},         {"y", 1},
                                                                  {"z", 2},         {"nx", 3},
                                                                  {"ny", 4},        {"nz", 5},
                                                                  {"u", 6},         {"s", 6},
                                                                  {"texture_u", 6}, {"v", 7},
                                                                  {"t", 7},         {"texture_v", 7},
                                                                  {"red", 8},       {"diffuse_red", 8},
                                                                  {"green", 9},     {"diffuse_green", 9},
                                                                  {"blue", 10},     {"diffuse_blue", 10}};
    for (const auto &[known, slot] : names)
        if (name == known)
            return slot;
    return no_slot;
}

void skip_list(const Property &property, Values &values) {
    for (std::int64_t left = values.next_whole(property.count_type); left > 0; --left)
        values.next(property.type);
}

// IEC 61966-2-1.
float linear_of_srgb(float coded) {
    return coded <= 0.04045f ? coded / 12.92f : std::pow((coded + 0.055f) / 1.055f, 2.4f);
}

void read_points(const Element &element, Values &values, PlyMesh &mesh) {
    bool has[slots + 1] = {};
    std::vector<std::size_t> places;
    std::vector<float> factors;
    std::vector<bool> is_coded;
    for (const Property &property : element.properties) {
        const std::size_t slot = property.is_list ? no_slot : slot_of(property.name);
        has[slot] = true;
        places.push_back(slot);
        // Colours of whole numbers are meant for a display, as in pictures of 8 bits; those of floats are linear.
        is_coded.push_back(slot >= 8 && is_whole(property.type));
        factors.push_back(!is_coded.back() ? 1.0f : size_of(property.type) == 1 ? 1.0f / 255 : 1.0f / 65535);
    }
    if (!has[0] || !has[1] || !has[2])
        refuse("its points have no x, y and z");
    const auto count = static_cast<std::size_t>(element.count);
    mesh.points.resize(count);
    mesh.normals.resize(has[3] && has[4] && has[5] ? count : 0);
    mesh.uvs.resize(has[6] && has[7] ? count : 0);
    mesh.colors.resize(has[8] && has[9] && has[10] ? count : 0);
    float row[slots + 1] = {};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t p = 0; p < places.size(); ++p) {
            if (element.properties[p].is_list)
                skip_list(element.properties[p], values);
            else
                row[places[p]] = static_cast<float>(values.next(element.properties[p].type)) * factors[p];
            if (is_coded[p])
                row[places[p]] = linear_of_srgb(row[places[p]]);
        }
        mesh.points[i] = {row[0], row[1], row[2]};
        if (!mesh.normals.empty())
            mesh.normals[i] = {row[3], row[4], row[5]};
        if (!mesh.uvs.empty())
            mesh.uvs[i] = {row[6], row[7]};
        if (!mesh.colors.empty())
            mesh.colors[i] = {row[8], row[9], row[10]};
    }
}

void read_faces(const Element &element, Values &values, PlyMesh &mesh) {
    mesh.triangles.reserve(static_cast<std::size_t>(element.count));
    for (std::int64_t face = 0; face < element.count; ++face)
        for (const Property &property : element.properties) {
            const bool has_corners =
                property.is_list && (property.name == "vertex_indices" || property.name == "vertex_index");
            if (!property.is_list) {
                values.next(property.type);
            } else if (!has_corners) {
                skip_list(property, values);
            } else {
                const std::int64_t corners = values.next_whole(property.count_type);
                std::int32_t first = 0;
                std::int32_t before = 0;
                for (std::int64_t corner = 0; corner < corners; ++corner) {
                    const auto index = static_cast<std::int32_t>(values.next_whole(property.type));
                    if (corner == 0)
                        first = index;
                    if (corner >= 2)
                        mesh.triangles.push_back({first, before, index});
                    before = index;
                }
            }
        }
}

void skip_rows(const Element &element, Values &values) {
    for (std::int64_t row = 0; row < element.count; ++row)
        for (const Property &property : element.properties) {
            if (property.is_list)
                skip_list(property, values);
            else
                values.next(property.type);
        }
}

} // namespace

PlyMesh read_ply(std::string_view file) {
    Header header = read_header(file);
    PlyMesh mesh;
    for (const Element &element : header.elements) {
        if (element.count == 0)
            continue;
        header.values.check_room(element);
        if (element.name == "vertex")
            read_points(element, header.values, mesh);
        else if (element.name == "face")
            read_faces(element, header.values, mesh);
        else
            skip_rows(element, header.values);
    }
    const auto points = static_cast<std::int64_t>(mesh.points.size());
    for (const auto &triangle : mesh.triangles)
        for (const std::int32_t index : triangle)
            if (index >= points)
                refuse("a face names point " + std::to_string(index) + " of " + std::to_string(points));
    return mesh;
}
