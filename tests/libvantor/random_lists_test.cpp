// Random scenes out of the whole vocabulary: nothing crashes, every complaint is one line, every picture is sound.
#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/parameters/vocabulary.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

using scripted::List;
using scripted::path_of;
using scripted::Scene;
using vantor::EntityKind;
using vantor::Parameter;
using vantor::Type;
using vantor::ValueKind;

class Dice {
  public:
    explicit Dice(unsigned seed) : engine(seed) {}

    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }
    bool one_in(int n) { return below(n) == 0; }
    double between(double low, double high) { return low + (high - low) * below(1001) / 1000; }
    template <class Elements> const auto &any_of(const Elements &elements) {
        return std::data(elements)[below(static_cast<int>(std::size(elements)))];
    }

    double wild_number() {
        static const double edges[] = {0,   -0.0, 1,    -1,   0.5,   45,       1e-9,      1e-300, -1e-30,
                                       1e9, -1e9, 1e18, 3e38, 1e300, INFINITY, -INFINITY, NAN};
        return one_in(3) ? any_of(edges) : between(-10, 10);
    }
    int wild_integer() {
        static const int edges[] = {0, 1, -1, 3, 4, 255, 65536, INT_MAX, INT_MIN};
        return one_in(3) ? any_of(edges) : below(64) - 2;
    }

  private:
    std::mt19937 engine;
};

// Names of picture files, good, damaged and none at all; and odd ones.
std::vector<std::string> files_to_read() {
    const auto contents = [](const std::string &path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 60);
    scene.light("environment", "radiance", VtVector3(0.5, 1, 2));
    scene.AddObject(scene.object("sphere"));
    std::vector<std::string> names{"", ".", "missing.png", "\xff\xfe\n", std::string(100000, 'x'), path_of("junk.png")};
    std::ofstream(names.back()) << "This is no picture.";
    for (const char *ending : {".png", ".exr", ".jpg"}) {
        names.push_back(path_of(std::string("whole") + ending));
        List list("name", names.back());
        scene.ImagerBegin(scene.NewImager("file", list));
        scene.Render(8, 4, 1, 0, 0, 1, 1);
        scene.ImagerEnd();
        const std::string whole = contents(names.back());
        names.push_back(names.back()); // twice as likely
        names.push_back(path_of(std::string("cut") + ending));
        std::ofstream(names.back(), std::ios::binary) << whole.substr(0, whole.size() * 2 / 3);
    }
    return names;
}

std::vector<std::string> files_to_write() {
    return {"",
            path_of("random.png"),
            path_of("random.exr"),
            path_of("random.tif"),
            path_of("random.jpg"),
            path_of("none/random.png"),
            path_of("random.gif"),
            path_of(std::string(300, 'x') + ".png")};
}

// Arrays that a list refers to. In one kind of list all numbers can be used, and the arrays fit each other; in the
// other kind neither need be.
struct Arrays {
    scripted::Indices integers;
    VtInstanceArray<double> numbers;
    VtInstanceArray<VtVector2> pairs;
    scripted::Points vectors;
    VtInstanceArray<VtVector4> quadruples;
    VtInstanceArray<VtTransform> transforms;

    Arrays(Dice &dice, bool is_wild) {
        static const int sizes[] = {0, 1, 2, 3, 4, 6, 12, 16, 16, 25};
        const auto size = [&, common = dice.any_of(sizes)] {
            return !is_wild ? common : dice.one_in(10) ? 2000 : dice.any_of(sizes);
        };
        const auto number = [&](double low, double high) {
            return is_wild && dice.one_in(4) ? dice.wild_number() : dice.between(low, high);
        };
        const double least = dice.one_in(2) ? 0 : -2; // colours are not negative
        for (int n = size(); n > 0; --n)
            vectors.Add({number(least, 2), number(least, 2), number(least, 2)});
        for (int n = size(); n > 0; --n)
            pairs.Add({number(0, 1), number(0, 1)});
        double rising = 0;
        for (int n = size(); n > 0; --n)
            numbers.Add(is_wild ? number(-1, 1) : rising += dice.between(0, 0.5));
        for (int n = size(); n > 0; --n)
            quadruples.Add({number(-1, 1), number(-1, 1), number(-1, 1), number(-1, 1)});
        for (int n = 0, end = 12 * dice.below(3), first = dice.below(4); n < end; ++n)
            integers.Add(is_wild ? dice.wild_integer() : (first + n) % std::max(1, vectors.Size()));
        for (int n = dice.below(4); n > 0; --n)
            transforms.Add(transform(dice, is_wild));
        if (is_wild && dice.one_in(10))
            pairs.SetSize(-1);
    }

