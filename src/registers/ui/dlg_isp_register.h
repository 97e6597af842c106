#pragma once

#include <QWidget>

#include "base/ui/findable.h"
#include "base/ui/own_steps.h"
#include "console/page_host.h"
#include "registers/register_desk.h"
#include "registers/register_favourites.h"

class QBoxLayout;
class QComboBox;
class QItemSelection;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace qv5123 {

class BitBoxes;
class CMultilineList;
class CMyEditAddress;
class CMyEditValue;
class CMyHexEdit;
class RegisterFilter;
class RegisterFilterBar;
class RegisterListModel;

/// The page that reads and writes single registers, by address or by the categories of the description
/// "regu.xml" in the current directory, and loads, saves and restores them in bulk.
class CDlgIspRegister final : public QWidget,
                              public Page,
                              public Findable,
                              public OwnSteps,
                              private RegisterView {
  Q_OBJECT

 public:
  explicit CDlgIspRegister(PageHost& host, QWidget* parent = nullptr);
  ~CDlgIspRegister() override;

  /// True while the description or the first register is being read.
  RegisterDesk& register_desk() { return desk_; }
  bool loading() const override { return desk_.opening() || desk_.reading(); }

  /// All registers and bit fields of the description.
  std::vector<FoundPlace> places() const override;
  void go_to(int id) override;

  /// "0xF923's value".
  std::string next_undo() const override { return desk_.can_undo() ? step_name() : std::string(); }
  std::string next_redo() const override { return desk_.can_redo() ? step_name() : std::string(); }
  void undo_step() override { desk_.undo(); }
  void redo_step() override { desk_.redo(); }

 private:
  std::string step_name() const;
  QWidget* make_splitter();
  QBoxLayout* make_list_column();
  QBoxLayout* make_register_column();
  QBoxLayout* make_address_rows();
  QBoxLayout* make_button_rows();
  QPushButton* make_button(const QString& caption, const QString& tip, void (RegisterDesk::*operation)());
  void set_tab_order();
  void make_filter();
  void make_list();
  std::vector<int> selected_registers() const;
  void make_columns();
  void make_field_table();
  void connect_edits();
  void follow_selection(const QItemSelection& added);
  void select_source_row(int reg);
  void go_to_list();
  void filter_list();
  void list_anew();
  void show_count();
  void mark_favourite(bool on);
  void show_favourite();
  void show_age();

  void show_description() override;
  void show_category() override;
  void show_selection() override;
  void show_value_of(std::size_t reg) override;
  void show_values() override;
  void show_register() override;
  void show_value() override;
  void show_fields() override;
  void show_data() override;
  void show_steps() override { tell_steps_changed(); }
  void show_buttons(const RegisterButtons& buttons) override;

  QComboBox* category_;
  RegisterListModel* list_model_ = nullptr;
  RegisterFavourites favourites_;
  RegisterFilter* listed_ = nullptr;
  RegisterFilterBar* filter_;
  QTableView* list_;
  CMyEditAddress* address_;
  CMyEditValue* value_;
  QLineEdit* name_;
  BitBoxes* bits_;
  CMultilineList* fields_;
  QLabel* age_ = nullptr;  ///< says that the chip was reset since
  QPushButton* read_ = nullptr;
  QPushButton* write_ = nullptr;
  QPushButton* load_category_ = nullptr;
  QPushButton* load_all_ = nullptr;
  QPushButton* stop_ = nullptr;
  QPushButton* save_file_ = nullptr;
  QPushButton* load_file_ = nullptr;
  bool showing_selection_ = false;
  /// Last, so that its flows end before the widgets they would show something in.
  RegisterDesk desk_;
};

}  // namespace qv5123
