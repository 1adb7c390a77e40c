// The checks, by what they look at.
#include "checks.h"

#include "library.h"
#include "renderer/vt_bases.h"
#include "renderer/vt_local_scene_proxy.h"
#include "report.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

// The operations of the proxy from slot 2 on, as the C++ ABI spells them.
const std::vector<std::string> proxy_slots = {
    "_ZN17VtLocalSceneProxy9NewCameraEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy9NewImagerEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy12NewInterfaceEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy11NewInteriorEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy8NewLightEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy11NewMaterialEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy9NewObjectEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy10NewPatternEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy10NewTextureEPKc",
    "_ZN17VtLocalSceneProxy10NewTrimmerEPKcR9VtArgList",
    "_ZN17VtLocalSceneProxy11ImagerBeginEi",
    "_ZN17VtLocalSceneProxy9ImagerEndEv",
    "_ZN17VtLocalSceneProxy13InteriorBeginEi",
    "_ZN17VtLocalSceneProxy11InteriorEndEv",
    "_ZN17VtLocalSceneProxy7LightOnEi",
    "_ZN17VtLocalSceneProxy8LightOffEi",
    "_ZN17VtLocalSceneProxy10LightBeginEv",
    "_ZN17VtLocalSceneProxy8LightEndEv",
    "_ZN17VtLocalSceneProxy13MaterialBeginEi",
    "_ZN17VtLocalSceneProxy11MaterialEndEv",
    "_ZN17VtLocalSceneProxy9AddObjectEi",
    "_ZN17VtLocalSceneProxy14TransformBeginERK11VtTransform",
    "_ZN17VtLocalSceneProxy12TransformEndEv",
    "_ZN17VtLocalSceneProxy9RadiosityEv",
    "_ZN17VtLocalSceneProxy6RenderEiiidddd",
};
const std::string proxy_constructor = "_ZN17VtLocalSceneProxyC1Ei";
const std::string proxy_destructor = "_ZN17VtLocalSceneProxyD1Ev";
const std::string proxy_deleting_destructor = "_ZN17VtLocalSceneProxyD0Ev";

const std::string list_constructor = "_ZN9VtArgListC1Eii";
const std::string list_destructor = "_ZN9VtArgListD1Ev";
const std::string list_add = "_ZN9VtArgList3AddERK9VtArgType";
const std::string list_count = "_ZNK9VtArgList5CountEv";
const std::string list_at = "_ZNK9VtArgList2AtEi";

const std::string value_copy = "_ZN9VtArgTypeC1ERKS_";
const std::string value_destructor = "_ZN9VtArgTypeD1Ev";
const std::string value_tag = "_ZNK9VtArgType3TagEv";

const std::vector<std::string> transform_operations = {
    "_ZN11VtTransform4ZeroEv",
    "_ZN11VtTransform8IdentityEv",
    "_ZN11VtTransform7ScalingERK8VtVectorILi3EE",
    "_ZN11VtTransform11TranslationERK8VtVectorILi3EE",
    "_ZN11VtTransform12AlignmentToZERK8VtVectorILi3EE",
    "_ZN11VtTransform11AlignmentToERK8VtVectorILi3EES3_",
    "_ZN11VtTransform15RotationAroundXEd",
    "_ZN11VtTransform15RotationAroundYEd",
    "_ZN11VtTransform15RotationAroundZEd",
    "_ZN11VtTransform18RotationAroundAxisERK8VtVectorILi3EES3_d",
    "_ZN11VtTransform14ReflectionOnXYEv",
};

const std::vector<std::string> bases = {
    "_Z13VtBezierBasisv",
    "_Z14VtBSplineBasisv",
    "_Z17VtCatmullRomBasisv",
    "_Z14VtHermiteBasisv",
};

/// A kind of value: its name, which is the accessor's, and how its constructor's parameter is spelled.
struct Kind {
    VtArgTag tag;
    std::string name;
    std::string parameter;

    std::string constructor() const { return "_ZN9VtArgTypeC1E" + parameter; }
    std::string accessor() const { return "_ZNK9VtArgType" + std::to_string(name.size()) + name + "Ev"; }
};

