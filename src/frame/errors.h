// SPDX-License-Identifier: MIT
// The one error channel: errno, the library's last error, and the core runtime's error status.
#pragma once

#include <atomic>
#include <cstdint>

// The last error of the routines that record it, as IERRNO reads it; only FSEEK and FSEEKI8 clear it.
// Shared by all threads: the last writer wins.
extern std::atomic<int32_t> portlib_last_error;

// Sets errno, reports the code to the core runtime's error status and returns it; 22 stands for a code of 0.
int32_t portlib_report_errno(int32_t code);

// Reports the code for a routine whose failures are 0, and gives that.
int32_t portlib_fail(int32_t code);

// Stores the code for IERRNO, reports nothing, and returns it.
int32_t portlib_keep_error(int32_t code);

// Reports the code, stores it for IERRNO and returns it.
int32_t portlib_record_errno(int32_t code);

// The errno value for an operating-system error number.
int32_t portlib_errno_of_os_error(uint32_t os_error);

// Reports the errno value for the calling thread's last operating-system error. Call it before
// anything else can change that error.
void portlib_map_os_error();

// The same for a routine whose failures are 0, and gives that.
int32_t portlib_fail_by_os_error();

// The same as portlib_record_errno, for that error.
int32_t portlib_record_os_error();
