// SPDX-License-Identifier: MIT
// qwport: the portability library of Fortran programs on 64-bit Windows. This header declares every
// exported routine for C and C++ callers; Fortran programs say `use qwport`.
//
// What holds for every routine and is not repeated below:
//
// Calling convention. C, for x86-64 Windows. Every argument is passed by address: INTEGER(4) as int32_t,
// INTEGER(8) as int64_t, REAL(4) as float, REAL(8) as double, an array as the address of its first
// element. Results come back by value. An optional argument that is left out is a null address; no other
// address may be null unless it is said so.
//
// CHARACTER arguments. The address stands at the argument's place; the length, a size_t named like the
// argument with _len, stands after the last ordinary argument, in the order of the texts. A text has no
// terminator: input ends at the length and loses its trailing blanks; output is filled with blanks up
// to the length, or cut to it.
//
// LOGICAL values are INTEGER(4): 0 is false, everything else true; some routines answer true as 1 and
// some as -1. The Fortran module turns both into a proper .TRUE.
//
// Errors are C errno numbers (2 ENOENT, 9 EBADF, 12 ENOMEM, 13 EACCES, 22 EINVAL, 34 ERANGE, ...). A
// routine that says "reports" an error sets errno (read it with GETLASTERROR) and the core runtime's
// error status (read it with ERRSNS). One that says "records" it also stores it for IERRNO. A success
// clears none of them, unless it is said so.
//
// Core runtime. Routines marked "core" reach Fortran's units and the like through a Fortran core runtime
// that was in the process when this library was loaded (libqwcorert.dll for GNU Fortran). Without one
// they show a message box that says so and end the process with status 1. Reporting an error needs it
// too.
//
// Threads. Routines may be called from several threads at once unless it is said otherwise. The value
// of IERRNO is one for the process.
#ifndef QWPORT_H
#define QWPORT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Identification and error state -------------------------------------------------------------

// The library's title, version and build date, separated by tabs.
// text: out. Result: 4, always. Needs no core runtime.
int32_t FOR_QWPORT_VERSION(char *text, size_t text_len);

// The error number that a routine recorded last; 0 if none did. FSEEK and FSEEKI8 set it to their result
// on every call, 0 included.
int32_t IERRNO(void);

// The calling thread's C errno. GETLASTERRORQQ is a second name of the same routine.
int32_t GETLASTERROR(void);
int32_t GETLASTERRORQQ(void);

// ---- Ending the program -------------------------------------------------------------------------

// Ends the program abnormally (status 3 with libqwcorert) after closing its units; "abort: " and the
// message go to standard error. message: optional, at most 240 characters are shown, up to a NUL if it
// has one; when it is left out the text is "abort: Fortran Abort Called". Core.
void ABORT(const char *message, size_t message_len);

// Ends the program after closing its units. status: the process's exit status, optional, default 0.
// Core.
void EXIT(const int32_t *status);

// ---- Fortran units ------------------------------------------------------------------------------
// unit is the number of a unit that the program opened. Transfers take the file's bytes as they are,
// line ends included. All are core routines.

// Writes what is buffered for a unit to its file. unit: null flushes all units (libqwcorert).
// Result: LOGICAL, false for a unit that is not open.
int32_t FLUSH(const int32_t *unit);

// Reads the next character of a unit into the first position of c.
// Result: 0; -1 at end of file, nothing recorded; 22 for any other failure, recorded. c changes on
// success only.
int32_t FGETC(const int32_t *unit, char *c, size_t c_len);

// FGETC on unit 5, standard input. Result: 0, or -1 for end of file and every failure, nothing recorded.
int32_t GETC(char *c, size_t c_len);

// Writes the first character of c to a unit. Result: 0, or 22 for a failure, recorded.
int32_t FPUTC(const int32_t *unit, const char *c, size_t c_len);

// FPUTC on unit 6, standard output.
int32_t PUTC(const char *c, size_t c_len);

// Positions a unit. offset: bytes; origin: 0 from the start of the file, 1 from the present position,
// 2 from the end. Result: 0, or the core runtime's error code (libqwcorert: -9 the unit is not open, -22
// no such position or origin, -29 the unit cannot be positioned); IERRNO gives it in either case. After
// a failure the position is what it was.
int32_t FSEEK(const int32_t *unit, const int32_t *offset, const int32_t *origin);
int32_t FSEEKI8(const int32_t *unit, const int64_t *offset, const int32_t *origin);

