// Pictures with and without a face.
#ifndef SPECIALEFFECTS_TESTS_FACETRACK_TESTPICTURES_H
#define SPECIALEFFECTS_TESTS_FACETRACK_TESTPICTURES_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "facetrack/FaceDetector.h"
#include "imaging/Plane8u.h"
#include "tests/support/TestFrame.h"

/// The portrait, 640 by 480; its face is a square of about 150 around (289, 143).
inline const CPlane8u& Portrait() {
    static const CPlane8u portrait = [] {
        CPlane8u plane(640, 480);
        std::ifstream file(SE_SOURCE_DIR "/tests/facetrack/portrait.pgm", std::ios::binary);
        std::string magic;
        int width = 0, height = 0, most = 0;
        file >> magic >> width >> height >> most;
        file.get();
        file.read(reinterpret_cast<char*>(plane.data), static_cast<std::streamsize>(plane.Size()));
        return plane;
    }();
    return portrait;
}

struct FacePlace {
    double x, y, size;
};

/// Whether a face that the detector saw in a picture turned upside down is the one at `place`: its centre is
/// no further off than a fifth of its size.
inline bool IsAt(const CFaceRect& face, const FacePlace& place, int32_t height) {
    const double x = face.x + face.width / 2.0, y = height - (face.y + face.height / 2.0);
    return face.width > 0 && std::hypot(x - place.x, y - place.y) <= place.size / 5;
}

/// Whether one of the faces of the detector's last cycle is the one at `place`.
inline bool Holds(const CFaceDetector& detector, const FacePlace& place, int32_t height) {
    return std::any_of(detector.Faces().begin(), detector.Faces().end(),
                       [&](const CFaceRect& face) { return IsAt(face, place, height); });
}

/// The portrait on a canvas: scaled, mirrored left to right if asked, its middle moved by (dx, dy) of the
/// canvas, edges repeated. `place` receives where the face then is.
inline CPlane8u PortraitAs(int32_t width, int32_t height, double scale, double dx, double dy, bool mirrored,
                           FacePlace* place) {
    const CPlane8u& portrait = Portrait();
    const double total = scale * width / 640.0;
    CPlane8u canvas(width, height);
    const auto sample = [&](double x, double y) {
        const double cx = std::clamp(x, 0.0, 638.99), cy = std::clamp(y, 0.0, 478.99);
        const auto ix = static_cast<int32_t>(cx), iy = static_cast<int32_t>(cy);
        const double fx = cx - ix, fy = cy - iy;
        const auto at = [&](int32_t px, int32_t py) { return double{portrait.data[py * 640 + px] * 1.0}; };
        return (at(ix, iy) * (1 - fx) + at(ix + 1, iy) * fx) * (1 - fy) +
               (at(ix, iy + 1) * (1 - fx) + at(ix + 1, iy + 1) * fx) * fy;
    };
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            double u = (x - width * (0.5 + dx)) / total;
            const double v = (y - height * (0.5 + dy)) / total + 240;
            u = (mirrored ? -u : u) + 320;
            canvas.Row(y)[x] = static_cast<uint8_t>(std::lround(sample(u, v)));
        }
    }
    const double fx = (mirrored ? -1 : 1) * (289 - 320) * total + width * (0.5 + dx);
    *place = {fx, (143 - 240) * total + height * (0.5 + dy), 150 * total};
    return canvas;
}

/// Twenty pictures without a face: noise, gradients, textures and a moving scene.
inline CPlane8u FacelessPicture(int index, int32_t width, int32_t height) {
    CPlane8u plane(width, height);
    TestRandom random(static_cast<uint64_t>(index));
    if (index < 5) {
        TestFrame frame = TestFrame(width, height).DrawScene(index * 7);
        std::copy(frame.plane(0).begin(), frame.plane(0).end(), plane.data);
        return plane;
    }
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            double value = 0;
            if (index < 8) value = random.Byte();
            if (index >= 8 && index < 12) value = (x * (index - 7) + y * 2) % 512 / 2.0;
            if (index >= 12 && index < 16) {
                value = 128 + 100 * std::sin(x * 0.02 * index) * std::cos(y * 0.013 * index);
            }
            if (index >= 16) {
                value = ((x / (4 * index - 50)) + (y / (3 * index - 40))) % 2 * 120 + 60 + random.Below(20);
            }
            plane.Row(y)[x] = static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
        }
    }
    return plane;
}

inline const char* HaarFile() {
    return SE_BINARY_DIR "/share/specialeffects/haar.txt";
}

#endif