    static VtTransform transform(Dice &dice, bool is_wild) {
        const auto number = [&] { return is_wild ? dice.wild_number() : dice.between(-3, 3); };
        VtTransform result;
        switch (dice.below(is_wild ? 5 : 3)) {
        case 0:
            result.Scaling({number(), number(), number()});
            break;
        case 1:
            result.RotationAroundAxis({number(), number(), number()}, {number(), number(), number()}, number());
            break;
        case 2:
            result.Translation({number(), number(), number()});
            break;
        case 3:
            break; // all zeros
        default:
            for (int r = 0; r < 4; ++r)
                for (int c = 0; c < 4; ++c)
                    result[r][c] = number();
        }
        return result;
    }
};

// Writes one scene.
class Author {
  public:
    Author(unsigned seed, const std::vector<std::string> &read, const std::vector<std::string> &write)
        : dice(seed), readable(read), writable(write) {
        ids[EntityKind::Camera].push_back(scene.camera({0, 0, 9}, {0, 0, 0}, 60));
        last = 1;
    }

    // Lists hold no copies of texts. The words of the vocabulary are literals, each with its zero.
    void create(EntityKind kind, const Type &type) {
        const bool is_wild = dice.one_in(2);
        const Arrays arrays(dice, is_wild);
        const int reserve = 2 + dice.below(8);
        List list;
        for (const Parameter &parameter : type.parameters) {
            const bool is_required = parameter.presence == vantor::Presence::Required;
            if (is_wild && dice.one_in(8))
                add_junk(list, type, arrays);
            if (is_required ? !is_wild || !dice.one_in(8) : dice.one_in(reserve))
                add(list, kind, parameter, arrays, is_wild);
        }
        if (is_wild && dice.one_in(8))
            list.add(type.parameters.empty() ? "name" : dice.any_of(type.parameters).name.data());

        const bool is_misnamed = dice.one_in(30);
        static const char *const odd[] = {nullptr, "", "diffuze", "\xff\n", "area"};
        add_id(kind, made(kind, is_misnamed ? dice.any_of(odd) : type.name.data(), list));
    }

    void create_texture() {
        const std::string name = dice.one_in(8) ? "image" : dice.any_of(readable);
        add_id(EntityKind::Texture, scene.NewTexture(dice.one_in(20) ? nullptr : name.c_str()));
    }

    // What else a script may call.
    void step() {
        switch (dice.below(20)) {
        case 0:
        case 1:
            return scene.MaterialBegin(id_of(EntityKind::Material));
        case 2:
            return scene.MaterialEnd();
        case 3:
            return scene.LightBegin();
        case 4:
            return scene.LightEnd();
        case 5:
        case 6:
            return scene.TransformBegin(Arrays::transform(dice, dice.one_in(6)));
        case 7:
        case 8:
            return scene.TransformEnd();
        case 9:
            return scene.InteriorBegin(id_of(EntityKind::Interior));
        case 10:
            return scene.InteriorEnd();
        case 11:
            return scene.LightOn(id_of(EntityKind::Light));
        case 12:
            return scene.LightOff(id_of(EntityKind::Light));
        case 13:
            return scene.ImagerBegin(id_of(EntityKind::Imager));
        case 14:
            return scene.ImagerEnd();
        default:
            return scene.AddObject(id_of(EntityKind::Object));
        }
    }

    void expect_sound_pictures() {
        if (dice.one_in(20)) { // it takes long; for ever where patches lie deep in a medium that only scatters
            const scripted::InterruptHandler handler;
            const vantor::InterruptAtPoll interrupt(2000);
            scene.Radiosity();
        }
        for (const scripted::Rgb &pixel : scene.render(8, 8, 1).values)
            for (const float channel : pixel)
                ASSERT_TRUE(std::isfinite(channel) && channel >= 0) << channel;
        scene.Render(dice.below(10) - 1, dice.below(10) - 1, dice.below(3) - 1, dice.wild_number(), dice.wild_number(),
                     dice.wild_number(), dice.wild_number());
    }

