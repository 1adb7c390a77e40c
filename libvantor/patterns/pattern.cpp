// Pattern: colours over a surface.
#include "libvantor/patterns/pattern.h"

namespace vantor {

Color evaluate(const Pattern &pattern, const PatternPoint &at) {
    return std::visit([&](const auto &kind) { return kind.evaluate(at); }, pattern.kind);
}

} // namespace vantor
