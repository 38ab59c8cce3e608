#pragma once

#include <map>
#include <optional>
#include <string>

namespace taloram {

// SHA256SUMS of an album: the sums of its originals and movies as they were imported. What `sha256sum -c` reads in the
// album's directory is read here: every form of lines (album/sums/sum_line.h), line ends with CR, empty lines, and
// remarks, which begin with "#". A file that has to change is written anew as a whole: the remarks, then one line a
// path in the first form.
class manifest_t {
  public:
    static constexpr const char* name = "SHA256SUMS";

    // The sums that the album has. True without a file too. False, after a report, when there is one that can't be
    // read, that is none, or in which a path has two sums: it is not to be written over then. Of one with two sums the
    // first counts for whoever only wants to compare, and is_kept() is true.
    [[nodiscard]] bool load(const std::string& album);

    // Puts the file in place, complete and on the disk, unless it is there and no sum was changed; reports a failure.
    [[nodiscard]] bool save(const std::string& album);

    // True when the album had a file or has one by now.
    [[nodiscard]] bool is_kept() const { return is_kept_; }

    void set(const std::string& path, const std::string& sum);
    void remove(const std::string& path);
    [[nodiscard]] std::optional<std::string> sum_of(const std::string& path) const;

    // By path, in the order of bytes.
    [[nodiscard]] const std::map<std::string, std::string>& sums() const { return sums_; }

  private:
    [[nodiscard]] bool parse(const std::string& text, const std::string& file);

    std::string remarks_;  // whole lines
    std::map<std::string, std::string> sums_;
    bool is_kept_ = false;
    bool is_changed_ = false;
};

}  // namespace taloram
