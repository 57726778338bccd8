// Variables that each thread has for itself: the directory in which the loader finds them.
#include <windows.h>

extern "C" {

unsigned long _tls_index = 0;

// The variables lie between these two.
#pragma data_seg(".tls")
char _tls_start = 0;
#pragma data_seg(".tls$ZZZ")
char _tls_end = 0;
#pragma data_seg()

#pragma section(".CRT$XLA", long, read)
#pragma section(".CRT$XLZ", long, read)
#pragma section(".rdata$T", long, read)
__declspec(allocate(".CRT$XLA")) PIMAGE_TLS_CALLBACK first_callback = nullptr;
__declspec(allocate(".CRT$XLZ")) PIMAGE_TLS_CALLBACK last_callback = nullptr;

extern const IMAGE_TLS_DIRECTORY64 _tls_used;
__declspec(allocate(".rdata$T")) const IMAGE_TLS_DIRECTORY64 _tls_used = {
    (ULONGLONG)&_tls_start, (ULONGLONG)&_tls_end, (ULONGLONG)&_tls_index, (ULONGLONG)(&first_callback + 1), 0, {0}};
}
