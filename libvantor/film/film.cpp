// Film: from the samples of a pixel to its values.
#include "libvantor/film/film.h"

namespace vantor {

void PixelFilm::add(Color radiance, const AovSample &seen) {
    add(radiance);
    if (!seen.is_hit)
        return;
    ++hits;
    if (is_finite(radiance))
        sums[index_of(Aov::Foreground)].add(radiance);
    for (const AovRow &row : aov_table())
        if (row.value && (row.reduction != Reduction::First || count == 1))
            sums[index_of(row.aov)].add(seen.values[index_of(row.aov)]);
}

Color PixelFilm::value(Aov aov) const {
    const Sum &sum = sums[index_of(aov)];
    switch (row_of(aov).reduction) {
    case Reduction::Radiance:
        break;
    case Reduction::RadianceVariance:
        return {red.variance_of_mean(count), green.variance_of_mean(count), blue.variance_of_mean(count)};
    case Reduction::RadianceOfHits:
    case Reduction::Mean:
        return sum.over(count);
    case Reduction::MeanOfHits:
        return sum.over(hits);
    case Reduction::Direction:
        return sum.over(sum.length());
    case Reduction::First:
        return sum.over(1);
    }
    return {red.mean(count), green.mean(count), blue.mean(count)};
}

} // namespace vantor
