// Reading model files of many formats, by Assimp.
#include "vantor/native/assimp_reading.h"

#include "vantor/native/assimp_materials.h"

#include <algorithm>
#include <array>
#include <assimp/Importer.hpp>
#include <assimp/camera.h>
#include <assimp/light.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <assimp/version.h>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

namespace {

static_assert(sizeof(ai_real) == sizeof(float) && sizeof(aiVector3D) == 3 * sizeof(float));

PyObject *vectors(const aiVector3D *numbers, unsigned count) {
    return array_of("vector3array", "f", numbers, count, 3);
}

bool has_area(const aiVector3D &a, const aiVector3D &b, const aiVector3D &c) {
    const ai_real square = ((b - a) ^ (c - a)).SquareLength();
    return square >= std::numeric_limits<ai_real>::min() && square <= std::numeric_limits<ai_real>::max();
}

bool is_triangle(const aiMesh &mesh, const aiFace &face) {
    const auto point = [&](unsigned corner) { return mesh.mVertices[face.mIndices[corner]]; };
    const auto exists = [&](unsigned corner) { return face.mIndices[corner] < mesh.mNumVertices; };
    return face.mNumIndices == 3 && exists(0) && exists(1) && exists(2) && has_area(point(0), point(1), point(2));
}

// What is left after polygons have been cut into triangles: points and lines, too, which have no surface. Neither have
// triangles without area, which exporters leave in many files.
PyObject *triangles_of(const aiMesh &mesh) {
    std::vector<std::int32_t> indices;
    indices.reserve(3 * std::size_t{mesh.mNumFaces});
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        if (is_triangle(mesh, mesh.mFaces[i]))
            for (unsigned corner = 0; corner < 3; ++corner)
                indices.push_back(static_cast<std::int32_t>(mesh.mFaces[i].mIndices[corner]));
    if (indices.empty())
        Py_RETURN_NONE;
    return array_of("intarray", "i", indices.data(), indices.size() / 3, 3);
}

// Where the file has none that is of use, the faces at the point tell it.
PyObject *normals_of(const aiMesh &mesh) {
    const auto is_usable = [](const aiVector3D &n) {
        const ai_real square = n.SquareLength();
        return square >= std::numeric_limits<ai_real>::min() && square <= std::numeric_limits<ai_real>::max();
    };
    std::vector<aiVector3D> normals(mesh.mNormals, mesh.mNormals + mesh.mNumVertices);
    if (std::ranges::all_of(normals, is_usable))
        return vectors(normals.data(), mesh.mNumVertices);
    std::vector<aiVector3D> sums(normals.size());
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace &face = mesh.mFaces[i];
        if (!is_triangle(mesh, face))
            continue;
        const aiVector3D *points = mesh.mVertices;
        const aiVector3D &a = points[face.mIndices[0]];
        const aiVector3D normal = (points[face.mIndices[1]] - a) ^ (points[face.mIndices[2]] - a);
        for (unsigned corner = 0; corner < 3; ++corner)
            sums[face.mIndices[corner]] += normal;
    }
    for (std::size_t i = 0; i < normals.size(); ++i)
        if (!is_usable(normals[i]))
            normals[i] = is_usable(sums[i]) ? sums[i] : aiVector3D(0, 0, 1);
    return vectors(normals.data(), mesh.mNumVertices);
}

