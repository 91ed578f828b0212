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
// clears none of them, unless it is said so. A host or C run-time that fails without a number gives 22.
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

// ---- Identification and error state --------------------------------------------------------------

// The library's title, version and build date, separated by tabs.
// text: out. Result: 4, always. Needs no core runtime.
int32_t FOR_QWPORT_VERSION(char *text, size_t text_len);

// The error number that a routine recorded last; 0 if none did. FSEEK and FSEEKI8 set it to their result
// on every call, 0 included.
int32_t IERRNO(void);

// The calling thread's C errno. GETLASTERRORQQ is a second name of the same routine.
int32_t GETLASTERROR(void);
int32_t GETLASTERRORQQ(void);

// ---- Units: characters and positions -------------------------------------------------------------
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

// ---- Units: terminals ----------------------------------------------------------------------------

// Whether a unit is a terminal. Result: LOGICAL, 1 or 0; 0 and 9 reported for a unit that is not open. Core.
int32_t ISATTY(const int32_t *lunit);

// The name of the terminal that a unit is. name: out, blank with 9 reported for a unit that is not open and
// 25 for one that is no terminal. Core.
void TTYNAM(char *name, const int32_t *lunit, size_t name_len);

// ---- Units: ending the program -------------------------------------------------------------------

// Ends the program abnormally (status 3 with libqwcorert) after closing its units; "abort: " and the
// message go to standard error. message: optional, at most 240 characters are shown, up to a NUL if it
// has one; when it is left out the text is "abort: Fortran Abort Called". Core.
void ABORT(const char *message, size_t message_len);

// Ends the program after closing its units. status: the process's exit status, optional, default 0.
// Core.
void EXIT(const int32_t *status);

// ---- Files: status and access --------------------------------------------------------------------
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

// Gives or takes the right to write. mode: octal, where 0200 gives the right and no mode takes it away (0444 changes
// nothing), or symbolic, [ugoa]*[+-=][rwxXst]*, where only w counts. Result: 0, also when nothing changes; 2 no such
// file, 22 a mode that makes no sense.
int32_t CHMOD(const char *name, const char *mode, size_t name_len, size_t mode_len);

// ---- Files: files and directories ----------------------------------------------------------------
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
// files: looked at when a listing begins; a null address is reported as 22 at any time. buffer: out. Result: the length
// of the name; 0 at the end or when nothing matches, with 2 reported and buffer unchanged. GETFILEINFOQQ gives the size
// -1 and reports 34 for a file of 2 GiB or more. A listing that is left early keeps a host handle open.
int32_t GETFILEINFOQQ(const char *files, QwportFileInfo *buffer, int64_t *handle, size_t files_len);
int32_t GETFILEINFOQQI8(const char *files, QwportFileInfoI8 *buffer, int64_t *handle, size_t files_len);

// Searches a file in the host's default places, then in the directories, separated by semicolons, that an
// environment variable names. pathbuf: out, its full path. Result: the path's length, or 0.
int32_t FINDFILEQQ(const char *filename, const char *varname, char *pathbuf, size_t filename_len, size_t varname_len,
                   size_t pathbuf_len);

// Deletes the plain files that match a name or wildcard pattern; read-only, hidden and system files and
// directories stay. files: the pattern behind its directory counts to its 259th character; one of 261 or more
// deletes nothing. Result: how many were deleted. The listing's end is reported as 22.
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

// Change the current directory. CHDIR gives 20 for a name that exists and is no directory (a file), 2 for one that does
// not exist and for any other failure.
int32_t CHANGEDIRQQ(const char *dir, size_t dir_len);
int32_t CHDIR(const char *dir_name, size_t dir_name_len);

// The current directory. dirname: out, blank after a failure. Result: 0, 34 when it does not fit, 2 for an
// empty argument.
int32_t GETCWD(char *dirname, size_t dirname_len);

// ---- Files: drives and paths ---------------------------------------------------------------------
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

// The parts of a path of up to 259 characters, which is first made full: drive with its colon, directory with its
// separators, name, extension with its dot. Result: the length of the directory, or 0.
int32_t SPLITPATHQQ(const char *path, char *drive, char *dir, char *name, char *ext, size_t path_len, size_t drive_len,
                    size_t dir_len, size_t name_len, size_t ext_len);

// ---- Time: calendar ------------------------------------------------------------------------------
// Times are seconds since 1970-01-01 00:00:00 UTC. Local time is the C run-time's (the TZ variable
// counts), which knows times from 1970 on. "Two-digit year" is the year modulo 100. "Year of the 96 rule"
// is 2000 to 2095 for a two-digit year below 96, and the two digits themselves from 96 on. Texts that do
// not fit are cut and reported as 22, which is all that the core runtime is needed for. DATE stands at
// the end of this header.

// Now. A caller that takes it as INTEGER(4) gets the low half.
int64_t TIME(void);

// The C ctime text of a time in local time, "Sun Mar 05 14:07:09 2023" and a line feed: 25 characters; the
// day has two digits with every C run-time. All blanks for a negative time. A CHARACTER function, so the
// result's address and length come first.
void CTIME(char *result, size_t result_len, const int32_t *stime);

// The same text for now, without the line feed: 24 characters; blanks if the C run-time has no local time. A subroutine
// or a CHARACTER function, as the caller likes.
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
// from 0; a negative time ends the program with an assertion failure. LTIME: local time, day of the year
// from 1; all elements are -1 for a negative time.
void GMTIME(const int32_t *stime, int32_t *tarray);
void LTIME(const int32_t *stime, int32_t *tarray);

// Packs a local time: full year, month 1 to 12, day, hour, minute, second. Fields beyond their range roll over,
// as in C's mktime: 29 February 2023 is 1 March. timedate: out; -1 for a time before 1970; cut to 32 bits, so
// negative, from 2038-01-19 03:14:08 UTC on. UNPACKTIMEQQ takes it apart; its outputs are all -1 for a negative time.
void PACKTIMEQQ(int32_t *timedate, const int16_t *year, const int16_t *month, const int16_t *day, const int16_t *hour,
                const int16_t *minute, const int16_t *second);
