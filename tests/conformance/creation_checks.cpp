// Checks of the operations that create something: any type, any list.
#include "checks.h"
#include "objects.h"
#include "use.h"

#include <limits>
#include <utility>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

struct ListOfValues {
    std::string name;
    void (*fill)(MadeList &);
};

// Names that parameters often have.
const std::vector<const char *> value_names = {"name", "position", "color", "intensity", "radius"};
const std::vector<const char *> array_names = {"points", "triangles"};

// Values of all kinds, each with each of the names before it: most are not what the name promises.
template <class Add> void add_named(MadeList &list, const std::vector<const char *> &names, Add add) {
    for (const char *name : names)
        for_each_element_type([&]<class Type>(const Type &zero) {
            list.add_name(name);
            add(zero);
        });
}

const std::vector<ListOfValues> lists = {
    {"an empty list", [](MadeList &) {}},
    {"names and values",
     [](MadeList &list) {
         for (const auto &names : {value_names, array_names}) {
             for (const char *name : names) {
                 list.add_name(name);
                 list.add_text("value");
             }
             add_named(list, names, [&]<class Type>(const Type &) { list.add(sample<Type>()); });
         }
     }},
    {"a name without a value", [](MadeList &list) { list.add_name("name"); }},
    {"a value after the last pair",
     [](MadeList &list) {
         list.add_name("radius");
         list.add(2.5);
         list.add(VtLong(7));
     }},
    {"values without names",
     [](MadeList &list) {
         for_each_element_type([&]<class Type>(const Type &) {
             list.add(sample<Type>());
             list.add_array_of<Type>({1, 2, 4}, 5);
         });
     }},
    {"unusual texts",
     [](MadeList &list) {
         for (const std::string &text :
              {std::string(), std::string("%s%s%n"), std::string("gr\xc3\xb6\xc3\x9f\xc3\xa9r"), std::string(15, 'x'),
               std::string(16, 'x'), std::string(100000, 'x'), std::string("/../")}) {
             list.add_name("name");
             list.add_text(text);
         }
     }},
    {"unusual numbers",
     [](MadeList &list) {
         using Limits = std::numeric_limits<VtLong>;
         for (const VtLong number : {0, -1, Limits::max(), Limits::min()}) {
             list.add_name("number");
             list.add(number);
         }
         for (const double number : {0.0, -1.0, 1e308, infinity, -infinity, not_a_number}) {
             list.add_name("number");
             list.add(number);
             list.add_name("vector");
             list.add(VtVector3(number, number, number));
         }
     }},
    {"empty arrays",
     [](MadeList &list) {
         for (const auto &names : {value_names, array_names})
             add_named(list, names, [&]<class Type>(const Type &) { list.add_array_of<Type>({}, 0); });
     }},
    {"arrays of several blocks",
     [](MadeList &list) {
         add_named(list, array_names, [&]<class Type>(const Type &) { list.add_array_of<Type>({1, 2, 4, 8}, 11); });
     }},
    {"arrays of negative size",
     [](MadeList &list) {
         add_named(list, array_names, [&]<class Type>(const Type &) { list.add_array_of<Type>({}, -1); });
         add_named(list, array_names, [&]<class Type>(const Type &) { list.add_array_of<Type>({3}, -5); });
     }},
    {"arrays with fewer elements than their size",
     [](MadeList &list) {
         add_named(list, array_names, [&]<class Type>(const Type &) { list.add_array_of<Type>({1, 2}, 1000); });
         add_named(list, array_names, [&]<class Type>(const Type &) { list.add_array_of<Type>({}, 1000); });
     }},
    {"3000 values",
     [](MadeList &list) {
         for (VtLong i = 0; i < 1500; ++i) {
             list.add(double(i));
             list.add(i);
         }
     }},
};

// The types that each creation is tried with, after the null pointer of a script's None.
struct Types {
    std::vector<std::string> names;

    template <class Visit> void for_each(Visit visit) const {
        visit(nullptr);
        for (const std::string &name : names)
            visit(GuardedText(name).characters());
    }
};

void check_list(const Library &library, const Types &types, const Creation &creation, const ListOfValues &values) {
    types.for_each([&](const char *type) {
        const MadeScene scene(library);
        MadeList list(library);
        values.fill(list);
        const VtLong id = ((*scene).*creation.call)(type, list.list());
        list.surroundings().require_untouched_surroundings("the operation");
        scene->AddObject(id);
        scene->LightOn(id);
    });
}

void check_whole_arrays(const Library &library, const Types &types, const Creation &creation) {
    types.for_each([&](const char *type) {
        for_each_element_type([&]<class Type>(const Type &) {
            const MadeScene scene(library);
            const WatchedArray<Type> array;
            MadeList list(library);
            list.add_name(std::is_same_v<Type, VtLong> ? "triangles" : "points");
            list.add_array<Type>(array);
            ((*scene).*creation.call)(type, list.list());
            require(!array.was_read_by_its_first_block_only(),
                    "reads the first of two blocks of a " + array_kind<Type>().name + ", and nothing of the second");
        });
    });
}

// When a creation call has returned, the type, the texts and the arrays may vanish; the scene lives on.
void check_nothing_kept(const Library &library, const Types &types, const Creation &creation) {
    using Array = GuardedArray<VtVector3>;
    types.for_each([&](const char *type) {
        const MadeScene scene(library);
        auto list = std::make_unique<MadeList>(library);
        GuardedMemory room(sizeof(Array));
        auto *array = new (room.data()) Array({1, 2, 4}, 7);
        auto own_type = std::make_unique<GuardedText>(type ? type : "");
        list->add_text("points");
        list->add_array<VtVector3>(*array);
        list->add_text("name");
        list->add_text("a text of more than fifteen characters");
        const VtLong id = ((*scene).*creation.call)(type ? own_type->characters() : nullptr, list->list());
        list.reset();
        own_type.reset();
        array->seal();
        room.seal();

        scene->ImagerBegin(id);
        scene->InteriorBegin(id);
        scene->LightOn(id);
        scene->MaterialBegin(id);
        scene->AddObject(id);
        scene->Radiosity();
        render(*scene);

        room.unseal();
        array->~Array();
    });
}

} // namespace

Group creation_checks(const std::vector<std::string> &names) {
    Types types{{"", "no such type", std::string(1000, 'x'), "perspective", "file", "point", "mesh", "sphere"}};
    types.names.insert(types.names.end(), names.begin(), names.end());

    Group group;
    for (const Creation &creation : creations) {
        for (const ListOfValues &values : lists)
            group.push_back({creation.name + " takes " + values.name,
                             [=](const Library &library) { check_list(library, types, creation, values); }});
        group.push_back({creation.name + " reads arrays to their end",
                         [=](const Library &library) { check_whole_arrays(library, types, creation); }});
        group.push_back({creation.name + " keeps nothing that belongs to the script",
                         [=](const Library &library) { check_nothing_kept(library, types, creation); }});
    }
    group.push_back(
        {"NewTexture takes any type, and keeps nothing that belongs to the script", [=](const Library &library) {
             types.for_each([&](const char *type) {
                 const MadeScene scene(library);
                 auto own_type = std::make_unique<GuardedText>(type ? type : "");
                 scene->NewTexture(type ? own_type->characters() : nullptr);
                 own_type.reset();
                 render(*scene);
             });
         }});
    return group;
}
