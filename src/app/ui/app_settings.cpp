#include "app/ui/app_settings.h"

#include <QSettings>
#include <utility>

#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

constexpr const char* kFourthTdnModeKey = "FourthTdnMode";
constexpr const char* kVerifySavesKey = "VerifySaves";
constexpr const char* kWindowGeometryKey = "Window/Geometry";
constexpr const char* kWindowDocksKey = "Window/Docks";
constexpr const char* kWindowPageKey = "Window/Page";
constexpr const char* kWindowColumnKey = "Window/Column";
constexpr const char* kWindowChoicesKey = "Window/Choices";
constexpr const char* kWindowFoldersKey = "Window/Folders";

QString recent_key(std::size_t position) {
  return QStringLiteral("RecentFiles/File%1").arg(position + 1);
}

QString key_of(const std::string& name) {
  return QString::fromLatin1(kPortSection) + u'/' + to_qt(name);
}

}  // namespace

bool AppSettings::has_port() const {
  return store_.value(key_of(kPortNumberKey), -1).toLongLong() != -1;
}

PortSettings AppSettings::port() const {
  StoredNumbers numbers = stored_numbers(PortSettings{});
  numbers[kDebugKey] = 0;
  StoredNumbers stored;
  for (const auto& [name, unused] : numbers) {
    bool is_number = false;
    const long long value = store_.value(key_of(name)).toLongLong(&is_number);
    if (is_number) stored[name] = value;
  }
  return port_settings_from(stored, from_qt(store_.value(key_of(kPortDeviceKey)).toString()),
                            from_qt(store_.value(key_of(kPortDescriptionKey)).toString()));
}

void AppSettings::store_port(const PortSettings& settings) {
  for (const auto& [name, value] : stored_numbers(settings)) {
    // As 32 bits, which is how the registry keeps integers.
    store_.setValue(key_of(name), static_cast<int>(value));
  }
  store_.setValue(key_of(kPortDeviceKey), to_qt(settings.device));
  store_.setValue(key_of(kPortDescriptionKey), to_qt(settings.description));
}

int AppSettings::debug() const {
  return store_.value(key_of(kDebugKey), 0).toInt();
}

RecentFiles AppSettings::recent_files() const {
  std::vector<std::filesystem::path> files;
  for (std::size_t i = 0; i < RecentFiles::kLimit; ++i) {
    files.push_back(to_path(store_.value(recent_key(i)).toString()));
  }
  return RecentFiles(files);
}

void AppSettings::store_recent_files(const RecentFiles& recent) {
  for (std::size_t i = 0; i < recent.files().size(); ++i) {
    store_.setValue(recent_key(i), path_to_qt(recent.files()[i]));
  }
}

WindowLook AppSettings::window_look() const {
  WindowLook look;
  look.geometry = store_.value(kWindowGeometryKey).toByteArray();
  look.docks = store_.value(kWindowDocksKey).toByteArray();
  look.page = store_.value(kWindowPageKey).toString();
  look.column = store_.value(kWindowColumnKey, look.column).toInt();
  look.choices = store_.value(kWindowChoicesKey).toMap();
  look.folders = store_.value(kWindowFoldersKey).toMap();
  return look;
}

void AppSettings::store_window_look(const WindowLook& look) {
  store_.setValue(kWindowGeometryKey, look.geometry);
  store_.setValue(kWindowDocksKey, look.docks);
  store_.setValue(kWindowPageKey, look.page);
  store_.setValue(kWindowColumnKey, look.column);
  store_.setValue(kWindowChoicesKey, look.choices);
  store_.setValue(kWindowFoldersKey, look.folders);
}

bool AppSettings::fourth_tdn_mode() const {
  return store_.value(kFourthTdnModeKey, false).toBool();
}

bool AppSettings::verify_saves() const {
  return store_.value(kVerifySavesKey, true).toBool();
}

void AppSettings::store_verify_saves(bool on) {
  store_.setValue(kVerifySavesKey, on);
}

std::function<bool()> AppSettings::changing(std::function<void(AppSettings&)> change) const {
  return [name = store_.fileName(), format = store_.format(), change = std::move(change)] {
    QSettings store(name, format);
    AppSettings settings(store);
    change(settings);
    store.sync();
    return store.status() == QSettings::NoError;
  };
}

}  // namespace qv5123
