// A libVantor that lacks almost everything. The destructor of the scene brings its dispatch table, whose operations
// nobody defines, so that the linker cannot open the library; without it, the library opens and has Zero alone.
#include "renderer/vt_local_scene_proxy.h"

#ifdef WITH_A_SCENE
VtLocalSceneProxy::~VtLocalSceneProxy() = default;
#endif

void VtTransform::Zero() { *this = {}; }
