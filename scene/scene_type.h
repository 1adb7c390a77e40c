// The Python type scene, for code that makes such objects.
#pragma once

#include "interpreter/object.h"
#include "renderer/vt_local_scene_proxy.h"

using sceneobject = Record<VtLocalSceneProxy>;

extern PyTypeObject scenetype;

/// A new scene whose proxy is made with n; a new reference, or null with an error set.
PyObject *newsceneobject(VtLong n);

/// The module function.
PyObject *scene_new(PyObject *module, PyObject *arguments);
