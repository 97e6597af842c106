#include "app/ui/session_end.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <utility>

#include "app/ui/process.h"

namespace qv5123 {

// Within the signal, since the session may go on as soon as it is over.
void end_with_session(QObject& owner, std::function<void()> end) {
  QObject::connect(
      qGuiApp, &QGuiApplication::commitDataRequest, &owner,
      [end = std::move(end)](QSessionManager& session) {
        hold_session_end(session);
        end();
      },
      Qt::DirectConnection);
}

}  // namespace qv5123
