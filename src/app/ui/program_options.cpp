#include "app/ui/program_options.h"

#include <QCommandLineParser>
#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/ui/qt_text.h"
#include "link/line_options.h"

namespace qv5123 {
namespace {

constexpr int kBadUsage = 2;
constexpr int kLargestSide = 16384;

EndAtOnce complaint(const QString& text) {
  return {QStringLiteral("QV5123: %1").arg(text.simplified()), kBadUsage};
}

/// What is wrong with the options; empty when nothing is.
QString line_fault(const QCommandLineParser& parser) {
  LineSettings line;
  for (const LineOption& option : kLineOptions) {
    if (!parser.isSet(option.name)) continue;
    if (!parser.isSet("port")) return QStringLiteral("Option --%1 needs --port.").arg(option.name);
    const std::string fault = take_line_option(option.name, from_qt(parser.value(option.name)), line);
    if (!fault.empty()) return to_qt(fault);
  }
  return {};
}

/// "1280x800"; nothing for what is no size.
std::optional<QSize> size_from(const QString& text) {
  static const QRegularExpression kForm("^(\\d{1,5})x(\\d{1,5})$");
  const QRegularExpressionMatch match = kForm.match(text);
  const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
  if (size.isEmpty() || size.width() > kLargestSide || size.height() > kLargestSide) return std::nullopt;
  return size;
}

/// What is wrong with the tour's options; empty when nothing is.
QString tour_fault(const QCommandLineParser& parser) {
  for (const char* name : {"size", "check-layout"}) {
    if (parser.isSet(name) && !parser.isSet("tour"))
      return QStringLiteral("Option --%1 needs --tour.").arg(QLatin1String(name));
  }
  if (parser.isSet("size") && !size_from(parser.value("size")))
    return QStringLiteral("'%1' is no size such as 1280x800.").arg(parser.value("size"));
  const QString folder = parser.value("tour");
  if (parser.isSet("tour") && !QDir().mkpath(folder))
    return QStringLiteral("Folder '%1' cannot be made.").arg(folder);
  return {};
}

/// The same of all options.
QString fault_of(const QCommandLineParser& parser) {
  if (!parser.positionalArguments().isEmpty()) {
    return QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first());
  }
  if (parser.isSet("simulate") && parser.isSet("port")) {
    return QStringLiteral("Options --simulate and --port exclude each other.");
  }
  if (parser.isSet("scene") && parser.isSet("port")) {
    return QStringLiteral("Options --scene and --port exclude each other.");
  }
  if (parser.isSet("scene") && !parser.isSet("simulate") && !parser.isSet("tour")) {
    return QStringLiteral("Option --scene needs --simulate.");
  }
  for (const char* name : {"port", "settings", "tour", "trace"}) {
    if (parser.isSet(name) && parser.value(name).isEmpty()) {
      return QStringLiteral("Option --%1 is empty.").arg(QLatin1String(name));
    }
  }
  const QString file = parser.value("settings");
  std::error_code error;
  if (parser.isSet("settings") && !std::filesystem::is_regular_file(to_path(file), error)) {
    return QStringLiteral("Setting file '%1' does not exist.").arg(file);
  }
  if (parser.isSet("settings") && !std::ifstream(to_path(file))) {
    return QStringLiteral("Setting file '%1' cannot be read.").arg(file);
  }
  const QString fault = tour_fault(parser);
  return fault.isEmpty() ? line_fault(parser) : fault;
}

ProgramOptions options_of(const QCommandLineParser& parser) {
  ProgramOptions options;
  if (parser.isSet("port")) options.port = from_qt(parser.value("port"));
  for (const LineOption& option : kLineOptions) {
    if (parser.isSet(option.name))
      take_line_option(option.name, from_qt(parser.value(option.name)), options.line);
  }
  if (parser.isSet("scene")) options.scene = from_qt(parser.value("scene"));
  if (parser.isSet("settings")) options.setting_file = to_path(parser.value("settings"));
  if (parser.isSet("tour")) options.tour = to_path(parser.value("tour"));
  if (parser.isSet("trace")) options.trace = to_path(parser.value("trace"));
  options.tour_size = size_from(parser.value("size")).value_or(options.tour_size);
  options.check_layout = parser.isSet("check-layout");
  options.dark = parser.isSet("dark");
  options.simulate = parser.isSet("simulate") || (options.tour && !options.port);
  return options;
}

/// What the application object takes by itself, with one dash or two.
constexpr const char* kToolkitFlags[] = {"reverse", "widgetcount", "nograb", "dograb"};
/// The same with a value, which follows or stands behind "=".
constexpr const char* kToolkitValues[] = {
    "platform", "platformpluginpath", "platformtheme", "plugin", "style",        "stylesheet", "session",
    "display",  "qwindowgeometry",    "qwindowicon",   "icon",   "qwindowtitle", "title",      "geometry"};

bool is_one_of(const QString& name, const auto& names) {
  return std::any_of(std::begin(names), std::end(names),
                     [&name](const char* known) { return name == QLatin1String(known); });
}

/// How many arguments from `at` on are the toolkit's.
qsizetype toolkit_arguments(const QStringList& arguments, qsizetype at) {
  QString name = arguments[at];
  if (!name.startsWith(u'-')) return 0;
  name.remove(0, name.startsWith(QLatin1String("--")) ? 2 : 1);
  if (is_one_of(name, kToolkitFlags)) return 1;
  if (is_one_of(name, kToolkitValues)) return 2;
  const qsizetype equals = name.indexOf(u'=');
  return equals > 0 && is_one_of(name.left(equals), kToolkitValues) ? 1 : 0;
}

QStringList own_arguments(const QStringList& arguments) {
  QStringList own;
  for (qsizetype at = 0; at < arguments.size();) {
    const qsizetype skipped = at == 0 ? 0 : toolkit_arguments(arguments, at);
    if (skipped == 0) own << arguments[at];
    at += std::max<qsizetype>(skipped, 1);
  }
  return own;
}

}  // namespace

std::variant<ProgramOptions, EndAtOnce> read_options(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription("Adjusts and tunes a camera image signal processor over a serial port.");
  parser.addOptions({
      {{"h", "help"}, "Print this help and exit."},
      {{"v", "version"}, "Print the version and exit."},
      {"port", "Use this serial device and store no settings but the window's look.", "DEVICE"},
      {"simulate", "Use the simulated chip and store no settings but the window's look."},
      {"scene", "What the simulated camera looks at: chart, flat, chart-turned, flat-cos4-720 and many more.",
       "KIND"},
      {"settings", "Load this setting file at the start instead of offering the dialog.", "FILE"},
      {"tour",
       "Open every page in turn, save a picture of each in this folder, and exit. Runs on the simulated chip "
       "unless --port is given.",
       "DIR"},
      {"trace", "Add every byte both ways to this file, time-stamped.", "FILE"},
      {"size", "The size of the tour's window, 1280x800 without it.", "WIDTHxHEIGHT"},
      {"check-layout", "Let the tour fail where text is cut off or a control has no room."},
      {"dark", "Use dark colors, whatever the desktop has."},
  });
  for (const LineOption& option : kLineOptions) parser.addOption({option.name, option.help, option.value});
  if (!parser.parse(own_arguments(arguments))) return complaint(parser.errorText());
  if (parser.isSet("help")) return EndAtOnce{parser.helpText(), 0};
  if (parser.isSet("version")) return EndAtOnce{QStringLiteral("QV5123 " QV5123_VERSION "\n"), 0};
  const QString fault = fault_of(parser);
  if (!fault.isEmpty()) return complaint(fault);
  return options_of(parser);
}

}  // namespace qv5123
