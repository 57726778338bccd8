// The common parts of the tests of registration-free COM: the unregistered server, and texts of identifiers.
#ifndef TESTS_COM_REGISTRATION_FREE_FIXTURE_H
#define TESTS_COM_REGISTRATION_FREE_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/com/registration_free.h>

#include <atlbase.h>
#include <shapes.h>

#include <support/files.h>

#include <set>
#include <string>
#include <vector>

namespace registration_free {

const CLSID unknown_class = {0x12345678, 0x94C3, 0x4E17, {0x8A, 0x55, 0, 0, 0, 0, 0, 1}};

inline std::string components() { return (program_folder() / "components").string(); }

inline std::string manifest() { return reg_free_manifest_path(components().c_str(), "com_server.dll"); }

class Com {
 public:
  explicit Com(DWORD model = COINIT_APARTMENTTHREADED) { EXPECT_EQ(CoInitializeEx(nullptr, model), S_OK); }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  ~Com() { CoUninitialize(); }
};

inline std::string text_of(const GUID& id) {
  wchar_t text[39];
  StringFromGUID2(id, text, 39);
  return std::string(CStringA(text));
}

inline std::vector<std::string> texts_of(const std::set<GUID, kexLessGUID>& ids) {
  std::vector<std::string> texts;
  for (const GUID& id : ids) texts.push_back(text_of(id));
  return texts;
}

}  // namespace registration_free

#endif
