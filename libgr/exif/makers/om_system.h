#pragma once

#include "libgr/exif/code_labels.h"
#include "libgr/exif/makers.h"

namespace libgr {

// OM Digital Solutions, and the newer Olympus cameras: a main directory with directories below it. An Olympus note of
// this layout begins with "OLYMPUS" NUL and the note's own byte order.
extern const maker_t om_system_maker;
extern const maker_t newer_olympus_maker;

extern const desc_t olym3whitebal[];  // WhiteBalance2 of the camera settings

}  // namespace libgr
