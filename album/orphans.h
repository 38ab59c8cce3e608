#pragma once

#include <string>

// What an album still has of photographs whose original is gone.
namespace taloram {

// What an update does with them.
enum class orphans_t {
    keep,
    report,  // one line a photograph
    remove,
};

// Removes the reduced sizes of every level and the thumbnail of a photograph; false when one can't be removed.
[[nodiscard]] bool remove_reduced_sizes(const std::string& album, const std::string& photo);

// The same and its zoom pages.
[[nodiscard]] bool remove_traces(const std::string& album, const std::string& photo);

// Removes the directories of levels that no photograph has.
void remove_empty_levels(const std::string& album);

// Removes a file; true too when there is none. A failure is reported.
[[nodiscard]] bool remove_file(const std::string& path);

// Reports or removes levels, thumbnails and zoom pages of photographs that original/ does not have. Nothing but names
// of photographs in size<k>/ and thumb/ and <base>_<k>.html in html/ is looked at. False, after a report, when
// a file can't be removed or original/ can't be listed; in the latter case nothing is removed.
[[nodiscard]] bool treat_orphans(const std::string& album, orphans_t treatment);

}  // namespace taloram
