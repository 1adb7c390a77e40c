// VtArgList of the recording libVantor.
#include "call.h"
#include "content.h"

#include <new>

ListContent &content(const VtArgList &list) { return *reinterpret_cast<ListContent *>(const_cast<VtArgList *>(&list)); }

VtArgList::VtArgList(VtLong first, VtLong second) {
    places = {};
    const int serial = recording::new_serial();
    recording::Call("VtArgList").with("object", serial).with("first", first).with("second", second).done();
    new (inside) ListContent{serial, {}};
}

VtArgList::~VtArgList() {
    recording::Call("~VtArgList").with("object", content(*this).serial).done_without_fault();
    content(*this).~ListContent();
}

void VtArgList::Add(const VtArgType &value) {
    ListContent &own = content(*this);
    recording::Call("VtArgList::Add", ++places.added)
        .with("object", own.serial)
        .with("added", content(value).serial)
        .done();
    own.values.push_back(unrecorded_copy(value));
}

VtLong VtArgList::Count() const { return static_cast<VtLong>(content(*this).values.size()); }

const VtArgType &VtArgList::At(VtLong i) const { return *content(*this).values[static_cast<std::size_t>(i)]; }
