#include "libutils/text/text.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>

namespace libutils {

namespace {

// Bytes that the locale can't convert travel through wide text as these lone surrogates.
constexpr wchar_t escape_base = 0xDC00;

void chop_trailing(std::string& s, std::string_view unwanted) {
    const size_t last = s.find_last_not_of(unwanted);
    s.resize(last == std::string::npos ? 0 : last + 1);
}

}  // namespace

void chop(std::string& s) {
    chop_trailing(s, "\n\r");
}

void chop2(std::string& s) {
    chop_trailing(s, std::string_view("\0\t\n\r ", 5));
}

void separate_token(std::list<std::string>& out, const std::string& s, const char* delims) {
    size_t start = 0;
    for (size_t end = s.find_first_of(delims); end != std::string::npos; end = s.find_first_of(delims, start)) {
        out.push_back(s.substr(start, end - start));
        start = end + 1;
    }
    if (start < s.size()) {
        out.push_back(s.substr(start));
    }
}

bool separate_first_token(std::pair<std::string, std::string>& out, const std::string& s, char c) {
    const size_t at = s.find(c);
    if (at == std::string::npos) {
        return false;
    }
    out = {s.substr(0, at), s.substr(at + 1)};
    return true;
}

void concatenate_token(std::string& out, const std::list<std::string>& l, const char* sep) {
    std::string joined;
    for (const std::string& item : l) {
        if (&item != &l.front()) {
            joined += sep;
        }
        joined += item;
    }
    out = joined;
}

void makecharptrarray(std::vector<const char*>& out, const std::list<std::string>& l) {
    out.clear();
    out.reserve(l.size());
    for (const std::string& item : l) {
        out.push_back(item.c_str());
    }
}

void copy(std::vector<std::string>& out, std::list<std::string>& l) {
    out.assign(l.begin(), l.end());
}

void cat(std::vector<std::string>& out, const std::list<std::string>& l) {
    out.insert(out.end(), l.begin(), l.end());
}

std::wstring str2wstr(const std::string& text) {
    std::wstring wide;
    wide.reserve(text.size());
    for_each_character(text, [&](size_t at, size_t length) {
        std::mbstate_t state{};
        wchar_t c = L'\0';
        if (std::mbrtowc(&c, text.data() + at, length, &state) > length) {
            c = escape_base + static_cast<unsigned char>(text[at]);
        }
        wide += c;
    });
    return wide;
}

std::string wstr2str(const std::wstring& text) {
    std::string narrow;
    narrow.reserve(text.size());
    std::mbstate_t state{};
    for (const wchar_t c : text) {
        char bytes[MB_LEN_MAX];
        if (c > escape_base && c <= escape_base + UCHAR_MAX) {
            narrow += static_cast<char>(c - escape_base);
        } else if (const size_t length = std::wcrtomb(bytes, c, &state); length <= sizeof bytes) {
            narrow.append(bytes, length);
        } else {
            break;
        }
    }
    return narrow;
}

int stringcmp(const char* a, const char* b) {
    return std::strncmp(a, b, std::strlen(b));
}

std::string printable(std::string text) {
    const auto is_control = [](char c) { return (c >= '\0' && c < ' ') || c == '\x7f'; };
    std::replace_if(text.begin(), text.end(), is_control, '?');
    return text;
}

std::string on_one_line(std::string text) {
    chop(text);
    size_t at = 0;
    while ((at = text.find_first_of("\r\n", at)) != std::string::npos) {
        text.replace(at, text.compare(at, 2, "\r\n") == 0 ? 2 : 1, " ");
    }
    return text;
}

bool equals_nocase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char c, char d) { return lower(c) == lower(d); });
}

bool begins_with_nocase(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && equals_nocase(text.substr(0, start.size()), start);
}

std::ostream& operator<<(std::ostream& out, const _putn& value) {
    for (unsigned long i = 0; i < value.count; ++i) {
        out.put(value.text[i]);
    }
    return out;
}

std::ostream& operator<<(std::ostream& out, const _putcn& value) {
    for (unsigned long i = 0; i < value.count; ++i) {
        out.put(value.c);
    }
    return out;
}

std::ostream& operator<<(std::ostream& out, const _putspace& value) {
    return out << putcn(' ', value.count);
}

}  // namespace libutils
