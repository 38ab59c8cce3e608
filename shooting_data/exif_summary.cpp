#include "shooting_data/exif_summary.h"

#include <algorithm>
#include <iostream>
#include <list>
#include <sstream>

#include "libgr/exif/app1_marker.h"
#include "libgr/jpeg/jpegdata.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/markers/jpeginfo2.h"
#include "libutils/text/text.h"
#include "messages/message.h"
#include "shooting_data/exif_labels.h"
#include "talolib/option.h"

namespace taloram {

namespace {

using items_t = std::vector<summary_item_t>;

// The summary covers what a browser shows everywhere: a file that is no 8-bit baseline one has none.
bool load_exif(libgr::app1_marker_t& app1, const std::string& path) {
    libgr::jpegdata2_t data;
    if (!data.load(path.c_str())) {
        return false;
    }
    libgr::jpeginfo2_t info(path.c_str());
    if (!info.analyze(data)) {
        return false;
    }
    const libutils::bytes_t segment = info.get_marker(libgr::marker_APP1);
    if (segment.empty()) {
        return false;
    }
    talolib::trace(std::cout, "new app1_marker_t complete.");
    app1.set_app1_buffer(segment);
    talolib::trace(std::cout, "set_app1_buffer() complete.");
    if (!app1.parse()) {
        return false;
    }
    talolib::trace(std::cout, "app1->parse() complete.");
    return true;
}

bool has_line(const items_t& items, summary_item_t::line_t line) {
    return std::any_of(items.begin(), items.end(), [line](const summary_item_t& item) { return item.line == line; });
}

std::string line_text(const items_t& items, summary_item_t::line_t line) {
    std::string text;
    for (const summary_item_t& item : items) {
        if (item.line == line) {
            text += (item.after_comma ? ", " : "") + item.text;
        }
    }
    return text;
}

// Tab-separated lines, the form that pages show. The camera's line has no break of its own in front.
void write_lines(std::ostream& out, const items_t& items, const char* line_break) {
    if (has_line(items, summary_item_t::camera)) {
        out << '\t' << line_text(items, summary_item_t::camera) << '\n';
    }
    if (has_line(items, summary_item_t::lens)) {
        out << line_break << '\t' << line_text(items, summary_item_t::lens) << '\n';
    }
    for (const auto line : {summary_item_t::exposure, summary_item_t::shooting, summary_item_t::picture}) {
        out << '\t' << line_break << line_text(items, line);
    }
    if (has_line(items, summary_item_t::stacking)) {
        out << '\t' << line_break << line_text(items, summary_item_t::stacking);
    }
}

// Lines of words. Where the first item of a line is missing, the comma after it goes, too.
std::string plain_lines(const items_t& items) {
    const std::string settings =
        line_text(items, summary_item_t::exposure) + ' ' + line_text(items, summary_item_t::shooting) + ' ' +
        line_text(items, summary_item_t::picture) + ' ' + line_text(items, summary_item_t::stacking);
    std::list<std::string> shown;
    for (const std::string& line :
         {line_text(items, summary_item_t::camera), line_text(items, summary_item_t::lens), settings}) {
        std::list<std::string> parts;  // a camera's own texts may hold line ends
        libutils::separate_token(parts, line, "\n");
        for (std::string& part : parts) {
            libutils::chop2(part);
            part.erase(0, std::min(part.find_first_not_of("\t ,"), part.size()));
            std::replace(part.begin(), part.end(), '\t', ' ');
            if (!part.empty()) {
                shown.push_back(part);
            }
        }
    }
    std::string text;
    libutils::concatenate_token(text, shown, "\n");
    return text;
}

}  // namespace

void initexif(const char* /*dir*/, const char* /*name*/) {
    meteringmode[2] = getmsg(msg_metering_average);
    meteringmode[3] = getmsg(msg_metering_spot);
}

bool write_summary(std::ostream& os, const std::string& path, bool html) {
    libgr::app1_marker_t app1;
    if (!load_exif(app1, path)) {
        return false;
    }
    write_lines(os, summary_items(app1.tiff_header, os), html ? "<br>" : "");
    return true;
}

bool writeexif(std::ostream& os, const std::string& dir, const std::string& sub, const std::string& file, bool html) {
    return write_summary(os, (dir.empty() ? "" : dir + "/") + sub + "/" + file, html);
}

std::string plain_summary(const std::string& path) {
    libgr::app1_marker_t app1;
    std::ostringstream format;
    return load_exif(app1, path) ? plain_lines(summary_items(app1.tiff_header, format)) : "";
}

}  // namespace taloram
