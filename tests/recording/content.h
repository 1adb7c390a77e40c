// What VtArgType and VtArgList of the recording libVantor hold.
#pragma once

#include "renderer/vt_arg_list.h"

#include <memory>
#include <variant>
#include <vector>

/// One value, by tag: the alternative at index i has tag i + 1.
using Value = std::variant<
    VtLong, double, const char *, VtVector2, VtVector3, VtVector4, VtMatrix2, VtMatrix3, VtMatrix4, VtTransform,
    const VtInstanceArray<VtLong> *, const VtInstanceArray<double> *, const VtInstanceArray<VtVector2> *,
    const VtInstanceArray<VtVector3> *, const VtInstanceArray<VtVector4> *, const VtInstanceArray<VtMatrix2> *,
    const VtInstanceArray<VtMatrix3> *, const VtInstanceArray<VtMatrix4> *, const VtInstanceArray<VtTransform> *>;

/// A VtArgType's inside is a pointer to one of these.
struct ValueContent {
    int serial; ///< 0 for the copies that a list keeps: they are the library's own and not recorded.
    Value value;
};

/// A VtArgList's inside.
struct ListContent {
    int serial;
    std::vector<std::unique_ptr<VtArgType>> values;
};
static_assert(sizeof(ListContent) <= sizeof(VtArgList));

const ValueContent &content(const VtArgType &value);
ListContent &content(const VtArgList &list);

/// A copy for a list to keep.
std::unique_ptr<VtArgType> unrecorded_copy(const VtArgType &value);

/// How many values have been made and added since the last list was made.
struct Places {
    int made = 0;
    int added = 0;
};

extern Places places;
