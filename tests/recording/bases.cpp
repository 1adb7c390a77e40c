// The spline bases of the recording libVantor.
#include "call.h"
#include "renderer/vt_bases.h"

VtMatrix4 VtBezierBasis() {
    recording::Call("VtBezierBasis").done();
    return {{-1, 3, -3, 1}, {3, -6, 3, 0}, {-3, 3, 0, 0}, {1, 0, 0, 0}};
}

VtMatrix4 VtBSplineBasis() {
    recording::Call("VtBSplineBasis").done();
    return {{-1 / 6.0, 0.5, -0.5, 1 / 6.0}, {0.5, -1, 0.5, 0}, {-0.5, 0, 0.5, 0}, {1 / 6.0, 4 / 6.0, 1 / 6.0, 0}};
}

VtMatrix4 VtCatmullRomBasis() {
    recording::Call("VtCatmullRomBasis").done();
    return {{-0.5, 1.5, -1.5, 0.5}, {1, -2.5, 2, -0.5}, {-0.5, 0, 0.5, 0}, {0, 1, 0, 0}};
}

VtMatrix4 VtHermiteBasis() {
    recording::Call("VtHermiteBasis").done();
    return {{2, 1, -2, 1}, {-3, -2, 3, -1}, {0, 1, 0, 0}, {1, 0, 0, 0}};
}