void UNPACKTIMEQQ(const int32_t *timedate, int16_t *year, int16_t *month, int16_t *day, int16_t *hour, int16_t *minute,
                  int16_t *second);

// Set the machine's local date or time of day, keeping the other. The process must be allowed to.
// SETTIM takes the low 16 bits of hour, minute and second. Result: LOGICAL, 1 or 0; nothing is reported.
int32_t SETDAT(const int16_t *year, const int16_t *month, const int16_t *day);
int32_t SETTIM(const int32_t *hour, const int32_t *minute, const int32_t *second, const int32_t *hundredths);
int32_t SETTIMI2(const int16_t *hour, const int16_t *minute, const int16_t *second, const int16_t *hundredths);

// ---- Time: clocks and elapsed time ---------------------------------------------------------------
// TIMEF, DTIME and DTIMER8 remember their previous call for the process, whichever thread made it. Only DCLOCK needs
// the core runtime. ETIME stands at the end of this header.

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
// On a machine with several processors every second call reads the wall clock since the start as user time, and
// 0 as system time: each result is then the difference of two different clocks, and may be negative.
float DTIME(float *tarray);
double DTIMER8(double *tarray);

// ---- Processes: commands -------------------------------------------------------------------------
// The caller waits until the command has ended. Nothing is recorded.

// Runs a command line by the host's command interpreter, cmd.exe in the system directory. Result: the
// command's exit code, or -1 if it could not be run. Out of memory is an assertion failure.
int32_t SYSTEM(const char *command, size_t command_len);

// Runs a command line by the C run-time's system(), which takes the interpreter from the variable COMSPEC.
// Result: LOGICAL, 1 or 0; 0 only if no interpreter could be started; what the command's exit code is does not
// matter.
int32_t SYSTEMQQ(const char *commandline, size_t commandline_len);

// Runs a program without an interpreter. filename: its path; directories are not searched. commandline: the
// words that follow the program's name. Result: the low 16 bits of the exit code, or -1 if it could not be
// started, with the cause in errno; 12 is reported for no memory and for a null filename.
int16_t RUNQQ(const char *filename, const char *commandline, size_t filename_len, size_t commandline_len);

// ---- Processes: signals and error handling -------------------------------------------------------
// SIGNAL and KILL take the signal numbers of Unix: 2 interrupt, 4 illegal instruction, 6 abort,
// 8 floating-point exception, 9 kill, 11 segmentation violation, 15 termination. SIGNALQQ and RAISEQQ take
// those of the C run-time, where abort is 22. Core.

// Sets what a signal does. flag: negative to call proc, 0 for the default action, 1 to ignore the signal.
// proc: called with the address of the signal's number; it stays installed, but for a real fault (4, 11). Result: what
// the core runtime answers (libqwcorert: the previous handler, 0 default, 1 ignored, -1 the host has no such signal);
// 22, reported, for a signal number or flag that does not exist.
intptr_t SIGNAL(const int32_t *signum, void (*proc)(int32_t *signum), const int32_t *flag);

// Sets the core runtime's own handler: 0 default, 1 ignore, else a procedure that is called with the signal
// number by value, or for signal 8 with the addresses of 8 and of the floating-point code. Result: as of
// SIGNAL.
intptr_t SIGNALQQ(const int32_t *sig, void (*func)(int32_t sig));

// Raises a signal in this process. Result: 0, or the core runtime's error code.
int32_t RAISEQQ(const int32_t *sig);

// Sends a signal to a process: 9 to the process of exactly this number, which ends with exit code 9; the others to the
// caller's own process only. Result: 0; 22 for a number that does not exist, another process or an unknown pid, 13 for
// one that may not be ended; recorded.
int32_t KILL(const int32_t *pid, const int32_t *signum);

// Has the core runtime call a procedure when it reports an error. The arguments are those of
// for__establish_user_error_handler (qwcore.h), all words by value: handler and context, and the addresses
// that receive the previous ones, or null. Result: LOGICAL, 1 or 0. Core.
int32_t ESTABLISHQQ(intptr_t handler, intptr_t context, intptr_t *previous_handler, intptr_t *previous_context);

// pflag: 1 to have the host show critical errors (a drive without a medium) to the user; any other value to
// have them fail silently.
void SETERRORMODEQQ(const int32_t *pflag);

// ---- Processes: alarm and sleep ------------------------------------------------------------------
// Report nothing, but for ALARM when its thread cannot be started: 12.

// Calls proc, on a thread of its own, after a number of seconds (49 days at most). One alarm can be pending;
// only PXFALARM replaces or cancels it. time: seconds, 1 or more; less sets no alarm. Result: 0, or, while an
// alarm is pending, the seconds until it, rounded up and at least 1; the new one is then ignored.
int32_t ALARM(const int32_t *time, void (*proc)());

// Wait. time: seconds (49 days at most), duration: milliseconds. A negative one returns at once, and so does
// an asynchronous procedure call of the host.
void SLEEP(const int32_t *time);
void SLEEPQQ(const int32_t *duration);

// Sounds the speaker. frequency: hertz, duration: milliseconds.
void BEEPQQ(const int32_t *frequency, const int32_t *duration);

// ---- Processes: environment and identity ---------------------------------------------------------
// Variables are those that the core runtime sees, but for SCANENV, which reads the host's.

// The value of a variable. name: ends at its first blank. value: out, blank if there is no such variable, cut
// without a report if it does not fit. Out of memory is an assertion failure. Core.
void GETENV(const char *name, char *value, size_t name_len, size_t value_len);

// The value of a variable. varname: trailing blanks do not count, others do. Result: the number of
// characters stored; 0 and a blank value if there is no such variable. One that does not fit is cut and
// reported as 22. Core.
int32_t GETENVQQ(const char *varname, char *value, size_t varname_len, size_t value_len);

// Sets a variable of this process and those it starts. varvalue: "NAME=VALUE"; "NAME=" removes the variable
// (libqwcorert). Result: LOGICAL, 1 or 0. Core.
int32_t SETENVQQ(const char *varvalue, size_t varvalue_len);

