#include "widgets/held_search.h"

#include <cstdlib>
#include <iostream>
#include <utility>

#include "libutils/diagnostics.h"

namespace taloram {

namespace {

// What goes between the processes ends with what neither a path nor a line holds.
constexpr char end_of_record = '\0';

// A found file: its place in the list, a blank, the album's path. This instead of the place stands before a reason.
constexpr char is_reason = '!';

// In a process of its own, whose lines on standard error would come at any time.
bool search(const std::string& directory, const std::vector<std::string>& names, const std::string& book,
            const libutils::background_process_t::send_t& send) {
    std::cerr.rdbuf(nullptr);
    const libutils::first_report_t heard;
    const bool is_whole = find_held_files(directory, names, book, [&send](size_t index, const std::string& album) {
        send(libutils::join_text(index, " ", album, end_of_record));
    });
    if (!is_whole) {
        send(is_reason + heard.line() + end_of_record);
    }
    return is_whole;
}

}  // namespace

held_search_t::held_search_t(held_file_t found, ended_t ended) : found_(std::move(found)), ended_(std::move(ended)) {
}

void held_search_t::start(const std::string& directory, const std::vector<std::string>& names,
                          const std::string& book) {
    on_receive_.disconnect();
    received_.clear();
    reason_.clear();
    if (names.empty()) {
        process_.end();
        return;
    }
    process_.start(
        [&](const libutils::background_process_t::send_t& send) { return search(directory, names, book, send); });
    if (process_.descriptor() < 0) {
        ended_({});
        return;
    }
    on_receive_ = Glib::signal_io().connect(sigc::mem_fun(*this, &held_search_t::receive), process_.descriptor(),
                                            Glib::IO_IN | Glib::IO_HUP);
}

void held_search_t::tell(const std::string& record) {
    if (record.starts_with(is_reason)) {
        reason_ = record.substr(1);
    } else {
        const size_t blank = record.find(' ');
        found_(std::strtoull(record.c_str(), nullptr, 10), record.substr(blank + 1));
    }
}

bool held_search_t::receive(Glib::IOCondition /*condition*/) {
    using state_t = libutils::background_process_t::state_t;
    const state_t state = process_.receive(received_);
    size_t begin = 0;
    for (size_t end = received_.find(end_of_record); end != std::string::npos;
         end = received_.find(end_of_record, begin)) {
        tell(received_.substr(begin, end - begin));
        begin = end + 1;
    }
    received_.erase(0, begin);
    if (state == state_t::running) {
        return true;
    }
    ended_({state == state_t::succeeded, reason_});
    return false;
}

}  // namespace taloram
