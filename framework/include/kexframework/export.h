// Exports of kexframework.dll: the process-wide state of the framework, and the classes that must be the same in every
// module, such as exceptions.
#ifndef FRAMEWORK_EXPORT_H
#define FRAMEWORK_EXPORT_H

#if defined(KEXFRAMEWORK_EXPORTS)
#define KEXFRAMEWORK_API __declspec(dllexport)
#else
#define KEXFRAMEWORK_API __declspec(dllimport)
#endif

#if defined(UNICODE) || defined(_UNICODE)
#error "This framework is the narrow build: TCHAR is char."
#endif

#endif
