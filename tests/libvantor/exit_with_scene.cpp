// A program that ends with two rendered scenes alive: one that nobody destroys, one that goes with the static objects.
#include "renderer/vt_local_scene_proxy.h"

#include <cstdio>
#include <memory>

// As an interpreter may leave them: reachable, with blocks open.
VtLocalSceneProxy *never_destroyed = nullptr;
std::unique_ptr<VtLocalSceneProxy> destroyed_late;

namespace {

// Whether a picture was written.
bool render(VtLocalSceneProxy &scene) {
    char name[] = "name";
    char path[] = "exit_with_scene.png";
    VtArgList none(0, 0);
    VtArgList file(0, 0);
    file.Add(VtArgType(name));
    file.Add(VtArgType(path));
    scene.NewCamera("perspective", none);
    scene.AddObject(scene.NewObject("sphere", none));
    scene.ImagerBegin(scene.NewImager("file", file));
    scene.Render(16, 16, 4, 0, 0, 1, 1);
    scene.MaterialBegin(scene.NewMaterial("diffuse", none));
    return std::remove(path) == 0;
}

} // namespace

int main() {
    never_destroyed = new VtLocalSceneProxy(1);
    destroyed_late = std::make_unique<VtLocalSceneProxy>(1);
    return render(*never_destroyed) && render(*destroyed_late) ? 0 : 1;
}
