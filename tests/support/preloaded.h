#pragma once

#include <dlfcn.h>
#include <fcntl.h>

#include <cstdarg>

// What libraries share that are loaded before a program.
namespace preloaded {

// The function of this name that such a library stands before.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The mode that follows the flags of open(2), which is passed only where it counts.
inline mode_t open_mode(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

}  // namespace preloaded
