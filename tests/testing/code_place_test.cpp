#include <gtest/gtest.h>

#include <kexlib/testing/code_place.h>

#include <string>

namespace {

using kexlib::testing::code_place;
using kexlib::testing::is_code_of_the_system;
using kexlib::testing::module_of;

constexpr int line_of_the_function = __LINE__ + 1;
int function_of_the_test() { return 17; }

const void* address_of_the_test() { return reinterpret_cast<const void*>(&function_of_the_test); }

const void* address_of_the_system() {
  return reinterpret_cast<const void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "GetTickCount"));
}

TEST(TestingCodePlace, KnowsTheModule) {
  EXPECT_EQ(module_of(address_of_the_test()), GetModuleHandleA(nullptr));
  EXPECT_EQ(module_of(address_of_the_system()), GetModuleHandleA("kernel32.dll"));
  int local = 0;
  EXPECT_EQ(module_of(&local), nullptr);
}

TEST(TestingCodePlace, TellsTheSystemsCode) {
  int local = 0;
  EXPECT_TRUE(is_code_of_the_system(address_of_the_system()));
  EXPECT_FALSE(is_code_of_the_system(address_of_the_test()));
  EXPECT_FALSE(is_code_of_the_system(&local));
}

TEST(TestingCodePlace, NamesModuleAndOffset) {
  EXPECT_EQ(code_place(GetModuleHandleA("kernel32.dll")).substr(0, 15), "kernel32.dll+0x");
  const auto offset =
      static_cast<const char*>(address_of_the_test()) - reinterpret_cast<char*>(GetModuleHandleA(nullptr));
  char begin[60];
  std::snprintf(begin, sizeof begin, "testing_tests.exe+0x%llx ", static_cast<unsigned long long>(offset));
  EXPECT_EQ(code_place(address_of_the_test()).substr(0, std::strlen(begin)), begin);
}

// The tests' programs have debug information.
TEST(TestingCodePlace, NamesFunctionAndLine) {
  const std::string place = code_place(address_of_the_test());
  EXPECT_NE(place.find("function_of_the_test"), std::string::npos) << place;
  EXPECT_NE(place.find("code_place_test.cpp:" + std::to_string(line_of_the_function)), std::string::npos) << place;
}

TEST(TestingCodePlace, GivesANumberOutsideModules) {
  int local = 0;
  char number[30];
  std::snprintf(number, sizeof number, "%p", static_cast<void*>(&local));
  EXPECT_EQ(code_place(&local), number);
}

}  // namespace
