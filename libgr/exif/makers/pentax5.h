#pragma once

#include "libgr/exif/code_labels.h"
#include "libgr/exif/makers.h"

namespace libgr {

// Pentax cameras made by Ricoh.
extern const maker_t pentax5_maker;

extern const desc_t pex5focusmode[];

}  // namespace libgr
