#pragma once

#include <string>
#include <system_error>
#include <vector>

// What an album still has of photographs whose original is gone.
namespace taloram {

// What an update does with them.
enum class orphans_t {
    keep,
    report,  // one line a photograph
    remove,
};

// The reduced sizes of every level and the thumbnail that an album has of a photograph, as paths.
[[nodiscard]] std::vector<std::string> find_reduced_sizes(const std::string& album, const std::string& photo);

// Removes them. When one can't be removed the others are, and the first failure is returned.
[[nodiscard]] std::error_code remove_reduced_sizes(const std::string& album, const std::string& photo);

// The same with its zoom pages; false when one of them can't be removed.
[[nodiscard]] bool remove_traces(const std::string& album, const std::string& photo);

// Removes the directories of levels that no photograph has.
void remove_empty_levels(const std::string& album);

// Removes a file; true too when there is none. A failure is reported.
[[nodiscard]] bool remove_file(const std::string& path);

// Reports or removes levels, thumbnails and zoom pages of photographs that original/ does not have. Nothing but names
// of photographs in size<k>/ and thumb/ and <base>_<k>.html in html/ is looked at. False, after a report, when
// a file can't be removed, or when one of these directories can't be listed to its end; then nothing is removed.
[[nodiscard]] bool prune_orphans(const std::string& album, orphans_t treatment);

}  // namespace taloram
