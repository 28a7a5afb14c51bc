/* A frame as a host hands it over, in guarded planes, with a copy to compare with afterwards. */
#ifndef ABI_PICTURE_H
#define ABI_PICTURE_H

#include "memory.h"
#include "module.h"

typedef struct {
    Guarded plane[3];
    uint8_t* before[3];
    Image image, image_before;
    Frame frame, frame_before;
} Picture;

/* Planes of exactly the given sizes, full of noise; the records' unused words hold garbage. */
void picture_open(Picture* picture, int32_t format, size_t size0, size_t size1, size_t size2, Random* random);

/* A picture of exactly the bytes that the format has at this size; sides below 1 count as 0. */
void picture_planar(Picture* picture, int32_t width, int32_t height, Random* random);
void picture_packed(Picture* picture, int32_t width, int32_t height, Random* random);

/* Planar with chroma planes rounded up: (W+1)/2 by (H+1)/2. */
void picture_planar_round_up(Picture* picture, int32_t width, int32_t height, Random* random);

/* Takes the present contents (planes and records) as what to compare with. */
void picture_remember(Picture* picture);

/* The planes hold what they held. */
bool picture_unchanged(const Picture* picture);
bool plane_unchanged(const Picture* picture, int index);

/* Nothing in front of a plane was written and the records are as the host made them. */
bool picture_intact(const Picture* picture);

void picture_close(Picture* picture);

#endif
