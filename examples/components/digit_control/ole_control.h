// The OLE interfaces for the host of a control that has a window while it is active.
#ifndef EXAMPLES_COMPONENTS_DIGIT_CONTROL_OLE_CONTROL_H
#define EXAMPLES_COMPONENTS_DIGIT_CONTROL_OLE_CONTROL_H

#include <atlbase.h>
#include <atlwin.h>
#include <ocidl.h>
#include <oleidl.h>

class OleControl : public IOleObject, public IOleInPlaceObject, public IViewObject2 {
 public:
  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override { return site_.CopyTo(site); }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP Close(DWORD) override { return InPlaceDeactivate(); }
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT place) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
  STDMETHODIMP Update() override { return S_OK; }
  STDMETHODIMP IsUpToDate() override { return S_OK; }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP Advise(IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP Unadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override { return S_OK; }
  STDMETHODIMP SetObjectRects(LPCRECT place, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override { return E_NOTIMPL; }

  STDMETHODIMP Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc, LPCRECTL bounds, LPCRECTL,
                    BOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) override;
  STDMETHODIMP GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE**) override { return E_NOTIMPL; }
  STDMETHODIMP Freeze(DWORD, LONG, void*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP Unfreeze(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP SetAdvise(DWORD, DWORD, IAdviseSink*) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP GetAdvise(DWORD*, DWORD*, IAdviseSink**) override { return OLE_E_ADVISENOTSUPPORTED; }
  STDMETHODIMP GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, SIZEL* size) override { return GetExtent(aspect, size); }

 protected:
  OleControl() = default;
  ~OleControl() { OleControl::InPlaceDeactivate(); }

  // The control's natural size, in pixels, and whether it keeps that size and ignores the host's.
  virtual SIZE natural_size() const = 0;
  virtual bool keeps_natural_size() const = 0;
  virtual void paint(HDC dc, const RECT& place) const = 0;
  virtual void activated() = 0;  // the window was created
  virtual void tick() = 0;       // of the window's timer

  class Window : public CWindowImpl<Window, CWindow, CControlWinTraits> {
   public:
    explicit Window(OleControl& owner) : owner_(owner) {}
    DECLARE_WND_CLASS("DigitControlWindow")
    BEGIN_MSG_MAP(Window)
      MESSAGE_HANDLER(WM_PAINT, on_paint)
      MESSAGE_HANDLER(WM_ERASEBKGND, on_erase)
      MESSAGE_HANDLER(WM_TIMER, on_timer)
    END_MSG_MAP()

   private:
    LRESULT on_paint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT on_erase(UINT, WPARAM, LPARAM, BOOL&) { return TRUE; }  // painting covers the whole client area
    LRESULT on_timer(UINT, WPARAM, LPARAM, BOOL&);

    OleControl& owner_;
  };

  CComPtr<IOleClientSite> site_;
  Window window_{*this};
  SIZEL extent_ = {0, 0};  // set by the host, in hundredths of a millimetre; 0: not set
};

#endif
