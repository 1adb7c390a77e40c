// The interface's functions as the C++ ABI spells them.
#pragma once

#include <string>
#include <vector>

namespace symbols {

/// The operations of the proxy from slot 2 on, in order.
extern const std::vector<std::string> proxy_slots;
inline const std::string proxy_constructor = "_ZN17VtLocalSceneProxyC1Ei";
inline const std::string proxy_destructor = "_ZN17VtLocalSceneProxyD1Ev";
inline const std::string proxy_deleting_destructor = "_ZN17VtLocalSceneProxyD0Ev";

inline const std::string list_constructor = "_ZN9VtArgListC1Eii";
inline const std::string list_destructor = "_ZN9VtArgListD1Ev";
inline const std::string list_add = "_ZN9VtArgList3AddERK9VtArgType";
inline const std::string list_count = "_ZNK9VtArgList5CountEv";
inline const std::string list_at = "_ZNK9VtArgList2AtEi";

inline const std::string value_copy = "_ZN9VtArgTypeC1ERKS_";
inline const std::string value_destructor = "_ZN9VtArgTypeD1Ev";
inline const std::string value_tag = "_ZNK9VtArgType3TagEv";

inline const std::string transform_zero = "_ZN11VtTransform4ZeroEv";
inline const std::string transform_identity = "_ZN11VtTransform8IdentityEv";
inline const std::string transform_scaling = "_ZN11VtTransform7ScalingERK8VtVectorILi3EE";
inline const std::string transform_translation = "_ZN11VtTransform11TranslationERK8VtVectorILi3EE";
inline const std::string transform_alignment_to_z = "_ZN11VtTransform12AlignmentToZERK8VtVectorILi3EE";
inline const std::string transform_alignment_to = "_ZN11VtTransform11AlignmentToERK8VtVectorILi3EES3_";
inline const std::string transform_rotation_x = "_ZN11VtTransform15RotationAroundXEd";
inline const std::string transform_rotation_y = "_ZN11VtTransform15RotationAroundYEd";
inline const std::string transform_rotation_z = "_ZN11VtTransform15RotationAroundZEd";
inline const std::string transform_rotation_around_axis = "_ZN11VtTransform18RotationAroundAxisERK8VtVectorILi3EES3_d";
inline const std::string transform_reflection = "_ZN11VtTransform14ReflectionOnXYEv";

extern const std::vector<std::string> bases;

/// Every symbol above, and those of every kind of value.
std::vector<std::string> all();

} // namespace symbols