// The next variable whose name begins with a text; call it again with the same text for the next one.
// envname: case matters, blanks around it do not. envtext, envvalue: out, its name and value, cut without a
// report; both blank when there is none left, and from then on until another text is asked for. A scan goes
// over the environment as it was at its first call, and goes on in the new one after a variable was set by
// SETENVQQ, PXFSETENV or PXFCLEARENV. One scan for the process: threads that scan at once share it.
void SCANENV(const char *envname, char *envtext, char *envvalue, size_t envname_len, size_t envtext_len,
             size_t envvalue_len);

// The name of the user; blank if the host does not tell. Cut without a report.
void GETLOG(char *name, size_t name_len);

// The name of the machine. Result: 0; -1 it was cut; 1 the host does not tell, name is blank. HOSTNAM is a
// second name.
int32_t HOSTNM(char *name, size_t name_len);
int32_t HOSTNAM(char *name, size_t name_len);

// The host's number of the process.
int32_t GETPID(void);

// The relative identifier (the last part of the SID) of the process's user and of its primary group, or -1.
int32_t GETUID(void);
int32_t GETGID(void);

// ---- Sorting -------------------------------------------------------------------------------------

// Element types of SORTQQ and BSEARCHQQ. A number from 1 to 32766 means strings of that many bytes, in the
// order of memcmp.
enum {
  QWPORT_SORT_REAL4 = 0x10000,
  QWPORT_SORT_REAL8 = 0x20000,
  QWPORT_SORT_INT1 = 0x30000,
  QWPORT_SORT_INT2 = 0x40000,
  QWPORT_SORT_INT4 = 0x50000,
  QWPORT_SORT_INT8 = 0x60000,
  QWPORT_SORT_REAL16 = 0x80000,  // IEEE quadruple, by sign, then magnitude; NaNs beyond the infinities
};

// Sorts an array in ascending order. arrayAddress: holds the array's address. count: in, the number of
// elements, 1 or more; out, 0 after a failure, reported, the array then being as it was: 22 for a null address, a
// count or type that is not valid, or a size in bytes beyond 64 bits; 12 for no memory for one element (strings
// of more than 256 bytes only). Short of memory otherwise it sorts in place, for longer.
void SORTQQ(const int64_t *arrayAddress, int64_t *count, const int32_t *size);

// Searches an array that SORTQQ sorted. keyAddress, arrayAddress: hold the addresses of key and array. Result:
// the index, from 1, of an element equal to the key; 0 if there is none, and 0 with 22 reported for a null
// address, a length or type that is not valid, or an index beyond 32 bits.
int32_t BSEARCHQQ(const int64_t *keyAddress, const int64_t *arrayAddress, const int64_t *length, const int32_t *size);

// Sort an array with a comparison, by the C run-time's qsort. elementSize: bytes. compare: given the addresses
// of two elements, a negative number if the first comes first, 0, or a positive number; it may leave by longjmp or
// a C++ exception, the array then being in some order. Nothing is sorted for a count or elementSize below 1, or
// for a size in bytes beyond 64 bits. Threads wait for one another; a compare that calls QSORT in its turn, be it
// for no elements, replaces the comparison of the sort that called it.
void QSORT(void *array, const int64_t *count, const int64_t *elementSize,
           int16_t (*compare)(const void *left, const void *right));
void QSORT_II(void *array, const int32_t *count, const int32_t *elementSize,
              int16_t (*compare)(const void *left, const void *right));
void QSORT_IL(void *array, const int32_t *count, const int64_t *elementSize,
              int16_t (*compare)(const void *left, const void *right));

// ---- Numeric: bits and shifts --------------------------------------------------------------------
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

// ---- Numeric: arithmetic and conversion ----------------------------------------------------------
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

// ---- Numeric: Bessel functions -------------------------------------------------------------------
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

// ---- Numeric: text positions ---------------------------------------------------------------------

// The position of the last character that is not a blank, or 0. Tabs and NULs are no blanks.
int32_t LNBLNK(const char *string, size_t string_len);

// The position at which substr occurs last in string, or 0. Trailing blanks of both count. An empty substr
// is found behind the last character.
int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len);

// ---- Random --------------------------------------------------------------------------------------
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

// ---- Floating point ------------------------------------------------------------------------------
// Of the calling thread. The processor has no precision field and no infinity control: the library keeps them
// for the thread, so that they read back as they were set; arithmetic does not follow them.

// Asks for or changes the environment by keywords in lower case, each ending at its first blank. out: blank
// but for "get". Result: 1 for a keyword that is not known, with nothing changed; else
//   action     mode         in                                     result
//   "get"      "direction"  not used                               0 "nearest", 1 "negative", 2 "positive",
//                                                                  3 "tozero"; the text is in out
//   "get"      "precision"  not used                               3 "extended", 2 "double", 0 "single"
//   "get"      "exception"  the flag to name in out, if raised;    sum of the raised flags: 1 "invalid",
//                           else out names the first               8 "overflow", 4 "division", 16 "underflow",
//                                                                  32 "inexact"
//   "set"      "direction"  "nearest", ...                         0
//   "set"      "precision"  "extended", ...                        0
//   "set"      "exception"  "inexact", "division", "underflow",    0; the exceptions trap from now on ("common":
//                           "overflow", "invalid", "all", "common" all but inexact; "all": also denormal operands)
//   "clear"    as "set"     for "exception", as there              0; nearest; extended; the exceptions do not trap
//   "clearall"                                                     0; all of that, and no flag is raised
// Any other mode of "get" answers 1 with "mode not available" in out. An answer that out cuts is reported, 22. 1 also
// of a precision for which the thread has no room (errno 12).
int32_t IEEE_FLAGS(const char *action, const char *mode, const char *in, char *out, size_t action_len, size_t mode_len,
                   size_t in_len, size_t out_len);

// Sets the procedure that is called when an exception traps. action: "get", "set" or "clear"; exception: as of
// IEEE_FLAGS; both in any case, and short where the beginning stands first at the start of a keyword ("inv").
// The handlers are the process's; one thread at a time may set them.
// handler: for "set", called with the addresses of the signal number 8 and of the code of the exception
// (0x81 invalid, 0x83 division, 0x84 overflow, 0x85 underflow, 0x86 inexact); when it returns the program
// ends with status 9, as it does without a handler. "set" also enables the trap, "clear" disables it. Result:
// 0; of "get" the handler's address, 0 if there is none; 1 for a keyword that is not known and for "get" of
// "all" and "common". Core.
intptr_t IEEE_HANDLER(const char *action, const char *exception, void (*handler)(int32_t *signum, int32_t *code),
                      size_t action_len, size_t exception_len);

