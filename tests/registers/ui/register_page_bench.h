#pragma once

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include "registers/answering_chip.h"
#include "registers/ui/dlg_isp_register.h"
#include "registers/ui/multiline_list.h"
#include "support/fake_page_host.h"
#include "support/page_driver.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

inline std::string utf16_bytes(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t c : text) {
    if (c == u'\n') bytes += std::string("\r\0", 2);
    bytes += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
  }
  return bytes;
}

/// The register page on a chip that answers, driven as a user does.
class RegisterPageTest : public testing::Test {
 protected:
  RegisterPageTest() { chip_.values = {{0x800, 0xA5}, {0x801, 0x3C}, {0x0A5, 0x51}, {0xA20, 0x07}}; }

  void open(std::u16string_view description = kSampleDescription) {
    folder_.write("regu.xml", utf16_bytes(description));
    page_ = std::make_unique<CDlgIspRegister>(host_);
    page_->resize(880, 640);
    page_->show();
    page_->activateWindow();
    QCoreApplication::processEvents();
  }
  void open_and_read() {
    open();
    wire_.advance(200);
  }
  template <class Widget = QWidget>
  Widget* find(const char* name) {
    return qv5123::test::find<Widget>(*page_, QLatin1String(name));
  }
  void click(const char* name) { QTest::mouseClick(find(name), Qt::LeftButton); }
  std::string text(const char* edit) { return find<QLineEdit>(edit)->text().toStdString(); }
  QTableView* list() { return find<QTableView>("Registers"); }
  std::string cell(int row, int column) {
    return list()->model()->index(row, column).data().toString().toStdString();
  }
  void click_row(int row) {
    const QRect place = list()->visualRect(list()->model()->index(row, 1));
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place.center());
  }
  std::vector<std::string> fields(int row) {
    std::vector<std::string> texts;
    for (int c = 0; c < 5; ++c)
      texts.push_back(find<CMultilineList>("Bit fields")->cell_text(c, row).toStdString());
    return texts;
  }

  CurrentFolder folder_;
  FakeWire wire_;
  AnsweringChip chip_{wire_};
  FakePageHost host_{wire_};
  std::unique_ptr<CDlgIspRegister> page_;
};

}  // namespace qv5123::test