// The position of a unit: bytes from the start of its file. Result: the position, or a negative error
// code (libqwcorert: -9 the unit is not open, -29 it has no position, -34 in FTELL and GETPOS a position of 2 GiB
// or more), whose positive value IERRNO gives; errno is left alone.
int32_t FTELL(const int32_t *unit);
int64_t FTELLI8(const int32_t *unit);

// As FTELL and FTELLI8, but records nothing.
int32_t GETPOS(const int32_t *unit);
int64_t GETPOSI8(const int32_t *unit);

// ---- Calendar date and time ---------------------------------------------------------------------
// Times are seconds since 1970-01-01 00:00:00 UTC. Local time is the C run-time's (the TZ variable
// counts), which knows times from 1970 on. "Two-digit year" is the year modulo 100. "Year of the 96 rule"
// is 2000 to 2095 for a two-digit year below 96, and the two digits themselves from 96 on. Texts that do
// not fit are cut and reported as 22, which is all that the core runtime is needed for. DATE stands at
// the end of this header.

// Now. A caller that takes it as INTEGER(4) gets the low half.
int64_t TIME(void);

// The C ctime text of a time in local time, "Sun Mar 05 14:07:09 2023" and a line feed: 25 characters.
// All blanks for a time that the C run-time rejects (a negative one). A CHARACTER function, so the
// result's address and length come first.
void CTIME(char *result, size_t result_len, const int32_t *stime);

// The same text for now, without the line feed: 24 characters. A subroutine or a CHARACTER function, as
// the caller likes.
void FDATE(char *string, size_t string_len);

// Today as "05-Mar-2023", with the year of the 96 rule.
void DATE4(char *string, size_t string_len);

// Today as "23064": two-digit year, day of the year. JDATE4: "2023064".
void JDATE(char *string, size_t string_len);
void JDATE4(char *string, size_t string_len);

// iarray: 3 elements, out: day, month 1 to 12, two-digit year. F_IDATE4: year of the 96 rule.
void IDATE(int32_t *iarray);
void F_IDATE4(int32_t *iarray);

// Out: month 1 to 12, day, two-digit year. IDATE4: year of the 96 rule.
void IDATE1(int32_t *month, int32_t *day, int32_t *year);
void IDATE4(int32_t *month, int32_t *day, int32_t *year);

// iarray: 3 elements, out: hour, minute, second of local time.
void ITIME(int32_t *iarray);

// Today, out: full year, month 1 to 12, day.
void GETDAT(int32_t *year, int32_t *month, int32_t *day);
void GETDATI2(int16_t *year, int16_t *month, int16_t *day);

// The local time of day, out: hour, minute, second, hundredths of a second.
void GETTIM(int32_t *hour, int32_t *minute, int32_t *second, int32_t *hundredths);
void GETTIMI2(int16_t *hour, int16_t *minute, int16_t *second, int16_t *hundredths);

// tarray: 9 elements, out, in the order of C's tm: second, minute, hour, day, month 0 to 11, years since
// 1900, day of the week (0 Sunday), day of the year, daylight-saving flag. GMTIME: UTC, day of the year
// from 0; a time that the C run-time rejects ends the program with an assertion failure. LTIME: local
// time, day of the year from 1; all elements are -1 for a time that is rejected.
void GMTIME(const int32_t *stime, int32_t *tarray);
void LTIME(const int32_t *stime, int32_t *tarray);

// Packs a local time: full year, month 1 to 12, day, hour, minute, second. timedate: out, -1 when there is
// no such time. UNPACKTIMEQQ takes it apart; its outputs are all -1 for a time that is rejected.
void PACKTIMEQQ(int32_t *timedate, const int16_t *year, const int16_t *month, const int16_t *day, const int16_t *hour,
                const int16_t *minute, const int16_t *second);
void UNPACKTIMEQQ(const int32_t *timedate, int16_t *year, int16_t *month, int16_t *day, int16_t *hour, int16_t *minute,
                  int16_t *second);