  private:
    // Mostly of that kind; else of any entity, or of none.
    VtLong id_of(EntityKind kind) {
        const std::vector<VtLong> &known = ids[kind];
        if (known.empty() || dice.one_in(12))
            return dice.one_in(2) ? dice.wild_integer() : dice.below(static_cast<int>(last) + 2);
        return dice.any_of(known);
    }

    void add_id(EntityKind kind, VtLong id) {
        EXPECT_GT(id, last);
        last = std::max(id, last);
        ids[kind].push_back(id);
    }

    VtLong made(EntityKind kind, const char *type, List &list) {
        switch (kind) {
        case EntityKind::Camera:
            return scene.NewCamera(type, list);
        case EntityKind::Imager:
            return scene.NewImager(type, list);
        case EntityKind::Interface:
            return scene.NewInterface(type, list);
        case EntityKind::Interior:
            return scene.NewInterior(type, list);
        case EntityKind::Light:
            return scene.NewLight(type, list);
        case EntityKind::Material:
            return scene.NewMaterial(type, list);
        case EntityKind::Object:
            return scene.NewObject(type, list);
        case EntityKind::Pattern:
            return scene.NewPattern(type, list);
        case EntityKind::Texture:
            return scene.NewTexture(type);
        case EntityKind::Trimmer:
            return scene.NewTrimmer(type, list);
        }
        return 0;
    }

    double number_of(const Parameter &parameter, bool is_wild) {
        if (is_wild && dice.one_in(3))
            return dice.wild_number();
        const double low = std::max(parameter.range.low, -10.0);
        const double high = std::min(parameter.range.high, low + 20);
        return dice.one_in(10) ? low : dice.one_in(10) ? high : dice.between(low, high);
    }
    // Mostly a small one: counts cost time.
    int integer_of(const Parameter &parameter, bool is_wild) {
        if (is_wild && dice.one_in(3))
            return dice.wild_integer();
        const int low = static_cast<int>(std::max(parameter.range.low, -2.0));
        const int high = static_cast<int>(std::min(parameter.range.high, 64.0));
        return dice.one_in(50) ? high : std::min(low + dice.below(5), high);
    }
    VtVector3 vector_of(const Parameter &parameter, bool is_wild) {
        return {number_of(parameter, is_wild), number_of(parameter, is_wild), number_of(parameter, is_wild)};
    }

    void add(List &list, EntityKind kind, const Parameter &parameter, const Arrays &arrays, bool is_wild) {
        list.add(parameter.name.data());
        if (is_wild && dice.one_in(8))
            return add_anything(list, arrays);
        switch (parameter.kind) {
        case ValueKind::Number:
            return list.add(number_of(parameter, is_wild));
        case ValueKind::Integer:
        case ValueKind::Switch:
            return list.add(integer_of(parameter, is_wild));
        case ValueKind::NumberOrPattern:
            return dice.one_in(2) ? list.add(number_of(parameter, is_wild)) : list.add(id_of(EntityKind::Pattern));
        case ValueKind::ColorOrPattern:
            if (dice.one_in(2))
                return list.add(id_of(EntityKind::Pattern));
            [[fallthrough]];
        case ValueKind::Color:
        case ValueKind::Scale:
            if (dice.one_in(2))
                return list.add(number_of(parameter, is_wild));
            [[fallthrough]];
        case ValueKind::Vector3:
            return list.add(vector_of(parameter, is_wild));
        case ValueKind::Vector2:
            return list.add(VtVector2(number_of(parameter, is_wild), number_of(parameter, is_wild)));
        case ValueKind::Text:
            return list.add(dice.any_of(kind == EntityKind::Imager ? writable : readable));
        case ValueKind::Choice:
            return list.add(dice.any_of(parameter.choices).data());
        case ValueKind::InterfaceId:
            return list.add(id_of(EntityKind::Interface));
        case ValueKind::ObjectId:
            return list.add(id_of(EntityKind::Object));
        case ValueKind::PatternId:
            return list.add(id_of(EntityKind::Pattern));
        case ValueKind::TextureId:
            return list.add(id_of(EntityKind::Texture));
        case ValueKind::TrimmerIds:
            return list.add(id_of(EntityKind::Trimmer));
        case ValueKind::Matrix4:
            return list.add(matrix(is_wild));
        case ValueKind::LongArray:
            return list.add(arrays.integers);
        case ValueKind::DoubleArray:
            return list.add(arrays.numbers);
        case ValueKind::Vector2Array:
            return list.add(arrays.pairs);
        case ValueKind::Vector3Array:
            return list.add(arrays.vectors);
        case ValueKind::TransformArray:
            return list.add(arrays.transforms);
        }
    }

