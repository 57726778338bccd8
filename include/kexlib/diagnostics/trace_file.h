// Trace file: printf-style diagnostic lines to a file on the user's desktop, to the debugger, or to both.
//
//     CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
//     g_traceToFile.Trace("%d files in %s\n", count, folder);         // the first line creates the file
//     CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);             // closes it with its footer
//
// The file is "QZFileTrace_DDMMYYYY_HHMMSS_N.txt" in the user's desktop folder (SHGetFolderPathA), or in "C:\" if there
// is none: local time, N counted up from 0 until no file of that name exists. The first traced line creates it. It is
// complete after each line, and closing adds a footer with the time. Others may read and write it meanwhile. If it is
// open when kexlib.dll is unloaded, it is closed with its footer.
//
// Errors. None is reported and nothing is thrown. A line whose file cannot be created is lost; the next line tries
// again, with a new name. That attempt takes some hundred microseconds: where the desktop folder may not be writable,
// switch tracing off around a loop that traces often. On a full disk a line is lost or truncated.
//
// Threads. No lock is taken: trace, switch and close from one thread at a time.
#ifndef KEXLIB_DIAGNOSTICS_TRACE_FILE_H
#define KEXLIB_DIAGNOSTICS_TRACE_FILE_H

#include <kexlib/export.h>

#include <string>

/// A sink for diagnostic lines. Programs use the one instance g_traceToFile.
class KEXLIB_API CTraceToFile {
 public:
  /// The destinations of lines: a set of bits.
  enum Mode : int {
    TraceOff = 0,               ///< nowhere; a trace call does not even format
    TraceToDebugger = 1,        ///< to OutputDebugStringA
    TraceToFile = 2,            ///< to the trace file
    TraceToDebuggerAndFile = 3  ///< to both, the file first
  };

  /// Mode TraceOff, no file. The mode can be set on g_traceToFile only: other instances stay off.
  CTraceToFile() = default;

  /// CloseFile().
  ~CTraceToFile();

  CTraceToFile(const CTraceToFile&) = delete;
  CTraceToFile& operator=(const CTraceToFile&) = delete;

  /// Formats as vsnprintf does, in the C locale of the process, and sends the text to the destinations in the mode of
  /// this object. Nothing is added: callers end lines in "\n", which the file receives as CR LF. Text beyond 511
  /// characters is truncated. A wide string without a narrow form is truncated or empties the whole text, depending on
  /// the run-time library. A null `format` is ignored. Keep widths and precisions, those given by `*` too, below a
  /// million: run-time libraries may use as much stack.
  void Trace(const char* format, ...) KEXLIB_PRINTF(2, 3);

  /// Writes two line ends and "File closed at DD/MM/YYYY HH:MM:SS" to the open file and closes it. Does nothing if none
  /// is open. The next traced line creates a new file.
  void CloseFile();

  /// Beyond the contract of the unit: the path of the open file (GetFinalPathNameByHandle), in the ANSI code page;
  /// empty while none is open. The first traced line opens it.
  ///
  ///     g_traceToFile.Trace("started\n");
  ///     about_box.show("The trace file is " + g_traceToFile.GetFilePath());
  std::string GetFilePath() const;

  /// The mode of g_traceToFile. Setting a mode without the file bit closes an open file; with it, the file stays as it
  /// is.
  static Mode GetTraceMode();
  static void SetTraceMode(Mode mode);

 private:
  void OpenFile();
  static int GetDesktopFolderPath(char* path);

  Mode mode_ = TraceOff;
  void* file_ = nullptr;  // the Win32 handle of the open file, null while there is none
};

/// The process's trace sink: off when kexlib.dll is loaded, closed when it is unloaded.
extern KEXLIB_API CTraceToFile g_traceToFile;

#endif
