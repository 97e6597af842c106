#include "content/ui/dlg_font_maker.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/hex.h"
#include "base/ui/controls.h"
#include "base/ui/page_marks.h"
#include "base/ui/qt_text.h"
#include "content/font_text.h"
#include "content/ui/fill_range_box.h"
#include "content/ui/font_preview_area.h"
#include "content/ui/font_text_view.h"
#include "content/ui/glyph_editor_area.h"
#include "content/ui/glyph_rasterizer.h"

namespace qv5123 {

namespace {

/// Characters drawn between two looks at the event loop: some two milliseconds' worth.
constexpr std::size_t kFillStep = 32;
constexpr const char* kSaveTitle = "Save data";

struct ReadExport {
  FontLibrary library;
  bool unreadable = false;  // it is there, but cannot be read
};

std::filesystem::path export_path_here() {
  std::error_code error;
  return std::filesystem::current_path(error) / kFontTextName;
}

QString number_text(int glyph) {
  return QString("Glyph: 0x%1 / %2")
      .arg(QString::fromStdString(upper_hex(static_cast<unsigned>(glyph), 3)))
      .arg(glyph);
}

QToolButton* make_tool(QAction* action) {
  auto* button = new QToolButton;
  button->setDefaultAction(action);
  button->setAccessibleName(action->text());
  button->setFocusPolicy(Qt::TabFocus);
  button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  return button;
}

QBoxLayout* make_tool_row(const QList<QAction*>& actions) {
  auto* row = new QHBoxLayout;
  for (auto* action : actions) row->addWidget(make_tool(action), 1);
  return row;
}

}  // namespace

CDlgFontMaker::CDlgFontMaker(PageHost& host, QWidget* parent)
    : QWidget(parent), host_(host), export_path_(export_path_here()) {
  setContextMenuPolicy(Qt::ActionsContextMenu);
  preview_ = new FontPreviewArea(editor_);
  editor_area_ = new GlyphEditorArea(editor_);
  fill_ = new FillRangeBox;

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(make_file_row());
  auto* areas = new QHBoxLayout;
  layout->addLayout(areas, 1);
  areas->addWidget(preview_, 5);
  auto* editing = new QVBoxLayout;
  areas->addLayout(editing, 4);
  editing->addWidget(editor_area_, 1);
  editing->addLayout(make_buffer_row());
  editing->addLayout(make_edit_rows());
  editing->addWidget(fill_);
  layout->addLayout(make_compare_row());
  layout->addLayout(make_text_row());
  add_action("Close", QKeySequence("Ctrl+W"), "Close the font editor", [this] { close_page(); });

  connect(preview_, &FontPreviewArea::glyph_picked, this, [this](int index) {
    edit([this, index] {
      tell_unset();
      editor_.select(index);
    });
  });
  connect(editor_area_, &GlyphEditorArea::edited, this, &CDlgFontMaker::refresh_buffer);
  connect(fill_, &FillRangeBox::fill_requested, this, [this] { flows_.spawn(fill_range()); });
  flows_.spawn(import_export());
  refresh_all();
}

CDlgFontMaker::~CDlgFontMaker() = default;

QBoxLayout* CDlgFontMaker::make_file_row() {
  page_selector_ = keep_choice(new QComboBox);
  for (int page = 0; page < FontLibrary::kPages; ++page) page_selector_->addItem(QString::number(page));
  page_selector_->setAccessibleName("FontPage");
  page_selector_->setToolTip("Page of 256 glyphs to show");
  // Assistive tools choose without "activating".
  connect(page_selector_, &QComboBox::currentIndexChanged, this, [this](int page) {
    // Shown, or chosen once more, it would put its first glyph in place of the drawing.
    if (page == editor_.page()) return;
    tell_unset();
    editor_.choose_page(page);
    refresh_all();
  });
  auto* caption = new QLabel("FontPage:");
  caption->setBuddy(page_selector_);
  auto* open = push_button("Open font file...", "Read the glyphs from a binary font file");
  connect(open, &QPushButton::clicked, this, [this] { flows_.spawn(open_font_file()); });
  auto* save = push_button("Save font file...", "Write the text export and a binary font file");
  connect(save, &QPushButton::clicked, this, [this] { flows_.spawn(save_font_file()); });
  number_ = new QLabel;
  number_->setObjectName("glyph-number");
  number_->setMinimumWidth(number_->fontMetrics().horizontalAdvance(number_text(FontLibrary::kGlyphs)));
  number_->setToolTip("Number of the glyph being edited, in the whole library");
  state_ = new QLabel;
  state_->setObjectName("glyph-state");

  auto* row = new QHBoxLayout;
  row->addWidget(caption);
  row->addWidget(page_selector_);
  row->addWidget(open);
  row->addWidget(save);
  row->addStretch(1);
  row->addWidget(state_);
  row->addWidget(number_);
  return row;
}

QBoxLayout* CDlgFontMaker::make_compare_row() {
  auto* row = new QHBoxLayout;
  const auto add = [this, row](const char* caption, const char* tip, std::function<void()> act) {
    auto* button = push_button(caption, tip);
    connect(button, &QPushButton::clicked, this, std::move(act));
    row->addWidget(button);
    return button;
  };
  add("Compare with...",
      "Mark the glyphs that another font file has otherwise; Cancel compares with this font's own file",
      [this] { flows_.spawn(compare_font()); });
  take_over_ = add("Take over", "Put the glyph of the file compared with in place of the selected one",
                   [this] { edit([this] { editor_.take_over(); }); });
  compared_ = new QLabel;
  compared_->setObjectName("comparison");
  compared_->setTextFormat(Qt::PlainText);
  row->addWidget(compared_, 1);
  add("Export sheet...", "Write all glyphs as one picture, 32 in a row, black on white",
      [this] { flows_.spawn(export_sheet()); });
  add("Import sheet...", "Take all glyphs from such a picture, as one step",
      [this] { flows_.spawn(import_sheet()); });
  return row;
}

QBoxLayout* CDlgFontMaker::make_text_row() {
  text_view_ = new FontTextView(editor_);
  auto* edit = keep_choice(new QLineEdit("OSD 0123"));
  edit->setAccessibleName("Preview text");
  edit->setToolTip(
      "Shown in the glyphs of this page: a character is the glyph of its code, as A is glyph 65");
  edit->setMaximumWidth(20 * edit->fontMetrics().averageCharWidth());
  connect(edit, &QLineEdit::textChanged, text_view_, &FontTextView::show_text);
  text_view_->show_text(edit->text());
  auto* caption = new QLabel("Text:");
  caption->setBuddy(edit);
  auto* row = new QHBoxLayout;
  row->addWidget(caption);
  row->addWidget(edit);
  row->addWidget(text_view_, 1);
  return row;
}

QBoxLayout* CDlgFontMaker::make_buffer_row() {
  auto* clear = push_button("Clear", "Clear all pixels being edited; the library stays as it is");
  connect(clear, &QPushButton::clicked, this, [this] {
    editor_.clear();
    refresh_buffer();
  });
  auto* set = push_button("Set", "Put the edited pixels into the library");
  connect(set, &QPushButton::clicked, this, [this] { edit([this] { editor_.store(); }); });
  auto* row = new QHBoxLayout;
  row->addWidget(clear);
  row->addWidget(set);
  return row;
}

QBoxLayout* CDlgFontMaker::make_edit_rows() {
  const auto action = [this](const char* text, const QKeySequence& keys, const char* tip,
                             const std::function<void()>& change) {
    return add_action(text, keys, tip, [this, change] { edit(change); });
  };
  const auto shift = [this, &action](const char* text, const char* keys, ShiftDirection direction) {
    return action(text, QKeySequence(keys), "Move the pixels by one",
                  [this, direction] { editor_.shift(direction); });
  };
  // Their keys are the window's.
  undo_ = add_action("Undo", {}, "Take the last change back (Ctrl+Z)", [this] { undo_step(); });
  redo_ = add_action("Redo", {}, "Do it again (Ctrl+Shift+Z)", [this] { redo_step(); });
  auto* copy = action("Copy", QKeySequence::Copy, "Copy the edited glyph", [this] { copy_glyph(); });
  auto* paste = action("Paste", QKeySequence::Paste, "Edit the copied glyph here", [this] { paste_glyph(); });
  auto* invert =
      action("Invert", QKeySequence("Ctrl+I"), "Swap drawn and clear pixels", [this] { editor_.invert(); });

  auto* rows = new QVBoxLayout;
  rows->addLayout(make_tool_row({undo_, redo_, copy, paste}));
  rows->addLayout(make_tool_row({shift("Shift left", "Ctrl+Left", ShiftDirection::left),
                                 shift("Shift right", "Ctrl+Right", ShiftDirection::right),
                                 shift("Shift up", "Ctrl+Up", ShiftDirection::up),
                                 shift("Shift down", "Ctrl+Down", ShiftDirection::down), invert}));
  return rows;
}

QAction* CDlgFontMaker::add_action(const QString& text, const QKeySequence& keys, const QString& tip,
                                   const std::function<void()>& act) {
  auto* action = new QAction(text, this);
  action->setShortcut(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action->setToolTip(keys.isEmpty() ? tip : tip + " (" + keys.toString(QKeySequence::NativeText) + ")");
  connect(action, &QAction::triggered, this, act);
  addAction(action);
  return action;
}

void CDlgFontMaker::refresh_buffer() {
  const int glyph = editor_.selected_glyph();
  number_->setText(number_text(glyph));
  state_->setText(editor_.is_unset() ? "Drawn, not set" : "");
  undo_->setEnabled(!next_undo().empty());
  redo_->setEnabled(!next_redo().empty());
  tell_steps_changed();
  take_over_->setEnabled(editor_.differs(glyph));
  text_view_->update();
  editor_area_->update();
}

void CDlgFontMaker::refresh_all() {
  page_selector_->setCurrentIndex(editor_.page());
  preview_->refresh_page();
  show_comparison();
  refresh_buffer();
}

void CDlgFontMaker::show_comparison() {
  const int differing = editor_.differing();
  const QString what = compared_name_.isEmpty() ? "the font file" : compared_name_;
  compared_->setText(differing == 0 ? "As in " + what
                                    : QString("%1 of 1024 glyphs differ from %2").arg(differing).arg(what));
}

void CDlgFontMaker::edit(const std::function<void()>& change) {
  change();
  refresh_all();
}

void CDlgFontMaker::copy_glyph() {
  QGuiApplication::clipboard()->setText(QString::fromStdString(glyph_picture(editor_.buffer())));
}

void CDlgFontMaker::paste_glyph() {
  const auto glyph = parse_glyph_picture(QGuiApplication::clipboard()->text().toStdString());
  if (glyph) editor_.paste(*glyph);
  if (!glyph) host_.show_failure("The clipboard holds no glyph");
}

void CDlgFontMaker::close_page() {
  flows_.spawn(ask_and_close());
}

Task<> CDlgFontMaker::import_export() {
  std::function<ReadExport()> work = [path = export_path_] {
    ReadExport read;
    std::string text;
    std::error_code ignored;
    if (read_whole_file(path, text).ok()) {
      import_font_text(text, read.library);
    } else {
      read.unreadable = std::filesystem::exists(path, ignored);
    }
    return read;
  };
  const ReadExport read = co_await host_.background().run<ReadExport>(std::move(work));
  editor_.take_import(read.library);
  importing_ = false;
  // What a run that died left is newer than any export.
  editor_.take_draft(std::exchange(host_.document().font_draft, {}));
  refresh_all();
  // Whatever stands there is not ours to replace.
  unreadable_ = read.unreadable;
  if (unreadable_) host_.show_failure("Cannot read " + path_text(export_path_) + ": it is left alone");
  begin_export(export_waits_);
}

// An export that cannot be written is no reason to disturb the user: the binary file is the font's own form.
void CDlgFontMaker::begin_export(Export wanted) {
  // It would replace what is only just being read.
  if (importing_) export_waits_ = std::max(export_waits_, wanted);
  if (importing_ || unreadable_ || wanted == Export::none) return;
  // Reading the export again loses rows; an unchanged one is better than what it would be written to.
  if (wanted == Export::if_changed && !editor_.differs_from_export()) return;
  flows_.spawn(write_export());
}

Task<> CDlgFontMaker::write_export() {
  std::vector<std::uint8_t> binary = editor_.library().to_binary();
  std::function<FileResult()> work = [path = export_path_, library = editor_.library()] {
    return write_file_atomically(path, export_font_text(library));
  };
  const FileResult written = co_await host_.background().run<FileResult>(std::move(work));
  if (written.ok()) editor_.mark_in_export(std::move(binary));
}

std::string CDlgFontMaker::draft() const {
  const std::string& waiting = host_.document().font_draft;
  return waiting.empty() ? editor_.draft() : waiting;
}

std::string CDlgFontMaker::unset_text() const {
  if (!editor_.is_unset()) return {};
  return from_qt(number_text(editor_.selected_glyph())) + " is drawn but not set.";
}

void CDlgFontMaker::tell_unset() {
  if (editor_.is_unset()) host_.show_status(unset_text() + " Undo and Redo show the drawing again.");
}

Task<bool> CDlgFontMaker::agreed(std::string question) {
  co_return co_await host_.prompts().ask(careful_question(std::move(question), kSaveTitle)) == Answer::yes;
}

Task<bool> CDlgFontMaker::may_leave() {
  std::string text = unset_text();
  if (editor_.differs_from_file()) {
    text += text.empty() ? "" : "\n";
    text += "The font is not in a binary font file as it is now.";
  }
  if (text.empty()) co_return true;
  co_return co_await agreed(text + "\n\nLeave without saving it?");
}

void CDlgFontMaker::undo() {
  // It would take back what was done before the fill, which then comes on top.
  if (fills_ > 0) {
    ++undos_;
  } else {
    editor_.undo();
  }
}

Task<> CDlgFontMaker::fill_range() {
  ++fills_;
  refresh_buffer();
  co_await draw_range();
  --fills_;
  for (; fills_ == 0 && undos_ > 0; --undos_) editor_.undo();
  refresh_all();
}

Task<> CDlgFontMaker::draw_range() {
  const auto choice = fill_->choice();
  const QFont font = font_for_glyphs(choice.font);
  const int room = std::min(choice.count, FontLibrary::kGlyphs - choice.first_glyph);
  std::vector<Glyph> glyphs;
  for (char32_t character = choice.first_character; static_cast<int>(glyphs.size()) < room; ++character) {
    glyphs.push_back(rasterize(font, character));
    if (glyphs.size() % kFillStep == 0) co_await Delay(host_.scheduler(), std::chrono::milliseconds(0));
  }
  editor_.fill(choice.first_glyph, std::move(glyphs));
}

Task<> CDlgFontMaker::ask_and_close() {
  const std::string unset = unset_text();
  if (!unset.empty()) {
    const bool without = co_await agreed(unset + "\n\nLeave without it?");
    if (!without) co_return;
  }
  const Question question{"Do you want to save before exit?", kSaveTitle, Question::Buttons::yes_no};
  if (co_await host_.prompts().ask(question) == Answer::yes) begin_export(Export::if_changed);
  hide();
}

}  // namespace qv5123
