// Every operation of a scene.
#include "use.h"

#include "objects.h"

using Proxy = VtLocalSceneProxy;

const std::vector<Creation> creations = {
    {"NewCamera", &Proxy::NewCamera},     {"NewImager", &Proxy::NewImager},   {"NewInterface", &Proxy::NewInterface},
    {"NewInterior", &Proxy::NewInterior}, {"NewLight", &Proxy::NewLight},     {"NewMaterial", &Proxy::NewMaterial},
    {"NewObject", &Proxy::NewObject},     {"NewPattern", &Proxy::NewPattern}, {"NewTrimmer", &Proxy::NewTrimmer},
};

const std::vector<PlainOperation> plain_operations = {
    {"ImagerEnd", &Proxy::ImagerEnd}, {"InteriorEnd", &Proxy::InteriorEnd}, {"LightBegin", &Proxy::LightBegin},
    {"LightEnd", &Proxy::LightEnd},   {"MaterialEnd", &Proxy::MaterialEnd}, {"TransformEnd", &Proxy::TransformEnd},
    {"Radiosity", &Proxy::Radiosity},
};

const std::vector<OperationWithId> operations_with_id = {
    {"ImagerBegin", &Proxy::ImagerBegin}, {"InteriorBegin", &Proxy::InteriorBegin}, {"LightOn", &Proxy::LightOn},
    {"LightOff", &Proxy::LightOff},       {"MaterialBegin", &Proxy::MaterialBegin}, {"AddObject", &Proxy::AddObject},
};

void render(VtLocalSceneProxy &scene) { scene.Render(4, 3, 1, 0.0, 0.0, 1.0, 1.0); }

void use_everything(const Library &library, VtLocalSceneProxy &scene) {
    for (const Creation &creation : creations) {
        MadeList list(library);
        list.add_name("name");
        list.add_text("a text of more than fifteen characters");
        list.add_name("points");
        list.add_array_of<VtVector3>({1, 2, 4}, 7);
        const VtLong id = (scene.*creation.call)("no such type", list.list());
        for (const OperationWithId &operation : operations_with_id)
            (scene.*operation.call)(id);
    }
    scene.NewTexture("no such file");
    scene.TransformBegin(sample<VtTransform>());
    for (const PlainOperation &operation : plain_operations)
        (scene.*operation.call)();
    render(scene);
}
