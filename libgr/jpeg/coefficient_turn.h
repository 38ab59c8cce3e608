#pragma once

#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// Turns of a picture in the coefficient domain. Within one block transposing swaps the two frequencies, mirroring
// left-right negates the coefficients of odd horizontal frequency and mirroring top-bottom those of odd vertical
// frequency; blocks move the same way. Mirroring reaches only over whole iMCUs of the turned picture: blocks of a
// partial iMCU at its right or bottom edge stay in place in that direction.

// Clockwise turns. Codes 1 to 4 are left to mirrored pictures, which are refused.
enum JXFORM_CODE { JXFORM_NONE = 0, JXFORM_ROT_90 = 5, JXFORM_ROT_180 = 6, JXFORM_ROT_270 = 7 };

// Which of the source's segments are carried over.
enum JCOPY_OPTION { JCOPYOPT_NONE, JCOPYOPT_COMMENTS, JCOPYOPT_ALL };

// A part of the picture; in pixels, 0 for what the request left out.
struct crop_request_t {
    JDIMENSION width = 0;  // 0: up to the edge
    JDIMENSION height = 0;
    JDIMENSION x_offset = 0;
    JDIMENSION y_offset = 0;
    bool from_right = false;   // x_offset counts from the right edge
    bool from_bottom = false;  // y_offset counts from the bottom edge
};

struct jpeg_transform_info {
    JXFORM_CODE transform = JXFORM_NONE;
    bool perfect = false;          // refuse a turn that leaves an odd strip unmirrored
    bool trim = false;             // cut the odd strip off; not available
    bool force_grayscale = false;  // not available
    bool crop = false;             // not available
    crop_request_t crop_request;

    // One array per component for the turned picture, of the decompressor; null when the source's own arrays serve.
    jvirt_barray_ptr* workspace_coef_arrays = nullptr;
};

// Reads "<width>x<height>{+-}<x>{+-}<y>" into the crop request; the width, the height with its "x", and the pair of
// offsets may each be missing, not all of them; "-" counts from the far edge. False, and unchanged, for anything else.
[[nodiscard]] bool jtransform_parse_crop_spec(jpeg_transform_info& request, const char* spec);

// True when every pixel of a picture takes part in the turn; the iMCU size is the source's, in pixels.
[[nodiscard]] bool jtransform_perfect_transform(JDIMENSION image_width, JDIMENSION image_height, int mcu_width,
                                                int mcu_height, JXFORM_CODE transform);

// Asks the decompressor for the arrays that the turn needs: after jpeg_read_header, before jpeg_read_coefficients.
// False when the request is not available, or is to be perfect and can't be.
[[nodiscard]] bool jtransform_request_workspace(jpeg_decompress_struct& source, jpeg_transform_info& request);

// Gives the compressor, which holds the source's critical parameters, those of the turned picture. Returns the arrays
// to hand to jpeg_write_coefficients.
[[nodiscard]] jvirt_barray_ptr* jtransform_adjust_parameters(jpeg_decompress_struct& source,
                                                             jpeg_compress_struct& turned,
                                                             jvirt_barray_ptr* source_arrays,
                                                             const jpeg_transform_info& request);

// Fills the workspace arrays from the source's: after jpeg_write_coefficients, before jpeg_finish_compress.
void jtransform_execute_transform(jpeg_decompress_struct& source, jvirt_barray_ptr* source_arrays,
                                  const jpeg_transform_info& request);

// Makes the decompressor keep the segments that jcopy_markers_execute copies: before jpeg_read_header.
void jcopy_markers_setup(jpeg_decompress_struct& source, JCOPY_OPTION option);

// Writes the kept segments: after jpeg_write_coefficients. A JFIF or Adobe segment is left out where the compressor
// has written its own.
void jcopy_markers_execute(const jpeg_decompress_struct& source, jpeg_compress_struct& turned, JCOPY_OPTION option);

}  // namespace libgr
