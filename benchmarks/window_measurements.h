#pragma once

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

/// Prints one figure.
void print_figure(const std::string& name, double value, const char* unit);
/// Prints one figure and ends the process.
[[noreturn]] void finish(const std::string& name, double value, const char* unit);

}  // namespace qv5123