Kind array_kind(VtArgTag tag, const std::string &element_name, const std::string &element) {
    return {tag, element_name + "Array", "RK15VtInstanceArrayI" + element + "E"};
}

const Kind long_kind{VtArgTag::Long, "Long", "i"};
const Kind double_kind{VtArgTag::Double, "Double", "d"};
const Kind text_kind{VtArgTag::Text, "Text", "Pc"};
const Kind vector2_kind{VtArgTag::Vector2, "Vector2", "8VtVectorILi2EE"};
const Kind vector3_kind{VtArgTag::Vector3, "Vector3", "8VtVectorILi3EE"};
const Kind vector4_kind{VtArgTag::Vector4, "Vector4", "8VtVectorILi4EE"};
const Kind matrix2_kind{VtArgTag::Matrix2, "Matrix2", "8VtMatrixILi2EE"};
const Kind matrix3_kind{VtArgTag::Matrix3, "Matrix3", "8VtMatrixILi3EE"};
const Kind matrix4_kind{VtArgTag::Matrix4, "Matrix4", "8VtMatrixILi4EE"};
const Kind transform_kind{VtArgTag::Transform, "Transform", "11VtTransform"};
const Kind long_array_kind = array_kind(VtArgTag::LongArray, "Long", "i");
const Kind double_array_kind = array_kind(VtArgTag::DoubleArray, "Double", "d");
const Kind vector2_array_kind = array_kind(VtArgTag::Vector2Array, "Vector2", vector2_kind.parameter);
const Kind vector3_array_kind = array_kind(VtArgTag::Vector3Array, "Vector3", vector3_kind.parameter);
const Kind vector4_array_kind = array_kind(VtArgTag::Vector4Array, "Vector4", vector4_kind.parameter);
const Kind matrix2_array_kind = array_kind(VtArgTag::Matrix2Array, "Matrix2", matrix2_kind.parameter);
const Kind matrix3_array_kind = array_kind(VtArgTag::Matrix3Array, "Matrix3", matrix3_kind.parameter);
const Kind matrix4_array_kind = array_kind(VtArgTag::Matrix4Array, "Matrix4", matrix4_kind.parameter);
const Kind transform_array_kind = array_kind(VtArgTag::TransformArray, "Transform", transform_kind.parameter);

const Kind *const kinds[] = {
    &long_kind,          &double_kind,        &text_kind,          &vector2_kind,         &vector3_kind,
    &vector4_kind,       &matrix2_kind,       &matrix3_kind,       &matrix4_kind,         &transform_kind,
    &long_array_kind,    &double_array_kind,  &vector2_array_kind, &vector3_array_kind,   &vector4_array_kind,
    &matrix2_array_kind, &matrix3_array_kind, &matrix4_array_kind, &transform_array_kind,
};

/// An object of the library in a room of our own. The room is filled before, so that what the library does not set
/// cannot be zero by luck.
template <class Object> class Room {
  public:
    Room() { std::memset(room, 0xA5, sizeof room); }
    Room(const Room &) = delete;
    Room &operator=(const Room &) = delete;

    void *place() { return room; }
    Object &object() { return *std::launder(reinterpret_cast<Object *>(room)); }

  private:
    alignas(Object) unsigned char room[sizeof(Object)];
};

/// How a constructor of VtArgType takes its argument: what cannot be copied, by reference.
template <class Argument> using Parameter =
    std::conditional_t<std::is_copy_constructible_v<Argument>, Argument, const Argument &>;

/// A VtArgType that the library makes, and destroys when it goes out of scope.
class MadeValue {
  public:
    template <class Argument> MadeValue(const Library &of, const Kind &kind, const Argument &argument) : library(of) {
        library.function<void(void *, Parameter<Argument>)>(kind.constructor())(room.place(), argument);
    }
    MadeValue(const Library &of, const VtArgType &original) : library(of) {
        library.function<void(void *, const VtArgType &)>(value_copy)(room.place(), original);
    }
    ~MadeValue() {
        if (void *destroy = library.address(value_destructor))
            reinterpret_cast<void (*)(void *)>(destroy)(room.place());
    }

