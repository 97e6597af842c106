#pragma once

#include <QWidget>

#include "console/page_host.h"
#include "tuning/page_flows.h"

namespace qv5123 {

/// What the tuning pages' dialogs have in common: their host, and the flows that end with the page.
class TuningPage : public QWidget, public Page {
 public:
  explicit TuningPage(PageHost& host) : host_(host) {}

  bool loading() const override { return load_.running(); }

 protected:
  PageHost& host() { return host_; }
  CQV5123Doc& document() { return host_.document(); }
  CommandLink& link() { return host_.link(); }

  /// Reads the page back from the chip; a read-back that is still under way starts anew.
  void load(PageLoad load) { load_.start(run_load(std::move(load))); }
  /// Saves the page on the chip; ignored while a save is under way.
  void save(Task<> save) {
    if (!save_.running()) save_.start(std::move(save));
  }
  bool saving() const { return save_.running(); }
  /// Sends at once what takes a while, beside whatever else is under way.
  void send_with_progress(LongTraffic values) { flows_.spawn(run_send(std::move(values))); }
  /// Lets `task` run to its end, or the page's.
  void spawn(Task<> task) { flows_.spawn(std::move(task)); }

 private:
  Task<> run_load(PageLoad load) { co_await load_from_chip(host_, std::move(load)); }
  Task<> run_send(LongTraffic values) { co_await qv5123::send_with_progress(host_, std::move(values)); }

  PageHost& host_;
  Flow load_;
  Flow save_;
  FlowSet flows_;
};

}  // namespace qv5123
