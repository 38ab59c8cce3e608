#pragma once

#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace taloram {

// An album, or a book's own files. Paths begin at the directory that is published.
struct publish_unit_t {
    std::string path;
    bool is_album = false;
    std::set<std::string> files;  // beside the pages
    std::set<std::string> pages;
};

// What of a directory readers get: its pages, index.html and list.html, and what links lead to from page to page, but
// no hidden file, and nothing that is called original, txt or SHA256SUMS.
class publish_plan_t {
  public:
    explicit publish_plan_t(std::string source) : source_(std::move(source)) {}

    // Finds the albums and books, without their files; a book comes behind what is below it. False, after a report,
    // when a directory can't be listed.
    [[nodiscard]] bool find_units();

    // Fills in the files of a unit; those of a page that belong to another unit too. To be called in the order of
    // units(), of which the last takes over pages that others link to. False, after a report, when a page can't be
    // read.
    [[nodiscard]] bool add_files(publish_unit_t& unit);

    [[nodiscard]] std::vector<publish_unit_t>& units() { return units_; }
    [[nodiscard]] bool is_last(const publish_unit_t& unit) const { return &unit == &units_.back(); }

    // The files of all units so far, those of them that a page of another unit brought in, and what pages link to that
    // the source does not have.
    [[nodiscard]] const std::set<std::string>& wanted() const { return wanted_; }
    [[nodiscard]] const std::set<std::string>& foreign() const { return foreign_; }
    [[nodiscard]] const std::set<std::string>& missing() const { return missing_; }

    // A file of the source.
    [[nodiscard]] std::string path(const std::string& file) const;

    // The whole of a page of the source.
    [[nodiscard]] std::error_code load_page(std::string& text, const std::string& page) const;

  private:
    [[nodiscard]] std::string holder_of(const std::string& file) const;
    [[nodiscard]] bool is_left_to_others(const publish_unit_t& unit, const std::string& file);
    [[nodiscard]] bool follow_links(publish_unit_t& unit, std::vector<std::string>& pages, const std::string& page);

    std::string source_;
    std::vector<publish_unit_t> units_;
    std::set<std::string> unit_paths_;
    std::set<std::string> wanted_;
    std::set<std::string> foreign_;
    std::set<std::string> missing_;
};

}  // namespace taloram
