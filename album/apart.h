#pragma once

#include <optional>
#include <string>
#include <vector>

#include "album/album_update.h"
#include "album/make_album.h"
#include "album/sums/originals_check.h"
#include "album/turn/turn_photo.h"

// The engine's long operations in a process of their own, for windows: whatever a disk does meanwhile, the caller's
// process only waits, calls g_workers.idle some twenty times a second, and asks `progress` what is wanted. Everything
// else is as in the functions of the same names. When that process dies, the operation failed there, after a report.
namespace taloram::apart {

// Nothing when it was stopped or its process died: nobody knows then.
[[nodiscard]] std::optional<std::vector<std::string>> find_conflicts(const album_order_t& order,
                                                                     progress_signals_t& progress);

[[nodiscard]] album_result_t check_album_order(const album_order_t& order, progress_signals_t& progress);
[[nodiscard]] album_result_t make_album(const album_order_t& order, progress_signals_t& progress);
[[nodiscard]] update_result_t update_album(const std::vector<files_t>& files, const std::string& album,
                                           progress_signals_t& progress);
[[nodiscard]] update_result_t update_all(const std::string& path, const update_options_t& options,
                                         progress_signals_t& progress);
[[nodiscard]] turned_t turn_photos(const std::string& album, const std::vector<std::string>& names, unsigned long count,
                                   progress_signals_t& progress);

[[nodiscard]] originals_check_t check_originals(const std::string& directory, progress_signals_t& progress);

}  // namespace taloram::apart
