#include "album/apart.h"

#include <functional>
#include <utility>

#include "album/import/import_check.h"
#include "album/jobs.h"
#include "album/packed_record.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/process/apart_process.h"
#include "libutils/text/text.h"

namespace taloram {

// Where the templates of packed_record.h find them: not in a nameless namespace.
template <typename visitor_t>
void visit_fields(visitor_t& visit, files_t& file) {
    visit(file.filename, file.rightrotatecount);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, work_t& work) {
    visit(work.stage, work.files_done, work.files, work.done, work.total);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, clash_t& clash) {
    auto& [a, b] = clash;
    visit(a, b);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, left_out_t& file) {
    visit(file.name, file.reason);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, import_result_t& result) {
    visit(result.failed, result.file, result.reason, result.left_out, result.stopped);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, album_result_t& result) {
    visit(result.refused, result.reason, result.stopped, result.conflicts, result.clashes, result.missing_room,
          result.import);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, update_failure_t& failure) {
    visit(failure.file, failure.reason, failure.stopped);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, verify_result_t& result) {
    visit(result.is_good, result.stopped, result.has_sums, result.count, result.written_at);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, flawed_file_t& file) {
    visit(file.path, file.flaw, file.reason);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, checked_album_t& album) {
    visit(album.path, album.result, album.flaws, album.failure);
}

template <typename visitor_t>
void visit_fields(visitor_t& visit, originals_check_t& check) {
    visit(check.albums, check.failure, check.is_good, check.stopped);
}

namespace {

// A message is one of these and what belongs to it.
enum class told_t : char { fraction, worked, begun, other_writer, failed_file, result };

// What the caller says: a wish, or the answer to other_writer or failed_file.
enum word_t : char { go_on_word, hold_word, stop_word, yes_word, no_word };

char word_of(wish_t wish) {
    return wish == wish_t::hold ? hold_word : wish == wish_t::stop ? stop_word : go_on_word;
}

// The engine's environment in the process of its own.
class inside_t {
  public:
    explicit inside_t(libutils::caller_line_t& line) : line_(line) {
        for (const stage_t stage : all_stages) {
            signals.of(stage).connect([this, stage](double fraction) { tell(told_t::fraction, stage, fraction); });
        }
        signals.worked.connect([this](const work_t& work) { tell(told_t::worked, work); });
        signals.begun.connect(
            [this](const std::string& path, const std::vector<files_t>& files) { tell(told_t::begun, path, files); });
        signals.wish = [this] { return wish(); };
        g_workers.idle = nullptr;
        g_wait_for_writer = [this](const std::string& directory) {
            return ask(told_t::other_writer, directory) && last_ != stop_word;
        };
    }

    template <typename... Fields>
    void tell(Fields... fields) {
        line_.tell(packed(fields...));
    }

    // What the caller answers.
    template <typename... Fields>
    bool ask(Fields... fields) {
        tell(fields...);
        for (;;) {
            const char word = line_.wait_for_word();
            if (word == yes_word || word == no_word) {
                return word == yes_word;
            }
            last_ = word;
        }
    }

    progress_signals_t signals;

  private:
    wish_t wish() {
        while (const std::optional<char> word = line_.next_word()) {
            last_ = *word;
        }
        while (last_ == hold_word) {
            last_ = line_.wait_for_word();
        }
        return last_ == stop_word ? wish_t::stop : wish_t::go_on;
    }
    libutils::caller_line_t& line_;
    char last_ = go_on_word;
};

// The caller's side of it.
template <typename result_t>
class outside_t {
  public:
    using leaves_out_t = std::function<bool(const left_out_t&)>;
    using operation_t = std::function<result_t(progress_signals_t&, const leaves_out_t&)>;

    outside_t(progress_signals_t& progress, leaves_out_t leaves_out)
        : progress_(progress), leaves_out_(std::move(leaves_out)) {}

    // Nothing when the process died.
    std::optional<result_t> run(const operation_t& work) {
        const auto inside = [&](libutils::caller_line_t& line) {
            inside_t engine(line);
            leaves_out_t asked;
            if (leaves_out_) {
                asked = [&engine](const left_out_t& file) { return engine.ask(told_t::failed_file, file); };
            }
            engine.tell(told_t::result, work(engine.signals, asked));
        };
        const libutils::apart_end_t end = libutils::run_apart(
            inside, {[this](const std::string& message) { return hear(message); }, [this] { return idle(); }});
        if (end == libutils::apart_end_t::not_started) {
            result_.emplace(work(progress_, leaves_out_));
        }
        return result_;
    }

