#include "album/publish/publish_plan.h"

#include <algorithm>
#include <string_view>

#include "album/album_layout.h"
#include "album/album_walk.h"
#include "album/publish/page_links.h"
#include "album/sums/manifest.h"
#include "libutils/diagnostics.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

bool is_page(const std::string& file) {
    return libutils::extcasecmp(file, ".html") == 0 || libutils::extcasecmp(file, ".htm") == 0;
}

// In whatever case a disk may know the names by.
bool is_public(std::string_view path) {
    while (!path.empty()) {
        const std::string_view name = path.substr(0, path.find('/'));
        const auto is_name = [name](std::string_view other) { return libutils::equals_nocase(name, other); };
        if (name.starts_with('.') || is_name(layout::original) || is_name(layout::text) || is_name(manifest_t::name)) {
            return false;
        }
        path.remove_prefix(std::min(name.size() + 1, path.size()));
    }
    return true;
}

}  // namespace

std::string publish_plan_t::path(const std::string& file) const {
    return file.empty() ? source_ : entry_path(source_, file);
}

std::error_code publish_plan_t::load_page(std::string& text, const std::string& page) const {
    return libutils::read_file(text, path(page), longest_page);
}

bool publish_plan_t::find_units() {
    const auto add = [this](const std::string& path, bool is_album) {
        const std::string below = path.substr(std::min(source_.size() + 1, path.size()));
        units_.push_back({below, is_album, {}, {}});
        unit_paths_.insert(below);
        return true;
    };
    return visit_albums(source_, {[&](const std::string& album) { return add(album, true); },
                                  [&](const std::string& book) { return add(book, false); }, false})
        .succeeded;
}

// The path of the deepest unit around the file.
std::string publish_plan_t::holder_of(const std::string& file) const {
    std::string directory = libutils::parent_directory(file);
    while (!directory.empty() && !unit_paths_.contains(directory)) {
        directory = libutils::parent_directory(directory);
    }
    return directory;
}

bool publish_plan_t::is_left_to_others(const publish_unit_t& unit, const std::string& file) {
    const std::string holder = holder_of(file);
    if (holder == unit.path) {
        return false;
    }
    if (file == entry_path(holder, layout::index_page) || file == entry_path(holder, layout::list_page)) {
        return true;
    }
    foreign_.insert(file);
    return is_page(file) && !is_last(unit);
}

// The pages among what `page` leads to go to `pages`.
bool publish_plan_t::follow_links(publish_unit_t& unit, std::vector<std::string>& pages, const std::string& page) {
    std::string text;
    if (const std::error_code failure = load_page(text, page)) {
        libutils::report(libutils::printable(path(page)), ": ", failure.message());
        return false;
    }
    for (const std::string& link : links_of_page(text)) {
        const auto target = resolve_link(page, link);
        if (!target || wanted_.contains(*target) || !is_public(*target)) {
            continue;
        }
        const std::string file = file_of_link(source_, *target);
        if (file.empty()) {
            missing_.insert(*target);
            continue;
        }
        if (wanted_.contains(file) || is_left_to_others(unit, file)) {
            continue;
        }
        wanted_.insert(file);
        (is_page(file) ? unit.pages : unit.files).insert(file);
        if (is_page(file)) {
            pages.push_back(file);
        }
    }
    return true;
}

bool publish_plan_t::add_files(publish_unit_t& unit) {
    std::vector<std::string> pages;
    const auto add = [&](const std::string& page) {
        if (wanted_.insert(page).second) {
            unit.pages.insert(page);
            pages.push_back(page);
        }
    };
    add(entry_path(unit.path, layout::index_page));
    if (const std::string list = entry_path(unit.path, layout::list_page); unit.is_album && is_exist(path(list))) {
        add(list);
    }
    if (is_last(unit)) {
        for (const std::string& file : foreign_) {
            if (is_page(file)) {
                add(file);
            }
        }
    }
    while (!pages.empty()) {
        const std::string page = pages.back();
        pages.pop_back();
        if (!follow_links(unit, pages, page)) {
            return false;
        }
    }
    return true;
}

}  // namespace taloram
