// A program that ends with two rendered scenes alive: one that nobody destroys, one that goes with the static objects.
#include "renderer/vt_local_scene_proxy.h"

#include <cstdio>
#include <memory>
#include <unistd.h>

// As an interpreter may leave them: reachable, with blocks open.
VtLocalSceneProxy *never_destroyed = nullptr;
std::unique_ptr<VtLocalSceneProxy> destroyed_late;

namespace {

char path[] = "exit_with_scene.png";

// A material that shows the picture.
VtLong textured(VtLocalSceneProxy &scene) {
    char texture[] = "texture";
    VtArgList image(0, 0);
    image.Add(VtArgType(texture));
    image.Add(VtArgType(scene.NewTexture(path)));
    char interface[] = "interface";
    char color[] = "color";
    VtArgList none(0, 0);
    VtArgList surface(0, 0);
    surface.Add(VtArgType(interface));
    surface.Add(VtArgType(scene.NewInterface("diffuse", none)));
    surface.Add(VtArgType(color));
    surface.Add(VtArgType(scene.NewPattern("image", image)));
    return scene.NewMaterial("surface", surface);
}

// Whether a picture was written.
bool render(VtLocalSceneProxy &scene, bool has_texture) {
    char name[] = "name";
    VtArgList none(0, 0);
    VtArgList file(0, 0);
    file.Add(VtArgType(name));
    file.Add(VtArgType(path));
    scene.NewCamera("perspective", none);
    scene.NewLight("environment", none);
    scene.MaterialBegin(has_texture ? textured(scene) : scene.NewMaterial("diffuse", none));
    scene.AddObject(scene.NewObject("sphere", none));
    scene.AddObject(scene.NewObject("quad", none));
    scene.MaterialEnd();
    scene.ImagerBegin(scene.NewImager("file", file));
    scene.Radiosity();
    scene.Render(16, 16, 4, 0, 0, 1, 1);
    scene.MaterialBegin(scene.NewMaterial("diffuse", none));
    return access(path, R_OK) == 0;
}

} // namespace

int main() {
    never_destroyed = new VtLocalSceneProxy(50);
    destroyed_late = std::make_unique<VtLocalSceneProxy>(50);
    // The second scene's texture is the first one's picture.
    const bool are_good = render(*never_destroyed, false) && render(*destroyed_late, true);
    return are_good && std::remove(path) == 0 ? 0 : 1;
}