// Set the machine's local date or time of day, keeping the other. The process must be allowed to.
// SETTIM takes the low 16 bits of hour, minute and second. Result: LOGICAL, 1 or 0; nothing is reported.
int32_t SETDAT(const int16_t *year, const int16_t *month, const int16_t *day);
int32_t SETTIM(const int32_t *hour, const int32_t *minute, const int32_t *second, const int32_t *hundredths);
int32_t SETTIMI2(const int16_t *hour, const int16_t *minute, const int16_t *second, const int16_t *hundredths);

// ---- Clocks and elapsed time --------------------------------------------------------------------
// TIMEF, DTIME and DTIMER8 remember their previous call for the process and are not for several threads
// at once. Only DCLOCK needs the core runtime. ETIME stands at the end of this header.

// Seconds since 1970-01-01 00:00:00 UTC, with fraction.
double RTC(void);

// 0.0 on the first call, then seconds since the first call.
double TIMEF(void);

// t: out, microseconds since 1970-01-01 00:00:00 UTC, to the millisecond.
void CLOCKX(double *t);

// tv: 2 elements, out: seconds since 1970-01-01 00:00:00 UTC, microseconds to the millisecond.
// tz: out, always 0.
void GETTIMEOFDAY(int32_t *tv, int32_t *tz);

// The local time of day as "14:07:09". CLOCK is a CHARACTER function, TIME2 a subroutine.
void CLOCK(char *result, size_t result_len);
void TIME2(char *string, size_t string_len);

// Seconds since local midnight less t0, counted over midnight and never below 0; t0 0.0 gives the seconds
// since midnight. REAL(4) resolves 4 to 8 milliseconds of a day.
float SECNDS(const float *t0);

// Seconds since the process started. Core.
double DCLOCK(void);

// Processor seconds of the process since the previous call of either, or since its start. tarray: 2
// elements, out: user, system. Result: their sum, or -1.0 with nothing changed if the host does not tell.
// On a machine with several processors every second call reads the wall clock as user time instead.
float DTIME(float *tarray);
double DTIMER8(double *tarray);

// ---- File status and access ---------------------------------------------------------------------
// Errors are recorded, unless it is said otherwise.

// The status of a file by name. statb: 13 elements, out: 1 device 0, 2 inode, 3 mode (Unix type and
// permission bits), 4 links 1, 5 owner 1, 6 group 1, 7 raw device 0, 8 size in bytes, 9 to 11 times of
// access, modification and creation in seconds since 1970-01-01 00:00:00 UTC, 12 block size 1, 13 not
// written. Mode: a directory 040555 or 040777 (octal), a file 0100444 or 0100666, and 0100555 or 0100777
// with the extension .exe, .bat, .com or .ksh; for a file that the C run-time itself calls executable the
// old element gains 0111 and, when it is writable, 0222, and nothing else. Result: 0, or an errno value with
// statb unchanged; STAT gives 34 for a file of 2 GiB or more, with the size -1 and all else filled. LSTAT
// and LSTATI8 are second names.
int32_t STAT(const char *name, int32_t *statb, size_t name_len);
int32_t LSTAT(const char *name, int32_t *statb, size_t name_len);
int32_t STATI8(const char *name, int64_t *statb, size_t name_len);
int32_t LSTATI8(const char *name, int64_t *statb, size_t name_len);

// The same of the file that a unit is connected to, but element 4 is its number of links, and the mode of a
// directory is 040000. Result: 0, 22 for a unit that is not open, 9 for a unit without a file. FSTAT gives 34
// and the size -1 from 4 GiB on; a size of 2 to 4 GiB reads negative without an error. Core.
int32_t FSTAT(const int32_t *lunit, int32_t *statb);
int32_t FSTATI8(const int32_t *lunit, int64_t *statb);

// Whether a file may be accessed. mode: any of r, w, x in either case and blanks; only blanks ask whether the
// file exists; x asks for the extension .exe, .bat, .com, .cmd, .ksh or .csh. Result: 0 yes, 2 no such file,
// 13 not allowed, 22 another character in mode or an empty argument.
int32_t ACCESS(const char *name, const char *mode, size_t name_len, size_t mode_len);

