#pragma once

#include <ostream>
#include <string>

#include "libutils/system_error.h"

namespace taloram {

// The settings file: HOME, "/." and the basename of `name`; "" when HOME is unset. `dir` is not used.
[[nodiscard]] std::string inifile(const char* dir, const char* name);

// Reads the settings file into g_global; fields that it does not name keep their values. An unknown key is reported and
// passed over; of a value that can't be used, as a size of 0, the line is reported and the field keeps its value.
// False, without a message, when the file can't be opened. One that can be opened but not read, or that is no regular
// file, is reported and changes nothing.
[[nodiscard]] bool loadini(const char* dir, const char* name);

// Writes g_global to the settings file, with g_stored_paths in place of paths that count for this run only; the old one
// stays when that fails. Texts lose their line ends: a setting is a line. Reports nothing.
void saveini(const char* dir, const char* name);

// The same two with the reason of a failure in place of a message: for a program that changes one setting and must not
// write defaults over what it could not read. A missing file is a failure like others: libutils::is_absent().
[[nodiscard]] std::error_code load_settings(const std::string& path);
[[nodiscard]] std::error_code save_settings(const std::string& path);

// One line of the settings file: key, "=", value, CR LF.
template <typename T>
void writeiniline(std::ostream& out, const char* key, const T& value) {
    out << key << "=" << value << "\r\n";
}

}  // namespace taloram
