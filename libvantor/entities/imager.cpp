// Imager: where a picture goes.
#include "libvantor/entities/imager.h"

#include "libvantor/pictures/files.h"

#include <cmath>

namespace vantor {

std::optional<Imager> make_imager(const Parameters &parameters, const CallReport &report) {
    const std::string path = parameters.text("name");
    if (!has_known_format(path)) {
        parameters.complain("name",
                            joined({quoted(path), " has no known ending (.png and .exr are known); nothing will be "
                                                  "written"}),
                            report);
        return {};
    }
    return Imager{path, static_cast<float>(std::exp2(parameters.number("exposure")))};
}

} // namespace vantor
