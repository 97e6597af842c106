#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>
#include <functional>

#include "console/recent_files.h"
#include "link/port_settings.h"

class QSettings;

namespace qv5123 {

/// How the window looked at the end of a run.
struct WindowLook {
  QByteArray geometry;  ///< empty where none was kept
  QByteArray docks;     ///< likewise
  QString page;         ///< by its name; empty for none
  int column = -1;      ///< a ColumnShape; -1 where the user chose none
  QVariantMap choices;  ///< of the pages, by "page/accessible name"
  QVariantMap folders;  ///< where choosers begin, by the kind of file
};

/// What the application remembers from run to run, in the system's store for it (the registry on Windows).
class AppSettings {
 public:
  explicit AppSettings(QSettings& store) : store_(store) {}

  /// Whether a port was ever stored; "PortNumber" is -1 where none was.
  bool has_port() const;
  /// The stored port settings, each with its default where it was never stored.
  PortSettings port() const;
  /// Stores everything but "Debug", which only a person sets.
  void store_port(const PortSettings& settings);
  /// Non-zero: the port dialog is not forced at the start.
  int debug() const;

  /// The setting files used last.
  RecentFiles recent_files() const;
  void store_recent_files(const RecentFiles& recent);

  /// How the window looked; what was never stored is as at the first start.
  WindowLook window_look() const;
  void store_window_look(const WindowLook& look);

  /// Whether the TDN modes have "Auto" as a fourth; off unless stored otherwise.
  bool fourth_tdn_mode() const;

  /// Whether pages are read back after their full saves; on unless stored otherwise.
  bool verify_saves() const;
  void store_verify_saves(bool on);

  /// Work that makes `change` in the same store and writes it through to the disk, through an object of its
  /// own: for another thread, since a disk may take its time. True when it is there; it is seen here as well.
  std::function<bool()> changing(std::function<void(AppSettings&)> change) const;

 private:
  QSettings& store_;
};

}  // namespace qv5123
