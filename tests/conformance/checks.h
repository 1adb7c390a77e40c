// The groups of checks, by what they look at.
#pragma once

#include "check.h"

/// Every exported function of the interface is there.
Group export_checks();
/// Every kind of VtArgType: what went in comes out, of the original and of a copy, and nothing is written outside.
Group value_checks();
/// VtArgList keeps copies of its values, in order, within its room, and gives its memory back.
Group list_checks();
/// VtLocalSceneProxy can be made and destroyed, has every operation in its slot, and gives its memory back.
Group scene_checks();
/// The operations other than the creating ones: any order, any id, any size of a picture.
Group operation_checks();
/// The creating operations: any type, any list. The types are tried beside null and unknown ones.
Group creation_checks(const std::vector<std::string> &types);
/// Every transform operation sets all sixteen entries, never reads the old ones, and means what its header fixes.
Group transform_checks();
/// The basis matrices are finite and always the same.
Group basis_checks();
/// What a library may export besides, where it does.
Group optional_checks();
/// What a first script does from its first call to the end of its process.
Group script_checks();
