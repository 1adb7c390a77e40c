// VtArgList: the ordered parameter list, as this library keeps it.
#include "renderer/vt_arg_list.h"

#include "libvantor/base/report.h"

#include <cstdlib>
#include <new>

namespace {

// What lies inside a list. One allocation holds the values; most lists fit the first.
struct Values {
    VtArgType *items = nullptr;
    VtLong count = 0;
    VtLong capacity = 0;

    bool grow() {
        const VtLong wanted = capacity == 0 ? 16 : 2 * capacity;
        auto *bigger = static_cast<VtArgType *>(std::malloc(static_cast<std::size_t>(wanted) * sizeof(VtArgType)));
        if (!bigger)
            return false;
        for (VtLong i = 0; i < count; ++i)
            ::new (bigger + i) VtArgType(items[i]);
        std::free(items);
        items = bigger;
        capacity = wanted;
        return true;
    }
};
static_assert(sizeof(Values) <= sizeof(VtArgList) && alignof(Values) <= alignof(VtArgList));

Values &values_in(unsigned char *inside) { return *std::launder(reinterpret_cast<Values *>(inside)); }
const Values &values_in(const unsigned char *inside) { return *std::launder(reinterpret_cast<const Values *>(inside)); }

} // namespace

VtArgList::VtArgList(VtLong, VtLong) { ::new (inside) Values; }

// The values need no destruction of their own: see arg_type.cpp.
VtArgList::~VtArgList() { std::free(values_in(inside).items); }

void VtArgList::Add(const VtArgType &value) {
    Values &values = values_in(inside);
    if (values.count == values.capacity && !values.grow()) {
        vantor::report_out_of_memory("a parameter list lost a value");
        return;
    }
    ::new (values.items + values.count) VtArgType(value);
    ++values.count;
}

VtLong VtArgList::Count() const { return values_in(inside).count; }
const VtArgType &VtArgList::At(VtLong i) const { return values_in(inside).items[i]; }
