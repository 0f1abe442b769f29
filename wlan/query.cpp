// query.cpp - one question to the wireless daemon and its answer.
#include "wlan/query.h"

#include "frame/log.h"

namespace velk {
namespace {

// Tells the daemon when the reply socket exists; removed on every path.
class ReadySemaphore {
  public:
    ReadySemaphore() : handle_(CreatSemaphore()) {}
    ~ReadySemaphore() { DeleteSemaphore(handle_); }
    ReadySemaphore(const ReadySemaphore&) = delete;
    ReadySemaphore& operator=(const ReadySemaphore&) = delete;

    const sem_t* handle() const { return handle_; }

  private:
    const sem_t* const handle_;
};

}  // namespace

int QueryWlanDaemon(short type, UMsgData& out) {
    const ReadySemaphore ready;
    if (ready.handle() == nullptr) {
        Log("SendWlanRequestMessage CreatSemaphore");
    }
    const int sent = SendWlanRequestMessage(type, nullptr);
    if (sent != LIB_VELK_SUCCESS) {
        return sent;
    }
    return RecvWlanResponseMessage(out, ready.handle());
}

}  // namespace velk
