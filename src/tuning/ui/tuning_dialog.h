#pragma once

#include <QLabel>
#include <QWidget>

#include <string>

#include "console/page_host.h"
#include "tuning/save_tip.h"
#include "tuning/tuning_desk.h"
#include "tuning/ui/page_parts.h"

namespace qv5123 {

/// What the tuning pages' dialogs have in common: they show a desk, and turn signals into calls of it.
class TuningDialog : public QWidget, public Page {
 public:
  /// The desk is the dialog's own.
  TuningDialog(PageHost& host, TuningDesk& desk) : host_(host), tuning_desk_(desk) {}

  TuningDesk& tuning_desk() { return tuning_desk_; }

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
  /// Says beside the page's buttons what nobody has read yet, and offers to read a page that is older than
  /// the chip. It keeps its place while there is nothing to say.
  QLabel* make_unread_note();
  /// What the page's "File/Flash Save" does. Its tooltip goes on to tell it as it is at the time.
  QString save_tip(SavedFile file);
  void showEvent(QShowEvent* event) override;

 private:
  PageHost& host_;
  TuningDesk& tuning_desk_;
  SavedFile saved_file_ = SavedFile::none;
  bool tip_is_fresh_ = false;
};

}  // namespace qv5123
