#include <afxdisp.h>

namespace ATL {

void AtlThrowImpl(HRESULT result) {
  if (result == E_OUTOFMEMORY) AfxThrowMemoryException();
  AfxThrowOleException(result);
}

}  // namespace ATL
