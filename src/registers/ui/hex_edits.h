#pragma once

#include <QLineEdit>
#include <string_view>

#include "registers/hex_edit.h"

namespace qv5123 {

/// A line edit that shows a HexEdit: every key goes through it, so the text always is "0x" and its digits. A
/// text that comes as a whole, pasted or set by a screen reader, is taken or refused as a whole.
class CMyHexEdit : public QLineEdit {
  Q_OBJECT

 public:
  /// Shows a text without reporting it as edited.
  void show_text(std::u16string_view text);
  const HexEdit& model() const { return model_; }

 public slots:
  /// One step up (1) or down (-1).
  void step(int direction);

 signals:
  /// The user changed the text.
  void edited();
  /// The user pressed Enter where it means something to the page.
  void enter_pressed();

 protected:
  CMyHexEdit(HexEdit model, QWidget* parent);
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  void show_model();
  void take(const QString& text);
  void report_change(const std::u16string& before);

  HexEdit model_;
};

/// The value: two digits.
class CMyEditValue final : public CMyHexEdit {
  Q_OBJECT

 public:
  explicit CMyEditValue(QWidget* parent = nullptr) : CMyHexEdit(HexEdit::value_edit(), parent) {}
};

/// The address: four digits, and Enter reads.
class CMyEditAddress final : public CMyHexEdit {
  Q_OBJECT

 public:
  explicit CMyEditAddress(QWidget* parent = nullptr) : CMyHexEdit(HexEdit::address_edit(), parent) {}
};

}  // namespace qv5123
