// The symbols of the interface.
#include "symbols.h"

#include "kinds.h"

namespace symbols {

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

const std::vector<std::string> bases = {
    "_Z13VtBezierBasisv",
    "_Z14VtBSplineBasisv",
    "_Z17VtCatmullRomBasisv",
    "_Z14VtHermiteBasisv",
};

std::vector<std::string> all() {
    std::vector<std::string> found = {proxy_constructor, proxy_destructor, proxy_deleting_destructor};
    const auto add = [&](const std::vector<std::string> &more) { found.insert(found.end(), more.begin(), more.end()); };
    add(proxy_slots);
    add({list_constructor, list_destructor, list_add, list_count, list_at, value_copy, value_destructor, value_tag});
    add({text_kind().constructor(), text_kind().accessor()});
    for_each_element_type([&]<class Type>(const Type &) {
        for (const Kind &kind : {value_kind<Type>(), array_kind<Type>()})
            add({kind.constructor(), kind.accessor()});
    });
    add({transform_zero, transform_identity, transform_scaling, transform_translation, transform_alignment_to_z,
         transform_alignment_to, transform_rotation_x, transform_rotation_y, transform_rotation_z,
         transform_rotation_around_axis, transform_reflection});
    add(bases);
    return found;
}

} // namespace symbols
