// The core of MFC: objects that know their class, exceptions, files and archives.
//
// Exceptions are thrown by pointer and deleted by whoever catches them:
//
//     try {
//       archive >> value;
//     } catch (CArchiveException* exception) {
//       exception->Delete();
//     }
#ifndef FRAMEWORK_AFX_H
#define FRAMEWORK_AFX_H

#include <atlstr.h>

#include <kexframework/export.h>

class CObject;

// What the framework knows of a class made with DECLARE_DYNCREATE.
struct CRuntimeClass {
  LPCSTR m_lpszClassName;
  int m_nObjectSize;
  UINT m_wSchema;
  CObject* (*m_pfnCreateObject)();        // null where the class cannot be made dynamically
  CRuntimeClass* (*m_pfnGetBaseClass)();  // null at the root

  // A default-constructed object, owned by the caller; null where the class cannot be made.
  KEXFRAMEWORK_API CObject* CreateObject();
};

// The root of MFC's classes.
class KEXFRAMEWORK_API CObject {
 public:
  CObject() = default;
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;
  virtual ~CObject();

  virtual CRuntimeClass* GetRuntimeClass() const;

  static CRuntimeClass* GetThisClass();
  static const CRuntimeClass classCObject;
};

// In the class: its record, and how to get at it.
#define DECLARE_DYNAMIC(class_name)             \
 protected:                                     \
  static CRuntimeClass* _GetBaseClass();        \
                                                \
 public:                                        \
  static const CRuntimeClass class##class_name; \
  static CRuntimeClass* GetThisClass();         \
  CRuntimeClass* GetRuntimeClass() const override;
// The same, and how to make an object.
#define DECLARE_DYNCREATE(class_name) \
  DECLARE_DYNAMIC(class_name)         \
  static CObject* CreateObject();

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

// Nothing reads or writes objects of the class by its schema number: 0xFFFF says so.
#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, creator)                                   \
  CRuntimeClass* class_name::_GetBaseClass() { return RUNTIME_CLASS(base_class_name); }                        \
  const CRuntimeClass class_name::class##class_name = {#class_name, sizeof(class class_name), schema, creator, \
                                                       &class_name::_GetBaseClass};                            \
  CRuntimeClass* class_name::GetThisClass() { return const_cast<CRuntimeClass*>(&class##class_name); }         \
  CRuntimeClass* class_name::GetRuntimeClass() const { return GetThisClass(); }
#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
  IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)
#define IMPLEMENT_DYNCREATE(class_name, base_class_name)         \
  CObject* class_name::CreateObject() { return new class_name; } \
  IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

// An error on its way to whoever can deal with it.
class KEXFRAMEWORK_API CException : public CObject {
 public:
  // autoDelete: Delete() frees the object, as is right for one made with new.
  explicit CException(bool autoDelete = true);
  ~CException() override;

  // Called by whoever caught the exception and does not throw it on.
  void Delete();

  // The error in words, cut to `room` characters with the terminator. FALSE, and an empty text, where there are none.
  virtual BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const;

 private:
  bool m_bAutoDelete;
};

// No memory is left. There is one object of it, since none could be made.
class KEXFRAMEWORK_API CMemoryException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// A function was called with an argument that it does not take.
class KEXFRAMEWORK_API CInvalidArgException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowMemoryException();
[[noreturn]] KEXFRAMEWORK_API void AfxThrowInvalidArgException();

#endif
