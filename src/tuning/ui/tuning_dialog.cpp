#include "tuning/ui/tuning_dialog.h"

#include <QEvent>

#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "base/ui/reading_note.h"

namespace qv5123 {
namespace {

/// The file in use may have become another one since the page was made.
class FreshTip final : public QObject {
 public:
  FreshTip(QPushButton* button, std::function<QString()> tip) : QObject(button), tip_(std::move(tip)) {
    button->installEventFilter(this);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ToolTip || event->type() == QEvent::FocusIn)
      static_cast<QWidget*>(watched)->setToolTip(tip_());
    return false;
  }

 private:
  const std::function<QString()> tip_;
};

QPushButton* save_button(const QWidget& page) {
  for (auto* button : page.findChildren<QPushButton*>())
    if (button->property(kCommand).toByteArray() == kSaveCommand) return button;
  return nullptr;
}

}  // namespace

QString TuningDialog::save_tip(SavedFile file) {
  saved_file_ = file;
  return plain_tool_tip(
      to_qt(qv5123::save_tip(tuning_desk_.model().fields(), file, host_.document().setting_file)));
}

void TuningDialog::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  QPushButton* save = tip_is_fresh_ ? nullptr : save_button(*this);
  if (!save) return;
  tip_is_fresh_ = true;
  new FreshTip(save, [this] { return save_tip(saved_file_); });
}

QLabel* TuningDialog::make_unread_note() {
  QLabel* note = make_reading_note([this] { tuning_desk_.start_load(); });
  QSizePolicy place = note->sizePolicy();
  place.setRetainSizeWhenHidden(true);
  note->setSizePolicy(place);
  tuning_desk_.tell_unread([note](const std::string& text) {
    const char* why = text == kOlderThanChip
                          ? "The chip was reset since the page was read; the page shows what it had before"
                          : "";
    show_reading_note(note, to_qt(text), why);
  });
  return note;
}

}  // namespace qv5123
