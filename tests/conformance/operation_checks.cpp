// Checks of the operations that create nothing: any order, any id, any size of a picture.
#include "checks.h"
#include "objects.h"
#include "use.h"

#include <limits>
#include <utility>

namespace {

using Limits = std::numeric_limits<VtLong>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// All operations one after the other, in the order of the slots, as no sensible script would call them.
void check_any_order(const Library &library) {
    const MadeScene scene(library);
    for (int round = 0; round < 2; ++round) {
        for (const OperationWithId &operation : operations_with_id)
            ((*scene).*operation.call)(1);
        for (const PlainOperation &operation : plain_operations)
            ((*scene).*operation.call)();
        scene->TransformBegin(sample<VtTransform>());
        render(*scene);
    }
}

// The transform that TransformBegin is given lasts until it returns.
void check_transform_not_kept(const Library &library) {
    const MadeScene scene(library);
    GuardedMemory room(sizeof(VtTransform));
    const auto *transform = new (room.data()) VtTransform(sample<VtTransform>());
    room.make_read_only();
    scene->TransformBegin(*transform);
    room.seal();
    scene->AddObject(1);
    scene->TransformEnd();
    render(*scene);
}

} // namespace

Group operation_checks() {
    Group group;
    for (const PlainOperation &operation : plain_operations)
        group.push_back({operation.name + " returns on an empty scene", [operation](const Library &library) {
                             const MadeScene scene(library);
                             ((*scene).*operation.call)();
                             ((*scene).*operation.call)();
                         }});
    for (const OperationWithId &operation : operations_with_id)
        for (const VtLong id : {0, 1, -1, 1000000, Limits::max(), Limits::min()})
            group.push_back({operation.name + "(" + std::to_string(id) + ") returns, and Render after it",
                             [operation, id](const Library &library) {
                                 const MadeScene scene(library);
                                 ((*scene).*operation.call)(id);
                                 scene->AddObject(1);
                                 render(*scene);
                             }});
    group.push_back({"TransformBegin returns for any transform", [](const Library &library) {
                         const MadeScene scene(library);
                         VtTransform transform;
                         for (const double entry : {0.0, 1.0, 1e300, infinity, not_a_number}) {
                             transform[1][2] = entry;
                             scene->TransformBegin(transform);
                         }
                         scene->AddObject(1);
                         render(*scene);
                     }});
    group.push_back({"TransformBegin keeps nothing that belongs to the script", check_transform_not_kept});
    group.push_back({"all operations return in any order", check_any_order});

    struct Size {
        VtLong width, height, samples;
    };
    for (const Size &size :
         {Size{4, 3, 1}, Size{0, 0, 0}, Size{0, 3, 1}, Size{4, 0, 1}, Size{4, 3, 0}, Size{-4, 3, 1}, Size{4, -3, 1},
          Size{4, 3, -1}, Size{-4, -3, -1}, Size{Limits::min(), Limits::min(), Limits::min()}})
        group.push_back({"Render(" + std::to_string(size.width) + ", " + std::to_string(size.height) + ", " +
                             std::to_string(size.samples) + ") returns",
                         [size](const Library &library) {
                             const MadeScene scene(library);
                             scene->Render(size.width, size.height, size.samples, 0.0, 0.0, 1.0, 1.0);
                         }});
    group.push_back({"Render returns for any window", [](const Library &library) {
                         const MadeScene scene(library);
                         scene->Render(4, 3, 1, 1.0, 1.0, 0.0, 0.0);
                         scene->Render(4, 3, 1, 0.5, 0.5, 0.5, 0.5);
                         scene->Render(4, 3, 1, -1.0, -1.0, 2.0, 2.0);
                         scene->Render(4, 3, 1, -infinity, -infinity, infinity, infinity);
                         scene->Render(4, 3, 1, not_a_number, not_a_number, not_a_number, not_a_number);
                     }});
    return group;
}