// The control word in the layout of the x87: masks invalid 0x1, denormal 0x2, division 0x4, overflow 0x8,
// underflow 0x10, inexact 0x20 (a set bit means no trap); precision 0x300 (0 24 bits, 0x200 53, 0x300 64);
// rounding 0xC00 (0 nearest, 0x400 down, 0x800 up, 0xC00 to zero); infinity control 0x1000.
// control: out; SCWRQQ is a second name.
void GETCONTROLFPQQ(int16_t *control);
void SCWRQQ(int16_t *control);

// control: in. LCWRQQ takes a precision of 53 bits as 64. Precision and infinity control, which SSE lacks, are kept
// for the thread; without room for them the other fields are set, and errno is 12.
void SETCONTROLFPQQ(const int16_t *control);
void LCWRQQ(const int16_t *control);

// The exceptions that have occurred in arithmetic of SSE and of the x87, with the bits of the masks above. status:
// out. Both are the same.
void GETSTATUSFPQQ(int16_t *status);
void SSWRQQ(int16_t *status);

// Forgets them.
void CLEARSTATUSFPQQ(void);

// Prints "name: text" on standard output for a math-library error. nameLength: of name, which has no hidden
// length. info: the first field of a record, the type of the error: 1 domain, 2 singularity, 3 overflow,
// 4 underflow, 5 total loss of precision, 6 partial loss; any other becomes 0, unknown. retcode: out, 0.
void MATHERRQQ(const char *name, const int16_t *nameLength, int32_t *info, int16_t *retcode);

// ---- Serial --------------------------------------------------------------------------------------
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
// 12: the reader did not end within 10 seconds and was ended by force. The library stays loaded while a reader runs.
int32_t SPORT_RELEASE(const int32_t *port);

// The port's Windows handle. handle: out.
int32_t SPORT_GET_HANDLE(const int32_t *port, int64_t *handle);

// Passes a function number, required, to EscapeCommFunction or PurgeComm.
int32_t SPORT_SPECIAL_FUNC(const int32_t *port, const int32_t *function);
int32_t SPORT_PURGE(const int32_t *port, const int32_t *function);

// Ends the reader, drops what it has read, and aborts and clears the device's transfers.
int32_t SPORT_CANCEL_IO(const int32_t *port);

// Writes data; SPORT_WRITE_LINE adds the line end of the port. count: in, the bytes to write from buffer,
// whatever its length; where it is left out or 0, the text without its trailing blanks; 87 if it is negative. Out:
// the bytes written, the line end included, also with 996, which says that the device took only a part of the data
// in time.
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

// ---- Posix: structures by handle -----------------------------------------------------------------
// What holds for all PXF routines: ierror, out, is 0 for success, else an errno value or one of the numbers 126
// ENONAME (no such name), 127 ENOHANDLE (no such handle, or none to be had), 129 ETRUNC (a text was cut) and -1
// EEND. Failures are reported, with errno 22 for 126 and 127 and 34 for 129, unless it is said otherwise. Outputs
// other than ierror hold nothing useful after a failure. Names end at their first blank, and case counts. Several
// threads may make, find, use and free handles at once; one structure or directory stream is for one thread at a time,
// and nobody may use what another frees.
//
// Where these routines hand on errno values of the C run-time, they are those up to 42, which all run-times share.
//
// Structures and fields: sigaction: sa_handler sa_mask sa_flags; utsname: sysname nodename release version
// machine; tms: tms_utime tms_stime tms_cutime tms_cstime; dirent: d_name; stat: st_mode st_ino st_dev st_nlink
// st_uid st_gid st_size st_atime st_mtime st_ctime; utimbuf: actime modtime. The fields of utsname and dirent are
// texts, all others numbers.

// Makes a structure of zeros; jhandle: out, the first free one of 1 to 255, 257 to 511 and so on, 16,711,680 in all.
// A failure leaves errno alone.
void PXFSTRUCTCREATE(const char *structname, int32_t *jhandle, int32_t *ierror, size_t structname_len);

// Frees a structure; jhandle: becomes 0. ierror 126 for a directory stream.
void PXFSTRUCTFREE(int32_t *jhandle, int32_t *ierror);

// Copies all fields from jhandle1 to jhandle2. ierror 22 when they are different structures, 126 when they are not
// the named one.
void PXFSTRUCTCOPY(const char *structname, const int32_t *jhandle1, const int32_t *jhandle2, int32_t *ierror,
                   size_t structname_len);

// Read and write a number. PXFINTGET gives 0 and ierror 34 for a value beyond INTEGER(4), but the low half of
// sa_handler. PXFINT8SET refuses, with 34, values beyond INTEGER(4) for the fields sa_handler, sa_mask, sa_flags,
// st_mode, st_uid and st_gid; it stores sa_flags into sa_mask.
void PXFINTGET(const int32_t *jhandle, const char *compname, int32_t *value, int32_t *ierror, size_t compname_len);
void PXFINTSET(const int32_t *jhandle, const char *compname, const int32_t *value, int32_t *ierror,
               size_t compname_len);
void PXFINT8GET(const int32_t *jhandle, const char *compname, int64_t *value, int32_t *ierror, size_t compname_len);
void PXFINT8SET(const int32_t *jhandle, const char *compname, const int64_t *value, int32_t *ierror,
                size_t compname_len);

// Reads a text; ilen: out, its whole length. A text that does not fit is cut, with ierror 129.
void PXFSTRGET(const int32_t *jhandle, const char *compname, char *value, int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len);

// Writes the first ilen characters of value without trailing blanks; ierror 22 when value has not so many. Room:
// sysname 60, nodename 15, release, version and machine 59, d_name 260; what does not fit is cut, with 129. The 60th
// character of sysname has its NUL in nodename: set sysname first.
void PXFSTRSET(const int32_t *jhandle, const char *compname, const char *value, const int32_t *ilen, int32_t *ierror,
               size_t compname_len, size_t value_len);

