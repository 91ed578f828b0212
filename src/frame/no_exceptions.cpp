// SPDX-License-Identifier: MIT
// What the C++ library would bring for exceptions that these DLLs never throw: over 100 KB of exception classes,
// their texts and a demangler, and for each load 70 KB of heap and a thread-local index that never come back. A
// call of one of these is a fault of the DLL and ends the program; the linker takes them instead of the C++
// library's. The exceptions of callers' procedures still pass through the DLLs' frames and run their cleanups.
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>  // declares the procedures that throw

#include <cxxabi.h>

namespace __cxxabiv1 {

// Memory for exceptions: the C++ library sets a pool aside when it is loaded.
void *__cxa_allocate_exception(size_t) noexcept { std::abort(); }
void __cxa_free_exception(void *) noexcept { std::abort(); }
__cxa_dependent_exception *__cxa_allocate_dependent_exception() noexcept { std::abort(); }
void __cxa_free_dependent_exception(__cxa_dependent_exception *) noexcept { std::abort(); }

}  // namespace __cxxabiv1

// An exception that may not leave a procedure: the C++ library tells its name, which takes the demangler.
void __gnu_cxx::__verbose_terminate_handler() { std::abort(); }

namespace std {

void __throw_bad_alloc() { abort(); }
void __throw_bad_array_new_length() { abort(); }
void __throw_length_error(const char *) { abort(); }
void __throw_logic_error(const char *) { abort(); }
void __throw_out_of_range_fmt(const char *, ...) { abort(); }

}  // namespace std

// The C++ library's own calls the throwing one and catches what that throws.
void *operator new(size_t size, const std::nothrow_t &) noexcept { return std::malloc(size == 0 ? 1 : size); }
