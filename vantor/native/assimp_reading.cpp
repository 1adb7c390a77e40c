// Reading model files of many formats, by Assimp.
#include "vantor/native/assimp_reading.h"

#include "vantor/native/model_dicts.h"

#include <array>
#include <assimp/Importer.hpp>
#include <assimp/camera.h>
#include <assimp/light.h>
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cstdint>
#include <vector>

namespace {

static_assert(sizeof(ai_real) == sizeof(float) && sizeof(aiVector3D) == 3 * sizeof(float));

PyObject *text(const aiString &string) {
    return PyUnicode_DecodeUTF8(string.data, static_cast<Py_ssize_t>(string.length), "replace");
}

PyObject *triple(const aiVector3D &v) { return Py_BuildValue("ddd", double{v.x}, double{v.y}, double{v.z}); }
PyObject *triple(const aiColor3D &c) { return Py_BuildValue("ddd", double{c.r}, double{c.g}, double{c.b}); }

PyObject *vectors(const aiVector3D *numbers, unsigned count) {
    return array_of("vector3array", "f", numbers, count, 3);
}

// What is left after polygons have been cut into triangles: points and lines, too, which have no surface.
PyObject *triangles_of(const aiMesh &mesh) {
    std::vector<std::int32_t> indices;
    indices.reserve(3 * std::size_t{mesh.mNumFaces});
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        if (mesh.mFaces[i].mNumIndices == 3)
            for (unsigned corner = 0; corner < 3; ++corner)
                indices.push_back(static_cast<std::int32_t>(mesh.mFaces[i].mIndices[corner]));
    if (indices.empty())
        Py_RETURN_NONE;
    return array_of("intarray", "i", indices.data(), indices.size() / 3, 3);
}

PyObject *uvs_of(const aiMesh &mesh) {
    std::vector<std::array<float, 2>> uvs(mesh.mNumVertices);
    for (std::size_t i = 0; i < uvs.size(); ++i)
        uvs[i] = {mesh.mTextureCoords[0][i].x, mesh.mTextureCoords[0][i].y};
    return array_of("vector2array", "f", uvs.data(), uvs.size(), 2);
}

PyObject *colors_of(const aiMesh &mesh) {
    std::vector<std::array<float, 3>> colors(mesh.mNumVertices);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const aiColor4D &color = mesh.mColors[0][i];
        colors[i] = {color.r, color.g, color.b};
    }
    return array_of("vector3array", "f", colors.data(), colors.size(), 3);
}

PyObject *mesh_of(const aiMesh &mesh) {
    Dict result;
    result.set("name", text(mesh.mName));
    result.set("material", PyLong_FromUnsignedLong(mesh.mMaterialIndex));
    const bool has_points = mesh.mNumVertices > 0 && mesh.mVertices;
    result.set("triangles", has_points ? triangles_of(mesh) : (Py_INCREF(Py_None), Py_None));
    if (has_points) {
        result.set("points", vectors(mesh.mVertices, mesh.mNumVertices));
        if (mesh.mNormals)
            result.set("normals", vectors(mesh.mNormals, mesh.mNumVertices));
        if (mesh.mTextureCoords[0])
            result.set("uvs", uvs_of(mesh));
        if (mesh.mColors[0])
            result.set("colors", colors_of(mesh));
    }
    return result.release();
}

// Assimp multiplies columns, this renderer rows.
PyObject *rows_of(const aiMatrix4x4 &m) {
    return Py_BuildValue("((dddd)(dddd)(dddd)(dddd))", double{m.a1}, double{m.b1}, double{m.c1}, double{m.d1},
                         double{m.a2}, double{m.b2}, double{m.c2}, double{m.d2}, double{m.a3}, double{m.b3},
                         double{m.c3}, double{m.d3}, double{m.a4}, double{m.b4}, double{m.c4}, double{m.d4});
}

struct PlacedNode {
    const aiNode *node;
    aiMatrix4x4 to_world;
};

// All nodes, those above before those below. Without recursion: files decide how deep they go.
std::vector<PlacedNode> nodes_of(const aiScene &scene) {
    std::vector<PlacedNode> nodes;
    if (scene.mRootNode)
        nodes.push_back({scene.mRootNode, scene.mRootNode->mTransformation});
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const PlacedNode above = nodes[i];
        for (unsigned child = 0; child < above.node->mNumChildren; ++child) {
            const aiNode *node = above.node->mChildren[child];
            nodes.push_back({node, above.to_world * node->mTransformation});
        }
    }
    return nodes;
}

PyObject *instances_of(const std::vector<PlacedNode> &nodes, unsigned meshes) {
    Reference list = checked(PyList_New(0));
    for (const PlacedNode &placed : nodes)
        for (unsigned i = 0; i < placed.node->mNumMeshes; ++i) {
            if (placed.node->mMeshes[i] >= meshes)
                continue;
            const Reference pair = checked(Py_BuildValue("IN", placed.node->mMeshes[i], rows_of(placed.to_world)));
            if (PyList_Append(list.get(), pair.get()) < 0)
                throw PythonError();
        }
    return list.release();
}

PyObject *transform_of(const std::vector<PlacedNode> &nodes, const aiString &name) {
    for (const PlacedNode &placed : nodes)
        if (placed.node->mName == name)
            return rows_of(placed.to_world);
    return rows_of(aiMatrix4x4());
}

