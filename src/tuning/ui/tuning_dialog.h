#pragma once

#include <QWidget>

#include "console/page_host.h"
#include "tuning/tuning_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// What the tuning pages' dialogs have in common: they show a desk, and turn signals into calls of it.
class TuningDialog : public QWidget, public Page {
 public:
  /// The desk is the dialog's own.
  TuningDialog(PageHost& host, TuningDesk& desk) : host_(host), tuning_desk_(desk) {}

  void save_to_user_data() override {
    take_typed_text(this);
    tuning_desk_.model().store(host_.document().user_data);
  }
  void put_values(UserDataImage& image) const override { tuning_desk_.model().store(image); }
  void reload_from_user_data() override { tuning_desk_.reload(); }
  void read_back() override { tuning_desk_.start_load(); }
  bool loading() const override { return tuning_desk_.loading(); }

 protected:
  PageHost& host() { return host_; }

 private:
  PageHost& host_;
  TuningDesk& tuning_desk_;
};

}  // namespace qv5123
