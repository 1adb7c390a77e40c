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
    case RTC_ERROR_UNSUPPORTED_CPU:
        throw EmbreeError("Embree does not support this processor");
    default:
        throw EmbreeError("Embree reports error " + std::to_string(error));
    }
}

OwnedDevice make_device() {
    OwnedDevice device(rtcNewDevice(nullptr));
    // A null device asks for the error of its own creation.
    if (!device) {
        throw_device_error(nullptr);
        throw EmbreeError("Embree gave no device");
    }
    return device;
}

} // namespace vantor
