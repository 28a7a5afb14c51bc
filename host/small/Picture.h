// Pictures in files.
#ifndef SPECIALEFFECTS_HOST_SMALL_PICTURE_H
#define SPECIALEFFECTS_HOST_SMALL_PICTURE_H

#include <cstdint>
#include <string>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgba;  ///< 4 bytes a pixel, rows from the top without gaps
};

/// Reads .png, .bmp and .jpg, by their content. Throws std::runtime_error.
Picture ReadPicture(const std::string& path);

/// Writes .png or .bmp, by the end of the path. Throws std::runtime_error.
void WritePicture(const std::string& path, const Picture& picture);

#endif
