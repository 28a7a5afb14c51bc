#include "Camera.h"

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace host {
namespace {

class Descriptor {
  public:
    explicit Descriptor(const std::string& path)
        : number_(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }

    bool IsOpen() const { return number_ >= 0; }

    template <class T>
    bool Ask(unsigned long request, T& answer) const {
        int result = 0;
        do {
            result = ioctl(number_, request, &answer);
        } while (result < 0 && errno == EINTR);
        return result == 0;
    }

  private:
    int number_;
};

// The name that FFmpeg has for a pixel format of V4L2.
std::string FormatName(uint32_t code) {
    switch (code) {
        case V4L2_PIX_FMT_MJPEG:
        case V4L2_PIX_FMT_JPEG:
            return "mjpeg";
        case V4L2_PIX_FMT_H264:
            return "h264";
        case V4L2_PIX_FMT_YUYV:
            return "yuyv422";
        case V4L2_PIX_FMT_UYVY:
            return "uyvy422";
        case V4L2_PIX_FMT_YUV420:
            return "yuv420p";
        case V4L2_PIX_FMT_NV12:
            return "nv12";
        case V4L2_PIX_FMT_RGB24:
            return "rgb24";
        case V4L2_PIX_FMT_BGR24:
            return "bgr24";
        case V4L2_PIX_FMT_GREY:
            return "gray";
        default:
            break;
    }
    std::string name;
    for (int shift = 0; shift < 32; shift += 8) name += static_cast<char>((code >> shift) & 0x7f);
    return name.substr(0, name.find_last_not_of(" \t\n") + 1);
}

std::vector<double> RatesOf(const Descriptor& camera, uint32_t format, Size size) {
    std::vector<double> rates;
    v4l2_frmivalenum interval{};
    interval.pixel_format = format;
    interval.width = static_cast<uint32_t>(size.width);
    interval.height = static_cast<uint32_t>(size.height);
    for (; camera.Ask(VIDIOC_ENUM_FRAMEINTERVALS, interval); ++interval.index) {
        const bool discrete = interval.type == V4L2_FRMIVAL_TYPE_DISCRETE;
        const v4l2_fract& fraction = discrete ? interval.discrete : interval.stepwise.min;
        if (fraction.numerator > 0) {
            rates.push_back(static_cast<double>(fraction.denominator) / fraction.numerator);
        }
        if (!discrete) break;
    }
    return rates;
}

std::vector<CameraMode> ModesOf(const Descriptor& camera) {
    std::vector<CameraMode> modes;
    v4l2_fmtdesc format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    for (; camera.Ask(VIDIOC_ENUM_FMT, format); ++format.index) {
        v4l2_frmsizeenum frame{};
        frame.pixel_format = format.pixelformat;
        for (; camera.Ask(VIDIOC_ENUM_FRAMESIZES, frame); ++frame.index) {
            const bool discrete = frame.type == V4L2_FRMSIZE_TYPE_DISCRETE;
            const Size size{static_cast<int>(discrete ? frame.discrete.width : frame.stepwise.max_width),
                            static_cast<int>(discrete ? frame.discrete.height : frame.stepwise.max_height)};
            modes.push_back(
                {FormatName(format.pixelformat), size, RatesOf(camera, format.pixelformat, size)});
            if (!discrete) break;
        }
    }
    return modes;
}

// Nothing for a device that gives no pictures: one for metadata, or one that only shows them.
std::optional<CameraDescription> Describe(const std::string& device) {
    const Descriptor camera(device);
    if (!camera.IsOpen()) return CameraDescription{device, SystemText(errno), {}};
    v4l2_capability capability{};
    if (!camera.Ask(VIDIOC_QUERYCAP, capability)) return std::nullopt;
    const bool ownCapabilities = (capability.capabilities & V4L2_CAP_DEVICE_CAPS) != 0;
    const uint32_t can = ownCapabilities ? capability.device_caps : capability.capabilities;
    if ((can & V4L2_CAP_VIDEO_CAPTURE) == 0) return std::nullopt;
    const auto* card = reinterpret_cast<const char*>(capability.card);
    return CameraDescription{device, std::string(card, strnlen(card, sizeof capability.card)),
                             ModesOf(camera)};
}

}  // namespace

std::vector<CameraDescription> ListCameras() {
    constexpr int kMostDevices = 64;
    std::vector<CameraDescription> cameras;
    for (int i = 0; i < kMostDevices; ++i) {
        const std::string device = fmt::format("/dev/video{}", i);
        if (access(device.c_str(), F_OK) != 0) continue;
        if (auto camera = Describe(device)) cameras.push_back(std::move(*camera));
    }
    return cameras;
}

std::string CameraAdvice(const std::string& device, int error) {
    switch (error) {
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return "; \"specialeffects cameras\" lists those there are, and a virtual one needs the module "
                   "v4l2loopback (sudo modprobe v4l2loopback)";
        case EACCES:
        case EPERM:
            return "; the group \"video\" may use it: sudo usermod -aG video $USER, then log in again";
        case EBUSY:
            return "; another program uses it";
        case EINVAL:
            return fmt::format("; \"specialeffects cameras\" lists the formats, sizes and rates of {}",
                               device);
        case ENOTTY:
            return "; it is not a V4L2 device";
        default:
            return {};
    }
}

void OpenCamera(AVFormatContext** context, const std::string& device, const InputOptions& options) {
    const AVInputFormat* format = av_find_input_format("v4l2");
    if (format == nullptr) throw Failure("cannot read {}: FFmpeg's libraries here have no cameras", device);
    Dictionary settings;
    if (options.size) {
        settings.Set("video_size", fmt::format("{}x{}", options.size->width, options.size->height));
    }
    if (options.rate) settings.Set("framerate", fmt::format("{}/{}", options.rate->num, options.rate->den));
    if (!options.cameraFormat.empty()) settings.Set("input_format", options.cameraFormat);
    const int result = avformat_open_input(context, device.c_str(), format, settings.Address());
    if (result < 0) {
        throw Failure("cannot open the camera {}: {}{}", device, LibavText(result),
                      CameraAdvice(device, AVUNERROR(result)));
    }
}

}  // namespace host
