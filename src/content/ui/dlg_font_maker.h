#pragma once

#include <QWidget>
#include <filesystem>

#include "console/page_host.h"
#include "content/font_editor.h"

class QAction;
class QBoxLayout;
class QComboBox;
class QLabel;

namespace qv5123 {

class FillRangeBox;
class FontPreviewArea;
class GlyphEditorArea;

/// The font editor page. Its text export lives in the directory that is current when the page is made, and is
/// read from there while the page is already there.
class CDlgFontMaker : public QWidget, public Page {
  Q_OBJECT

 public:
  explicit CDlgFontMaker(PageHost& host, QWidget* parent = nullptr);
  ~CDlgFontMaker() override;

  /// Writes the text export; the font has no place in the user data.
  void save_to_user_data() override { begin_export(); }
  /// True until the text export is read.
  bool loading() const override { return importing_; }

  const FontEditor& editor() const { return editor_; }

 public slots:
  /// Asks whether to write the text export, then hides the page.
  void close_page();

 private:
  QBoxLayout* make_file_row();
  QBoxLayout* make_buffer_row();
  QBoxLayout* make_edit_rows();
  QAction* add_action(const QString& text, const QKeySequence& keys, const QString& tip,
                      const std::function<void()>& act);

  /// Shows the edit buffer and its glyph's number anew, or everything.
  void refresh_buffer();
  void refresh_all();
  void edit(const std::function<void()>& change);
  void copy_glyph();
  void paste_glyph();

  Task<> import_export();
  void begin_export();

  Task<> open_font_file();
  Task<> save_font_file();
  Task<> fill_range();
  Task<> ask_and_close();

  PageHost& host_;
  FontEditor editor_;
  std::filesystem::path export_path_;
  bool importing_ = true;
  bool unreadable_ = false;    // the export is there but could not be read
  bool export_waits_ = false;  // for the import
  QComboBox* page_selector_ = nullptr;
  QLabel* number_ = nullptr;
  FontPreviewArea* preview_ = nullptr;
  GlyphEditorArea* editor_area_ = nullptr;
  FillRangeBox* fill_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  /// What the user started and has not answered to its end; last, so that it ends before what it uses.
  FlowSet flows_;
};

}  // namespace qv5123
