// VtLocalSceneProxy: one scene in a renderer. The class that every libVantor implements.
#pragma once

#include "algebra/vt_base.h"
#include "algebra/vt_transform.h"
#include "renderer/vt_arg_list.h"

/// A scene: what a script describes, and what is rendered.
///
/// Creation and destruction. Each scene object of a script owns exactly one proxy. It is made with the global operator
/// new when the script makes the scene object, and destroyed once, through the virtual destructor, when that object is
/// released: possibly while the interpreter shuts down, possibly with blocks still open. The destructor may also never
/// come, where a process ends without releasing its objects. What is to be written is written by Render().
///
/// Threads. Calls come one at a time: each returns before the next begins, because the caller holds the interpreter's
/// lock. They come from any thread of the script, and one scene may be made, used and destroyed by different ones. A
/// library may use threads of its own inside a call, but must not call back into the interpreter.
///
/// Order. Any operation may be called at any time, as often as a script likes. The module keeps no state besides the
/// pointer to the proxy: whether ids exist, begins and ends pair up, or anything is there to render, is for the library
/// to check. Between the constructor of a VtArgList and its creation call, calls for other lists and other scenes can
/// come; see VtArgList.
///
/// Ids. The library hands them out and gets them back unchanged. The module passes any number that a script gives.
///
/// Types. A type is a null-terminated UTF-8 text of any length, or a null pointer where a script gave None. It lives
/// until the operation returns, and so does the parameter list and everything that its values point to. A creation
/// operation may change its list, but neither the texts nor the arrays in it.
///
/// Errors. The module looks at no result but the ids, and hands those to the script whatever they are. It neither
/// catches nor converts exceptions. In an ordinary Python process nobody else does either: one that leaves an operation
/// ends the process (std::terminate) with nothing unwound, so that no destructor runs, not even that of the parameter
/// list. Only where a C++ program embeds the interpreter and catches further out, the frames in between are unwound and
/// the list is destroyed. A library should report what is wrong with a scene in its own way and go on.
///
/// Layout. A proxy is its dispatch pointer and one pointer to the library's own record, whatever the library: the
/// module allocates it and constructs exactly this class. It calls every operation through the dispatch table, so that
/// this order of slots is the interface. Nothing is ever inserted. Further virtual operations would never be called,
/// and those of a derived class never reached.
class VT_API VtLocalSceneProxy {
  public:
    /// The number is the script's argument to scene(), or 10240. The module gives it no meaning; it is
    /// meant as the budget of patches of a radiosity pass, and without effect in a library that has none.
    VT_API explicit VtLocalSceneProxy(VtLong);
    VtLocalSceneProxy(const VtLocalSceneProxy &) = delete;
    VtLocalSceneProxy &operator=(const VtLocalSceneProxy &) = delete;

    VT_API virtual ~VtLocalSceneProxy();

    // Create: make an entity of the given type from the parameters, and return its id.

    VT_API virtual VtLong NewCamera(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewImager(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewInterface(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewInterior(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewLight(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewMaterial(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewObject(const char *type, VtArgList &parameters);
    VT_API virtual VtLong NewPattern(const char *type, VtArgList &parameters);
    /// The odd one out: a type and no parameters.
    VT_API virtual VtLong NewTexture(const char *type);
    VT_API virtual VtLong NewTrimmer(const char *type, VtArgList &parameters);

    // Begin and end: bracket other calls. A light block takes no id.

    VT_API virtual void ImagerBegin(VtLong id);
    VT_API virtual void ImagerEnd();
    VT_API virtual void InteriorBegin(VtLong id);
    VT_API virtual void InteriorEnd();
    VT_API virtual void LightOn(VtLong id);
    VT_API virtual void LightOff(VtLong id);
    VT_API virtual void LightBegin();
    VT_API virtual void LightEnd();
    VT_API virtual void MaterialBegin(VtLong id);
    VT_API virtual void MaterialEnd();

    // Place: put an object into the scene, within the open blocks.

    VT_API virtual void AddObject(VtLong id);
    /// The transform is a copy of the script's, and lives until the operation returns.
    VT_API virtual void TransformBegin(const VtTransform &transform);
    VT_API virtual void TransformEnd();

    // Passes.

    VT_API virtual void Radiosity();
    /// Three integers and four reals (0, 0, 1, 1 where the script gives none), passed as they are. In the libVantor
    /// that ships with the module: width and height of the picture in pixels, samples for each pixel, and the window
    /// to render as fractions of the picture, x0, y0, x1, y1 from its upper left corner. Any of them may be zero,
    /// negative, NaN or infinite.
    VT_API virtual void Render(VtLong width, VtLong height, VtLong samples, double x0, double y0, double x1, double y1);

  protected:
    void *record; ///< The library's own.
};

static_assert(sizeof(VtLocalSceneProxy) == 2 * sizeof(void *));