  private:
    std::optional<char> hear(const std::string& message) {
        unpacker_t unpack(message);
        told_t told{};
        unpack(told);
        std::string path;
        switch (told) {
            case told_t::fraction: {
                stage_t stage{};
                double fraction = 0;
                unpack(stage, fraction);
                progress_.of(stage).emit(fraction);
                break;
            }
            case told_t::worked: {
                work_t work;
                unpack(work);
                progress_.worked.emit(work);
                break;
            }
            case told_t::begun: {
                std::vector<files_t> files;
                unpack(path, files);
                progress_.begun.emit(path, files);
                break;
            }
            case told_t::other_writer:
                unpack(path);
                return !g_wait_for_writer || g_wait_for_writer(path) ? yes_word : no_word;
            case told_t::failed_file: {
                left_out_t file;
                unpack(file);
                return leaves_out_(file) ? yes_word : no_word;
            }
            case told_t::result:
                unpack(result_.emplace());
                break;
        }
        return {};
    }
    std::optional<char> idle() {
        if (g_workers.idle) {
            g_workers.idle();
        }
        const wish_t wish = progress_.wish ? progress_.wish() : wish_t::go_on;
        return std::exchange(told_, wish) == wish ? std::nullopt : std::optional(word_of(wish));
    }

    progress_signals_t& progress_;
    leaves_out_t leaves_out_;
    wish_t told_ = wish_t::go_on;
    std::optional<result_t> result_;
};

template <typename result_t>
std::optional<result_t> run_apart(progress_signals_t& progress,
                                  const std::function<result_t(progress_signals_t&)>& work) {
    return outside_t<result_t>(progress, {})
        .run([&](progress_signals_t& told, const std::function<bool(const left_out_t&)>&) { return work(told); });
}

std::string report_death(const std::string& path) {
    const std::string line = libutils::printable(path) + ": the process that worked on it has died.";
    libutils::report(line);
    return line;
}

album_result_t run_order(const album_order_t& order, progress_signals_t& progress,
                         album_result_t (*work)(const album_order_t&, progress_signals_t&)) {
    const auto obey = [&](progress_signals_t& told, const std::function<bool(const left_out_t&)>& leaves_out) {
        album_order_t inside = order;
        inside.options.leaves_out = leaves_out;
        return work(inside, told);
    };
    const auto result = outside_t<album_result_t>(progress, order.options.leaves_out).run(obey);
    if (result) {
        return *result;
    }
    album_result_t failed;
    failed.refused = album_step_t::import;
    failed.reason = report_death(order.album);
    return failed;
}

update_result_t run_update(const std::string& path, progress_signals_t& progress,
                           const std::function<update_result_t(progress_signals_t&)>& work) {
    const auto result = run_apart<update_result_t>(progress, work);
    return result ? *result : update_failure_t{"", report_death(path)};
}

}  // namespace

namespace apart {

std::optional<std::vector<std::string>> find_conflicts(const album_order_t& order, progress_signals_t& progress) {
    using found_t = std::optional<std::vector<std::string>>;
    const std::optional<found_t> found = run_apart<found_t>(progress, [&](progress_signals_t& told) {
        bool stopped = false;
        found_t conflicts(
            taloram::find_conflicts(order.source, order.files, order.album, lasting_goes_on(told, stopped)));
        return stopped ? found_t() : conflicts;
    });
    if (!found) {
        report_death(order.album);
    }
    return found ? *found : found_t();
}

album_result_t check_album_order(const album_order_t& order, progress_signals_t& progress) {
    return run_order(order, progress, taloram::check_album_order);
}

album_result_t make_album(const album_order_t& order, progress_signals_t& progress) {
    return run_order(order, progress, taloram::make_album);
}

update_result_t update_album(const std::vector<files_t>& files, const std::string& album,
                             progress_signals_t& progress) {
    return run_update(album, progress,
                      [&](progress_signals_t& told) { return taloram::update_album(files, album, told); });
}

update_result_t update_all(const std::string& path, const update_options_t& options, progress_signals_t& progress) {
    return run_update(path, progress,
                      [&](progress_signals_t& told) { return taloram::update_all(path, options, told); });
}

turned_t turn_photos(const std::string& album, const std::vector<std::string>& names, unsigned long count,
                     progress_signals_t& progress) {
    const auto result = run_apart<turned_t>(
        progress, [&](progress_signals_t& told) { return taloram::turn_photos(album, names, count, told); });
    if (!result) {
        report_death(album);
    }
    return result.value_or(turned_t::none);
}

originals_check_t check_originals(const std::string& directory, progress_signals_t& progress) {
    const auto result = run_apart<originals_check_t>(
        progress, [&](progress_signals_t& told) { return taloram::check_originals(directory, told); });
    if (result) {
        return *result;
    }
    originals_check_t failed;
    failed.is_good = false;
    failed.failure = report_death(directory);
    return failed;
}

}  // namespace apart

}  // namespace taloram
