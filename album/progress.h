#pragma once

#include <sigc++/sigc++.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "libutils/process/goes_on.h"

namespace taloram {

// The stages of the engine's long operations, in the order in which they run.
enum class stage_t { copy, verify, sizes, pages, zoom_pages };

constexpr stage_t all_stages[] = {stage_t::copy, stage_t::verify, stage_t::sizes, stage_t::pages, stage_t::zoom_pages};

// What whoever called the engine wants of the work that goes on.
enum class wish_t { go_on, hold, stop };

// How much of a stage is done, of what there is to do: files that are up to date do not count.
struct work_t {
    stage_t stage = stage_t::copy;
    size_t files_done = 0;
    size_t files = 0;  // that are copied or compared; of stage `sizes`, photographs
    double done = 0;   // bytes of those files
    double total = 0;
};

// What a long operation tells, and asks, while it runs, on the caller's thread. Copies share the connected handlers.
struct progress_signals_t {
    progress_t copy;
    progress_t verify;
    progress_t sizes;
    progress_t pages;
    progress_t zoom_pages;

    // Work on an album or a book begins, given as its path; the stages count `files` from now on, of a book none.
    sigc::signal<void, const std::string&, const std::vector<files_t>&> begun;

    // Asked before each photograph or other file, between the blocks of a large one, and some twenty times a second
    // while the engine holds or waits for its workers. Empty: it goes on.
    //
    // After a stop nothing stands half done under a final name, what is done stays, the pages are those of what is
    // there, no lock is held, and the same call completes the work; the result says that it was stopped. While pages
    // are written it is too late: the work then comes to its end. The lists of results tell more.
    std::function<wish_t()> wish = nullptr;

    // At the begin of a stage in which there is something to do, and after each of its files, behind the stage's own
    // signal. Nothing for pages.
    sigc::signal<void, const work_t&> worked = {};

    // Asks, and waits for as long as the work is to hold. False when it is to stop.
    [[nodiscard]] bool goes_on() const;

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

// The wish for steps that only know whether to go on; after the first stop `stopped` is true and nobody is asked again.
// Both must live as long as what is returned.
[[nodiscard]] libutils::goes_on_t lasting_goes_on(const progress_signals_t& progress, bool& stopped);

}  // namespace taloram
