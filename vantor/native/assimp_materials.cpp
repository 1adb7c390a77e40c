// Materials of model files that Assimp reads.
#include "vantor/native/assimp_materials.h"

#include <assimp/commonMetaData.h>
#include <assimp/material.h>
#include <cmath>
#include <string_view>

namespace {

// What a material can have a picture for.
struct TextureUse {
    const char *name;
    const char *wrap;
    aiTextureType types[2]; // the first that there is counts
};
constexpr TextureUse texture_uses[] = {
    {"base_color_texture", "base_color_wrap", {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}},
    {"metallic_texture", "metallic_wrap", {aiTextureType_METALNESS}},
    {"roughness_texture", "roughness_wrap", {aiTextureType_DIFFUSE_ROUGHNESS}},
    {"normal_texture", "normal_wrap", {aiTextureType_NORMALS}},
    {"emissive_texture", "emissive_wrap", {aiTextureType_EMISSION_COLOR, aiTextureType_EMISSIVE}},
    {"opacity_texture", "opacity_wrap", {aiTextureType_OPACITY}},
};

struct FoundTexture {
    aiString path;
    UvMap uv_map;
    aiTextureMapMode modes[3] = {};
};

bool find_texture(const aiMaterial &material, const TextureUse &use, FoundTexture &found) {
    for (const aiTextureType type : use.types) {
        if (type == aiTextureType_NONE ||
            material.GetTexture(type, 0, &found.path, nullptr, &found.uv_map.set, nullptr, nullptr, found.modes) !=
                aiReturn_SUCCESS ||
            found.path.length == 0)
            continue;
        material.Get(AI_MATKEY_UVTRANSFORM(type, 0), found.uv_map.transform);
        return true;
    }
    return false;
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
    void textures() {
        const UvMap uv_map = uv_map_of(material, false);
        for (const TextureUse &use : texture_uses) {
            FoundTexture found;
            if (!find_texture(material, use, found) || !(found.uv_map == uv_map))
                continue;
            dict.set(use.name, text(found.path));
            const bool is_clamped =
                found.modes[0] == aiTextureMapMode_Clamp || found.modes[0] == aiTextureMapMode_Decal;
            if (found.modes[0] == found.modes[1] && found.modes[0] != aiTextureMapMode_Wrap)
                dict.set(use.wrap, PyUnicode_FromString(is_clamped ? "clamp" : "mirror"));
        }
    }
    // Of glTF: roughness and metallic are two channels of one picture, and alpha counts only where it is said to.
    void gltf() {
        aiString mode;
        if (material.Get("$mat.gltf.alphaMode", 0, 0, mode) != aiReturn_SUCCESS) // version 1
            return;
        dict.set("is_packed", PyBool_FromLong(1));
        const bool is_opaque = std::string_view(mode.C_Str()) != "BLEND" && std::string_view(mode.C_Str()) != "MASK";
        if (is_opaque)
            dict.set("opacity", PyFloat_FromDouble(1));
        else
            dict.set("has_alpha", PyBool_FromLong(1));
    }
    PyObject *release() { return dict.release(); }

  private:
    const aiMaterial &material;
    Dict dict;
};

} // namespace

bool is_gltf(const aiScene &scene) {
    aiString format;
    return scene.mMetaData && scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format) &&
           std::string_view(format.C_Str()).starts_with("glTF");
}

bool is_made_up(const aiScene &scene, unsigned material) {
    aiString name;
    scene.mMaterials[material]->Get(AI_MATKEY_NAME, name);
    if (is_gltf(scene))
        return material + 1 == scene.mNumMaterials && name.length == 0;
    return std::string_view(name.C_Str()) == AI_DEFAULT_MATERIAL_NAME;
}

UvMap uv_map_of(const aiMaterial &material, bool is_of_gltf) {
    FoundTexture found;
    for (const TextureUse &use : texture_uses)
        if (find_texture(material, use, found)) {
            found.uv_map.is_of_gltf = is_of_gltf;
            return found.uv_map;
        }
    return {};
}

// Assimp applies those of other formats itself. Those of glTF (KHR_texture_transform) it hands on as ones about the
// middle of the picture, in a way that its own step takes for another: here they are what they were in the file.
std::array<float, 2> UvMap::apply(const aiVector3D &uv) const {
    if (!is_of_gltf)
        return {uv.x, uv.y};
    const float cosine = std::cos(-transform.mRotation);
    const float sine = std::sin(-transform.mRotation);
    const aiVector2D scale = transform.mScaling;
    const float offset_u = transform.mTranslation.x - 0.5f * scale.x * (1 - cosine + sine);
    const float offset_v = 1 - scale.y + 0.5f * scale.y * (sine + cosine - 1) - transform.mTranslation.y;
    const float u = scale.x * uv.x;
    const float v = scale.y * (1 - uv.y); // from above
    return {offset_u + cosine * u + sine * v, 1 - (offset_v - sine * u + cosine * v)};
}

PyObject *material_of(const aiMaterial &material, bool is_of_gltf) {
    MaterialDict result(material);
    if (!result.color("base_color", AI_MATKEY_BASE_COLOR))
        result.color("base_color", AI_MATKEY_COLOR_DIFFUSE);
    result.color("emissive", AI_MATKEY_COLOR_EMISSIVE);
    result.number("emissive_intensity", AI_MATKEY_EMISSIVE_INTENSITY);
    result.number("metallic", AI_MATKEY_METALLIC_FACTOR);
    result.number("roughness", AI_MATKEY_ROUGHNESS_FACTOR);
    result.number("glossiness", AI_MATKEY_GLOSSINESS_FACTOR);
    result.number("shininess", AI_MATKEY_SHININESS);
    result.number("opacity", AI_MATKEY_OPACITY);
    result.number("transmission", AI_MATKEY_TRANSMISSION_FACTOR);
    result.number("ior", AI_MATKEY_REFRACTI);
    result.number("clearcoat", AI_MATKEY_CLEARCOAT_FACTOR);
    result.number("clearcoat_roughness", AI_MATKEY_CLEARCOAT_ROUGHNESS_FACTOR);
    result.textures();
    if (is_of_gltf)
        result.gltf();
    return result.release();
}
