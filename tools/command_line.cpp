#include "tools/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <string_view>

#include "album/jobs.h"
#include "libutils/diagnostics.h"
#include "programs/arguments.h"

namespace talomake {

namespace {

using programs::plain;

std::optional<uint64_t> parse_decimal(std::string_view text) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

uint64_t parse_angle(const std::string& option, std::string_view text) {
    constexpr std::string_view angles[] = {"90", "180", "270"};
    const auto* const found = std::find(std::begin(angles), std::end(angles), text);
    if (found == std::end(angles)) {
        throw CLI::ValidationError(option, "the angle must be 90, 180 or 270");
    }
    return static_cast<uint64_t>(found - std::begin(angles)) + 1;
}

rotation_t parse_rotation(const std::string& text) {
    const size_t sign = text.rfind('=');
    if (sign == std::string::npos) {
        throw CLI::ValidationError("--rotate", "must be NAME=90, NAME=180 or NAME=270");
    }
    return {text.substr(0, sign), parse_angle("--rotate", std::string_view(text).substr(sign + 1))};
}

run_options_t::box_t parse_shrink_size(const std::string& text) {
    const size_t comma = std::min(text.find(','), text.size());
    const auto width = parse_decimal(std::string_view(text).substr(0, comma));
    const auto height = parse_decimal(std::string_view(text).substr(std::min(comma + 1, text.size())));
    if (width.value_or(0) == 0 || height.value_or(0) == 0) {
        throw CLI::ValidationError("--shrink-size", "must be two positive numbers with a comma between them");
    }
    return {*width, *height};
}

uint64_t parse_quality(const std::string& text) {
    const auto quality = parse_decimal(text);
    if (!quality || *quality > 100) {
        throw CLI::ValidationError("--quality", "must be a number from 0 to 100");
    }
    return *quality;
}

unsigned parse_jobs(const std::string& text) {
    const auto jobs = parse_decimal(text);
    if (!jobs || *jobs == 0 || *jobs > taloram::most_jobs) {
        throw CLI::ValidationError("--jobs", libutils::join_text("must be a number from 1 to ", taloram::most_jobs));
    }
    return static_cast<unsigned>(*jobs);
}

progress_mode_t parse_progress(const std::string& text) {
    struct mode_t {
        std::string_view text;
        progress_mode_t mode;
    };
    constexpr mode_t modes[] = {
        {"auto", progress_mode_t::automatic}, {"always", progress_mode_t::always}, {"never", progress_mode_t::never}};
    for (const mode_t& mode : modes) {
        if (mode.text == text) {
            return mode.mode;
        }
    }
    throw CLI::ValidationError("--progress", "must be auto, always or never");
}

std::string parse_title(const std::string& text) {
    if (text.find_first_of("\r\n") != std::string::npos) {
        throw CLI::ValidationError("--title", "must be one line");
    }
    return text;
}

// An option with one value, which `take` gets.
template <typename Take>
CLI::Option* add_value(CLI::App& app, const char* name, const char* type, const char* description, Take take) {
    const auto take_plain = [take](const std::string& text) { take(plain(text)); };
    return app.add_option_function<std::string>(name, take_plain, description)->type_name(type);
}

// What stands in its place among the arguments: one path or name, or several.
template <typename Words>
CLI::Option* add_words(CLI::App& app, const char* name, Words& words, const char* description) {
    return app
        .add_option_function<Words>(
            name, [&words](const Words& given) { words = plain(given); }, description)
        ->type_name("");
}

void add_flag(CLI::App& app, const char* name, bool& flag, const char* description) {
    app.add_flag(name, flag, description)->disable_flag_override();
}

void define_run_options(CLI::App& app, run_options_t& run) {
    add_value(app, "--shrink-size", "W,H", "the reduced sizes end with the first that fits into W x H pixels",
              [&run](const std::string& text) { run.shrink_size = parse_shrink_size(text); });
    add_value(app, "--quality", "N", "JPEG quality of reduced sizes and thumbnails, 0 to 100",
              [&run](const std::string& text) { run.quality = parse_quality(text); });
    add_value(app, "--jobs", "N", "photographs at work at the same time; without it one a processor",
              [&run](const std::string& text) { run.jobs = parse_jobs(text); });
    add_value(app, "--progress", "WHEN", "show progress: auto (on a terminal), always or never",
              [&run](const std::string& text) { run.progress = parse_progress(text); });
    add_flag(app, "--trace", run.trace, "tell every step");
}

CLI::App* define_album(CLI::App& app, album_command_t& command) {
    CLI::App* const album = app.add_subcommand("album", "Make an album of the photographs of a directory");
    add_words(*album, "from_dir", command.from, "where the photographs are")->required();
    add_words(*album, "album_dir", command.album, "the album; made when missing")->required();
    add_words(*album, "file", command.files,
              "names of files in from_dir; without any, all but hidden ones, head.txt and last.txt");
    add_value(*album, "--title", "TEXT", "the album's title",
              [&command](const std::string& text) { command.title = parse_title(text); });
    add_value(*album, "--head", "FILE", "text above the photographs",
              [&command](const std::string& text) { command.head_file = text; });
    add_value(*album, "--last", "FILE", "text below the photographs",
              [&command](const std::string& text) { command.last_file = text; });
    album
        ->add_option_function<std::vector<std::string>>(
            "--rotate",
            [&command](const std::vector<std::string>& texts) {
                for (const std::string& text : plain(texts)) {
                    command.rotations.push_back(parse_rotation(text));
                }
            },
            "turn a photograph clockwise by 90, 180 or 270 degrees; repeatable")
        ->type_name("NAME=ANGLE")
        ->allow_extra_args(false);
    add_flag(*album, "--verify", command.verify,
             "read every copy back from the disk, compare it with its source and note its SHA-256 in SHA256SUMS");
    add_flag(*album, "--replace", command.replace, "replace files of the album that have other contents");
    add_flag(*album, "--keep-going", command.keep_going, "leave out what fails and finish the others");
    define_run_options(*album, command.run);
    return album;
}

CLI::App* define_update(CLI::App& app, update_command_t& command) {
    CLI::App* const update = app.add_subcommand("update", "Bring albums and books up to date");
    add_words(*update, "dir", command.directories, "an album, or a book with all albums below it")->required();
    add_flag(*update, "--prune", command.prune,
             "remove sizes, thumbnails and zoom pages of photographs that are no longer in original/");
    define_run_options(*update, command.run);
    return update;
}

CLI::App* define_verify(CLI::App& app, verify_command_t& command) {
    CLI::App* const verify = app.add_subcommand("verify", "Compare originals and movies with their SHA256SUMS");
    add_words(*verify, "dir", command.directories, "an album, or a book with all albums below it")->required();
    return verify;
}

CLI::App* define_book(CLI::App& app, book_command_t& command) {
    CLI::App* const book = app.add_subcommand("book", "Rewrite the index page of books");
    add_words(*book, "book_dir", command.directories, "a directory of albums")->required();
    return book;
}

CLI::App* define_turn(CLI::App& app, turn_command_t& command) {
    CLI::App* const turn = app.add_subcommand("turn", "Turn photographs of an album and rewrite its pages");
    add_words(*turn, "album_dir", command.album, "the album")->required();
    turn->add_option_function<std::string>(
            "angle", [&command](const std::string& text) { command.quarter_turns = parse_angle("angle", text); },
            "clockwise: 90, 180 or 270")
        ->required()
        ->type_name("");
    add_words(*turn, "photo", command.photos, "names of photographs in the album")->required();
    return turn;
}

CLI::App* define_exif(CLI::App& app, exif_command_t& command) {
    CLI::App* const exif = app.add_subcommand("exif", "Print the shooting data of photographs");
    add_words(*exif, "photo", command.photos, "JPEG files")->required();
    add_flag(*exif, "--html", command.html, "as on an album's pages");
    return exif;
}

CLI::App* define_look(CLI::App& app, look_command_t& command) {
    CLI::App* const look = app.add_subcommand("look", "List looks of pages, print the line of one, or use it");
    CLI::Option* const name = look->add_option_function<std::string>(
                                      "name", [&command](const std::string& text) { command.name = plain(text); },
                                      "a look that is listed, or with a / the path of one; without it all are listed")
                                  ->type_name("");
    look->add_flag("--set", command.set, "write the line into the settings file, as html_header")
        ->disable_flag_override()
        ->needs(name);
    return look;
}

CLI::App* define_publish(CLI::App& app, publish_command_t& command) {
    CLI::App* const publish = app.add_subcommand("publish", "Make a copy of an album or book for readers");
    add_words(*publish, "dir", command.source, "an album, or a book with all albums below it")->required();
    add_words(*publish, "copy_dir", command.directory, "the copy; made when missing")->required();
    add_flag(*publish, "--keep-data", command.keep_data, "keep all that photographs tell: places, cameras, previews");
    add_flag(*publish, "--prune", command.prune, "remove what was published before and is no longer in the album");
    return publish;
}

CLI::App* define_card(CLI::App& app, card_command_t& command) {
    CLI::App* const card = app.add_subcommand(
        "card", "Bring what is new on memory cards into a book, and prove that the book has every file of them");
    const auto take_directories = [&command](const std::vector<std::string>& directories) {
        command.cards = plain(directories);
        command.book = command.cards.back();
        command.cards.pop_back();
    };
    card->add_option_function<std::vector<std::string>>("card", take_directories, "cards, and last the book")
        ->required()
        ->expected(2, -1)
        ->type_name("");
    add_flag(*card, "--check", command.check, "import nothing: only compare the cards with the book");
    add_value(*card, "--album", "NAME", "one album for all that is new, instead of one a day",
              [&command](const std::string& text) { command.album = text; });
    add_flag(*card, "--list", command.list, "print each file of the cards, a tab, and its place in the book");
    define_run_options(*card, command.run);
    return card;
}

// `chosen` becomes the command when it is the one that was named.
template <typename Command>
void add_command(CLI::App& app, std::optional<command_t>& chosen, CLI::App* (*define)(CLI::App&, Command&)) {
    const auto command = std::make_shared<Command>();
    define(app, *command)->callback([command, &chosen] { chosen = *command; });
}

}  // namespace

std::optional<command_t> parse_command_line(int argc, const char* const* argv, int& status) {
    CLI::App app("Makes static HTML albums of photographs.", "talomake");
    app.set_version_flag("--version", "talomake " TALORAM_VERSION);
    app.require_subcommand(1);
    app.footer("Exit status: 0 done; 1 something failed, standard error tells what; 2 wrong use, nothing was touched.");

    std::optional<command_t> chosen;
    add_command(app, chosen, define_album);
    add_command(app, chosen, define_update);
    add_command(app, chosen, define_verify);
    add_command(app, chosen, define_book);
    add_command(app, chosen, define_turn);
    add_command(app, chosen, define_exif);
    add_command(app, chosen, define_look);
    add_command(app, chosen, define_publish);
    add_command(app, chosen, define_card);
    app.footer(
        "Each command has --help. Settings are those of the file .taloram in the home directory; options win for one "
        "run.\n" +
        app.get_footer());

    if (!programs::parse_arguments(app, argc, argv, ": no such command or option.", status)) {
        return std::nullopt;
    }
    return chosen;
}

}  // namespace talomake
