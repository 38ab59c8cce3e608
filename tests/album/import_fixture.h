#pragma once

#include "album/album_update.h"
#include "album/import/import.h"
#include "album/sums/verification.h"
#include "tests/album/album_fixture.h"

// An album that is imported into, and what its files and its verification tell.
struct import_fixture_t : album_test_t {
    std::string import(const import_options_t& options, const std::vector<files_t>& files, std::string from = "") {
        from = from.empty() ? card : from;
        left_out.clear();
        return outcome([&] {
            const import_result_t imported = import_album(from, files, album, options, unseen);
            for (const left_out_t& file : imported.left_out) {
                left_out.push_back(file.name);
            }
            return imported.is_done();
        });
    }
    std::string update(orphans_t orphans) {
        return outcome([&] { return !update_all(album, {orphans}, unseen); });
    }

    // What was found by a function that gets `found`, each with its path in the album; in front the outcome.
    std::string findings(const std::function<bool(const finding_t& found)>& look) {
        std::string text;
        const std::string result = outcome([&] {
            return look([&](const std::string& path, const std::string& what) {
                text += fs::relative(path, album).string() + ": " + what + "\n";
            });
        });
        return result + text;
    }
    std::string verify() {
        verify_result_t verified;
        const std::string result = findings([&](const finding_t& found) {
            verified = verify_album(
                album, [&](const auto& file) { found(file.path, flaw_text(file)); }, unseen);
            return verified.is_good;
        });
        return result + std::to_string(verified.count);
    }

    using strings_t = std::vector<std::string>;
    strings_t names(const std::string& part) const {
        strings_t paths = files_below(album + part);
        for (std::string& path : paths) {
            path.erase(0, album.size() + 1);
        }
        return paths;
    }

    const blob_t photo = make_jpeg({.width = 100, .height = 40});
    progress_signals_t unseen;
    strings_t left_out;  // of the last import
};
