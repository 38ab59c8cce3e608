#include "libutils/process/process_messages.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <iostream>

#include "libutils/diagnostics.h"

namespace libutils {

namespace {

struct answer_head_t {
    uint64_t succeeded;
    uint64_t parts;
};

struct part_head_t {
    uint64_t stream;
    uint64_t size;  // bytes
};

}  // namespace

recorder_t::int_type recorder_t::overflow(int_type c) {
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        const char character = traits_type::to_char_type(c);
        xsputn(&character, 1);
    }
    return traits_type::not_eof(c);
}

std::streamsize recorder_t::xsputn(const char* text, std::streamsize size) {
    if (record_.empty() || record_.back().first != stream_) {
        record_.emplace_back(stream_, std::string());
    }
    record_.back().second.append(text, static_cast<size_t>(size));
    return size;
}

int recorder_t::sync() {
    if (flushed_) {
        flushed_();
    }
    return 0;
}

void replay(stream_t stream, const std::string& text) {
    if (stream == stream_t::error) {
        first_report_t::hear(text);
    }
    (stream == stream_t::output ? std::cout : std::cerr) << text << std::flush;
}

bool send_all(int socket, const void* data, size_t size) {
    const auto* bytes = static_cast<const char*>(data);
    while (size != 0) {
        const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

bool receive_all(int socket, void* data, size_t size) {
    auto* bytes = static_cast<char*>(data);
    while (size != 0) {
        const ssize_t received = recv(socket, bytes, size, 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        if (received <= 0) {
            return false;
        }
        bytes += received;
        size -= static_cast<size_t>(received);
    }
    return true;
}

bool send_answer(int socket, const answer_t& answer) {
    const answer_head_t head{answer.succeeded ? 1U : 0U, answer.record.size()};
    bool sent = send_all(socket, &head, sizeof head);
    for (const auto& [stream, text] : answer.record) {
        const part_head_t part{static_cast<uint64_t>(stream), text.size()};
        sent = sent && send_all(socket, &part, sizeof part) && send_all(socket, text.data(), text.size());
    }
    return sent;
}

bool receive_answer(int socket, answer_t& answer) {
    answer_head_t head{};
    if (!receive_all(socket, &head, sizeof head)) {
        return false;
    }
    answer.succeeded = head.succeeded != 0;
    for (uint64_t i = 0; i < head.parts; ++i) {
        part_head_t part{};
        if (!receive_all(socket, &part, sizeof part)) {
            return false;
        }
        std::string text(part.size, '\0');
        if (!receive_all(socket, text.data(), text.size())) {
            return false;
        }
        answer.record.emplace_back(static_cast<stream_t>(part.stream), std::move(text));
    }
    return true;
}

}  // namespace libutils
