#pragma once

#include <QWidget>
#include <filesystem>

#include "base/ui/own_steps.h"
#include "console/page_host.h"
#include "content/font_editor.h"

class QAction;
class QBoxLayout;
class QComboBox;
class QLabel;
class QPushButton;

namespace qv5123 {

class FillRangeBox;
class FontTextView;
class FontPreviewArea;
class GlyphEditorArea;

/// The font editor page. Its text export lives in the directory that is current when the page is made, and is
/// read from there while the page is already there.
class CDlgFontMaker : public QWidget, public Page, public OwnSteps {
  Q_OBJECT

 public:
  explicit CDlgFontMaker(PageHost& host, QWidget* parent = nullptr);
  ~CDlgFontMaker() override;

  /// Writes the text export where the font is not what it holds; the font has no place in the user data.
  void save_to_user_data() override { begin_export(Export::if_changed); }
  /// Asks where something is drawn but not set, or the binary file does not hold the font.
  Task<bool> may_leave() override;
  /// What no file holds of the font.
  std::string draft() const override;
  /// True until the text export is read.
  bool loading() const override { return importing_; }

  std::string next_undo() const override { return editor_.can_undo() || fills_ > 0 ? kStepName : ""; }
  std::string next_redo() const override { return editor_.can_redo() ? kStepName : ""; }
  void undo_step() override {
    edit([this] { undo(); });
  }
  void redo_step() override {
    edit([this] { editor_.redo(); });
  }

  const FontEditor& editor() const { return editor_; }

 public slots:
  /// Asks whether to write the text export, then hides the page.
  void close_page();

 private:
  static constexpr const char* kStepName = "change of the font";

  QBoxLayout* make_file_row();
  QBoxLayout* make_buffer_row();
  QBoxLayout* make_compare_row();
  QBoxLayout* make_text_row();
  QBoxLayout* make_edit_rows();
  QAction* add_action(const QString& text, const QKeySequence& keys, const QString& tip,
                      const std::function<void()>& act);

  /// Shows the edit buffer and its glyph's number anew, or everything.
  void refresh_buffer();
  void refresh_all();
  void show_comparison();
  void edit(const std::function<void()>& change);
  void copy_glyph();
  void paste_glyph();

  Task<> import_export();
  enum class Export { none, if_changed, always };
  void begin_export(Export wanted);
  Task<> write_export();

  /// The drawing that is not in the library, in words; empty while there is none.
  std::string unset_text() const;
  void tell_unset();
  Task<bool> agreed(std::string question);
  void undo();
  Task<> draw_range();

  Task<> open_font_file();
  Task<> save_font_file();
  Task<> compare_font();
  Task<> export_sheet();
  Task<> import_sheet();
  Task<> fill_range();
  Task<> ask_and_close();

  PageHost& host_;
  FontEditor editor_;
  std::filesystem::path export_path_;
  bool importing_ = true;
  bool unreadable_ = false;             // the export is there but could not be read
  Export export_waits_ = Export::none;  // for the import
  int fills_ = 0;                       // under way
  int undos_ = 0;                       // wait for a fill
  QComboBox* page_selector_ = nullptr;
  QLabel* number_ = nullptr;
  QLabel* state_ = nullptr;
  FontPreviewArea* preview_ = nullptr;
  GlyphEditorArea* editor_area_ = nullptr;
  FillRangeBox* fill_ = nullptr;
  QPushButton* take_over_ = nullptr;
  QLabel* compared_ = nullptr;
  QString compared_name_;  // empty for the font's own file
  FontTextView* text_view_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  /// What the user started and has not answered to its end; last, so that it ends before what it uses.
  FlowSet flows_;
};

}  // namespace qv5123
