// A VtArgList that keeps its values in reverse, for the conformance program to find.
#include "content.h"

#include <new>

ListContent &content(const VtArgList &list) { return *reinterpret_cast<ListContent *>(const_cast<VtArgList *>(&list)); }

VtArgList::VtArgList(VtLong, VtLong) { new (inside) ListContent{}; }

VtArgList::~VtArgList() { content(*this).~ListContent(); }

void VtArgList::Add(const VtArgType &value) {
    auto &values = content(*this).values;
    values.insert(values.begin(), unrecorded_copy(value));
}

VtLong VtArgList::Count() const { return static_cast<VtLong>(content(*this).values.size()); }

const VtArgType &VtArgList::At(VtLong i) const { return *content(*this).values[static_cast<std::size_t>(i)]; }
