// The checks, by what they look at.
#pragma once

class Library;
class Report;

/// Every exported function of the interface is there.
void check_exports(const Library &library, Report &report);
/// Every kind of VtArgType: what went in comes out, of the original and of a copy.
void check_values(const Library &library, Report &report);
/// VtArgList keeps copies of its values, in order.
void check_list(const Library &library, Report &report);
/// VtLocalSceneProxy can be made and destroyed, has every operation in its slot, and survives a call of each.
void check_proxy(const Library &library, Report &report);
/// Every transform operation sets all sixteen entries, and never reads the old ones.
void check_transforms(const Library &library, Report &report);
/// The basis matrices are finite and always the same.
void check_bases(const Library &library, Report &report);
