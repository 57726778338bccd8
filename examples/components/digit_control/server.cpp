// The functions of digit_control.dll that COM calls.
#include <digit_control/digit_control.h>

STDAPI DllGetClassObject(REFCLSID id, REFIID wanted, void** object) {
  *object = nullptr;
  if (id != __uuidof(DigitControl)) return CLASS_E_CLASSNOTAVAILABLE;
  return in_process::give<in_process::Factory<DigitControlObject>>(wanted, object);
}

STDAPI DllCanUnloadNow() { return in_process::in_use == 0 ? S_OK : S_FALSE; }
