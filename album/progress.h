#pragma once

#include <sigc++/sigc++.h>

#include <cstddef>
#include <string>
#include <vector>

#include "album/album_layout.h"

namespace taloram {

// The stages of the engine's long operations, in the order in which they run.
enum class stage_t { copy, verify, sizes, pages, zoom_pages };

constexpr stage_t all_stages[] = {stage_t::copy, stage_t::verify, stage_t::sizes, stage_t::pages, stage_t::zoom_pages};

// What a long operation tells while it runs, on the caller's thread. Copies share the connected handlers.
struct progress_signals_t {
    progress_t copy;
    progress_t verify;
    progress_t sizes;
    progress_t pages;
    progress_t zoom_pages;

    // Work on an album or a book begins, given as its path; the stages count `files` from now on, of a book none.
    sigc::signal<void, const std::string&, const std::vector<files_t>&> begun;

    [[nodiscard]] progress_t& of(stage_t stage) {
        switch (stage) {
            case stage_t::copy:
                return copy;
            case stage_t::verify:
                return verify;
            case stage_t::sizes:
                return sizes;
            case stage_t::pages:
                return pages;
            case stage_t::zoom_pages:
                break;
        }
        return zoom_pages;
    }
};

}  // namespace taloram
