// `cameras`: what cameras there are, and what they give.
#include <fmt/format.h>

#include "Camera.h"
#include "Commands.h"
#include "Json.h"
#include "StandardOutput.h"

namespace host {
namespace {

std::string RatesText(const CameraMode& mode) {
    std::string text;
    for (const double rate : mode.rates) text += fmt::format("{}{:.4g}", text.empty() ? "" : ", ", rate);
    return text.empty() ? text : text + " fps";
}

void PrintWords(const CameraDescription& camera) {
    Print("{}  {}\n", camera.device, camera.name);
    for (const CameraMode& mode : camera.modes) {
        Print("    {:<10} {:>11}  {}\n", mode.format, fmt::format("{}x{}", mode.size.width, mode.size.height),
              RatesText(mode));
    }
}

Json JsonOf(const CameraDescription& camera) {
    Json::Array modes;
    for (const CameraMode& mode : camera.modes) {
        modes.push_back(Json::Object{{"format", mode.format},
                                     {"width", mode.size.width},
                                     {"height", mode.size.height},
                                     {"rates", mode.rates}});
    }
    return Json::Object{{"device", camera.device}, {"name", camera.name}, {"modes", modes}};
}

}  // namespace

void Run(const CamerasOptions& options) {
    const std::vector<CameraDescription> cameras = ListCameras();
    if (options.json) {
        Json::Array list;
        for (const CameraDescription& camera : cameras) list.push_back(JsonOf(camera));
        Print("{}\n", Json(list).Text());
        return;
    }
    for (const CameraDescription& camera : cameras) PrintWords(camera);
    if (cameras.empty()) {
        throw Failure(
            "there is no camera: no /dev/video0 or its like; plug one in, or \"sudo modprobe v4l2loopback\" "
            "makes a virtual one");
    }
}

}  // namespace host
