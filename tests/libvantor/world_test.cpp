// World: what a scene keeps between passes, and that pictures do not depend on it.
#include "libvantor/passes/render.h"
#include "libvantor/radiosity/radiosity.h"
#include "tests/libvantor/description.h"
#include "tests/libvantor/interrupts.h"

#include <cstdlib>
#include <functional>

namespace {

using scripted::Description;
using scripted::errors_of;
using scripted::Pixels;
using scripted::Scene;
using vantor::EntityKind;

/// A description with its world.
class Kept : public Description {
  public:
    const vantor::World &world() {
        const vantor::Interrupt interrupt;
        return worlds.current(registry, interrupt);
    }
    long objects() { return world().tracer.builds().objects; }
    long top_levels() { return world().tracer.builds().top_levels; }

    vantor::WorldCache worlds;
};

TEST(World, ASecondPassBuildsNothing) {
    Kept scene;
    scene.sheet(100);
    scene.make(EntityKind::Light, "environment");
    const vantor::World *first = &scene.world();
    EXPECT_EQ(scene.objects(), 1);
    EXPECT_EQ(scene.top_levels(), 1);
    EXPECT_EQ(&scene.world(), first);
    EXPECT_EQ(scene.objects(), 1);
    EXPECT_EQ(scene.top_levels(), 1);
}

TEST(World, ACameraChangesOnlyTheView) {
    Kept scene;
    scene.sheet(100);
    for (const double x : {1.0, 2.0}) {
        scene.make(EntityKind::Camera, "perspective", "position", VtVector3(x, 0, 0));
        const vantor::View view = vantor::view_of(scene.world(), scene.registry);
        EXPECT_EQ(view.camera.position().x, static_cast<float>(x));
        EXPECT_EQ(scene.objects(), 1);
        EXPECT_EQ(scene.top_levels(), 1);
    }
}

TEST(World, AnAddedObjectBuildsOnlyItselfAndTheTopLevel) {
    Kept scene;
    scene.sheet(100);
    scene.sheet(100);
    EXPECT_EQ(scene.objects(), 2);
    EXPECT_EQ(scene.top_levels(), 1);
    scene.box(); // small: in the top level
    EXPECT_EQ(scene.objects(), 2);
    EXPECT_EQ(scene.top_levels(), 2);
    scene.sheet(100);
    EXPECT_EQ(scene.objects(), 3);
    EXPECT_EQ(scene.top_levels(), 3);
    EXPECT_EQ(scene.world().placements.size(), 4u);
}

TEST(World, AnInstanceMoreBuildsOnlyTheTopLevel) {
    Kept scene;
    scripted::Points points;
    scripted::Indices triangles;
    scripted::fill_with_sheet(100, points, triangles);
    const VtLong mesh = scene.make(EntityKind::Object, "mesh", "points", points, "triangles", triangles);
    scene.registry.add_object(mesh);
    scene.registry.add_object(mesh);
    EXPECT_EQ(scene.objects(), 1);
    scene.registry.add_object(mesh);
    EXPECT_EQ(scene.objects(), 1);
    EXPECT_EQ(scene.top_levels(), 2);
}

TEST(World, SwitchingALightBuildsNoSurface) {
    Kept scene;
    scene.sheet(100);
    const VtLong light = scene.make(EntityKind::Light, "point");
    const auto is_lit = [&] {
        vantor::LightSample sample;
        return scene.world().lights.sample({{1, 2, 3}}, 0.5, {0.5f, 0.5f}, sample);
    };
    EXPECT_TRUE(is_lit());
    scene.registry.switch_light(light, false);
    EXPECT_FALSE(is_lit());
    scene.registry.switch_light(light, true);
    EXPECT_TRUE(is_lit());
    EXPECT_EQ(scene.objects(), 1);
    EXPECT_EQ(scene.top_levels(), 1);
}

TEST(World, RadiosityAndThenRenderBuildOnce) {
    Kept scene;
    scene.sheet(100);
    scene.make(EntityKind::Light, "point", "position", VtVector3(0.5, 0.5, 1));
    scene.make(EntityKind::Camera, "perspective", "position", VtVector3(0.5, 0.5, 2));
    const std::string path = scripted::path_of("built_once.exr");
    scene.make(EntityKind::Imager, "file", "name", path);
    vantor::Radiosity radiosity(100);
    radiosity.pass(scene.registry, scene.worlds, scene.report);
    const vantor::IrradianceCache *indirect = radiosity.result(scene.registry, scene.report);
    ASSERT_TRUE(indirect);
    vantor::render({8, 8, 1, 0, 0, 1, 1}, scene.registry, scene.worlds, indirect, scene.report);
    EXPECT_EQ(scripted::read_exr(path).values.size(), 64u);
    EXPECT_EQ(scene.objects(), 1);
    EXPECT_EQ(scene.top_levels(), 1);
}

// What an interrupted build has finished is there for the next one.
TEST(World, AnInterruptedBuildIsBuiltUpon) {
    const auto describe = [](Kept &scene) {
        for (int i = 0; i < 3; ++i)
            scene.sheet(100);
        scene.box();
    };
    Kept whole;
    describe(whole);
    const long polls = scripted::polls_of([&] { whole.world(); });
    const scripted::InterruptHandler handler;
    for (long at = 1; at <= polls; at += 1 + polls / 10) {
        Kept scene;
        describe(scene);
        {
            const vantor::InterruptAtPoll interrupt(at);
            // With threads of its own, Embree may ask less often at another time.
            try {
                scene.world();
                EXPECT_LT(interrupt.polls(), at);
            } catch (const vantor::Interrupted &) {
            }
        }
        EXPECT_EQ(scene.objects(), 3) << at << " of " << polls;
        EXPECT_EQ(scene.top_levels(), 1);
        EXPECT_EQ(scene.world().tracer.radius(), whole.world().tracer.radius());
    }
}

/// Steps of a script, of which any may come before or after a picture.
using Steps = std::vector<std::function<void(Scene &)>>;

// The last picture, with or without one after each step before.
Pixels picture_of(const Steps &steps, bool draws_between) {
    Scene scene;
    scene.camera({0.6, 1.4, 4}, {0, 0, 0}, 50);
    Pixels pixels;
    for (const auto &step : steps) {
        step(scene);
        if (draws_between || &step == &steps.back())
            pixels = scene.render(48, 32, 4);
    }
    return pixels;
}

VtTransform moved(double x, double y, double z) {
    VtTransform m;
    m.Translation({x, y, z});
    return m;
}

VtLong sheet(Scene &scene, int side) {
    scripted::Points points;
    scripted::Indices triangles;
    scripted::fill_with_sheet(side, points, triangles);
    return scene.object("mesh", "points", points, "triangles", triangles);
}

TEST(World, StepByStepOrAtOnceThePictureIsTheSame) {
    VtLong mesh = 0;
    VtLong lamp = 0;
    const auto place = [](Scene &scene, VtLong object, const VtTransform &transform) {
        scene.TransformBegin(transform);
        scene.AddObject(object);
        scene.TransformEnd();
    };
    const Steps steps = {
        [&](Scene &scene) { scene.light("environment"); },
        // Distant lights go by the size of all that is there.
        [&](Scene &scene) {
            scene.light("distant", "irradiance", 2.0);
            lamp = scene.light("point", "position", VtVector3(1, 2, 3), "intensity", 4.0);
        },
        [&](Scene &scene) { scene.AddObject(scene.object("box")); },
        // With a side where the box has one.
        [&](Scene &scene) { scene.AddObject(scene.object("box", "min", VtVector3(0, -0.5, -0.5))); },
        [&](Scene &scene) { scene.AddObject(sheet(scene, 100)); },
        // A copy until it is placed once more.
        [&](Scene &scene) {
            mesh = sheet(scene, 75);
            place(scene, mesh, moved(-1.5, 0, 0));
        },
        [&](Scene &scene) { place(scene, mesh, moved(-1.5, 0.8, -1)); },
        [&](Scene &scene) {
            VtInstanceArray<VtTransform> places;
            for (const double x : {-1.0, 0.0, 1.0})
                places.Add(moved(x, 1, -1));
            scene.AddObject(
                scene.object("instances", "object", scene.object("sphere", "radius", 0.3), "places", places));
        },
        [&](Scene &scene) {
            VtTransform stretched;
            stretched.Scaling({0.4, 0.8, -0.4});
            place(scene, scene.object("sphere"), stretched);
            place(scene, scene.object("cone"), moved(1.5, 0, 0));
            place(scene, sheet(scene, 100), stretched);
        },
        // The first body changes how all is built.
        [&](Scene &scene) {
            scripted::List haze("sigma_t", 0.5, "albedo", 0.5);
            scene.InteriorBegin(scene.NewInterior("homogeneous", haze));
            scene.MaterialBegin(scene.surface("dielectric"));
            place(scene, scene.object("sphere", "radius", 0.6), moved(0, 0.2, 1));
            scene.MaterialEnd();
            scene.InteriorEnd();
        },
        [&](Scene &scene) { scene.LightOff(lamp); },
        [&](Scene &scene) { scene.LightOn(lamp); },
    };
    for (std::size_t count = 1; count <= steps.size(); ++count) {
        const Steps first(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(count));
        const Pixels at_once = picture_of(first, false);
        ASSERT_EQ(at_once.values.size(), 48u * 32u);
        EXPECT_EQ(picture_of(first, true).values, at_once.values) << "after step " << count;
    }
}

// A mesh that is placed only through instances; at every moment, an interrupt is reported as one and does no harm.
TEST(World, AnInterruptedBuildOfInstancesIsNoMistake) {
    setenv("VANTOR_DIAGNOSTICS", "strict", 1);
    const auto describe = [](Scene &scene) {
        scene.camera({0.5, 0.5, 3}, {0.5, 0.5, 0}, 40);
        scene.light("environment");
        VtInstanceArray<VtTransform> places;
        places.Add(moved(0, 0, 0));
        places.Add(moved(0.1, 0, -1));
        scene.AddObject(scene.object("instances", "object", sheet(scene, 100), "places", places));
    };
    Scene whole;
    describe(whole);
    const Pixels wanted = whole.render(16, 16, 1);
    Kept counted;
    counted.sheet(100);
    const long polls = scripted::polls_of([&] { counted.world(); });
    ASSERT_GT(polls, 3);
    const scripted::InterruptHandler handler;
    for (const long at : {1L, 2L, 3L, polls / 2}) {
        Scene scene;
        describe(scene);
        {
            const vantor::InterruptAtPoll interrupt(at);
            EXPECT_EQ(errors_of([&] { scene.render(16, 16, 1); }),
                      "vantor: render: interrupted; no picture is written\n")
                << at << " of " << polls;
        }
        EXPECT_EQ(errors_of([&] { EXPECT_EQ(scene.render(16, 16, 1).values, wanted.values); }), "");
    }
    unsetenv("VANTOR_DIAGNOSTICS");
}

VtTransform placed_at(const VtVector3 &position, const VtVector3 &scale) {
    VtTransform m;
    m.Scaling(scale);
    for (int i = 0; i < 3; ++i)
        m[3][i] = position[i];
    return m;
}

// Bodies of every kind of geometry, some of which lie in others.
void add_bodies(Kept &scene) {
    vantor::Registry &registry = scene.registry;
    registry.begin_interior(scene.make(EntityKind::Interior, "homogeneous"));
    const VtLong box = scene.make(EntityKind::Object, "box");
    const VtLong sphere = scene.make(EntityKind::Object, "sphere");
    scripted::Indices cut;
    cut.Add(static_cast<VtLong>(scene.make(EntityKind::Trimmer, "plane")));
    const VtLong half = scene.make(EntityKind::Object, "sphere", "trimmers", cut);
    const VtLong objects[] = {box, sphere, half, scene.make(EntityKind::Object, "torus"),
                              scene.make(EntityKind::Object, "cone")};
    for (int i = 0; i < 80; ++i) {
        const double x = 0.31 * (i % 9);
        registry.begin_transform(placed_at({x, 0.17 * (i % 5), 0.23 * (i % 7)}, {0.5 + 0.01 * i, 0.6, 0.7}));
        registry.add_object(objects[i % 5]);
        registry.end_transform();
    }
    VtInstanceArray<VtTransform> places;
    for (int i = 0; i < 10; ++i)
        places.Add(placed_at({0.3 * i + 0.0371, 0.1, 0.2}, {1, 0.4, 1}));
    scene.place("instances", "object", static_cast<int>(box), "places", places);
    scene.place("instances", "object", static_cast<int>(objects[3]), "places", places);
    registry.end_interior();
}

TEST(World, AllHitsAreThoseOfOneRayAfterTheOther) {
    Kept scene;
    add_bodies(scene);
    const vantor::Tracer &tracer = scene.world().tracer;
    ASSERT_TRUE(tracer.can_intersect_all());
    std::size_t found = 0;
    // Of surfaces that lie together, the ray after the other may find one.
    const auto lies_near = [](const vantor::Hit &a, const vantor::Hit &b) { return b.distance - a.distance < 1e-4f; };
    for (int i = 0; i < 300; ++i) {
        const vantor::Vec3 direction = vantor::normalized({1, 0.3f - 0.0023f * static_cast<float>(i), 0.11f});
        vantor::Ray ray{{-1, 0.0043f * static_cast<float>(i), 0.07f}, direction};
        const std::vector<vantor::Hit> all = tracer.intersect_all(ray);
        if (std::ranges::adjacent_find(all, lies_near) != all.end())
            continue;
        for (const vantor::Hit &wanted : all) {
            vantor::Hit hit;
            tracer.intersect({&ray, 1}, false, {&hit, 1});
            ASSERT_TRUE(hit.exists);
            EXPECT_EQ(hit.placement, wanted.placement);
            EXPECT_EQ(hit.instance, wanted.instance);
            EXPECT_LT(vantor::length(hit.point - wanted.point), 5e-3f); // where it is grazed
            EXPECT_GT(dot(hit.geometric_normal, wanted.geometric_normal), 0.99f);
            ray.origin = hit.origin_towards(direction);
        }
        vantor::Hit beyond;
        tracer.intersect({&ray, 1}, false, {&beyond, 1});
        EXPECT_FALSE(beyond.exists);
        found += all.size();
    }
    EXPECT_GT(found, 1000u);
}

// The medium of the innermost body counts, and of each body that is left the one around it.
TEST(World, APointMayLieInManyBodies) {
    Kept scene;
    constexpr int bodies = 200;
    for (int i = 0; i < bodies; ++i) {
        if (i == 0 || i == 150)
            scene.registry.begin_interior(scene.make(EntityKind::Interior, "homogeneous"));
        scene.place("sphere", "radius", 1 + 0.01 * i);
    }
    const vantor::World &world = scene.world();
    vantor::MediumStack media = vantor::media_at({0.1f, 0.2f, 0.3f}, world.tracer, world.placements);
    for (int i = 0; i < bodies; ++i) {
        ASSERT_EQ(media.innermost(), i < 150 ? 0 : 1) << i;
        media.leave(media.innermost());
    }
    EXPECT_EQ(media.innermost(), vantor::MediumStack::none);
}

} // namespace
