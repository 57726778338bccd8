// Calls a function whenever a font object changes.
#ifndef EXAMPLES_COMPONENTS_DIGIT_CONTROL_FONT_WATCH_H
#define EXAMPLES_COMPONENTS_DIGIT_CONTROL_FONT_WATCH_H

#include <atlbase.h>
#include <in_process_server.h>
#include <ocidl.h>

#include <functional>

class FontWatch {
 public:
  explicit FontWatch(std::function<void()> changed) : changed_(std::move(changed)) {}
  FontWatch(const FontWatch&) = delete;
  FontWatch& operator=(const FontWatch&) = delete;
  ~FontWatch() { stop(); }

  void start(IUnknown* font) {
    stop();
    CComQIPtr<IConnectionPointContainer> points(font);
    if (!points || FAILED(points->FindConnectionPoint(IID_IPropertyNotifySink, &point_))) return;
    // A separate object: the font may outlive the watch, and must not hold a reference to the watch's owner.
    sink_.Attach(new Sink(this));
    if (FAILED(point_->Advise(sink_, &cookie_))) stop();
  }
  void stop() {
    if (sink_) sink_->watch = nullptr;
    if (point_ && cookie_) point_->Unadvise(cookie_);
    cookie_ = 0;
    point_.Release();
    sink_.Release();
  }

 private:
  class Sink : public in_process::Counted<IPropertyNotifySink> {
   public:
    explicit Sink(FontWatch* owner) : watch(owner) {}
    STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
      *object = wanted == IID_IUnknown || wanted == IID_IPropertyNotifySink ? this : nullptr;
      if (!*object) return E_NOINTERFACE;
      AddRef();
      return S_OK;
    }
    STDMETHODIMP OnChanged(DISPID) override {
      if (watch) watch->changed_();
      return S_OK;
    }
    STDMETHODIMP OnRequestEdit(DISPID) override { return S_OK; }

    FontWatch* watch;
  };

  std::function<void()> changed_;
  CComPtr<IConnectionPoint> point_;
  CComPtr<Sink> sink_;
  DWORD cookie_ = 0;
};

#endif
