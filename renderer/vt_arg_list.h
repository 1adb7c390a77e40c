// VtArgList: the ordered parameter list that a creation call receives.
#pragma once

#include "renderer/vt_arg_type.h"

/// The parameters of one creation call, in the script's order. A script typically alternates names and values, but
/// nothing makes it do so: any number of any kinds of values can come, none at all, or an odd number of them.
///
/// Life. The module constructs a list on its stack, adds the values one by one, calls one creation operation of the
/// scene proxy with it, and destroys it. If a value cannot be converted, the list is destroyed without that call. The
/// operation may read the list until it returns, and may change it: nobody looks at it afterwards.
///
/// More than one list can be alive. While a list is filled, whole creation calls of other lists, also of other scenes,
/// can begin and end: up to CPython 3.11 a text without a UTF-8 form makes the interpreter raise an error, which can
/// run the garbage collector and with it the script's finalizers. So nothing that belongs to a list may be shared by
/// all.
///
/// Destruction. By the time a list is destroyed without its call, such a finalizer may have released the texts and the
/// arrays that its values point to. The destructor must not read them.
///
/// Its size is fixed here; what is inside is the library's business.
class VtArgList {
  public:
    /// The two numbers belong to the library; the module always passes 0 and 0.
    VT_API VtArgList(VtLong, VtLong);
    VT_API ~VtArgList();
    VtArgList(const VtArgList &) = delete;
    VtArgList &operator=(const VtArgList &) = delete;

    /// Appends a copy of the value; the caller destroys its own right after the call. There is no limit to their
    /// number.
    VT_API void Add(const VtArgType &);

    /// The number of values. For renderers; the module does not ask.
    VT_API VtLong Count() const;
    /// Value i, 0 <= i < Count(). For renderers; the module does not ask.
    VT_API const VtArgType &At(VtLong i) const;

  private:
    alignas(8) unsigned char inside[32];
};

static_assert(sizeof(VtArgList) == 32 && alignof(VtArgList) == 8);
