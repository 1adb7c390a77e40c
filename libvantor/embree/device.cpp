// Device: Embree's handles, owned; and its errors.
#include "libvantor/embree/device.h"

#include <new>

namespace vantor {

void throw_device_error(RTCDevice device) {
    switch (const RTCError error = rtcGetDeviceError(device)) {
    case RTC_ERROR_NONE:
    case RTC_ERROR_CANCELLED:
        return;
    case RTC_ERROR_OUT_OF_MEMORY:
        throw std::bad_alloc();
    // For whatever goes wrong inside Embree; the only known cause is an allocation that failed.
    case RTC_ERROR_UNKNOWN:
        throw EmbreeError("Embree failed, as it does when memory is short");
    case RTC_ERROR_UNSUPPORTED_CPU:
        throw EmbreeError("Embree does not support this processor");
    default:
        throw EmbreeError("Embree reports error " + std::to_string(error));
    }
}

OwnedDevice make_device() {
    // By default Embree reserves 128 MiB of addresses for the tessellation of subdivision surfaces, of which there are
    // none; where it gets none, releasing the device may never end.
    OwnedDevice device(rtcNewDevice("tessellation_cache_size=0"));
    // A null device asks for the error of its own creation.
    if (!device) {
        throw_device_error(nullptr);
        throw EmbreeError("Embree gave no device");
    }
    return device;
}

} // namespace vantor
