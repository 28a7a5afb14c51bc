/* Sepia by its definition, one pixel after the other, for comparison. */
#ifndef ABI_SEPIA_MODEL_H
#define ABI_SEPIA_MODEL_H

#include <stdint.h>

/* `width` by `height` packed pixels in place. */
void sepia_packed_model(uint8_t* pixels, int width, int height);

/* Three planes in place; chroma is (width+1)/2 by (height+1)/2. */
void sepia_planar_model(uint8_t* const planes[3], int width, int height);

#endif
