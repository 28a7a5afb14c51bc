// Cameras that the system has.
#ifndef SPECIALEFFECTS_HOST_CAMERA_H
#define SPECIALEFFECTS_HOST_CAMERA_H

#include <string>
#include <vector>

#include "Libav.h"
#include "VideoInput.h"

namespace host {

/// Frame sizes of a pixel format, and at how many frames a second.
struct CameraMode {
    std::string format;  ///< as --camera-format takes it: "yuyv422", "mjpeg"
    Size size;
    std::vector<double> rates;  ///< frames a second; empty when the driver does not list them
};

struct CameraDescription {
    std::string device;  ///< /dev/video0
    std::string name;
    std::vector<CameraMode> modes;
};

/// The V4L2 devices that give pictures, by number. Devices that cannot be opened are listed without modes.
std::vector<CameraDescription> ListCameras();

/// Opens a camera in the format, size and rate of the options. `context` has been allocated, and is null
/// after a failure. Throws Failure with advice.
void OpenCamera(AVFormatContext** context, const std::string& device, const InputOptions& options);

/// Advice for a V4L2 device that cannot be opened; begins with a semicolon, or is empty.
std::string CameraAdvice(const std::string& device, int error);

}  // namespace host

#endif