// Gives or takes the right to write. mode: octal, where 0200 gives it and nothing takes it, or symbolic,
// [ugoa]*[+-=][rwxXst]*, where only w counts. Result: 0, also when nothing changes; 2 no such file, 22 a mode
// that makes no sense.
int32_t CHMOD(const char *name, const char *mode, size_t name_len, size_t mode_len);

// Whether a unit is a terminal. Result: LOGICAL, 1 or 0; 0 and 9 reported for a unit that is not open. Core.
int32_t ISATTY(const int32_t *lunit);

// The name of the terminal that a unit is. name: out, blank with 9 reported for a unit that is not open and
// 25 for one that is no terminal. Core.
void TTYNAM(char *name, const int32_t *lunit, size_t name_len);

// ---- Files and directories ----------------------------------------------------------------------
// QQ routines: LOGICAL results are 1 and 0, errors are reported. The others give 0 or an errno value, which
// is recorded.

// An entry of a listing. Times are seconds since 1970-01-01 00:00:00 UTC; attributes are the host's bits
// (QWPORT_FILE_...); name is blank-padded.
typedef struct QwportFileInfo {
  int32_t created;
  int32_t written;
  int32_t accessed;
  int32_t size;
  int32_t attributes;
  char name[255];
} QwportFileInfo;

typedef struct QwportFileInfoI8 {
  int32_t created;
  int32_t written;
  int32_t accessed;
  int64_t size;  // at byte 16
  int32_t attributes;
  char name[255];
} QwportFileInfoI8;

enum {
  QWPORT_FILE_READONLY = 1,
  QWPORT_FILE_HIDDEN = 2,
  QWPORT_FILE_SYSTEM = 4,
  QWPORT_FILE_VOLUME = 8,
  QWPORT_FILE_DIRECTORY = 16,
  QWPORT_FILE_ARCHIVE = 32,
};

// States of a listing's handle.
enum {
  QWPORT_FINDINFO_FIRST = -1,  // set by the caller: begin
  QWPORT_FINDINFO_LAST = -2,   // set by the library: finished
  QWPORT_FINDINFO_ERROR = -3,  // set by the library: nothing matched
};

enum { QWPORT_TIME_NOW = -1 };

// The next file that matches a name or wildcard pattern. handle: in and out, QWPORT_FINDINFO_FIRST at first.
// buffer: out. Result: the length of the name; 0 at the end or when nothing matches, with 2 reported and
// buffer unchanged. GETFILEINFOQQ gives the size -1 and reports 34 for a file of 2 GiB or more. A listing
// that is left early keeps a host handle open.
int32_t GETFILEINFOQQ(const char *files, QwportFileInfo *buffer, int64_t *handle, size_t files_len);
int32_t GETFILEINFOQQI8(const char *files, QwportFileInfoI8 *buffer, int64_t *handle, size_t files_len);

// Searches a file in the host's default places, then in the directories, separated by semicolons, that an
// environment variable names. pathbuf: out, its full path. Result: the path's length, or 0.
int32_t FINDFILEQQ(const char *filename, const char *varname, char *pathbuf, size_t filename_len, size_t varname_len,
                   size_t pathbuf_len);

// Deletes the plain files that match a name or wildcard pattern; read-only, hidden and system files and
// directories stay. Result: how many were deleted. The listing's end is reported as 22. The current directory
// changes during the call, for all threads.
int32_t DELFILESQQ(const char *files, size_t files_len);

// Renames a file. RENAMEFILEQQ fails if the new name exists, RENAME replaces such a file.
int32_t RENAMEFILEQQ(const char *oldname, const char *newname, size_t oldname_len, size_t newname_len);
int32_t RENAME(const char *from, const char *to, size_t from_len, size_t to_len);

// Deletes a file.
int32_t UNLINK(const char *name, size_t name_len);

// Sets a file's attributes (QWPORT_FILE_...; volume and directory are refused with 22).
int32_t SETFILEACCESSQQ(const char *filename, const int32_t *access, size_t filename_len);

// Sets a file's times of access and modification, in seconds since 1970-01-01 00:00:00 UTC or
// QWPORT_TIME_NOW.
int32_t SETFILETIMEQQ(const char *filename, const int32_t *timedate, size_t filename_len);

