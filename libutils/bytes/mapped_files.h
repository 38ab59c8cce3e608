#pragma once

#include <cstddef>

namespace libutils {

// Mapped files that may become shorter, or vanish with their card, while they are read. The system would end the
// program with SIGBUS at the first byte that it can't deliver; for a watched mapping it goes on with zeros instead,
// and the mapping is marked. One thread.

// Watches `size` bytes from `start`, which show the open file `descriptor` up to its byte `end`. Takes the descriptor
// over. False, and nothing taken, when memory is short.
[[nodiscard]] bool watch_mapping(void* start, size_t size, int descriptor, unsigned long long end);

// True unless zeros took the place of bytes that could not be read, or the file now ends before `end`.
[[nodiscard]] bool is_mapping_intact(const void* start);

// A watched mapping now lies elsewhere or has another size, not over the old one.
void move_mapping(const void* from, void* to, size_t size);

// To be called before the mapping is removed.
void forget_mapping(const void* start);

}  // namespace libutils
