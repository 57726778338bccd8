// Apply to files: an operation on every file below a folder whose name matches a pattern.
//
//     class CountSources final : public kexApplyToFiles {
//      public:
//       int count = 0;
//       void apply_to_file(char* path) override {
//         if (++count == 1000) stop = 1;                              // that is enough
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
// The order is that of the file system; a folder is walked when it is met, between the files before and after it.
//
// Limits. A folder is walked if its path is shorter than 256 characters; a longer one ends the walk. Folders that are
// links to others (junctions) are walked like others, so one that leads back up is walked until its path is too long:
// veto it in ignore_directory. Give the root as a full path: of a relative one with ".." in it, PathAppend may make the
// root of the drive. Paths are in the ANSI code page.
//
// Threads. One walk at a time on an object. To follow shortcuts, the calling thread has to have COM initialised.
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
  /// several patterns with semicolons between them, letter case does not count (PathMatchSpecA). "*.*" matches every
  /// name, with a dot or without. With `followShortcuts` other than 0, a shortcut (".lnk") that does not match itself
  /// stands for its target, if that is a file and its name matches; a target that is a folder is not walked.
  ///
  /// Returns an HRESULT: S_OK, also where the walk was stopped; E_INVALIDARG where there is no such folder, its path is
  /// too long, or the pattern is null; otherwise the system's error in searching (FindFirstFile). A folder that cannot
  /// be walked ends the whole walk; files before it have been handled. Exceptions of the two members below pass
  /// through.
  long Apply(const char* directory, const char* pattern, int followShortcuts);

 protected:
  /// Objects are not destroyed through this base.
  ~kexApplyToFiles() = default;

  /// May keep the walk out of a folder, which is given by its full path: other than 0 keeps it out. To be overridden;
  /// as it is, every folder is walked.
  virtual int ignore_directory(const char* const path);

 public:
  /// The operation on a file, which is given by its full path, a copy that may be written to.
  virtual void apply_to_file(char* path) = 0;

 protected:
  /// Set to other than 0 by apply_to_file, it ends the walk. It is 0 at the start of the walk and whenever a folder is
  /// entered.
  int stop = 0;

 private:
  long walk(const char* directory, const char* pattern, int followShortcuts);
};

#endif
