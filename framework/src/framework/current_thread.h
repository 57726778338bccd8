// The thread object that AfxGetThread gives.
#ifndef FRAMEWORK_CURRENT_THREAD_H
#define FRAMEWORK_CURRENT_THREAD_H

class CWinThread;

namespace framework {

// The object of the calling thread; null if there is none.
void set_current_thread(CWinThread* thread);

}  // namespace framework

#endif