// Make and remove a directory. A failure is left in errno only.
int32_t MAKEDIRQQ(const char *dirname, size_t dirname_len);
int32_t DELDIRQQ(const char *dirname, size_t dirname_len);

// Change the current directory. CHDIR gives 20 for a name that is no directory, 2 for other failures.
int32_t CHANGEDIRQQ(const char *dir, size_t dir_len);
int32_t CHDIR(const char *dir_name, size_t dir_name_len);

// The current directory. dirname: out, blank after a failure. Result: 0, 34 when it does not fit, 2 for an
// empty argument.
int32_t GETCWD(char *dirname, size_t dirname_len);

// ---- Drives and paths ---------------------------------------------------------------------------
// LOGICAL results are 1 and 0. Errors are reported.

// The drives: position 1 is A if drive A exists, else blank, and so on.
void GETDRIVESQQ(char *drives, size_t drives_len);

// The current directory of the drive whose letter stands first in drivedir, or of the current drive for
// another character. drivedir: in and out, blank after a failure: 13 no such drive, 34 it does not fit.
// Result: the length, or 0.
int32_t GETDRIVEDIRQQ(char *drivedir, size_t drivedir_len);

// The bytes of a drive and those that are free. drive: a letter, a blank for the current drive, or a network
// name with two separators. Result: 0 with both -1 when there is no such drive (2) or the argument makes no
// sense (22). GETDRIVESIZEQQ stores -1 for 2 GiB or more and reports 34.
int32_t GETDRIVESIZEQQ(const char *drive, int32_t *total, int32_t *avail, size_t drive_len);
int32_t GETDRIVESIZEQQI8(const char *drive, int64_t *total, int64_t *avail, size_t drive_len);

// Makes the root of a drive the current directory. drive: its first character counts.
int32_t CHANGEDRIVEQQ(const char *drive, size_t drive_len);

// The full path of a name. pathbuf: out. Result: its length; 0 for a failure; more than pathbuf holds, and
// pathbuf blank, when it does not fit.
int32_t FULLPATHQQ(const char *name, char *pathbuf, size_t name_len, size_t pathbuf_len);

// The parts of a path, which is first made full: drive with its colon, directory with its separators, name,
// extension with its dot. Result: the length of the directory, or 0.
int32_t SPLITPATHQQ(const char *path, char *drive, char *dir, char *name, char *ext, size_t path_len, size_t drive_len,
                    size_t dir_len, size_t name_len, size_t ext_len);

// ---- Random numbers -----------------------------------------------------------------------------
// The generator shared by all but RAN and RANF is the core runtime's. iflag 0 draws the next number, 1
// restores the generator's initial seed first, any other value becomes the seed first.

// Minimal-standard generator (multiplier 48271, modulus 2^31 - 1) whose state is the caller's.
// seed: in and out; it changes unless it is 0 or 1. Result: above 0, up to 1.0 included. A null seed ends
// the program with an assertion failure. Needs no core runtime.
float RAN(int32_t *seed);

// 0 <= result < 1. Two names of one routine. Core.
double DRAND(const int32_t *iflag);
double DRANDM(const int32_t *iflag);

// An integer from 0 to 2147483647. IRAND without its optional argument: from 0 to 32767. Core.
int32_t IRAND(const int32_t *iflag);
int32_t IRANDM(const int32_t *iflag);

// 0 <= result < 1. iflag is optional. Core.
float RAND(const int32_t *iflag);

// RAND with iflag required, exported as $$MSPORTLIB$RANDOM. Core.
#if defined(__GNUC__) && defined(_WIN32)
__declspec(dllimport) float MSPORTLIB_RANDOM(const int32_t *iflag) __asm__("$$MSPORTLIB$RANDOM");
#endif

// Set the shared generator's seed; a real one is cut to an integer, and gives -2147483648 if it does not
// fit. SRAND also seeds the calling thread's RANF. Core.
void SRAND(const int32_t *iseed);
void IRANSET(const int32_t *iseed);
void RANSET(const float *seed);
void DRANSET(const double *seed);