// The handle of a procedure, from 16 on; the same procedure always gets the same handle.
void PXFGETSUBHANDLE(void (*sub)(int32_t *ival), int32_t *jhandle, int32_t *ierror);

// Calls a procedure by its handle.
void PXFCALLSUBHANDLE(const int32_t *jhandle, int32_t *ival, int32_t *ierror);

// Accessors of kinds of fields that no structure has: ierror 126. Nothing but ierror is looked at.
void PXFREALGET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFREALSET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFDBLGET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFDBLSET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFLGCLGET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFLGCLSET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFCHARGET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFCHARSET(const int32_t *jhandle, const char *compname, void *value, int32_t *ierror, size_t compname_len);
void PXFAREALGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFAREALSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFADBLGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFADBLSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFALGCLGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFALGCLSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFACHARGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFACHARSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEREALGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEREALSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEDBLGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFEDBLSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFELGCLGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFELGCLSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFECHARGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFECHARSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEINT8GET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEINT8SET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFASTRGET(const int32_t *jhandle, const char *compname, void *value, void *index, void *ilen, int32_t *ierror,
                size_t compname_len);
void PXFASTRSET(const int32_t *jhandle, const char *compname, void *value, void *index, void *ilen, int32_t *ierror,
                size_t compname_len);
void PXFESTRGET(const int32_t *jhandle, const char *compname, void *value, void *index, void *ilen, int32_t *ierror,
                size_t compname_len);
void PXFESTRSET(const int32_t *jhandle, const char *compname, void *value, void *index, void *ilen, int32_t *ierror,
                size_t compname_len);

// These look at the handle: 127 if it is none, else 126.
void PXFAINTGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFAINTSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFAINT8GET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFAINT8SET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                 size_t compname_len);
void PXFEINTGET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);
void PXFEINTSET(const int32_t *jhandle, const char *compname, void *value, void *index, int32_t *ierror,
                size_t compname_len);

// ---- Posix: constants ----------------------------------------------------------------------------

// The value of a C constant by name, as "O_CREAT" or "_SC_PAGESIZE": the numbers of the Windows C run-times, and of
// this interface. ival: out, -1 with ierror 126 for an unknown name. errno is left alone.
void PXFCONST(const char *constname, int32_t *ival, int32_t *ierror, size_t constname_len);

// The same as a result: -1 for an unknown name, but also for EEND and SIG_ERR.
int32_t IPXFCONST(const char *constname, size_t constname_len);

// LOGICAL, true is -1: whether the name is known.
int32_t PXFISCONST(const char *s, size_t s_len);

// ---- Posix: files and directories ----------------------------------------------------------------
// path, ilen: the first ilen characters, or, for ilen 0, all without trailing white space. A negative ilen is 22.

// Opens a file with a sum of O_ and one of S_I constants. ifildes: out, the descriptor, or -1.
void PXFOPEN(const char *path, const int32_t *ilen, const int32_t *iopenflag, const int32_t *imode, int32_t *ifildes,
             int32_t *ierror, size_t path_len);

// Makes or empties a file and opens it for writing. imode: S_IWRITE counts; without it the file is read-only.
void PXFCREAT(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ifildes, int32_t *ierror,
              size_t path_len);

// Whether a file may be accessed. iamode: a sum of R_OK and W_OK, or F_OK; other bits do not count.
void PXFACCESS(const char *path, const int32_t *ilen, const int32_t *iamode, int32_t *ierror, size_t path_len);

// Changes a file's mode, of which S_IWRITE counts.
void PXFCHMOD(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, size_t path_len);

// Removes a file.
void PXFUNLINK(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len);

// Renames a file to new_path, which must not exist, and gives it a second name (a hard link).
void PXFRENAME(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
               size_t path_len, size_t new_path_len);
void PXFLINK(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
             size_t path_len, size_t new_path_len);

// Sets a file's times from a utimbuf structure, or to the present if jutimbuf is no handle. The path ends at its
// first blank; ilen does not count.
void PXFUTIME(const char *path, const int32_t *ilen, const int32_t *jutimbuf, int32_t *ierror, size_t path_len);

// Fill a stat structure from a file and from a descriptor. In PXFSTAT ilen does not count. What the C run-times do not
// agree on is as the program's has it: execute bits of st_mode, a directory's name that ends in a slash, and what is
// no plain file.
void PXFSTAT(const char *path, const int32_t *ilen, const int32_t *jstat, int32_t *ierror, size_t path_len);
void PXFFSTAT(const int32_t *ifildes, const int32_t *jstat, int32_t *ierror);

// LOGICAL, true is -1: the kind of file that a mode tells. PXFISBLK is always false.
int32_t PXFISDIR(const int32_t *m);
int32_t PXFISCHR(const int32_t *m);
int32_t PXFISREG(const int32_t *m);
int32_t PXFISFIFO(const int32_t *m);
int32_t PXFISBLK(const int32_t *m);

// Change to, make and remove a directory. imode does not count.
void PXFCHDIR(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len);
void PXFMKDIR(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, size_t path_len);
void PXFRMDIR(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len);

// The current directory; ilen: out, its length, 0 after a failure. 129 if it does not fit; buf then has the first
// characters.
void PXFGETCWD(char *buf, int32_t *ilen, int32_t *ierror, size_t buf_len);

// Opens a directory; iopendirid: out, a handle. ierror 2 when there is none, 20 for a file.
void PXFOPENDIR(const char *path, const int32_t *ilen, int32_t *iopendirid, int32_t *ierror, size_t path_len);

// Puts the name of the next entry into a dirent structure, "." and ".." included, in the file system's order. ierror 2
// behind the last one.
void PXFREADDIR(const int32_t *idirid, const int32_t *jdirent, int32_t *ierror);

// Starts over. ierror: always 0.
void PXFREWINDDIR(const int32_t *idirid, int32_t *ierror);

// Closes a directory; idirid: becomes 0, also when the host reports a failure.
void PXFCLOSEDIR(int32_t *idirid, int32_t *ierror);

// ---- Posix: descriptors --------------------------------------------------------------------------
// Descriptors are those of the C run-time; 9 for one that is not open. ifid, counts and iposition: out, -1 after a
// failure.

