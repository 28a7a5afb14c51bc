#include "picture.h"

#include <stdlib.h>
#include <string.h>

void picture_open(Picture* picture, int32_t format, size_t size0, size_t size1, size_t size2,
                  Random* random) {
    const size_t sizes[3] = {size0, size1, size2};
    memset(picture, 0, sizeof *picture);
    for (int i = 0; i < 3; ++i) {
        picture->plane[i] = guarded(sizes[i], 0);
        random_fill(random, picture->plane[i].data, sizes[i]);
        picture->before[i] = malloc(sizes[i] ? sizes[i] : 1);
        picture->image.plane[i] = picture->plane[i].data;
        picture->image.plane_size[i] = (int32_t)sizes[i];
        picture->frame.reserved[i] = random_next(random);
    }
    picture->image.format = format;
    picture->image.reserved = random_next(random);
    picture->frame.image = &picture->image;
    picture_remember(picture);
}

static size_t side(int32_t n) {
    return n > 0 ? (size_t)n : 0;
}

void picture_planar(Picture* picture, int32_t width, int32_t height, Random* random) {
    const size_t w = side(width), h = side(height);
    picture_open(picture, PLANAR, w * h, (w / 2) * (h / 2), (w / 2) * (h / 2), random);
}

void picture_packed(Picture* picture, int32_t width, int32_t height, Random* random) {
    picture_open(picture, PACKED, side(width) * side(height) * 3, 0, 0, random);
}

void picture_planar_round_up(Picture* picture, int32_t width, int32_t height, Random* random) {
    const size_t w = side(width), h = side(height), chroma = ((w + 1) / 2) * ((h + 1) / 2);
    picture_open(picture, PLANAR, w * h, chroma, chroma, random);
}

void picture_remember(Picture* picture) {
    for (int i = 0; i < 3; ++i) memcpy(picture->before[i], picture->plane[i].data, picture->plane[i].size);
    picture->image_before = picture->image;
    picture->frame_before = picture->frame;
}

bool plane_unchanged(const Picture* picture, int index) {
    return memcmp(picture->before[index], picture->plane[index].data, picture->plane[index].size) == 0;
}

bool picture_unchanged(const Picture* picture) {
    return plane_unchanged(picture, 0) && plane_unchanged(picture, 1) && plane_unchanged(picture, 2);
}

static bool same_image(const Image* a, const Image* b) {
    for (int i = 0; i < 3; ++i)
        if (a->plane[i] != b->plane[i] || a->plane_size[i] != b->plane_size[i]) return false;
    return a->format == b->format && a->reserved == b->reserved;
}

static bool same_frame(const Frame* a, const Frame* b) {
    return memcmp(a->reserved, b->reserved, sizeof a->reserved) == 0 && a->image == b->image;
}

bool picture_intact(const Picture* picture) {
    for (int i = 0; i < 3; ++i)
        if (!guarded_intact(&picture->plane[i])) return false;
    return same_image(&picture->image, &picture->image_before) &&
           same_frame(&picture->frame, &picture->frame_before);
}

void picture_close(Picture* picture) {
    for (int i = 0; i < 3; ++i) {
        guarded_free(&picture->plane[i]);
        free(picture->before[i]);
    }
}
