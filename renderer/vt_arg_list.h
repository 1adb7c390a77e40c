// VtArgList: the ordered parameter list that a creation call receives.
#pragma once

#include "renderer/vt_arg_type.h"

/// The parameters of one creation call, in the script's order. A script typically alternates names and values; the
/// module gives the sequence no meaning.
///
/// The module constructs a list on its stack, adds the values one by one, calls one creation operation of the scene
/// proxy with it, and destroys it: also when a value could not be converted (the operation is then not called) and when
/// an exception of the library passes. Whoever is handed a list in a creation operation may read it until that
/// operation returns.
///
/// Its size is fixed here; what is inside is the library's business.
class VtArgList {
  public:
    /// The two numbers belong to the library; the module always passes 0 and 0.
    VT_API VtArgList(VtLong, VtLong);
    VT_API ~VtArgList();
    VtArgList(const VtArgList &) = delete;
    VtArgList &operator=(const VtArgList &) = delete;

    /// Appends a copy of the value; the caller destroys its own right after the call.
    VT_API void Add(const VtArgType &);

    /// The number of values. For renderers; the module does not ask.
    VT_API VtLong Count() const;
    /// Value i, 0 <= i < Count(). For renderers; the module does not ask.
    VT_API const VtArgType &At(VtLong i) const;

  private:
    alignas(8) unsigned char inside[32];
};

static_assert(sizeof(VtArgList) == 32 && alignof(VtArgList) == 8);
