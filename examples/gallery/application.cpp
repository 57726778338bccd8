#include <kexlib/framework.h>

#include <afxdisp.h>
#include <atlimage.h>

#include <gallery/application.h>
#include <gallery/frame.h>

#include <cstdio>
#include <thread>

namespace gallery {

namespace {

WTL::CAppModule application;

int refuse(const char* why) {
  std::fprintf(stderr, "gallery: %s\n", why);
  return cannot_start;
}

bool can_write_here() {
  const HANDLE file =
      CreateFileA("gallery.tmp", GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  return true;
}

// Passes the messages of this thread's loop to the frame while the object lives.
class InLoop {
 public:
  explicit InLoop(Frame* frame) : frame_(frame), loop_(application.GetMessageLoop()) {
    loop_->AddMessageFilter(frame_);
    loop_->AddIdleHandler(frame_);
  }
  InLoop(const InLoop&) = delete;
  InLoop& operator=(const InLoop&) = delete;
  ~InLoop() {
    loop_->RemoveIdleHandler(frame_);
    loop_->RemoveMessageFilter(frame_);
  }

 private:
  Frame* frame_;
  WTL::CMessageLoop* loop_;
};

int run_window(HINSTANCE texts, const std::function<bool(HWND frame)>& user) {
  Frame frame;
  WTL::CMessageLoop loop;
  application.AddMessageLoop(&loop);
  const InLoop in_loop(&frame);
  if (!frame.open(texts)) return refuse("there is no display to open a window on.");

  std::thread beside;
  if (user)
    beside = std::thread([&user, window = frame.m_hWnd] {
      if (!user(window)) ExitProcess(not_as_promised);
      PostMessageA(window, WM_CLOSE, 0, 0);
    });
  loop.Run();
  if (beside.joinable()) beside.join();
  application.RemoveMessageLoop();
  return as_promised;
}

}  // namespace

int run(const std::function<bool(HWND frame)>& user) {
  const HINSTANCE texts = LoadLibraryA("gallery_texts.dll");
  if (!texts) return refuse("gallery_texts.dll, which has its texts, is missing.");
  if (!can_write_here()) return refuse("the current folder cannot be written to.");

  OleInitialize(nullptr);
  application.Init(nullptr, GetModuleHandleA(nullptr));
  ATL::_AtlBaseModule.SetResourceInstance(application.GetModuleInstance());
  AfxSetResourceHandle(application.GetModuleInstance());
  const int status = run_window(texts, user);
  application.Term();
  ATL::CImage::ReleaseGDIPlus();  // while the library that may have started it is loaded
  OleUninitialize();
  FreeLibrary(texts);
  return status;
}

}  // namespace gallery