    const VtArgType &value() { return room.object(); }

  private:
    const Library &library;
    Room<VtArgType> room;
};

/// A VtArgList that the library makes, and destroys when it goes out of scope.
class MadeList {
  public:
    explicit MadeList(const Library &of) : library(of) {
        library.function<void(void *, VtLong, VtLong)>(list_constructor)(room.place(), 0, 0);
    }
    ~MadeList() {
        if (void *destroy = library.address(list_destructor))
            reinterpret_cast<void (*)(void *)>(destroy)(room.place());
    }

    VtArgList &list() { return room.object(); }

    /// Adds a value that is destroyed before anybody reads the list.
    template <class Argument> void add(const Kind &kind, const Argument &argument) {
        MadeValue made(library, kind, argument);
        library.function<void(VtArgList &, const VtArgType &)>(list_add)(list(), made.value());
    }

    VtLong count() { return library.function<VtLong(const VtArgList &)>(list_count)(list()); }
    const VtArgType &at(VtLong i) {
        return library.function<const VtArgType &(const VtArgList &, VtLong)>(list_at)(list(), i);
    }

  private:
    const Library &library;
    Room<VtArgList> room;
};

VtArgTag tag(const Library &library, const VtArgType &value) {
    return library.function<VtArgTag(const VtArgType &)>(value_tag)(value);
}

template <class Result> Result get(const Library &library, const Kind &kind, const VtArgType &value) {
    return library.function<Result(const VtArgType &)>(kind.accessor())(value);
}

template <class T> bool same_bits(const T &a, const T &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// A value whose doubles are all different.
template <class Value> Value sample() {
    std::array<double, sizeof(Value) / sizeof(double)> entries;
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i] = 0.1 + static_cast<double>(i);
    return std::bit_cast<Value>(entries);
}

/// For what is passed by value: the same bits come out, of the original and of a copy.
template <class Value>
void check_value(const Library &library, Report &report, const Kind &kind, std::initializer_list<Value> values) {
    using Result = std::conditional_t<std::is_class_v<Value>, const Value &, Value>;
    report.run("VtArgType(" + kind.name + ") holds what it was given", [&] {
        bool holds = true;
        for (const Value &value : values) {
            MadeValue made(library, kind, value);
            MadeValue copy(library, made.value());
            for (const VtArgType *held : {&made.value(), &copy.value()})
                holds = holds && tag(library, *held) == kind.tag &&
                        same_bits<Value>(get<Result>(library, kind, *held), value);
        }
        return holds;
    });
}

/// For arrays: what comes out reads as what went in. Whether it is the same container is the library's business.
template <class Element> void check_array(const Library &library, Report &report, const Kind &kind) {
    using Array = VtInstanceArray<Element>;
    report.run("VtArgType(" + kind.name + ") reads as the array it was given", [&] {
        bool holds = true;
        for (VtLong size : {0, 1, 7}) {
            Array array;
            array.SetSize(size);
            for (VtLong i = 0; i < size; ++i) {
                Element element;
                std::memset(static_cast<void *>(&element), i + 1, sizeof element);
                array.Store(i, element);
            }
            MadeValue made(library, kind, array);
            MadeValue copy(library, made.value());
            for (const VtArgType *value : {&made.value(), &copy.value()}) {
                const Array &found = get<const Array &>(library, kind, *value);
                holds = holds && tag(library, *value) == kind.tag && found.Size() == size;
                for (VtLong i = 0; holds && i < size; ++i)
                    holds = same_bits(found.At(i), array.At(i));
            }
        }
        return holds;
    });
}

/// A proxy as the module makes it; destroyed through its dispatch table.
class MadeProxy {
  public:
    MadeProxy(const Library &library, VtLong number) {
        auto *construct = library.function<void(void *, VtLong)>(proxy_constructor);
        void *room = ::operator new(sizeof(VtLocalSceneProxy));
        try {
            construct(room, number);
        } catch (...) {
            ::operator delete(room);
            throw;
        }
        proxy = static_cast<VtLocalSceneProxy *>(room);
    }
    MadeProxy(const MadeProxy &) = delete;
    MadeProxy &operator=(const MadeProxy &) = delete;
    ~MadeProxy() { delete proxy; }

