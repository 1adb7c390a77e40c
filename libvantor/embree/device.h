// Device: Embree's handles, owned; and its errors.
#pragma once

#include "libvantor/embree/embree.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace vantor {

struct ReleaseDevice {
    void operator()(RTCDeviceTy *device) const { rtcReleaseDevice(device); }
};
struct ReleaseScene {
    void operator()(RTCSceneTy *scene) const { rtcReleaseScene(scene); }
};
struct ReleaseGeometry {
    void operator()(RTCGeometryTy *geometry) const { rtcReleaseGeometry(geometry); }
};
using OwnedDevice = std::unique_ptr<RTCDeviceTy, ReleaseDevice>;
using OwnedScene = std::unique_ptr<RTCSceneTy, ReleaseScene>;
using OwnedGeometry = std::unique_ptr<RTCGeometryTy, ReleaseGeometry>;

/// Something that Embree refused to do.
class EmbreeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// There is a device, or an EmbreeError.
OwnedDevice make_device();

/// Throws the first error since the last call, if there was one: std::bad_alloc where memory was short, otherwise an
/// EmbreeError. A cancelled build is no error.
void throw_device_error(RTCDevice device);

} // namespace vantor
