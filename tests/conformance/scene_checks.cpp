// Checks of a VtLocalSceneProxy's life and of its dispatch table.
#include "checks.h"
#include "memory_use.h"
#include "objects.h"
#include "use.h"

#include <exception>
#include <limits>
#include <thread>

namespace {

void check_room(const Library &library) {
    Room<VtLocalSceneProxy> room;
    library.function<void(void *, VtLong)>(symbols::proxy_constructor)(room.place(), 10240);
    room.require_untouched_surroundings("the constructor");
    use_everything(library, room.object());
    room.require_untouched_surroundings("an operation");
    library.function<void(void *)>(symbols::proxy_destructor)(room.place());
    room.require_untouched_surroundings("the destructor");
}

void check_two_scenes(const Library &library) {
    MadeScene first(library);
    {
        MadeScene second(library);
        first->LightBegin();
        second->LightBegin();
        use_everything(library, *second);
    }
    use_everything(library, *first);
}

// One call at a time, but each from another thread.
void check_threads(const Library &library) {
    std::exception_ptr thrown;
    const auto in_a_thread = [&](auto work) {
        std::thread([&] {
            try {
                work();
            } catch (...) {
                thrown = std::current_exception();
            }
        }).join();
        if (thrown)
            std::rethrow_exception(thrown);
    };
    std::unique_ptr<MadeScene> scene;
    in_a_thread([&] { scene = std::make_unique<MadeScene>(library); });
    in_a_thread([&] { use_everything(library, **scene); });
    in_a_thread([&] { render(**scene); });
    in_a_thread([&] { scene.reset(); });
}

} // namespace

Group scene_checks() {
    using Limits = std::numeric_limits<VtLong>;
    Group group;
    for (const VtLong number : {10240, 1, 0, -1, Limits::max(), Limits::min()})
        group.push_back({"VtLocalSceneProxy(" + std::to_string(number) + ") is made, used and destroyed",
                         [number](const Library &library) {
                             const MadeScene scene(library, number);
                             use_everything(library, *scene);
                         }});
    group.push_back({"VtLocalSceneProxy stays in its room", check_room});
    group.push_back({"VtLocalSceneProxy has its destructors in slots 0 and 1", [](const Library &library) {
                         const MadeScene scene(library);
                         require(scene.slot(0) == library.address(symbols::proxy_destructor) &&
                                     scene.slot(1) == library.address(symbols::proxy_deleting_destructor),
                                 "something else is there");
                     }});
    for (std::size_t i = 0; i < symbols::proxy_slots.size(); ++i) {
        const std::string &symbol = symbols::proxy_slots[i];
        group.push_back(
            {"slot " + std::to_string(i + 2) + " is " + readable(symbol), [i, symbol](const Library &library) {
                 const MadeScene scene(library);
                 require(scene.slot(i + 2) == library.address(symbol), "something else is there");
             }});
    }
    group.push_back({"two scenes live side by side", check_two_scenes});
    group.push_back({"a scene takes one call after the other from different threads", check_threads});
    group.push_back({"VtLocalSceneProxy gives its memory back",
                     [](const Library &library) { require_no_growth([&] { const MadeScene scene(library); }); }});
    group.push_back({"VtLocalSceneProxy gives the memory of what was created in it back", [](const Library &library) {
                         require_no_growth([&] {
                             const MadeScene scene(library);
                             use_everything(library, *scene);
                         });
                     }});
    return group;
}
