#include "libutils/bytes/mapped_files.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <new>

namespace libutils {

namespace {

// A list of its own, since the signal handler must walk it without a lock or a container's help. The handler runs only
// while bytes of a mapping are read, never in the middle of a change of the list.
struct watched_t {
    uintptr_t start;
    size_t size;
    int descriptor;
    unsigned long long end;  // of the mapped part of the file
    volatile std::sig_atomic_t intact;
    watched_t* next;
};

watched_t* first_watched = nullptr;
struct sigaction previous_action {};

watched_t** link_to(uintptr_t start) {
    watched_t** link = &first_watched;
    while (*link != nullptr && (*link)->start != start) {
        link = &(*link)->next;
    }
    return link;
}

bool replace_by_zeros(watched_t& mapping, uintptr_t address) {
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGE_SIZE));
    const uintptr_t from = address & ~(page - 1);
    const size_t rest = mapping.start + mapping.size - from;
    void* const zeros = mmap(reinterpret_cast<void*>(from), rest, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    mapping.intact = 0;
    return zeros != MAP_FAILED;
}

void on_bus_error(int /*signal*/, siginfo_t* info, void* /*context*/) {
    const auto address = reinterpret_cast<uintptr_t>(info->si_addr);
    for (watched_t* mapping = first_watched; mapping != nullptr; mapping = mapping->next) {
        if (address >= mapping->start && address - mapping->start < mapping->size &&
            replace_by_zeros(*mapping, address)) {
            return;
        }
    }
    // Not one of ours: the instruction runs again and meets what was there before.
    sigaction(SIGBUS, &previous_action, nullptr);
}

void install_handler() {
    static bool installed = false;
    if (!installed) {
        struct sigaction action {};
        action.sa_sigaction = on_bus_error;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        installed = sigaction(SIGBUS, &action, &previous_action) == 0;
    }
}

}  // namespace

bool watch_mapping(void* start, size_t size, int descriptor, unsigned long long end) {
    install_handler();
    auto* const mapping =
        new (std::nothrow) watched_t{reinterpret_cast<uintptr_t>(start), size, descriptor, end, 1, first_watched};
    if (mapping == nullptr) {
        return false;
    }
    first_watched = mapping;
    return true;
}

bool is_mapping_intact(const void* start) {
    const watched_t* const mapping = *link_to(reinterpret_cast<uintptr_t>(start));
    if (mapping == nullptr) {
        return true;
    }
    // A file that lost bytes inside its last page shows zeros there without a signal.
    struct stat status {};
    return mapping->intact != 0 && fstat(mapping->descriptor, &status) == 0 &&
           static_cast<unsigned long long>(status.st_size) >= mapping->end;
}

void move_mapping(const void* from, void* to, size_t size) {
    if (watched_t* const mapping = *link_to(reinterpret_cast<uintptr_t>(from)); mapping != nullptr) {
        mapping->start = reinterpret_cast<uintptr_t>(to);
        mapping->size = size;
    }
}

void forget_mapping(const void* start) {
    watched_t** const link = link_to(reinterpret_cast<uintptr_t>(start));
    if (watched_t* const mapping = *link; mapping != nullptr) {
        *link = mapping->next;
        close(mapping->descriptor);
        delete mapping;
    }
}

}  // namespace libutils