// Sets what the file says, and nothing else.
class MaterialDict {
  public:
    explicit MaterialDict(const aiMaterial &of_material) : material(of_material) {
        aiString name;
        material.Get(AI_MATKEY_NAME, name);
        dict.set("name", text(name));
    }
    void number(const char *key, const char *name, unsigned type, unsigned index) {
        float value;
        if (material.Get(name, type, index, value) == aiReturn_SUCCESS)
            dict.set(key, PyFloat_FromDouble(double{value}));
    }
    bool color(const char *key, const char *name, unsigned type, unsigned index) {
        aiColor3D value;
        if (material.Get(name, type, index, value) != aiReturn_SUCCESS)
            return false;
        dict.set(key, triple(value));
        return true;
    }
    bool texture(const char *key, aiTextureType type) {
        aiString path;
        if (material.GetTexture(type, 0, &path) != aiReturn_SUCCESS || path.length == 0)
            return false;
        dict.set(key, text(path));
        return true;
    }
    PyObject *release() { return dict.release(); }

  private:
    const aiMaterial &material;
    Dict dict;
};

PyObject *material_of(const aiMaterial &material) {
    MaterialDict result(material);
    if (!result.color("base_color", AI_MATKEY_BASE_COLOR))
        result.color("base_color", AI_MATKEY_COLOR_DIFFUSE);
    result.color("emissive", AI_MATKEY_COLOR_EMISSIVE);
    result.number("emissive_intensity", AI_MATKEY_EMISSIVE_INTENSITY);
    result.number("metallic", AI_MATKEY_METALLIC_FACTOR);
    result.number("roughness", AI_MATKEY_ROUGHNESS_FACTOR);
    result.number("shininess", AI_MATKEY_SHININESS);
    result.number("opacity", AI_MATKEY_OPACITY);
    result.number("transmission", AI_MATKEY_TRANSMISSION_FACTOR);
    result.number("ior", AI_MATKEY_REFRACTI);
    if (!result.texture("base_color_texture", aiTextureType_BASE_COLOR))
        result.texture("base_color_texture", aiTextureType_DIFFUSE);
    result.texture("normal_texture", aiTextureType_NORMALS);
    return result.release();
}

// A picture file inside of the model file; None for one of bare pixels.
PyObject *texture_of(const aiTexture &texture) {
    if (texture.mHeight != 0)
        Py_RETURN_NONE;
    return PyBytes_FromStringAndSize(reinterpret_cast<const char *>(texture.pcData), texture.mWidth);
}

PyObject *camera_of(const aiCamera &camera, const std::vector<PlacedNode> &nodes) {
    Dict result;
    result.set("name", text(camera.mName));
    result.set("position", triple(camera.mPosition));
    result.set("direction", triple(camera.mLookAt));
    result.set("up", triple(camera.mUp));
    result.set("horizontal_fov", PyFloat_FromDouble(double{camera.mHorizontalFOV}));
    result.set("transform", transform_of(nodes, camera.mName));
    return result.release();
}

PyObject *light_of(const aiLight &light, const std::vector<PlacedNode> &nodes) {
    const char *type = light.mType == aiLightSource_DIRECTIONAL ? "distant"
                       : light.mType == aiLightSource_POINT     ? "point"
                       : light.mType == aiLightSource_SPOT      ? "spot"
                                                                : "other";
    Dict result;
    result.set("name", text(light.mName));
    result.set("type", PyUnicode_FromString(type));
    result.set("color", triple(light.mColorDiffuse));
    result.set("position", triple(light.mPosition));
    result.set("direction", triple(light.mDirection));
    result.set("inner_angle", PyFloat_FromDouble(double{light.mAngleInnerCone}));
    result.set("outer_angle", PyFloat_FromDouble(double{light.mAngleOuterCone}));
    result.set("transform", transform_of(nodes, light.mName));
    return result.release();
}

PyObject *model_of(const aiScene &scene) {
    const std::vector<PlacedNode> nodes = nodes_of(scene);
    Dict model;
    model.set("meshes", list_of(scene.mNumMeshes, [&](unsigned i) { return mesh_of(*scene.mMeshes[i]); }));
    model.set("instances", instances_of(nodes, scene.mNumMeshes));
    model.set("materials", list_of(scene.mNumMaterials, [&](unsigned i) { return material_of(*scene.mMaterials[i]); }));
    model.set("textures", list_of(scene.mNumTextures, [&](unsigned i) { return texture_of(*scene.mTextures[i]); }));
    model.set("cameras", list_of(scene.mNumCameras, [&](unsigned i) { return camera_of(*scene.mCameras[i], nodes); }));
    model.set("lights", list_of(scene.mNumLights, [&](unsigned i) { return light_of(*scene.mLights[i], nodes); }));
    return model.release();
}

} // namespace

PyObject *read_with_assimp(const char *path, std::string &why) {
    Assimp::Importer importer;
    const aiScene *scene = nullptr;
    PyThreadState *state = PyEval_SaveThread();
    try {
        scene = importer.ReadFile(path, aiProcess_Triangulate);
        if (!scene)
            why = importer.GetErrorString();
    } catch (const std::exception &exception) {
        why = exception.what();
    }
    PyEval_RestoreThread(state);
    return scene ? model_of(*scene) : nullptr;
}
