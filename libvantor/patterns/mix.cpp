// Mix: two colours or patterns, by an amount that may be a pattern, too.
#include "libvantor/patterns/mix.h"

namespace vantor {

Color Mix::evaluate(const PatternPoint &at) const {
    const float t = std::clamp(vantor::evaluate(amount, at), 0.0f, 1.0f);
    const Color first = vantor::evaluate(a, at);
    const Color second = vantor::evaluate(b, at);
    switch (mode) {
    case Mode::Mix:
        break;
    case Mode::Multiply:
        return first * mixed({1, 1, 1}, second, t);
    case Mode::Add:
        return first + second * t;
    }
    return mixed(first, second, t);
}

} // namespace vantor
