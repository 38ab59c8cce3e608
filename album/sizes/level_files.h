#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace taloram {

// A picture on its way down from level 0.
struct level_row_t {
    size_t halvings = 0;         // of the source
    std::string path;            // that it gets
    bool with_segments = false;  // of the source
    bool is_written = true;      // false: the file stays as it is
};

// What is made of one JPEG file.
struct level_plan_t {
    std::string source;
    std::string name;               // of the photograph, in lines about halving
    std::string load_failure;       // the line when the source can't be loaded
    std::string decode_failure;     // the line when it can't be decoded
    std::string outdated;           // a file that goes before the first one is written; "" for none
    std::vector<level_row_t> rows;  // by rising number of halvings
};

// Halves the source as often as the rows ask for and writes them, encoded at the settings' quality. What is plain is
// made at once while the file is read; only of a photograph that resists this are all pixels decoded, and the files are
// the same. False, after a report, at the first failure; what was written so far stays.
[[nodiscard]] bool write_levels(const level_plan_t& plan);

}  // namespace taloram
