// Apply to files: an operation on every file below a folder whose name matches a pattern.
//
//     class CountSources final : public kexApplyToFiles {
//      public:
//       int count = 0;
//       void apply_to_file(char* path) override {
//         if (++count == 1000) stop = 1;                              // ends the walk
//       }
//
//      protected:
//       int ignore_directory(const char* const path) override {       // not into "build"
//         return lstrcmpiA(PathFindFileNameA(path), "build") == 0;
//       }
//     };
//     CountSources sources;
//     HRESULT result = sources.Apply("C:\\project", "*.cpp;*.h", 0);
//
// The order is that of the file system; a folder is walked when it is found, between the files before and after it.
//
// Limits. The path of a folder must be shorter than 256 characters; a longer one ends the walk. Junctions are walked
// like folders. A junction to a parent folder is walked until its path is too long: exclude it in ignore_directory.
// Pass the root as a full path: PathAppend may turn a relative path with ".." into the root of the drive. Paths are in
// the ANSI code page.
//
// Threads. One walk at a time per object. To follow shortcuts, COM must be initialised on the calling thread.
#ifndef KEXLIB_TEXT_APPLY_TO_FILES_H
#define KEXLIB_TEXT_APPLY_TO_FILES_H

#include <kexlib/export.h>

/// Walks through a folder and all folders in it; the base of classes that do something with the files.
class KEXLIB_API kexApplyToFiles {
 public:
  /// Ready to walk.
  kexApplyToFiles() = default;

  /// Copies the flag `stop`, and so do the assignment and the moves.
  kexApplyToFiles(const kexApplyToFiles&) = default;

  /// As the copy constructor.
  kexApplyToFiles& operator=(const kexApplyToFiles&) = default;

  /// As the copy constructor.
  kexApplyToFiles(kexApplyToFiles&&) = default;

  /// As the copy constructor.
  kexApplyToFiles& operator=(kexApplyToFiles&&) = default;

  /// Calls apply_to_file for each file in `directory` and below whose name matches `pattern`: wildcards * and ?,
  /// several patterns with semicolons between them, case-insensitive (PathMatchSpecA). "*.*" matches every
  /// name, with a dot or without. A pattern may be of any length. If `followShortcuts` is not 0, a shortcut (".lnk")
  /// that does not match itself is replaced by its target, if that is a file and its name matches; a target that is a
  /// folder is not walked.
  ///
  /// Returns an HRESULT: S_OK, also if the walk was stopped; E_INVALIDARG if the folder does not exist, its path is too
  /// long, or the pattern is null; otherwise the error of FindFirstFile or FindNextFile. A folder that cannot be walked
  /// ends the whole walk, after the files before it. Exceptions of the two members below propagate to the caller.
  /// Running out of memory throws MFC's memory exception.
  long Apply(const char* directory, const char* pattern, int followShortcuts);

 protected:
  /// Objects are not destroyed through this base.
  ~kexApplyToFiles() = default;

  /// Override it to exclude folders: return other than 0 to skip the folder at this full path. The default returns 0.
  virtual int ignore_directory(const char* const path);

 public:
  /// The operation on a file. `path` is its full path, a copy that may be modified.
  virtual void apply_to_file(char* path) = 0;

 protected:
  /// Set it to other than 0 in apply_to_file to end the walk. It is set to 0 at the start of the walk and of each
  /// folder.
  int stop = 0;

 private:
  long walk(const char* directory, const char* pattern, int followShortcuts);
};

#endif
