#include "host/small/Picture.h"

#include <stb_image.h>
#include <stb_image_write.h>

#include <memory>
#include <stdexcept>

Picture ReadPicture(const std::string& path) {
    Picture picture;
    int channels = 0;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load(path.c_str(), &picture.width, &picture.height, &channels, 4), stbi_image_free);
    if (pixels == nullptr) throw std::runtime_error(path + ": " + stbi_failure_reason());
    picture.rgba.assign(pixels.get(), pixels.get() + static_cast<size_t>(picture.width) * 4 *
                                                         static_cast<size_t>(picture.height));
    return picture;
}

void WritePicture(const std::string& path, const Picture& picture) {
    const void* const pixels = picture.rgba.data();
    int written = 0;
    if (path.ends_with(".png")) {
        written = stbi_write_png(path.c_str(), picture.width, picture.height, 4, pixels, 4 * picture.width);
    } else if (path.ends_with(".bmp")) {
        written = stbi_write_bmp(path.c_str(), picture.width, picture.height, 4, pixels);
    } else {
        throw std::runtime_error(path + ": pictures are written as .png or .bmp");
    }
    if (written == 0) throw std::runtime_error(path + ": cannot be written");
}
