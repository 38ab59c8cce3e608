#include "album/sizes/level_files.h"

#include <unistd.h>

#include <algorithm>

#include "album/sizes/jpeg_files.h"
#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/pyramid/reduction.h"
#include "libutils/diagnostics.h"

namespace taloram {

namespace {

void remove_outdated(const level_plan_t& plan) {
    if (!plan.outdated.empty()) {
        unlink(plan.outdated.c_str());
    }
}

bool is_saved(const level_row_t& row, bool saved) {
    if (!saved) {
        libutils::report(row.path, ": savejpeg failed.");
    }
    return saved;
}

// All rows encoded while the file is read; false for what only the plain way can do.
bool reduce(libgr::reduction_t& reduction, const level_plan_t& plan, const libgr::jpegdata_t& source) {
    reduction.quality = encoding_quality();
    for (const level_row_t& row : plan.rows) {
        if (!row.is_written) {
            continue;
        }
        if (row.halvings == 0) {
            return false;
        }
        reduction.levels.resize(std::max(reduction.levels.size(), row.halvings));
        libgr::reduction_t::level_t& level = reduction.levels[row.halvings - 1];
        level.wanted = true;
        level.with_segments = row.with_segments;
    }
    return libgr::reduce(reduction, source);
}

bool write_reduced(libgr::reduction_t& reduction, const level_plan_t& plan) {
    return std::all_of(plan.rows.begin(), plan.rows.end(), [&](const level_row_t& row) {
        return !row.is_written || is_saved(row, save_encoded_jpeg(row.path, reduction.levels[row.halvings - 1].stream));
    });
}

// The line of a failure names the file that the picture was on its way from.
bool halve(libgr::image2d_t& image, size_t& halvings, size_t wanted, const std::string& from, const std::string& name) {
    for (const std::string* subject = &from; halvings < wanted; ++halvings, subject = &name) {
        if (!libgr::scaledown(image, image)) {
            libutils::report(*subject, ": scaledown() failed.");
            return false;
        }
    }
    return true;
}

bool write_decoded(const level_plan_t& plan, libgr::image2d_t& image,
                   std::list<libgr::jpeginfo_t::marker_t>& segments) {
    std::list<libgr::jpeginfo_t::marker_t> none;
    size_t halvings = 0;
    std::string from = plan.name;
    for (const level_row_t& row : plan.rows) {
        if (!halve(image, halvings, row.halvings, from, plan.name) ||
            (row.is_written && !is_saved(row, savejpeg(row.path, image, row.with_segments ? segments : none)))) {
            return false;
        }
        from = row.path;
    }
    return true;
}

}  // namespace

bool write_levels(const level_plan_t& plan) {
    libgr::jpegdata_t source;
    if (!source.load(plan.source.c_str())) {
        libutils::report(plan.load_failure);
        return false;
    }
    libgr::reduction_t reduction;
    if (reduce(reduction, plan, source)) {
        source.clear();
        remove_outdated(plan);
        return write_reduced(reduction, plan);
    }
    reduction.levels.clear();
    libgr::jpeginfo_t info;
    libgr::image2d_t image;
    if (!info.decompress(image, source, 0, false, libgr::color3ub_t())) {
        libutils::report(plan.decode_failure);
        return false;
    }
    source.clear();
    remove_outdated(plan);
    return write_decoded(plan, image, info.markers);
}

}  // namespace taloram
