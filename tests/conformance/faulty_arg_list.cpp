// A VtArgList that keeps its values in reverse, for the conformance program to find.
#include "content.h"

#include <cstring>

ListContent &content(const VtArgList &list) {
    ListContent *content;
    std::memcpy(&content, &list, sizeof content);
    return *content;
}

VtArgList::VtArgList(VtLong, VtLong) {
    const auto *own = new ListContent{};
    std::memcpy(inside, &own, sizeof own);
}

VtArgList::~VtArgList() { delete &content(*this); }

void VtArgList::Add(const VtArgType &value) {
    auto &values = content(*this).values;
    values.insert(values.begin(), unrecorded_copy(value));
}

VtLong VtArgList::Count() const { return static_cast<VtLong>(content(*this).values.size()); }

const VtArgType &VtArgList::At(VtLong i) const { return *content(*this).values[static_cast<std::size_t>(i)]; }
