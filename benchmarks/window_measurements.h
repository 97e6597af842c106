#pragma once

#include <QString>
#include <functional>
#include <string>

#include "gap_meter.h"
#include "timed_device.h"

class QPushButton;
class QWidget;

namespace qv5123 {

class CQV5123View;

/// What the measurements of a running window work on.
struct Bench {
  CQV5123View& view;
  TimedDevice& device;
  GapMeter meter;
};

/// Begins the measurement `what`; it prints its figures as "NAME VALUE UNIT" lines and ends the process.
/// False when there is no such measurement.
bool begin_measurement(const std::string& what, Bench& bench);

/// "known-values": Compare filled and filtered, undo, and the marks of all pages.
void known_values(Bench& bench);
/// "compare-read" and "journal": the worst gap while the page "Compare" reads all pages from the chip, and
/// while a journal of 100,000 writes is opened.
void compare_read(Bench& bench);
void journal(Bench& bench);
/// How long reading back takes after `save`, and the worst gap meanwhile.
void verified_save(Bench& bench, const std::string& name, std::function<void()> save);

QPushButton* button(const QWidget& window, const QString& caption);
/// Measures from now until `over`, then prints the worst gap and ends.
void watch(Bench& bench, std::string name, std::function<bool()> over);
/// True once nothing has been waiting to leave for a second of looks, every 20 ms.
std::function<bool()> link_quiet(Bench& bench);
/// Calls `then` once nothing has been waiting to leave for a second.
void when_quiet(Bench& bench, std::function<void()> then);
[[noreturn]] void give_up(const std::string& why);
/// Prints one figure.
void print_figure(const std::string& name, double value, const char* unit);
/// Prints one figure and ends the process.
[[noreturn]] void finish(const std::string& name, double value, const char* unit);

}  // namespace qv5123
