#pragma once

#include <gtest/gtest.h>

#include <QWidget>
#include <filesystem>
#include <string>

namespace qv5123::test {

/// A new folder that is the current one for the time of a test.
class CurrentFolder {
 public:
  CurrentFolder() : before_(std::filesystem::current_path()) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("qv5123_") + test->test_suite_name() + "_" + test->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    std::filesystem::current_path(folder_);
  }
  ~CurrentFolder() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }
  std::filesystem::path operator/(const std::string& name) const { return folder_ / name; }

 private:
  std::filesystem::path before_;
  std::filesystem::path folder_;
};

/// The page's one child of this type and accessible name.
template <class Widget>
Widget* find(const QWidget& page, const QString& name) {
  Widget* found = nullptr;
  for (auto* widget : page.findChildren<Widget*>()) {
    if (widget->accessibleName() != name) continue;
    EXPECT_EQ(found, nullptr) << name.toStdString() << " is not unique";
    found = widget;
  }
  EXPECT_NE(found, nullptr) << name.toStdString();
  return found;
}

}  // namespace qv5123::test
