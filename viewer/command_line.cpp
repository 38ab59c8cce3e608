#include "viewer/command_line.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "programs/arguments.h"

namespace talovue {

namespace {

double parse_seconds(const std::string& text) {
    double seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    // Also false for what is no number.
    const bool in_range = seconds >= shortest_slide && seconds <= longest_slide;
    if (error != std::errc() || stop != end || !in_range) {
        throw CLI::ValidationError("--slideshow", "must be a number of seconds from 0.1 to 86400");
    }
    return seconds;
}

}  // namespace

std::optional<command_line_t> parse_command_line(int argc, const char* const* argv, int& status) {
    command_line_t line;
    CLI::App app("Shows photographs.", "talovue3");
    app.set_version_flag("--version", "talovue3 " TALORAM_VERSION);
    app.add_option_function<std::string>(
           "--slideshow",
           [&line](const std::string& text) { line.slide_seconds = parse_seconds(programs::plain(text)); },
           "go on to the next photograph by itself")
        ->type_name("SECONDS");
    app.add_flag("--fullscreen", line.full_screen, "cover the whole screen")->disable_flag_override();
    app.add_option("path", line.paths, "directories or JPEG files; one file alone opens its directory at that file")
        ->required()
        ->type_name("");
    app.footer(
        "Keys: arrows, Space, Page Up and Down, Home, End: another photograph; + and - or the wheel: zoom; 1: full "
        "size; 0: fitted; drag: move; R, L: turn the view; I: shooting data; S: slide show; F or F11: full screen; "
        "Escape: back. No file is ever changed.");
    if (!programs::parse_arguments(app, argc, argv, ": no such option.", status)) {
        return std::nullopt;
    }
    line.paths = programs::plain(line.paths);
    return line;
}

}  // namespace talovue
