#include "base/ui/reading_note.h"

#include <utility>

namespace qv5123 {

QLabel* make_reading_note(std::function<void()> read) {
  auto* note = new QLabel;
  note->setObjectName("unread");
  note->hide();
  QObject::connect(note, &QLabel::linkActivated, note, [read = std::move(read)] { read(); });
  return note;
}

void show_reading_note(QLabel* note, const QString& text, const QString& why) {
  const bool offers = !why.isEmpty();
  note->setText(text + (offers ? ": <a href=\"load\">read it</a>" : ""));
  note->setToolTip(why);
  // A stop for the keyboard only while there is something to press.
  note->setTextInteractionFlags(offers ? Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard
                                       : Qt::NoTextInteraction);
  note->setFocusPolicy(offers ? Qt::StrongFocus : Qt::NoFocus);
  note->setVisible(!text.isEmpty());
}

}  // namespace qv5123
