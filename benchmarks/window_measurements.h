#pragma once

#include <functional>
#include <string>

#include "gap_meter.h"
#include "timed_device.h"

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
/// How long reading back takes after `save`.
void verified_save(Bench& bench, const std::string& name, std::function<void()> save);

/// Calls `then` once nothing has been waiting to leave for a second.
void when_quiet(Bench& bench, std::function<void()> then);
[[noreturn]] void give_up(const std::string& why);
/// Prints one figure.
void print_figure(const std::string& name, double value, const char* unit);
/// Prints one figure and ends the process.
[[noreturn]] void finish(const std::string& name, double value, const char* unit);

}  // namespace qv5123
