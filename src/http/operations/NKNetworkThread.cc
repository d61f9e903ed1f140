#include "http/operations/NKNetworkThread.h"

#include <pthread.h>

namespace quillet::http {

NKNetworkThread& NKNetworkThread::shared() {
  static NKNetworkThread* thread = new NKNetworkThread();
  return *thread;
}

NKNetworkThread::NKNetworkThread()
    : loop_(std::make_shared<platform::RunLoop>()),
      queue_(platform::DispatchQueue::forRunLoop(loop_, kName)),
      session_(std::make_unique<platform::HttpSession>()) {
  thread_ = std::thread([loop = loop_] {
    pthread_setname_np(pthread_self(), kName);
    loop->run();
  });
  thread_.detach();
}

}  // namespace quillet::http