void PXFDUP(const int32_t *ifildes, int32_t *ifid, int32_t *ierror);
void PXFDUP2(const int32_t *ifildes, const int32_t *ifildes2, int32_t *ierror);
void PXFCLOSE(const int32_t *ifildes, int32_t *ierror);

// Reads at most ibyte bytes into buf, which must have room for them; ireadcount: out, 0 at the end. Null addresses
// but for ierror's: nothing happens, ierror 0.
void PXFREAD(const int32_t *ifildes, char *buf, const int32_t *ibyte, int32_t *ireadcount, int32_t *ierror,
             size_t buf_len);
void PXFWRITE(const int32_t *ifildes, const char *buf, const int32_t *ibyte, int32_t *iwritecount, int32_t *ierror,
              size_t buf_len);

// Positions a descriptor. iwhence: SEEK_SET 0, SEEK_CUR 1, SEEK_END 2.
void PXFLSEEK(const int32_t *ifildes, const int32_t *ioffset, const int32_t *iwhence, int32_t *iposition,
              int32_t *ierror);

// A pipe with room for 4096 bytes: what is written to iwrite is read from iread, as text.
void PXFPIPE(int32_t *iread, int32_t *iwrite, int32_t *ierror);

// Sets the mask of modes for new files; ierror: always 0.
void PXFUMASK(const int32_t *icmask, int32_t *iprevcmask, int32_t *ierror);

// Limits of a path, of an open file and of the system. name: a _PC_ constant (_PC_LINK_MAX, _PC_NAME_MAX,
// _PC_PATH_MAX, _PC_PIPE_BUF) or an _SC_ constant; 22 for others. PXFFPATHCONF answers for the current directory.
// _SC_PHYS_PAGES and _SC_AVPHYS_PAGES give bytes, or -1 with ierror 34 from 2 GiB on.
void PXFPATHCONF(const char *path, const int32_t *ilen, const int32_t *name, int32_t *ival, int32_t *ierror,
                 size_t path_len);
void PXFFPATHCONF(const int32_t *ifildes, const int32_t *name, int32_t *ival, int32_t *ierror);
void PXFSYSCONF(const int32_t *name, int32_t *ival, int32_t *ierror);

// ---- Posix: Fortran units ------------------------------------------------------------------------
// All are core routines.

// Switches POSIX I/O on or off for the process; old_flag: out, the previous setting.
void PXFPOSIXIO(const int32_t *new_flag, int32_t *old_flag, int32_t *ierror);

// The descriptor of a unit; 9 for a unit that is not open.
void PXFFILENO(const int32_t *lunit, int32_t *fd, int32_t *ierror);

// Connects a descriptor to a unit. access: keywords as "FORM=UNFORMATTED, POSITION=APPEND", see qwcore.h.
void PXFFDOPEN(const int32_t *ifildes, const int32_t *iunit, const char *access, int32_t *ierror, size_t access_len);

// Writes a unit to disk; 9 for a unit that is not open.
void PXFFFLUSH(const int32_t *lunit, int32_t *ierror);

// Position a unit, and ask for its position; 22 for any failure.
void PXFFSEEK(const int32_t *lunit, const int32_t *ioffset, const int32_t *iwhence, int32_t *ierror);
void PXFFTELL(const int32_t *lunit, int32_t *ioffset, int32_t *ierror);

// Read a character of unit 5 or of a unit; ierror -1 at end of file, not reported, or the core runtime's negative
// error number, reported as a positive one. Only the first position of the text changes.
void PXFGETC(char *nextcar, int32_t *ierror, size_t nextcar_len);
void PXFFGETC(const int32_t *lunit, char *character, int32_t *ierror, size_t character_len);

// Write a character to unit 6 or to a unit; ierror 0 or the core runtime's negative error number, reported as above.
void PXFPUTC(const char *ch, int32_t *ierror, size_t ch_len);
void PXFFPUTC(const int32_t *lunit, const char *ch, int32_t *ierror, size_t ch_len);

// ---- Posix: identity, times and arguments --------------------------------------------------------

// The process and its parent; 14 if the host does not list it.
void PXFGETPID(int32_t *ipid, int32_t *ierror);
void PXFGETPPID(int32_t *ippid, int32_t *ierror);

// The user's name; ilen: out, its length. 129, also in errno, if it is cut; a success sets errno to 0.
void PXFGETLOGIN(char *s, int32_t *ilen, int32_t *ierror, size_t s_len);

// Fills a utsname structure but for release.
void PXFUNAME(const int32_t *jhandle, int32_t *ierror);

// Seconds since 1970-01-01 00:00:00 UTC. itime: out, optional; ierror -1 without it.
void PXFTIME(int32_t *itime, int32_t *ierror);

// A time in local time. iatime: 9 elements, out: second, minute, hour, day, month 1 to 12, year, day of the week from
// Sunday 0, day of the year from 1, daylight-saving flag. 22 for a time before 1970.
void PXFLOCALTIME(const int32_t *isecnds, int32_t *iatime, int32_t *ierror);

// Fills a tms structure with the process's milliseconds, those of children 0. itime: out, milliseconds since the
// system started, modulo 2^32.
void PXFTIMES(const int32_t *jhandle, int32_t *itime, int32_t *ierror);

// Word m of the command line, 0 the program's name; ilen: out, its whole length. 22 if there is none, 129 if it is
// cut, with errno left alone. Core.
void PXFGETARG(const int32_t *m, char *buf, int32_t *ilen, int32_t *ierror, size_t buf_len);

// The number of words behind the program's name. Core.
int32_t IPXFARGC(void);

// The length of a text without trailing blanks; 0 for a negative length.
int32_t IPXFLENTRIM(const char *string, size_t string_len);

// Compares without sign. icmpr: out, -1, 0 or 1. idiff: out, the absolute value of the signed difference.
void PXFUCOMPARE(const int32_t *i1, const int32_t *i2, int32_t *icmpr, int32_t *idiff);

// ---- Posix: programs, signals and environment ----------------------------------------------------
// All are core routines but PXFFASTEXIT. Lengths of 0 mean a text without its trailing blanks.

