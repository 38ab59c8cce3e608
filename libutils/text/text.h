#pragma once

#include <cwchar>
#include <ios>
#include <list>
#include <locale>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace libutils {

// Removes every trailing LF and CR.
void chop(std::string& s);

// Removes every trailing NUL, TAB, LF, CR and blank.
void chop2(std::string& s);

// Appends the tokens of `s` to `out`. Every character of `delims` ends a token, an empty one too; the rest after the
// last delimiter is a token only when it is not empty: "a::b" gives "a", "", "b"; "a:b:" gives "a", "b".
void separate_token(std::list<std::string>& out, const std::string& s, const char* delims);

// The part of `s` before the first `c` and the part after it; false, and `out` untouched, without a `c`.
[[nodiscard]] bool separate_first_token(std::pair<std::string, std::string>& out, const std::string& s, char c);

// `out` = the items of `l` with `sep` between them.
void concatenate_token(std::string& out, const std::list<std::string>& l, const char* sep);

// `out` = the items' character pointers, without a closing null; valid while `l` lives unchanged.
void makecharptrarray(std::vector<const char*>& out, const std::list<std::string>& l);

// `out` becomes (copy) or grows by (cat) the items of `l`.
void copy(std::vector<std::string>& out, std::list<std::string>& l);
void cat(std::vector<std::string>& out, const std::list<std::string>& l);

// Conversions through the locale's multibyte encoding. A byte that the locale can't convert becomes the lone
// surrogate 0xDC00 + byte, which converts back to that byte.
[[nodiscard]] std::wstring str2wstr(const std::string& text);
[[nodiscard]] std::string wstr2str(const std::wstring& text);

// Compares the first strlen(b) bytes of `a` with `b`: 0 when `a` begins with `b`.
[[nodiscard]] int stringcmp(const char* a, const char* b);

// `text` as a value that fits on a line: without line ends at its end, and with a blank for each one inside.
[[nodiscard]] std::string on_one_line(std::string text);

// `text` with a "?" for every control character, so that it stays one line whatever a file is named.
[[nodiscard]] std::string printable(std::string text);

// An ASCII letter in lower case, and any other byte as it is, whatever the locale says.
[[nodiscard]] constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Comparisons without regard to the case of ASCII letters, and of no others.
[[nodiscard]] bool equals_nocase(std::string_view a, std::string_view b);
[[nodiscard]] bool begins_with_nocase(std::string_view text, std::string_view start);

// Calls `visit(offset, length)` for every character of `text` in the locale's encoding; a byte that can't be converted
// counts as a character of one byte.
template <typename Visit>
void for_each_character(std::string_view text, Visit visit) {
    std::mbstate_t state{};
    size_t at = 0;
    while (at < text.size()) {
        size_t length = std::mbrtowc(nullptr, text.data() + at, text.size() - at, &state);
        if (length == 0 || length > text.size() - at) {
            state = {};
            length = 1;
        }
        visit(at, length);
        at += length;
    }
}

// Values to be written to a stream: some characters, one character several times, some blanks.
struct _putn {
    const char* text;
    unsigned long count;
};
struct _putcn {
    char c;
    unsigned long count;
};
struct _putspace {
    unsigned long count;
};
std::ostream& operator<<(std::ostream& out, const _putn& value);
std::ostream& operator<<(std::ostream& out, const _putcn& value);
std::ostream& operator<<(std::ostream& out, const _putspace& value);

[[nodiscard]] inline _putn putn(const char* text, unsigned long count) {
    return {text, count};
}
[[nodiscard]] inline _putcn putcn(char c, unsigned long count) {
    return {c, count};
}
[[nodiscard]] inline _putspace putspace(unsigned long count) {
    return {count};
}

// Puts a stream's format flags back when it is destroyed.
class keepflag {
  public:
    explicit keepflag(std::ostream& out) : out_(out), flags_(out.flags()) {}
    ~keepflag() { out_.flags(flags_); }
    keepflag(const keepflag&) = delete;
    keepflag& operator=(const keepflag&) = delete;

  private:
    std::ostream& out_;
    std::ios_base::fmtflags flags_;
};

// Writes numbers in the classic form (no grouping, decimal point) while it lives, whatever locale the stream had.
class classic_numbers {
  public:
    explicit classic_numbers(std::ostream& out) : out_(out), locale_(out.imbue(std::locale::classic())) {}
    ~classic_numbers() { out_.imbue(locale_); }
    classic_numbers(const classic_numbers&) = delete;
    classic_numbers& operator=(const classic_numbers&) = delete;

  private:
    std::ostream& out_;
    std::locale locale_;
};

}  // namespace libutils