    VtLocalSceneProxy *operator->() const { return proxy; }

    void *slot(std::size_t i) const {
        void **table;
        std::memcpy(&table, static_cast<const void *>(proxy), sizeof table);
        return table[i];
    }

  private:
    VtLocalSceneProxy *proxy;
};

/// Each operation once, through the dispatch table, on an empty scene.
void check_calls(const Library &library, Report &report, const std::string &with, const char *type, VtLong id) {
    using Proxy = VtLocalSceneProxy;
    MadeProxy proxy(library, 10240);
    const auto call = [&](const std::string &name, auto operation) {
        report.run(name + " returns, " + with, [&] {
            operation();
            return true;
        });
    };
    const auto create = [&](const std::string &name, VtLong (Proxy::*operation)(const char *, VtArgList &)) {
        call(name, [&] {
            MadeList parameters(library);
            ((proxy.operator->())->*operation)(type, parameters.list());
        });
    };

    create("NewCamera", &Proxy::NewCamera);
    create("NewImager", &Proxy::NewImager);
    create("NewInterface", &Proxy::NewInterface);
    create("NewInterior", &Proxy::NewInterior);
    create("NewLight", &Proxy::NewLight);
    create("NewMaterial", &Proxy::NewMaterial);
    create("NewObject", &Proxy::NewObject);
    create("NewPattern", &Proxy::NewPattern);
    call("NewTexture", [&] { proxy->NewTexture(type); });
    create("NewTrimmer", &Proxy::NewTrimmer);

    call("ImagerEnd", [&] { proxy->ImagerEnd(); });
    call("ImagerBegin", [&] { proxy->ImagerBegin(id); });
    call("InteriorEnd", [&] { proxy->InteriorEnd(); });
    call("InteriorBegin", [&] { proxy->InteriorBegin(id); });
    call("LightOn", [&] { proxy->LightOn(id); });
    call("LightOff", [&] { proxy->LightOff(id); });
    call("LightEnd", [&] { proxy->LightEnd(); });
    call("LightBegin", [&] { proxy->LightBegin(); });
    call("MaterialEnd", [&] { proxy->MaterialEnd(); });
    call("MaterialBegin", [&] { proxy->MaterialBegin(id); });
    call("AddObject", [&] { proxy->AddObject(id); });
    call("TransformEnd", [&] { proxy->TransformEnd(); });
    call("TransformBegin", [&] { proxy->TransformBegin(sample<VtTransform>()); });
    call("Radiosity", [&] { proxy->Radiosity(); });
    call("Render", [&] { proxy->Render(4, 3, 1, 0.0, 0.0, 1.0, 1.0); });
}

using TransformEntries = std::array<double, 16>;

/// Entry i is first + i.
TransformEntries old_entries(double first) {
    TransformEntries entries;
    for (std::size_t i = 0; i < 16; ++i)
        entries[i] = first + static_cast<double>(i);
    return entries;
}

/// How a transform operation takes its argument: a vector by reference, an angle by value.
template <class Argument> using TransformParameter =
    std::conditional_t<std::is_class_v<Argument>, const Argument &, Argument>;

/// Two checks on one operation, for each of the argument lists.
template <class... Arguments> void check_transform(const Library &library, Report &report, std::size_t operation,
                                                   const std::vector<std::tuple<Arguments...>> &argument_lists) {
    const std::string &symbol = transform_operations[operation];
    const std::string name = readable(symbol).substr(0, readable(symbol).find('('));
    const auto result = [&](const TransformEntries &old, const std::tuple<Arguments...> &arguments) {
        auto transform = std::bit_cast<VtTransform>(old);
        auto *set = library.function<void(VtTransform &, TransformParameter<Arguments>...)>(symbol);
        std::apply([&](const Arguments &...argument) { set(transform, argument...); }, arguments);
        return std::bit_cast<TransformEntries>(transform);
    };

    report.run(name + " sets all sixteen entries", [&] {
        const TransformEntries old = old_entries(-7777.25);
        bool holds = true;
        for (const auto &arguments : argument_lists) {
            const TransformEntries entries = result(old, arguments);
            for (std::size_t i = 0; i < 16; ++i)
                holds = holds && entries[i] != old[i] && std::isfinite(entries[i]);
        }
        return holds;
    });
    report.run(name + " does not read the old entries", [&] {
        bool holds = true;
        for (const auto &arguments : argument_lists)
            holds = holds && same_bits(result(old_entries(-7777.25), arguments),
                                       result(old_entries(std::numeric_limits<double>::quiet_NaN()), arguments));
        return holds;
    });
}

} // namespace

