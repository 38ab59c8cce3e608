#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "album/import/import_file.h"
#include "album/progress.h"
#include "album/sums/manifest.h"

// Are the originals and movies what was imported?
namespace taloram {

// Brings a copy to the disk, reads it back from there and compares it with its source by SHA-256; `sum` is then the sum
// of both. The album's own file is compared with the sum that `manifest` has of it, if any. No message.
// False also when it was not to go on.
[[nodiscard]] bool verify_copy(std::string& sum, const import_file_t& file, const manifest_t& manifest,
                               const libutils::goes_on_t& asked = {});

// Gets a file of the album, as a path, and what speaks against its import.
using finding_t = std::function<void(const std::string& path, const std::string& what)>;

// Looks, before an import writes anything, for listed files whose import would change the sum that SHA256SUMS has of
// them, although the album's file may be gone or hold the same bytes: one of the two is not what was imported once.
// An import that replaces files may change the sums of those, but not of files that hold the same bytes already.
// `found` is called for each; true when there are none. False, after a report, also when the sums can't be read,
// and, without one, when it was not to go on.
[[nodiscard]] bool keeps_sums(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                              bool replaces_files, const finding_t& found, const libutils::goes_on_t& asked = {});

// Brings the names of an import to the disk: the directories of the album, the album and the directory that holds it.
// Reports a failure.
[[nodiscard]] bool flush_album_names(const std::string& album);

enum class flaw_t { changed, unreadable, missing, unlisted };

// A file of an album that is not as imported, or of which nobody can tell.
struct flawed_file_t {
    std::string path;
    flaw_t flaw = flaw_t::changed;
    std::string reason;  // why it can't be read
};

// The flaw as talomake words it.
[[nodiscard]] std::string flaw_text(const flawed_file_t& file);

struct verify_result_t {
    bool is_good = false;
    bool stopped = false;        // by the caller, before all was compared; what was found until then is true
    bool has_sums = false;       // that can be read or not
    size_t count = 0;            // files that were compared with their sum
    std::time_t written_at = 0;  // when SHA256SUMS was written last; 0 when it can't be read
};

// Compares the originals and movies of an album with its SHA256SUMS: `found` is called for each that changed or is
// missing, then for each that has no sum. Good when there are none; not good, after a report, when there are no sums,
// when they contradict each other, or when a directory can't be listed to its end. The fraction of the sums that are
// compared is told to the stage `verify`.
[[nodiscard]] verify_result_t verify_album(const std::string& album,
                                           const std::function<void(const flawed_file_t&)>& found,
                                           progress_signals_t& progress);

}  // namespace taloram
