// Random calls with random parameter lists: nothing crashes, every id is a new one.
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/words/vocabulary.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <set>

namespace {

using scripted::List;
using scripted::Scene;

// Mostly words of the vocabulary, so that values reach the entities, with numbers from the edges of what they can be.
class Dice {
  public:
    explicit Dice(unsigned seed) : engine(seed) {}

    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }

    double number() {
        const double edges[] = {0,   -0.0, 1,    -1,    0.5,      45,        1e-9, 1e-300,
                                1e9, -1e9, 1e18, 1e300, INFINITY, -INFINITY, NAN};
        return below(3) ? below(2000) / 100.0 - 10 : edges[below(std::size(edges))];
    }
    VtVector3 vector() { return {number(), number(), number()}; }

    /// Mostly a name or a word of the type, if there is one.
    std::string text(const vantor::Type *type) {
        if (!type || !below(6)) {
            static const char *const texts[] = {"", "fo", "position", "\xff\xfe"};
            return texts[below(std::size(texts))];
        }
        const vantor::Parameter &parameter = type->parameters[at_random(type->parameters)];
        if (parameter.choices.empty() || below(2))
            return std::string(parameter.name);
        return std::string(parameter.choices[at_random(parameter.choices)]);
    }
    /// Null for an unknown one.
    const vantor::Type *type(vantor::EntityKind kind) {
        const auto types = vantor::words_of(kind).types;
        return types.empty() || !below(10) ? nullptr : &types[at_random(types)];
    }

  private:
    template <class Elements> std::size_t at_random(const Elements &elements) {
        return static_cast<std::size_t>(below(static_cast<int>(elements.size())));
    }

    std::mt19937 engine;
};

// The arrays that a list refers to.
struct Arrays {
    scripted::Points points;
    scripted::Indices indices;
    VtInstanceArray<VtVector2> vector2s;
    VtInstanceArray<double> doubles;

    explicit Arrays(Dice &dice) {
        for (int i = dice.below(12); i > 0; --i)
            points.Add(dice.vector());
        for (int i = dice.below(12); i > 0; --i)
            indices.Add(dice.below(14) - 1);
        vector2s.SetSize(dice.below(4) - 1);
        for (int i = dice.below(6); i > 0; --i)
            doubles.Add(dice.number());
    }
};

void fill(List &list, Dice &dice, const vantor::Type *type, const Arrays &arrays) {
    for (int i = dice.below(9); i > 0; --i) {
        if (dice.below(8))
            list.add(dice.text(type));
        switch (dice.below(11)) {
        case 0:
            list.add(dice.below(40) - 2);
            break;
        case 1:
            list.add(dice.text(type));
            break;
        case 2:
            list.add(arrays.points);
            break;
        case 3:
            list.add(arrays.indices);
            break;
        case 4:
            list.add(arrays.vector2s);
            break;
        case 5:
            list.add(dice.number());
            break;
        case 6:
            list.add(VtMatrix4());
            break;
        case 7:
            list.add(arrays.doubles);
            break;
        case 8:
            list.add(VtVector2(dice.number(), dice.number()));
            break;
        default:
            list.add(dice.vector());
        }
    }
}

VtTransform random_transform(Dice &dice) {
    VtTransform transform;
    switch (dice.below(4)) {
    case 0:
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                transform[r][c] = dice.number();
        break;
    case 1:
        transform.Scaling(dice.vector());
        break;
    case 2:
        transform.RotationAroundAxis(dice.vector(), dice.vector(), dice.number());
        break;
    default:
        transform.Translation(dice.vector());
    }
    return transform;
}

TEST(RandomLists, NothingCrashes) {
    setenv("VANTOR_DIAGNOSTICS", "silent", 1);
    using vantor::EntityKind;
    struct Creation {
        EntityKind kind;
        VtLong (VtLocalSceneProxy::*create)(const char *, VtArgList &);
    };
    const Creation creations[] = {{EntityKind::Camera, &VtLocalSceneProxy::NewCamera},
                                  {EntityKind::Imager, &VtLocalSceneProxy::NewImager},
                                  {EntityKind::Interface, &VtLocalSceneProxy::NewInterface},
                                  {EntityKind::Interior, &VtLocalSceneProxy::NewInterior},
                                  {EntityKind::Light, &VtLocalSceneProxy::NewLight},
                                  {EntityKind::Material, &VtLocalSceneProxy::NewMaterial},
                                  {EntityKind::Object, &VtLocalSceneProxy::NewObject},
                                  {EntityKind::Pattern, &VtLocalSceneProxy::NewPattern},
                                  {EntityKind::Trimmer, &VtLocalSceneProxy::NewTrimmer}};
    for (unsigned seed = 0; seed < 60; ++seed) {
        Dice dice(seed);
        Scene scene;
        std::set<VtLong> ids;
        scene.camera({0, 0, 9}, {0, 0, 0}, 60);
        ids.insert(1);
        for (int step = 0; step < 150; ++step) {
            const VtLong id = dice.below(60) - 2;
            switch (dice.below(16)) {
            case 0:
                scene.MaterialBegin(id);
                break;
            case 1:
                scene.MaterialEnd();
                break;
            case 2:
                scene.LightBegin();
                break;
            case 3:
                scene.LightEnd();
                break;
            case 4:
                scene.TransformBegin(random_transform(dice));
                break;
            case 5:
                scene.TransformEnd();
                break;
            case 6:
                scene.InteriorBegin(id);
                scene.InteriorEnd();
                break;
            case 7:
                dice.below(2) ? scene.LightOn(id) : scene.LightOff(id);
                break;
            case 8:
            case 9:
            case 10:
                scene.AddObject(id);
                break;
            default: {
                const Arrays arrays(dice);
                List list;
                const Creation &creation = creations[dice.below(std::size(creations))];
                const vantor::Type *type = dice.type(creation.kind);
                fill(list, dice, type, arrays);
                // The names of types are literals, each with its zero.
                EXPECT_TRUE(ids.insert((scene.*creation.create)(type ? type->name.data() : nullptr, list)).second);
            }
            }
        }
        for (const scripted::Rgb &pixel : scene.render(12, 12, 2).values)
            EXPECT_TRUE(std::isfinite(pixel[0]) && std::isfinite(pixel[1]) && std::isfinite(pixel[2]));
        scene.Render(dice.below(20) - 2, dice.below(20) - 2, dice.below(4) - 1, dice.number(), dice.number(),
                     dice.number(), dice.number());
    }
    unsetenv("VANTOR_DIAGNOSTICS");
}

} // namespace