// Run another program in place of this one: the units are flushed, the program is started, and when it ends this one
// ends with its exit code. They return only when it could not be started (2 no such program, 8 not a program).
// path: the program's file; PXFEXECVP searches a file without a directory in the PATH. argv: an array of iargc texts,
// the first of them for the program's name, with their lengths in lenargv. env: an array of ienvc texts "NAME=VALUE",
// the program's whole environment. 22 for no argv or a negative length.
void PXFEXECV(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv, const int32_t *iargc,
              int32_t *ierror, size_t path_len, size_t argv_len);
void PXFEXECVP(const char *file, const int32_t *lenfile, const char *argv, const int32_t *lenargv, const int32_t *iargc,
               int32_t *ierror, size_t file_len, size_t argv_len);
void PXFEXECVE(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv, const int32_t *iargc,
               const char *env, const int32_t *lenenv, const int32_t *ienvc, int32_t *ierror, size_t path_len,
               size_t argv_len, size_t env_len);

// End the program with a status: after closing its units, and at once, with what they hold lost.
void PXFEXIT(const int32_t *istatus);
void PXFFASTEXIT(const int32_t *istatus);

// Sends a signal, a number that PXFCONST gives. 9 ends any process, with exit code 9; 0 tells whether there is such a
// process; the others reach this process only. 3 no such process, 22 no such signal, or one to another process.
void PXFKILL(const int32_t *ipid, const int32_t *isig, int32_t *ierror);

// Sets what a signal does, and tells what it did. jsigact, josigact: sigaction structures; 0 changes nothing, and
// stores nothing. sa_handler is 0 (SIG_DFL), 1 (SIG_IGN) or the handle of a procedure, which is called with the
// signal's number; sa_mask and sa_flags are kept only. 22 for a signal that does not exist, 9, or another handler.
void PXFSIGACTION(const int32_t *isig, const int32_t *jsigact, const int32_t *josigact, int32_t *ierror);

// Raises signal 14 (SIGALRM) in iseconds seconds, on the alarm's thread, in place of a pending alarm, ALARM's
// included; 0 only cancels that. Without a handler the program then ends with exit code 14. isecleft: out, the seconds
// that were left, rounded up, or 0.
void PXFALARM(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror);

// Waits until a handler of PXFSIGACTION or SIGNAL has returned. ierror: 4, always.
void PXFPAUSE(int32_t *ierror);

// Waits as long, or until such a handler has returned. isecleft: out, the seconds that were left, rounded up, or 0.
void PXFSLEEP(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror);

// The value of a variable. lenval: out, its whole length. 22 if there is none, or no such name; 129 if it is cut.
void PXFGETENV(const char *name, const int32_t *lenname, char *value, int32_t *lenval, int32_t *ierror, size_t name_len,
               size_t value_len);

// Sets a variable, or removes it for an empty value. ioverwrite: 0 leaves a variable that there is as it is.
void PXFSETENV(const char *name, const int32_t *lenname, const char *new_value, const int32_t *lennew,
               const int32_t *ioverwrite, int32_t *ierror, size_t name_len, size_t new_value_len);

// Removes all variables.
void PXFCLEARENV(int32_t *ierror);

// ---- Multibyte -----------------------------------------------------------------------------------
// Texts of the console's input code page, as the host tells it at each call: a character is one byte, or two
// when its first byte is a lead byte of that code page. Positions count bytes from 1; trailing blanks count.
// No routine reports an error: null texts, positions out of range and left-out positions give 0.

// An INTEGER(2) array that may be of any size, and a list that a routine makes. Nothing else of it is read or
// written. The Fortran module takes and gives ordinary arrays.
typedef struct QwportArray {
  void *base;         // of the first element; elements follow one another
  int64_t unused[5];  // what a compiler's own descriptor keeps here
  int64_t extent;     // number of elements
} QwportArray;

// The size in bytes of the longest character of the code page; 0 if the host does not know it.
int32_t MBCURMAX(void);

// Whether c is a lead byte. Result: LOGICAL, what the host answers; 0 for a NUL and for no character.
int32_t MBLEAD(const char *c, size_t c_len);

// The bytes of the first character: 0 for no text or a NUL, 1 for a text of one byte or when a NUL follows.
int32_t MBCHARLEN(const char *string, size_t string_len);

// The position of the character behind the one at pos; 0 if the text ends before it begins.
int32_t MBNEXT(const char *string, const int32_t *pos, size_t string_len);

// The position of the character before pos. Only the byte two places before pos is asked whether it is a lead
// byte, so a run of bytes that can be both lead and trail bytes may be misjudged.
int32_t MBPREV(const char *string, const int32_t *pos, size_t string_len);

// Whether the text, walked from its start, has a two-byte character at pos. Result: LOGICAL, 1 or 0.
int32_t MBSTRLEAD(const char *string, const int32_t *pos, size_t string_len);

// The number of characters; NULs do not count. MBLEN_TRIM: up to the last one that is not a blank.
int32_t MBLEN(const char *string, size_t string_len);
int32_t MBLEN_TRIM(const char *string, size_t string_len);

// Comparisons by the user's default locale. flags: optional, the host's NORM_... and SORT_... bits.
// Result: LOGICAL, 1 or 0. Two empty texts are equal; with one empty text, or if the host fails, all are 0.
int32_t MBLGE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);
int32_t MBLGT(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);
int32_t MBLLE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);
int32_t MBLLT(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);
int32_t MBLEQ(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);
int32_t MBLNE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len);

// The position of the first character that is (MBSCAN) or is not (MBVERIFY) one of set; 0 if there is none.
// back: LOGICAL, optional: from the end; the result is then one more than the place where the walk stands,
// which itself moves two down behind a two-byte character.
int32_t MBSCAN(const char *string, const char *set, const int32_t *back, size_t string_len, size_t set_len);
int32_t MBVERIFY(const char *string, const char *set, const int32_t *back, size_t string_len, size_t set_len);

// The position at which substring occurs first, or with back (LOGICAL, optional) last; 0 if it does not, and if
// either is empty.
// This routine takes texts for UTF-8, whatever the code page: no match begins or ends in a sequence.
int32_t MBINDEX(const char *string, const char *substring, const int32_t *back, size_t string_len,
                size_t substring_len);

