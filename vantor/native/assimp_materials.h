// Materials of model files that Assimp reads.
#pragma once

#include "vantor/native/model_dicts.h"

#include <array>
#include <assimp/scene.h>

inline PyObject *text(const aiString &string) {
    return PyUnicode_DecodeUTF8(string.data, static_cast<Py_ssize_t>(string.length), "replace");
}
inline PyObject *triple(const aiVector3D &v) { return Py_BuildValue("ddd", double{v.x}, double{v.y}, double{v.z}); }
inline PyObject *triple(const aiColor3D &c) { return Py_BuildValue("ddd", double{c.r}, double{c.g}, double{c.b}); }

bool is_gltf(const aiScene &scene);

/// Whether a material stands for none: Assimp gives one to every mesh.
bool is_made_up(const aiScene &scene, unsigned material);

/// Which texture coordinates a mesh has, and what becomes of them.
struct UvMap {
    unsigned set = 0;
    aiUVTransform transform{};
    bool is_of_gltf = false;

    bool operator==(const UvMap &other) const {
        return set == other.set && transform.mTranslation == other.transform.mTranslation &&
               transform.mScaling == other.transform.mScaling && transform.mRotation == other.transform.mRotation;
    }
    std::array<float, 2> apply(const aiVector3D &uv) const;
};

/// Those of a mesh of the material. Meshes of the renderer have one set: that of the material's first picture counts.
UvMap uv_map_of(const aiMaterial &material, bool is_of_gltf);

/// A dict of what the file says, and nothing else.
PyObject *material_of(const aiMaterial &material, bool is_of_gltf);