// iseed: out, the shared generator's present seed. Two names of one routine. Core.
void RANGET(int32_t *iseed);
void IRANGET(int32_t *iseed);

// The next number of the C run-time's rand in the calling thread: a whole number from 0 to 32767.
float RANF(void);

// ---- Serial ports -------------------------------------------------------------------------------
// A port is named by its number: 3 is COM3. It belongs to the thread that connected it. A reader thread of its
// own fills its ring buffer from the device all the time; reading routines take bytes out of the ring, writing
// routines write to the device. A routine that reads, peeks or writes starts a reader where none runs, on an
// emptied ring. Results are 0 or a Windows error number, which IERRNO gives too: 87 for a null port address and
// for a port that the calling thread did not connect; else what the host said. Arguments but for port and
// buffer are optional unless it is said so; an output that cannot be written is skipped. Outputs change on
// success only. No core runtime is needed.

// Line-mode bits: what reading drops, what ends a line, and what SPORT_WRITE_LINE adds to it. The default is
// 23: both are dropped, CR ends a line and is sent.
enum {
  QWPORT_SPORT_DROP_CR = 1,
  QWPORT_SPORT_DROP_LF = 2,
  QWPORT_SPORT_END_CR = 4,
  QWPORT_SPORT_END_LF = 8,
  QWPORT_SPORT_END_CRLF = 12,  // an LF that follows a CR
  QWPORT_SPORT_OUT_CR = 16,
  QWPORT_SPORT_OUT_LF = 32
};

// Opens a port, sets its timeouts and starts its reader. options: line-mode bits. bufferSize: bytes that the
// ring holds, at least 4096, default 16384. Fails with 87 also for a negative or connected port, and with 8 for
// lack of memory or more than 128 ports above 255. A port whose reader could not start stays connected.
int32_t SPORT_CONNECT(const int32_t *port, const int32_t *options);
int32_t SPORT_CONNECT_EX(const int32_t *port, const int32_t *options, const int32_t *bufferSize);

// Ends the reader if one runs, and then returns, with the port still connected: call it again to close the port.
// 12: the reader did not end within 10 seconds and was ended by force.
int32_t SPORT_RELEASE(const int32_t *port);

// The port's Windows handle. handle: out.
int32_t SPORT_GET_HANDLE(const int32_t *port, int64_t *handle);

// Passes a function number, required, to EscapeCommFunction or PurgeComm.
int32_t SPORT_SPECIAL_FUNC(const int32_t *port, const int32_t *function);
int32_t SPORT_PURGE(const int32_t *port, const int32_t *function);

// Ends the reader, drops what it has read, and aborts and clears the device's transfers.
int32_t SPORT_CANCEL_IO(const int32_t *port);

// Writes data; SPORT_WRITE_LINE adds the line end of the port. count: in, the bytes to write from buffer,
// whatever its length; where it is left out or 0, the text without its trailing blanks. Out: the bytes written,
// the line end included, also with 996, which says that the device took only a part of the data in time.
int32_t SPORT_WRITE_DATA(const int32_t *port, const char *buffer, int32_t *count, size_t buffer_len);
int32_t SPORT_WRITE_LINE(const int32_t *port, const char *buffer, int32_t *count, size_t buffer_len);

// Waits until there are bytes, without a limit, and takes what is there, up to the buffer's length, or waits on
// and takes a line; dropped bytes are not stored, but count against the length of SPORT_READ_DATA. count: out,
// the bytes stored; the rest of buffer is blank. If the reader has ended, its error is the result. A wait that
// fails raises the host's error as a structured exception. buffer's contents after a failure are undefined.
int32_t SPORT_READ_DATA(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len);
int32_t SPORT_READ_LINE(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len);

// Counts the bytes that reading would store, all or up to the first line end, without waiting. present: out, 1
// if there are any (not: a whole line), else 0. count: out.
int32_t SPORT_PEEK_DATA(const int32_t *port, int32_t *present, int32_t *count);
int32_t SPORT_PEEK_LINE(const int32_t *port, int32_t *present, int32_t *count);

// The line settings. parity: 0 none, 1 odd, 2 even, 3 mark, 4 space. stopBits: 0 one, 1 one and a half, 2 two.
int32_t SPORT_GET_STATE(const int32_t *port, int32_t *baudRate, int32_t *parity, int32_t *dataBits, int32_t *stopBits);