// mbtext, without its trailing blanks, from the process's ANSI code page to UTF-16. flags: optional, the
// host's MB_... bits, default MB_PRECOMPOSED. utf16: out, filled up with blanks; null or of extent 0 asks for
// the number of elements. Result: the elements converted or needed; 0 for a blank text; negative: the host's
// error number negated, such as -122 when utf16 is too small and -1004 for flags that the code page refuses
// (UTF-8 wants 0), with utf16 as the host left it.
int32_t MBCONVERTMBTOUNICODE(const char *mbtext, const QwportArray *utf16, const int32_t *flags, size_t mbtext_len);

// The whole of utf16 to the ANSI code page. flags: optional, the host's WC_... bits, default WC_COMPOSITECHECK
// and WC_SEPCHARS. mbtext: out, filled up with blanks; null or of no length asks for the number of bytes.
// Result: the bytes converted or needed, or an error as above.
int32_t MBCONVERTUNICODETOMB(const QwportArray *utf16, char *mbtext, const int32_t *flags, size_t mbtext_len);

// ---- NLS -----------------------------------------------------------------------------------------
// One locale of the process: the user's default with the ANSI code page until NLSSETLOCALE chooses another.
// Texts go in and come out in its code page; a character that the code page lacks comes out as the host
// replaces it. Languages and countries are the host's English names, in any case when they go in and in the
// ANSI code page. No routine reports an error: results below 0 are one of these, and outputs then stay.

enum {
  QWPORT_NLS_NO_ERROR = 0,
  QWPORT_NLS_INVALID_LANGUAGE = -1,
  QWPORT_NLS_INVALID_COUNTRY = -2,    // not one of the language's
  QWPORT_NLS_INVALID_CODE_PAGE = -3,  // unknown, or refused by the console
  QWPORT_NLS_INVALID_TYPE = -4,       // of locale information
  QWPORT_NLS_INVALID_INPUT = -5,      // not a number, or not a time
  QWPORT_NLS_INVALID_FLAGS = -6,
  QWPORT_NLS_OVERFLOW = -7,       // the text does not fit
  QWPORT_NLS_SYSTEM_FAILURE = -8  // the host failed
};

// Chooses the locale, for this library and for the run-time's C functions (setlocale); the numbers of Fortran
// READ and WRITE keep their decimal point. language: blank is the user's. country: optional; left out or
// blank, the language's main country, or for a blank language the user's. codepage: optional; left out, the
// locale's ANSI code page, or 65001 (UTF-8) where there is none. Result: 0; -1, -2 or -3 with nothing changed.
// A C run-time that does not know the locale (msvcrt has none of UTF-8) stays neutral. Not to be called from two
// threads at once. Core.
int32_t NLSSETLOCALE(const char *language, const char *country, const int32_t *codepage, size_t language_len,
                     size_t country_len);

// The locale: that of the run-time, if C code has changed it by setlocale. All optional and out: language and
// country are cut if they do not fit (64 characters always do). Core.
void NLSGETLOCALE(char *language, char *country, int32_t *codepage, size_t language_len, size_t country_len);

// Which code page of the environment.
enum {
  QWPORT_NLS_CONSOLE_CODE_PAGE = 1,  // of the console, input and output; the one of multibyte text
  QWPORT_NLS_WINDOWS_CODE_PAGE = 2   // the process's ANSI code page
};

// Sets a code page of the environment. The console's also counts for the other programs of that console; the
// host fixes the ANSI code page when a process starts, so only its present value is accepted.
// Result: 0, -3 (also without a console, and then nothing has changed) or -6.
int32_t NLSSETENVIRONMENTCODEPAGE(const int32_t *codepage, const int32_t *flags);

// A code page of the environment; 0 for the console's without a console. -6 for other flags.
int32_t NLSGETENVIRONMENTCODEPAGE(const int32_t *flags);

// A locale of the host: names, blank-padded, and its default code pages (65001 for one that has only UTF-8).
typedef struct QwportLocale {
  char language[64];
  char country[64];
  int32_t windows_code_page;
  int32_t console_code_page;
} QwportLocale;

// The host's locales (QwportLocale) and installed code pages (int32_t). The core runtime allocates the list;
// for_deallocate frees it. A locale without a country, which its language alone chooses, and one whose language has
// no English name are not listed. Result: the extent; 0 for a failure, and then the argument stays. Core.
int32_t NLSENUMLOCALES(QwportArray *locales);
int32_t NLSENUMCODEPAGES(QwportArray *codepages);

// A piece of information of the locale. type: the host's LOCALE_... number, of one that is text. outstr: out.
// Result: the text's length, -4 or -7.
int32_t NLSGETLOCALEINFO(const int32_t *type, char *outstr, size_t outstr_len);

// A number as the locale writes it. intext: digits with an optional sign - before and a point in them, blanks
// around. flags: optional, 0 or LOCALE_NOUSEROVERRIDE. outstr: out. Result: the length, -5, -6, -7 or -8.
int32_t NLSFORMATNUMBER(char *outstr, const char *intext, const int32_t *flags, size_t outstr_len, size_t intext_len);
int32_t NLSFORMATCURRENCY(char *outstr, const char *intext, const int32_t *flags, size_t outstr_len, size_t intext_len);

// A date or time of day as the locale writes it, in local time. intime: seconds since 1970-01-01 00:00:00 UTC
// as of PACKTIMEQQ, optional, default now. flags: optional: LOCALE_NOUSEROVERRIDE; for a date DATE_SHORTDATE
// (the default), DATE_LONGDATE and DATE_USE_ALT_CALENDAR, for a time TIME_NOMINUTESORSECONDS, TIME_NOSECONDS,
// TIME_NOTIMEMARKER and TIME_FORCE24HOURFORMAT of the host. outstr: out. Result: the length, -5, -6, -7 or -8.
int32_t NLSFORMATDATE(char *outstr, const int32_t *intime, const int32_t *flags, size_t outstr_len);
int32_t NLSFORMATTIME(char *outstr, const int32_t *intime, const int32_t *flags, size_t outstr_len);

// ---- Names that other headers use ----------------------------------------------------------------
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
