// Without the debugger's run-time library nothing is reported, and these calls do nothing.
#pragma once
#include_next <crtdbg.h>
#ifndef _CRTDBG_FILE_STDERR
#define _CRTDBG_FILE_STDERR ((void*)-5)
#endif
#ifndef _CrtSetReportFile
#define _CrtSetReportFile(kind, file) ((void*)0)
#endif
