#include "base/background.h"

namespace qv5123 {

void BackgroundThread::start(std::function<Finish()> work) {
  thread_.run([this, work = std::move(work)]() mutable {
    Finish finish = work();
    // What the work holds goes before anybody is told that it is over.
    work = nullptr;
    scheduler_.post(std::move(finish));
  });
}

}  // namespace qv5123
