#include <afxdisp.h>

namespace ATL {

void AtlThrow(HRESULT result) {
  if (result == E_OUTOFMEMORY) AfxThrowMemoryException();
  AfxThrowOleException(result);
}

}  // namespace ATL
