// Film: from the samples of a pixel to its values.
#include "libvantor/film/film.h"

namespace vantor {

void PixelFilm::add(Color radiance, const AovSample &seen) {
    add(radiance);
    if (!seen.is_hit)
        return;
    ++hits;
    if (is_finite(radiance))
        values[index_of(Aov::Foreground)].add(radiance);
    for (const AovRow &row : aov_table())
        if (row.value && (row.reduction != Reduction::First || count == 1))
            values[index_of(row.aov)].add(seen.values[index_of(row.aov)]);
}

void PixelFilm::add(const PixelFilm &later) {
    radiances.add(later.radiances);
    squares.add(later.squares);
    count += later.count;
    if (later.hits == 0)
        return;
    hits += later.hits;
    for (const AovRow &row : aov_table())
        if (row.reduction != Reduction::First)
            values[index_of(row.aov)].add(later.values[index_of(row.aov)]);
}

SampleSums PixelFilm::sums(Aov aov) const {
    const Reduction reduction = row_of(aov).reduction;
    if (reduction == Reduction::Radiance || reduction == Reduction::RadianceVariance)
        return {radiances, squares, static_cast<double>(count)};
    return {values[index_of(aov)], {}, static_cast<double>(hits)};
}

} // namespace vantor
