#include "registers/ui/hex_edits.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QValidator>
#include <utility>

namespace qv5123 {
namespace {

constexpr int kFirstDigit = 2;  // behind "0x"

// Turns away what is no text of the edit's, such as a paste with the middle mouse button into the digits.
class HexTextOnly final : public QValidator {
 public:
  HexTextOnly(const HexEdit& model, QObject* parent) : QValidator(parent), model_(model) {}
  State validate(QString& input, int&) const override {
    const std::u16string text = input.toStdU16String();
    return text == model_.text() || model_.takes(text) ? Acceptable : Invalid;
  }

 private:
  const HexEdit& model_;
};

int code_of_text(const QKeyEvent& event) {
  const QString text = event.text();
  return text.size() == 1 && text[0].isPrint() ? text[0].unicode() : -1;
}

// What the model calls the key: its own code, else the character that it types.
int code_of(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Backspace:
      return key::kBackspace;
    case Qt::Key_Clear:
      return key::kClear;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return key::kEnter;
    case Qt::Key_PageDown:
      return key::kPageDown;
    case Qt::Key_End:
      return key::kEnd;
    case Qt::Key_Home:
      return key::kHome;
    case Qt::Key_Left:
      return key::kLeft;
    case Qt::Key_Up:
      return key::kUp;
    case Qt::Key_Right:
      return key::kRight;
    case Qt::Key_Down:
      return key::kDown;
    case Qt::Key_Delete:
      return key::kDelete;
    default:
      return code_of_text(event);
  }
}

}  // namespace

CMyHexEdit::CMyHexEdit(HexEdit model, QWidget* parent) : QLineEdit(parent), model_(std::move(model)) {
  setValidator(new HexTextOnly(model_, this));
  setAcceptDrops(false);
  setDragEnabled(false);
  setContextMenuPolicy(Qt::NoContextMenu);
  setAttribute(Qt::WA_InputMethodEnabled, false);
  show_model();
  setCursorPosition(kFirstDigit);
  connect(this, &QLineEdit::textChanged, this, &CMyHexEdit::take);
}

// What the edit shows by itself is the model's already.
void CMyHexEdit::take(const QString& text) {
  const std::u16string given = text.toStdU16String();
  const std::u16string before = model_.text();
  if (given == before) return;
  const bool taken = model_.take(given);
  show_model();
  setCursorPosition(kFirstDigit);
  if (taken && model_.text() != before) emit edited();
}

void CMyHexEdit::show_text(std::u16string_view text) {
  if (text == model_.text()) return;
  model_.set_text(text);
  show_model();
  setCursorPosition(kFirstDigit);
}

void CMyHexEdit::show_model() {
  setText(QString::fromStdU16String(model_.text()));
}

void CMyHexEdit::step(int direction) {
  const std::u16string before = model_.text();
  const int caret = cursorPosition();
  model_.step(direction);
  report_change(before);
  setCursorPosition(caret);
}

void CMyHexEdit::report_change(const std::u16string& before) {
  if (model_.text() == before) return;
  show_model();
  emit edited();
}

void CMyHexEdit::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return QLineEdit::keyPressEvent(event);
  if (event->matches(QKeySequence::Paste)) return take(QGuiApplication::clipboard()->text());
  // The page's, which takes back changes of the bits as well.
  if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo)) return event->ignore();
  const std::u16string before = model_.text();
  const int caret = hasSelectedText() ? selectionStart() : cursorPosition();
  const HexEdit::KeyResult result = model_.press(code_of(*event), caret);
  if (result == HexEdit::KeyResult::standard) return QLineEdit::keyPressEvent(event);
  // What is no text and means nothing here may mean something to the window.
  event->setAccepted(result != HexEdit::KeyResult::ignored || code_of(*event) >= 0);
  if (result == HexEdit::KeyResult::ignored) return;
  report_change(before);
  deselect();
  setCursorPosition(model_.caret());
  if (result == HexEdit::KeyResult::enter) emit enter_pressed();
}

// All selected would put the caret before the prefix, where no digit is taken.
void CMyHexEdit::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason) return;
  deselect();
  setCursorPosition(kFirstDigit);
}

}  // namespace qv5123