PyObject *uvs_of(const aiMesh &mesh, const aiVector3D *coordinates, const UvMap &map) {
    std::vector<std::array<float, 2>> uvs(mesh.mNumVertices);
    for (std::size_t i = 0; i < uvs.size(); ++i)
        uvs[i] = map.apply(coordinates[i]);
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

PyObject *mesh_of(const aiMesh &mesh, const aiScene &scene) {
    Dict result;
    result.set("name", text(mesh.mName));
    const bool has_material = mesh.mMaterialIndex < scene.mNumMaterials && !is_made_up(scene, mesh.mMaterialIndex);
    result.set("material", PyLong_FromLong(has_material ? static_cast<long>(mesh.mMaterialIndex) : -1));
    const bool has_points = mesh.mNumVertices > 0 && mesh.mVertices;
    result.set("triangles", has_points ? triangles_of(mesh) : (Py_INCREF(Py_None), Py_None));
    if (has_points) {
        result.set("points", vectors(mesh.mVertices, mesh.mNumVertices));
        if (mesh.mNormals)
            result.set("normals", normals_of(mesh));
        const UvMap map = has_material ? uv_map_of(*scene.mMaterials[mesh.mMaterialIndex], is_gltf(scene)) : UvMap();
        const bool has_set = map.set < AI_MAX_NUMBER_OF_TEXTURECOORDS && mesh.mTextureCoords[map.set];
        if (const aiVector3D *coordinates = mesh.mTextureCoords[has_set ? map.set : 0])
            result.set("uvs", uvs_of(mesh, coordinates, map));
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

// A picture file inside of the model file; None for one of bare pixels.
PyObject *texture_of(const aiTexture &texture) {
    if (texture.mHeight != 0)
        Py_RETURN_NONE;
    return PyBytes_FromStringAndSize(reinterpret_cast<const char *>(texture.pcData), texture.mWidth);
}

constexpr double degrees(double radians) { return radians * 180 / std::numbers::pi; }

// The vertical angle of a glTF camera, of what Assimp calls the horizontal one: that is the vertical one times the
// aspect in Assimp 5.2, and goes by the tangents in 5.4.
double vertical_angle(double horizontal, double aspect) {
    const bool is_by_tangents = std::pair(aiGetVersionMajor(), aiGetVersionMinor()) >= std::pair(5U, 3U);
    return is_by_tangents ? 2 * std::atan(std::tan(horizontal / 2) / aspect) : horizontal / aspect;
}

PyObject *camera_of(const aiCamera &camera, const std::vector<PlacedNode> &nodes, bool is_of_gltf) {
    Dict result;
    const bool is_perspective = camera.mOrthographicWidth == 0;
    const double aspect = camera.mAspect > 0 ? double{camera.mAspect} : 1;
    result.set("name", text(camera.mName));
    result.set("type", PyUnicode_FromString(is_perspective ? "perspective" : "orthographic"));
    // Assimp copies a glTF node's translation here, and the node moves it once more.
    result.set("position", triple(is_of_gltf ? aiVector3D() : camera.mPosition));
    result.set("direction", triple(camera.mLookAt));
    result.set("up", triple(camera.mUp));
    if (is_perspective) {
        const double angle = camera.mHorizontalFOV;
        result.set("fov", PyFloat_FromDouble(degrees(is_of_gltf ? vertical_angle(angle, aspect) : angle)));
        result.set("fov_axis", PyUnicode_FromString(is_of_gltf ? "vertical" : "horizontal"));
    } else {
        result.set("height", PyFloat_FromDouble(2 * double{camera.mOrthographicWidth} / aspect));
    }
    result.set("transform", transform_of(nodes, camera.mName));
    return result.release();
}

PyObject *light_of(const aiLight &light, const std::vector<PlacedNode> &nodes, bool is_of_gltf) {
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
    // From the axis; glTF has them so, and Assimp hands those on. All others go from side to side.
    const double from_axis = is_of_gltf ? 1 : 0.5;
    result.set("inner_angle", PyFloat_FromDouble(from_axis * degrees(double{light.mAngleInnerCone})));
    result.set("outer_angle", PyFloat_FromDouble(from_axis * degrees(double{light.mAngleOuterCone})));
    result.set("transform", transform_of(nodes, light.mName));
    return result.release();
}

PyObject *model_of(const aiScene &scene) {
    const std::vector<PlacedNode> nodes = nodes_of(scene);
    const bool is_of_gltf = is_gltf(scene);
    Dict model;
    model.set("meshes", list_of(scene.mNumMeshes, [&](unsigned i) { return mesh_of(*scene.mMeshes[i], scene); }));
    model.set("instances", instances_of(nodes, scene.mNumMeshes));
    model.set("materials",
              list_of(scene.mNumMaterials, [&](unsigned i) { return material_of(*scene.mMaterials[i], is_of_gltf); }));
    model.set("textures", list_of(scene.mNumTextures, [&](unsigned i) { return texture_of(*scene.mTextures[i]); }));
    model.set("cameras",
              list_of(scene.mNumCameras, [&](unsigned i) { return camera_of(*scene.mCameras[i], nodes, is_of_gltf); }));
    model.set("lights",
              list_of(scene.mNumLights, [&](unsigned i) { return light_of(*scene.mLights[i], nodes, is_of_gltf); }));
    return model.release();
}

} // namespace

PyObject *read_with_assimp(const char *path, std::string &why) {
    Assimp::Importer importer;
    const aiScene *scene = nullptr;
    PyThreadState *state = PyEval_SaveThread();
    try {
        scene = importer.ReadFile(path, aiProcess_Triangulate);
        if (scene && !is_gltf(*scene))
            scene = importer.ApplyPostProcessing(aiProcess_TransformUVCoords);
        if (!scene)
            why = importer.GetErrorString();
    } catch (const std::exception &exception) {
        why = exception.what();
    }
    PyEval_RestoreThread(state);
    return scene ? model_of(*scene) : nullptr;
}
