// The vocabulary as a text, for a program that completes, converts or explains. Optional: a renderer library may leave
// it out.
#pragma once

#include "algebra/vt_base.h"

extern "C" {

/// Every type and parameter that a script can name, a line for each, in UTF-8; the text lasts as long as the library.
/// The fields of a line are separated by tabs. A type has three:
///
///     call  type  meaning                                newLight  point  Shines from one point in all directions.
///
/// and below it come its parameters, with eight, of which unit, range and default may be empty:
///
///     call  type  parameter  kind  unit  range  default  meaning
///
/// The kind says what value the parameter takes:
///
///     number integer switch(0 or 1) text vector2 vector3 matrix4
///     color              a vector3, or a number
///     scale              a vector3, a vector2, or a number
///     choice:a,b,c       one of these texts
///     id:material        what the creation call of that kind returned, here newMaterial
///     ids:trimmer        such an id, or an intarray of them
///     number|id:pattern  a number (a double), or an id (a long); likewise color|id:pattern
///     intarray floatarray vector2array vector3array transformarray
///
/// A default is a number, numbers in parentheses, a text in double quotes, "none" if the parameter may be left out
/// without one, or "required".
VT_API const char *VtVocabulary();
}