// Changes the settings that are given, and purges the port if one changed. Below 300 baud there are two stop
// bits in any case.
int32_t SPORT_SET_STATE(const int32_t *port, const int32_t *baudRate, const int32_t *parity, const int8_t *dataBits,
                        const int8_t *stopBits);

// All line settings, with the flow control and the special characters. Flags are 0 or 1, DTRcntrl and RTScntrl
// 0 to 3. Setting purges nothing, takes the low bits of flags, and sets binmode where it is left out. XonLim and
// XoffLim are read as 32 bits and set from 16. zeroBlock: not 0 clears every other setting first.
int32_t SPORT_GET_STATE_EX(const int32_t *port, int32_t *baudRate, int32_t *parity, int32_t *dataBits,
                           int32_t *stopBits, int32_t *binmode, int32_t *DTRcntrl, int32_t *RTScntrl,
                           int32_t *OutCTSFlow, int32_t *OutDSRFlow, int32_t *DSRSens, int32_t *OutXonOff,
                           int32_t *InXonOff, int32_t *XonLim, int32_t *XoffLim, int32_t *TXContOnXoff,
                           int32_t *ErrAbort, int32_t *ErrCharEnbl, int32_t *NullStrip, int8_t *XonChar,
                           int8_t *XoffChar, int8_t *ErrChar, int8_t *EofChar, int8_t *EvtChar);
int32_t SPORT_SET_STATE_EX(const int32_t *port, const int32_t *baudRate, const int32_t *parity, const int8_t *dataBits,
                           const int8_t *stopBits, const int32_t *binmode, const int32_t *DTRcntrl,
                           const int32_t *RTScntrl, const int32_t *OutCTSFlow, const int32_t *OutDSRFlow,
                           const int32_t *DSRSens, const int32_t *OutXonOff, const int32_t *InXonOff,
                           const int16_t *XonLim, const int16_t *XoffLim, const int32_t *TXContOnXoff,
                           const int32_t *ErrAbort, const int32_t *ErrCharEnbl, const int32_t *NullStrip,
                           const int8_t *XonChar, const int8_t *XoffChar, const int8_t *ErrChar, const int8_t *EofChar,
                           const int8_t *EvtChar, const int32_t *zeroBlock);

// Milliseconds: the longest gap between two bytes of a read, and what a write may take a byte and at most on
// top. 200, 2 and 2000 after connection.
int32_t SPORT_GET_TIMEOUTS(const int32_t *port, int32_t *readInterval, int32_t *writeMultiplier,
                           int32_t *writeConstant);
int32_t SPORT_SET_TIMEOUTS(const int32_t *port, const int32_t *readInterval, const int32_t *writeMultiplier,
                           const int32_t *writeConstant);

// Prints the settings to standard output. level: 0 (default) for a line, 1 to 4 for more and more detail, 10
// more for the timeouts as well.
int32_t SPORT_SHOW_STATE(const int32_t *port, const int32_t *level);

// ---- Bits and shifts ----------------------------------------------------------------------------
// Bits count from 0, the least significant. Positions and counts are taken as unsigned: a negative one is
// out of range. LOGICAL results are 1 and 0.

// Clear (BIC) and set (BIS) a bit of i in place; out of range nothing happens.
void BIC(const int32_t *ibit, int32_t *i);
void BICI8(const int32_t *ibit, int64_t *i);
void BIS(const int32_t *ibit, int32_t *i);
void BISI8(const int32_t *ibit, int64_t *i);

// Whether a bit of i is set; false out of range.
int32_t BIT(const int32_t *ibit, const int32_t *i);
int32_t BITI8(const int32_t *ibit, const int64_t *i);

// i shifted left; 0 out of range. Two names of one routine.
int32_t LSHIFT(const int32_t *i, const int32_t *n);
int32_t SHIFTL(const int32_t *i, const int32_t *n);

// i shifted right: RSHIFT keeps the sign, SHIFTR lets zeros in; 0 out of range, also for a negative i.
int32_t RSHIFT(const int32_t *i, const int32_t *n);
int32_t SHIFTR(const int32_t *i, const int32_t *n);

