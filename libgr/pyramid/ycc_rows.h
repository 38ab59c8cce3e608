#pragma once

#include <cstddef>
#include <cstdint>

namespace libgr {

// Rows of YCbCr pictures, with the processor's vectors: what lies between libjpeg's planes and halved RGB. The formulas
// are those of libjpeg's defaults in integers ("fancy" upsampling, JFIF colours in 16 bits), so that every byte is the
// one that libjpeg itself would make.

// Weighted sums of two neighbouring rows of chroma for the upsampling in between: 3 * nearer + farther, and the end
// values once more in to[-1] and to[width].
void sum_chroma_rows(int16_t* to, const unsigned char* nearer, const unsigned char* farther, size_t width);

// The same for a picture whose rows all have their own chroma: the values as they are.
void copy_chroma_row(int16_t* to, const unsigned char* row, size_t width);

// One row of a picture whose chroma has half the width.
struct ycc_row_t {
    const unsigned char* y;
    const int16_t* cb;  // of sum_chroma_rows() or copy_chroma_row()
    const int16_t* cr;
};

// Upsamples, converts to RGB and halves two rows of 2 * width pixels or one more. `summed` tells that the chroma is of
// sum_chroma_rows(). Each component goes into a row of its own.
void halve_ycc_rows(unsigned char* const to[3], const ycc_row_t& row0, const ycc_row_t& row1, size_t width,
                    bool summed);

// The same for planes of full width, in the order Y, Cb, Cr.
void halve_full_ycc_rows(unsigned char* const to[3], const unsigned char* const row0[3],
                         const unsigned char* const row1[3], size_t width);

// Two rows of a strip with chroma halved in both directions.
struct ycc_strip_rows_t {
    unsigned char* y0;
    unsigned char* y1;
    unsigned char* cb;
    unsigned char* cr;
};

// Converts two rows of RGB in planes, `width` (an even number) pixels wide.
void convert_rgb_rows(const ycc_strip_rows_t& to, const unsigned char* const row0[3],
                      const unsigned char* const row1[3], size_t width);

}  // namespace libgr
