#include <afx.h>

CObject* CRuntimeClass::CreateObject() { return m_pfnCreateObject ? m_pfnCreateObject() : nullptr; }

const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetThisClass() { return const_cast<CRuntimeClass*>(&classCObject); }

CRuntimeClass* CObject::GetRuntimeClass() const { return GetThisClass(); }