// The pair ileft, iright shifted by n bits, 0 to 64; DSHIFTL gives its left half, DSHIFTR its right.
// 0 out of range.
int64_t DSHIFTL(const int64_t *ileft, const int64_t *iright, const int64_t *n);
int64_t DSHIFTR(const int64_t *ileft, const int64_t *iright, const int64_t *n);

// All bits inverted; COMPLREAL inverts the bits of a real, COMPLLOG gives 1 for 0 and 0 for the rest.
int32_t COMPLINT(const int32_t *i);
float COMPLREAL(const float *x);
int32_t COMPLLOG(const int32_t *l);

// x where z has a 1, y where it has a 0.
int32_t CSMG(const int32_t *x, const int32_t *y, const int32_t *z);

// ---- Arithmetic and conversion ------------------------------------------------------------------
// LONG and SHORT stand at the end of this header.

// x - y, or 0.0 when x < y. JDIM works modulo 2^32.
float DIM(const float *x, const float *y);
double DDIM(const double *x, const double *y);
int32_t JDIM(const int32_t *i, const int32_t *j);

// The absolute value; -2147483648 stays.
int32_t JABS(const int32_t *i);

// The remainder of i / j, with the sign of i. j 0 is the processor's divide fault.
int32_t JMOD(const int16_t *i, const int16_t *j);

// 2147483647.
int32_t INMAX(void);

// The low 16 bits of i, for an INTEGER(2); the rest of the result is 0. INTC and SHORT are one routine.
int32_t INTC(const int32_t *i);

// Conversions to REAL(4) and REAL(8), to nearest.
float IFLOATI(const int16_t *i);
float IFLOATJ(const int32_t *i);
double DFLOATI(const int16_t *i);
double DFLOATJ(const int32_t *i);
double DFLOATK(const int64_t *i);
double CDFLOAT(const float *x);

// ---- Bessel functions ---------------------------------------------------------------------------
// Of the first (J) and second (Y) kind, orders 0, 1 and n, by the C run-time; 0.0 for an infinite x. Names
// with D take and give REAL(8).

float BESJ0(const float *x);
float BESJ1(const float *x);
float BESJN(const int32_t *n, const float *x);
float BESY0(const float *x);
float BESY1(const float *x);
float BESYN(const int32_t *n, const float *x);
double DBESJ0(const double *x);
double DBESJ1(const double *x);
double DBESJN(const int32_t *n, const double *x);
double DBESY0(const double *x);
double DBESY1(const double *x);
double DBESYN(const int32_t *n, const double *x);

// ---- Text scanning ------------------------------------------------------------------------------

// The position of the last character that is not a blank, or 0. Tabs and NULs are no blanks.
int32_t LNBLNK(const char *string, size_t string_len);

// The position at which substr occurs last in string, or 0. Trailing blanks of both count. An empty substr
// is found behind the last character.
int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len);

// ---- Names that other headers use ---------------------------------------------------------------
// windows.h has types DATE, LONG and SHORT, and errno.h a macro ETIME. In C++ these four are therefore in
// the namespace qwport. In C the first three are left out when windows.h was included before this header;
// include it before, not after. To call ETIME, undefine the macro.

#pragma push_macro("ETIME")
#undef ETIME
#ifdef __cplusplus
}  // extern "C"
namespace qwport {
extern "C" {
#endif

#if defined(__cplusplus) || !defined(_WINNT_)
// Today's date: "05-Mar-23" if string has more than 8 characters, else "03/05/23", month first.
void DATE(char *string, size_t string_len);

// An INTEGER(2) as INTEGER(4).
int32_t LONG(const int16_t *i);

// A second name of INTC.
int32_t SHORT(const int32_t *i);
#endif

// Processor seconds of the process. tarray: 2 elements, out: user, system. Result: their sum, or -1.0 with
// tarray unchanged if the host does not tell. On a machine with several processors: the wall-clock time
// since the process started as user time, and no system time.
float ETIME(float *tarray);

#ifdef __cplusplus
}  // extern "C"
}  // namespace qwport
extern "C" {
#endif
#pragma pop_macro("ETIME")

#ifdef __cplusplus
}
#endif

#endif
