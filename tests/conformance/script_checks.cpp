// Checks of a whole script, in a process of its own that ends as an interpreter does.
#include "checks.h"
#include "child.h"
#include "objects.h"
#include "use.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

// A pyramid under a lamp, as in examples/another_renderer/pyramid.py, and a small picture of it.
void run_script(const Library &library, VtLocalSceneProxy &scene) {
    const auto create = [&](auto operation, const char *type, auto fill) {
        MadeList list(library);
        fill(list);
        return (scene.*operation)(type, list.list());
    };
    create(&VtLocalSceneProxy::NewCamera, "perspective", [](MadeList &list) {
        list.add_name("position");
        list.add(VtVector3(3, 2, 4));
        list.add_name("target");
        list.add(VtVector3(0, 0.5, 0));
    });
    const VtLong imager = create(&VtLocalSceneProxy::NewImager, "file", [](MadeList &list) {
        list.add_name("name");
        list.add_text("pyramid.png");
    });
    VtInstanceArray<VtVector3> points;
    for (const VtVector3 &point :
         {VtVector3(-1, 0, -1), VtVector3(1, 0, -1), VtVector3(1, 0, 1), VtVector3(-1, 0, 1), VtVector3(0, 1.5, 0)})
        points.Add(point);
    VtInstanceArray<VtLong> triangles;
    for (const VtLong index : {0, 1, 2, 0, 2, 3, 1, 0, 4, 2, 1, 4, 3, 2, 4, 0, 3, 4})
        triangles.Add(index);
    const VtLong pyramid = create(&VtLocalSceneProxy::NewObject, "mesh", [&](MadeList &list) {
        list.add_name("points");
        list.add_array(points);
        list.add_name("triangles");
        list.add_array(triangles);
    });
    const VtLong lamp = create(&VtLocalSceneProxy::NewLight, "point", [](MadeList &list) {
        list.add_name("position");
        list.add(VtVector3(2, 4, 3));
        list.add_name("intensity");
        list.add(VtVector3(20, 20, 20));
    });
    scene.ImagerBegin(imager);
    scene.LightOn(lamp);
    VtTransform transform;
    library.function<void(VtTransform &, const VtVector3 &)>(symbols::transform_translation)(transform, {0, 0.2, 0});
    scene.TransformBegin(transform);
    scene.AddObject(pyramid);
    scene.TransformEnd();
    render(scene);
    scene.ImagerEnd();
}

// Does the work in a process of its own and an empty folder; it must then end without an error.
template <class Work> void require_normal_end(Work work) {
    std::string folder = std::filesystem::temp_directory_path() / "conformance-XXXXXX";
    require(mkdtemp(folder.data()) != nullptr, "cannot make the folder " + folder);
    std::cout.flush();
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (chdir(folder.c_str()) == 0)
            work();
        std::exit(0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    std::filesystem::remove_all(folder);
    require(process > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0, how_it_ended(status));
}

} // namespace

// The checks leave the library as it was opened: only the processes that they start use it.
Group script_checks() {
    return {
        {"a first script runs to its end",
         [](const Library &library) {
             require_normal_end([&] {
                 const MadeScene scene(library);
                 run_script(library, *scene);
                 run_script(library, *scene);
             });
         }},
        {"a script that never releases its scene runs to its end",
         [](const Library &library) {
             require_normal_end([&] {
                 static const auto *scene = new MadeScene(library);
                 run_script(library, **scene);
             });
         }},
    };
}
