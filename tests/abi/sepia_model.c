#include "sepia_model.h"

#include <stdlib.h>

static const float matrix[3][4] = {
    {0.393f, 0.769f, 0.189f, 0.0f},
    {0.349f, 0.686f, 0.168f, 0.0f},
    {0.272f, 0.534f, 0.131f, 1.0f},
};

static uint8_t saturate(int value) {
    return (uint8_t)(value < 0 ? 0 : value > 255 ? 255 : value);
}

static uint8_t round_half_to_even(double value) {
    if (value >= 255.0) return 255;
    if (value <= 0.0) return 0;
    int rounded = (int)(value + 0.5);
    if (rounded % 2 == 1 && (double)rounded == value + 0.5) --rounded;
    return (uint8_t)rounded;
}

void sepia_packed_model(uint8_t* pixels, int width, int height) {
    for (long i = 0; i < (long)width * height; ++i) {
        uint8_t* p = pixels + 3 * i;
        const double in[3] = {p[0], p[1], p[2]};
        for (int c = 0; c < 3; ++c) {
            const float* m = matrix[c];
            p[c] = round_half_to_even((double)m[0] * in[0] + (double)m[1] * in[1] + (double)m[2] * in[2] +
                                      (double)m[3]);
        }
    }
}

static void planar_to_packed(uint8_t* const planes[3], uint8_t* packed, int width, int height) {
    const int chroma_width = (width + 1) / 2;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const long at = (long)(y / 2) * chroma_width + x / 2;
            const int luma = planes[0][(long)y * width + x] << 16;
            const int u = planes[1][at] - 128, v = planes[2][at] - 128;
            uint8_t* p = packed + 3 * ((long)y * width + x);
            p[0] = saturate((luma + 74711 * v) >> 16);
            p[1] = saturate((luma - 38076 * v - 25821 * u) >> 16);
            p[2] = saturate((luma + 133169 * u) >> 16);
        }
    }
}

static void packed_to_planar(const uint8_t* packed, uint8_t* const planes[3], int width, int height) {
    const int chroma_width = (width + 1) / 2, chroma_height = (height + 1) / 2;
    for (int cy = 0; cy < chroma_height; ++cy) {
        for (int cx = 0; cx < chroma_width; ++cx) {
            int luma_sum = 0, sum0 = 0, sum2 = 0, pixels = 0;
            for (int y = 2 * cy; y < 2 * cy + 2 && y < height; ++y) {
                for (int x = 2 * cx; x < 2 * cx + 2 && x < width; ++x) {
                    const uint8_t* p = packed + 3 * ((long)y * width + x);
                    const int luma = 19595 * p[0] + 38470 * p[1] + 7471 * p[2];
                    planes[0][(long)y * width + x] = (uint8_t)(luma >> 16);
                    luma_sum += luma;
                    sum0 += p[0];
                    sum2 += p[2];
                    ++pixels;
                }
            }
            /* Whole blocks carry a rounding term; an edge pair or a corner has none and shifts less. */
            const int term = pixels == 4 ? 0x1ffff : 0;
            const int shift = pixels == 4 ? 18 : pixels == 2 ? 17 : 16;
            const long at = (long)cy * chroma_width + cx;
            const int u = ((((sum2 * 65536 - luma_sum + term) >> 16) * 32244) >> shift) - 128;
            const int v = ((((sum0 * 65536 - luma_sum + term) >> 16) * 57475) >> shift) + 128;
            planes[1][at] = (uint8_t)(u & 255);
            planes[2][at] = saturate(v);
        }
    }
}

void sepia_planar_model(uint8_t* const planes[3], int width, int height) {
    uint8_t* packed = calloc((size_t)width * (size_t)height, 3);
    planar_to_packed(planes, packed, width, height);
    sepia_packed_model(packed, width, height);
    packed_to_planar(packed, planes, width, height);
    free(packed);
}