void check_exports(const Library &library, Report &report) {
    std::vector<std::string> symbols = {proxy_constructor, proxy_destructor, proxy_deleting_destructor};
    const auto add = [&](const std::vector<std::string> &more) {
        symbols.insert(symbols.end(), more.begin(), more.end());
    };
    add(proxy_slots);
    add({list_constructor, list_destructor, list_add, list_count, list_at, value_copy, value_destructor, value_tag});
    for (const Kind *kind : kinds)
        add({kind->constructor(), kind->accessor()});
    add(transform_operations);
    add(bases);

    for (const std::string &symbol : symbols)
        report.check("exports " + readable(symbol), library.address(symbol) != nullptr);
}

void check_values(const Library &library, Report &report) {
    using Longs = std::numeric_limits<VtLong>;
    using Doubles = std::numeric_limits<double>;
    check_value<VtLong>(library, report, long_kind, {0, 1, -1, Longs::max(), Longs::min()});
    check_value<double>(library, report, double_kind,
                        {0.0, -0.0, 0.1, Doubles::infinity(), Doubles::quiet_NaN(), Doubles::denorm_min()});
    report.run("VtArgType(Text) holds what it was given", [&] {
        bool holds = true;
        for (const char *text : {"", "radius",
                                 "gr\xc3\xb6\xc3\x9f"
                                 "e"}) {
            MadeValue made(library, text_kind, const_cast<char *>(text));
            MadeValue copy(library, made.value());
            for (const VtArgType *value : {&made.value(), &copy.value()})
                holds = holds && tag(library, *value) == VtArgTag::Text &&
                        std::strcmp(get<const char *>(library, text_kind, *value), text) == 0;
        }
        return holds;
    });
    check_value(library, report, vector2_kind, {sample<VtVector2>()});
    check_value(library, report, vector3_kind, {sample<VtVector3>()});
    check_value(library, report, vector4_kind, {sample<VtVector4>()});
    check_value(library, report, matrix2_kind, {sample<VtMatrix2>()});
    check_value(library, report, matrix3_kind, {sample<VtMatrix3>()});
    check_value(library, report, matrix4_kind, {sample<VtMatrix4>()});
    check_value(library, report, transform_kind, {sample<VtTransform>()});
    check_array<VtLong>(library, report, long_array_kind);
    check_array<double>(library, report, double_array_kind);
    check_array<VtVector2>(library, report, vector2_array_kind);
    check_array<VtVector3>(library, report, vector3_array_kind);
    check_array<VtVector4>(library, report, vector4_array_kind);
    check_array<VtMatrix2>(library, report, matrix2_array_kind);
    check_array<VtMatrix3>(library, report, matrix3_array_kind);
    check_array<VtMatrix4>(library, report, matrix4_array_kind);
    check_array<VtTransform>(library, report, transform_array_kind);
}

