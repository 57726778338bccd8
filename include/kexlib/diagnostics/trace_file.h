// Trace file: printf-style diagnostic lines to a file on the user's desktop, to the debugger, or to both.
//
//     CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
//     g_traceToFile.Trace("%d files in %s\n", count, folder);         // the first line makes the file
//     CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);             // closes it with its footer
//
// The file is "QZFileTrace_DDMMYYYY_HHMMSS_N.txt" in the user's desktop folder (SHGetFolderPathA), or in "C:\" if there
// is none: local time, N counted up from 0 until no file of that name exists. It is made when the first line is traced,
// is complete up to the last line whenever one looks, and ends in a footer with the time at which it was closed. Others
// may read and write it meanwhile. If it is still open when kexlib.dll is unloaded, it is closed with its footer.
//
// Errors. None is ever reported and nothing is thrown. A line that finds the file closed and cannot make it is lost;
// the next line tries again, with a new name.
//
// Threads. No lock is taken: trace, switch and close from one thread at a time.
#ifndef KEXLIB_DIAGNOSTICS_TRACE_FILE_H
#define KEXLIB_DIAGNOSTICS_TRACE_FILE_H

#include <kexlib/export.h>

/// A sink for diagnostic lines. Programs use the one instance g_traceToFile.
class KEXLIB_API CTraceToFile {
 public:
  /// Where lines go: a set of bits.
  enum Mode : int {
    TraceOff = 0,               ///< nowhere; a trace call does not even format
    TraceToDebugger = 1,        ///< to OutputDebugStringA
    TraceToFile = 2,            ///< to the trace file
    TraceToDebuggerAndFile = 3  ///< to both, the file first
  };

  /// Mode TraceOff, no file. An instance of one's own stays off: the mode is set on g_traceToFile only.
  CTraceToFile() = default;

  /// CloseFile().
  ~CTraceToFile();

  CTraceToFile(const CTraceToFile&) = delete;
  CTraceToFile& operator=(const CTraceToFile&) = delete;

  /// Formats as vsnprintf does, in the C locale that the process has set, and sends the text where the mode of this
  /// object says. Nothing is added: lines end in the caller's own "\n", which the file gets as CR LF. A text longer
  /// than 511 characters is cut there; a wide string that has no narrow form is cut or makes the whole text empty, as
  /// the run-time library has it. A null `format` is ignored. Keep widths and precisions, those given by `*` too, below
  /// a million: run-time libraries may take as much stack.
  void Trace(const char* format, ...) KEXLIB_PRINTF(2, 3);

  /// Writes two line ends and "File closed at DD/MM/YYYY HH:MM:SS" to the open file and closes it. If none is
  /// open, nothing happens. The next traced line makes a new file.
  void CloseFile();

  /// The mode of g_traceToFile.
  static Mode GetTraceMode();

  /// Sets the mode of g_traceToFile. A mode without the file bit closes an open file; a mode with it leaves the file
  /// as it is.
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
