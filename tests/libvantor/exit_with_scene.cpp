// A program that ends with a scene alive, which was rendered and has blocks open.
#include "renderer/vt_local_scene_proxy.h"

#include <cstdio>

int main() {
    auto *scene = new VtLocalSceneProxy(1);
    char name[] = "name";
    char path[] = "exit_with_scene.png";
    VtArgList none(0, 0);
    VtArgList file(0, 0);
    file.Add(VtArgType(name));
    file.Add(VtArgType(path));
    scene->NewCamera("perspective", none);
    scene->AddObject(scene->NewObject("sphere", none));
    scene->ImagerBegin(scene->NewImager("file", file));
    scene->Render(16, 16, 4, 0, 0, 1, 1);
    scene->MaterialBegin(12345);
    std::remove(path);
    // Reachable on purpose, as an interpreter may leave it.
    static VtLocalSceneProxy *alive = nullptr;
    alive = scene;
    return alive ? 0 : 1;
}