    VtMatrix4 matrix(bool is_wild) {
        VtMatrix4 result;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                result[r][c] = is_wild ? dice.wild_number() : dice.between(-1, 1);
        return result;
    }

    void add_anything(List &list, const Arrays &arrays) {
        switch (dice.below(11)) {
        case 0:
            return list.add(dice.wild_integer());
        case 1:
            return list.add(dice.wild_number());
        case 2:
            return list.add(dice.any_of(readable));
        case 3:
            return list.add(VtVector2(dice.wild_number(), dice.wild_number()));
        case 4:
            return list.add(VtVector4(dice.wild_number(), 0, 0, 1));
        case 5:
            return list.add(matrix(true));
        case 6:
            return list.add(Arrays::transform(dice, true));
        case 7:
            return list.add(arrays.integers);
        case 8:
            return list.add(arrays.quadruples);
        case 9:
            return list.add(arrays.transforms);
        default:
            return list.add(arrays.vectors);
        }
    }

    // A value without a name, or an unknown name with or without a value.
    void add_junk(List &list, const Type &type, const Arrays &arrays) {
        if (dice.one_in(2))
            list.add(dice.one_in(2) || type.parameters.empty() ? dice.any_of(readable).c_str()
                                                               : type.parameters[0].name.data() + 1);
        if (dice.one_in(2))
            add_anything(list, arrays);
    }

    Dice dice;
    const std::vector<std::string> &readable;
    const std::vector<std::string> &writable;
    Scene scene{50};
    std::map<EntityKind, std::vector<VtLong>> ids;
    VtLong last = 0;
};

// Bytes on the error stream so far, while it is captured.
off_t errors_so_far() { return lseek(STDERR_FILENO, 0, SEEK_CUR); }

// Every line is one complaint, and none is what an exception inside has to say.
void expect_complaints(const std::string &errors) {
    EXPECT_TRUE(errors.empty() || errors.back() == '\n');
    for (std::size_t begin = 0, end; begin < errors.size(); begin = end + 1) {
        end = std::min(errors.find('\n', begin), errors.size());
        const std::string line = errors.substr(begin, end - begin);
        EXPECT_TRUE(line.starts_with("vantor: ")) << line;
        EXPECT_LT(line.size(), 600u) << line;
        for (const char *const inner : {"out of memory", "no such parameter", "vector::", "std::", "bad_", "basic_"})
            EXPECT_EQ(line.find(inner), std::string::npos) << line;
        EXPECT_TRUE(std::none_of(line.begin(), line.end(), [](unsigned char c) { return c < ' '; })) << line;
    }
}

TEST(RandomLists, NothingCrashesAndEveryTypeIsMade) {
    constexpr unsigned scenes = 200;
    const std::vector<std::string> readable = files_to_read();
    const std::vector<std::string> writable = files_to_write();
    std::set<std::string> made;
    int lists = 0;
    for (unsigned seed = 0; seed < scenes; ++seed) {
        SCOPED_TRACE(seed);
        Author author(seed, readable, writable);
        expect_complaints(scripted::errors_of([&] {
            while (lists < 10000 * static_cast<int>(seed + 1) / static_cast<int>(scenes)) {
                for (const vantor::EntityNames &words : vantor::vocabulary()) {
                    for (const Type &type : words.types) {
                        const off_t before = errors_so_far();
                        author.create(words.kind, type);
                        ++lists;
                        if (errors_so_far() == before)
                            made.insert(std::string(words.call) + " " + std::string(type.name));
                    }
                    if (words.kind == EntityKind::Texture)
                        author.create_texture();
                }
                for (int i = 0; i < 40; ++i)
                    author.step();
            }
            author.expect_sound_pictures();
        }));
    }
    for (const vantor::EntityNames &words : vantor::vocabulary())
        for (const Type &type : words.types)
            EXPECT_TRUE(made.contains(std::string(words.call) + " " + std::string(type.name)))
                << words.call << " \"" << type.name << "\" was never made without a complaint";
}

} // namespace