void check_list(const Library &library, Report &report) {
    report.run("VtArgList is empty when made", [&] {
        MadeList list(library);
        return list.count() == 0;
    });
    report.run("VtArgList keeps the values in order", [&] {
        MadeList list(library);
        bool holds = true;
        for (VtLong i = 0; i < 1000; ++i) {
            list.add(long_kind, i);
            holds = holds && list.count() == i + 1;
        }
        for (VtLong i = 0; i < 1000; ++i)
            holds = holds && get<VtLong>(library, long_kind, list.at(i)) == i;
        return holds;
    });
    report.run("VtArgList keeps values whose originals are gone", [&] {
        char text[] = "text";
        VtInstanceArray<double> array;
        array.Add(2.5);
        MadeList list(library);
        list.add(text_kind, static_cast<char *>(text));
        list.add(transform_kind, sample<VtTransform>());
        list.add(double_array_kind, array);
        list.add(vector3_kind, sample<VtVector3>());
        return std::strcmp(get<const char *>(library, text_kind, list.at(0)), "text") == 0 &&
               same_bits(get<const VtTransform &>(library, transform_kind, list.at(1)), sample<VtTransform>()) &&
               get<const VtInstanceArray<double> &>(library, double_array_kind, list.at(2)).At(0) == 2.5 &&
               same_bits(get<const VtVector3 &>(library, vector3_kind, list.at(3)), sample<VtVector3>());
    });
}

void check_proxy(const Library &library, Report &report) {
    for (VtLong number : {10240, 1, 0, -1, std::numeric_limits<VtLong>::max(), std::numeric_limits<VtLong>::min()})
        report.run("VtLocalSceneProxy(" + std::to_string(number) + ") is made and destroyed", [&] {
            MadeProxy proxy(library, number);
            return true;
        });
    report.run("VtLocalSceneProxy has its destructors in slots 0 and 1", [&] {
        MadeProxy proxy(library, 10240);
        return proxy.slot(0) == library.address(proxy_destructor) &&
               proxy.slot(1) == library.address(proxy_deleting_destructor);
    });
    for (std::size_t i = 0; i < proxy_slots.size(); ++i)
        report.run("slot " + std::to_string(i + 2) + " is " + readable(proxy_slots[i]), [&] {
            MadeProxy proxy(library, 10240);
            return proxy.slot(i + 2) == library.address(proxy_slots[i]);
        });
    report.run("two scenes live side by side", [&] {
        MadeProxy first(library, 10240);
        {
            MadeProxy second(library, 10240);
            first->LightBegin();
            second->LightBegin();
        }
        first->LightEnd();
        return true;
    });
    check_calls(library, report, "without a type", nullptr, 1);
    check_calls(library, report, "with an unknown type", "no such type", std::numeric_limits<VtLong>::min());
}

void check_transforms(const Library &library, Report &report) {
    const VtVector3 zero, x(1, 0, 0), z(0, 0, 1), down(0, 0, -1), any(1, -2, 0.5);
    using None = std::tuple<>;
    using One = std::tuple<VtVector3>;
    using Two = std::tuple<VtVector3, VtVector3>;
    using Angle = std::tuple<double>;
    using Axis = std::tuple<VtVector3, VtVector3, double>;
    const std::vector<Angle> angles = {0.0, 30.0, -90.0, 180.0, 720.0, 1e6};

    check_transform(library, report, 0, std::vector{None()});
    check_transform(library, report, 1, std::vector{None()});
    check_transform(library, report, 2, std::vector{One(any), One(zero)});
    check_transform(library, report, 3, std::vector{One(any), One(zero)});
    check_transform(library, report, 4, std::vector{One(any), One(zero), One(x), One(z), One(down)});
    check_transform(library, report, 5,
                    std::vector{Two(any, x), Two(x, x), Two(z, down), Two(z, z), Two(zero, x), Two(x, zero)});
    check_transform(library, report, 6, angles);
    check_transform(library, report, 7, angles);
    check_transform(library, report, 8, angles);
    check_transform(library, report, 9, std::vector{Axis(any, x, 30), Axis(zero, any, -90), Axis(any, zero, 30)});
    check_transform(library, report, 10, std::vector{None()});
}

void check_bases(const Library &library, Report &report) {
    for (const std::string &symbol : bases)
        report.run(readable(symbol) + " is finite and always the same", [&] {
            auto *basis = library.function<VtMatrix4()>(symbol);
            const VtMatrix4 first = basis();
            bool finite = true;
            for (int r = 0; r < 4; ++r)
                for (int c = 0; c < 4; ++c)
                    finite = finite && std::isfinite(first[r][c]);
            return finite && same_bits(first, basis());
        });
}
