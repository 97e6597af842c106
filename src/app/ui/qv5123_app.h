#pragma once

#include <QApplication>

namespace qv5123 {

/// The application: under these names its settings are stored.
class CQV5123App final : public QApplication {
 public:
  CQV5123App(int& argc, char** argv);

  static constexpr const char* kOrganization = "Kestrova";
  static constexpr const char* kName = "QV5123";
};

}  // namespace qv5123
