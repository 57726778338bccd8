// A program that counts the handles of its process for some seconds. The exit status is 0 if they stay as many.
#include <kexlib/testing/resource_balance.h>

#include <windows.h>

int main() {
  const int handles = kexlib::testing::count_kernel_handles();
  for (const ULONGLONG start = GetTickCount64(); GetTickCount64() < start + 3000;)
    if (kexlib::testing::count_kernel_handles() != handles) return 1;
  return 0;
}
