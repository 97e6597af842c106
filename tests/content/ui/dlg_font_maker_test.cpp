#include "content/ui/dlg_font_maker.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QFontComboBox>
#include <QtTest>

#include "content/font_geometry.h"
#include "content/font_text.h"
#include "content/ui/font_preview_area.h"
#include "content/ui/font_text_view.h"
#include "content/ui/glyph_editor_area.h"
#include "content/ui/glyph_rasterizer.h"
#include "support/fake_page_host.h"
#include "support/page_driver.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using test::find;
using test::mouse;

class FontMakerPage : public testing::Test {
 protected:
  CDlgFontMaker& open() {
    page_ = std::make_unique<CDlgFontMaker>(host_);
    page_->resize(880, 640);
    page_->show();
    preview_ = find<FontPreviewArea>(*page_, "Font page preview");
    area_ = find<GlyphEditorArea>(*page_, "Glyph editor");
    return *page_;
  }

  void click(QWidget* widget, QPointF at) {
    mouse(widget, QEvent::MouseButtonPress, at);
    mouse(widget, QEvent::MouseButtonRelease, at);
  }
  /// The middle of an editor cell, which may be beyond the grid's borders.
  QPointF cell(int column, int row) const {
    return QRectF(area_->to_widget(QRectF(editor::kGridLeft + 8 * column, editor::kGridTop + 8 * row, 8, 8)))
        .center();
  }
  void pick(int column, int row) {
    click(preview_, QRectF(preview_->to_widget(QRectF(10 + 17 * column, 10 + 25 * row, 17, 25))).center());
  }
  void press(const QString& name) { find<QAbstractButton>(*page_, name)->click(); }
  /// As assistive tools do.
  void choose_page(int page) { find<QComboBox>(*page_, "FontPage")->setCurrentIndex(page); }
  QString number() const { return page_->findChild<QLabel*>("glyph-number")->text(); }
  const Glyph& buffer() const { return page_->editor().buffer(); }
  Glyph glyph(int index) const { return page_->editor().library().glyph(index); }

  test::CurrentFolder folder_;
  test::FakeWire wire_;
  test::FakePageHost host_{wire_};
  std::unique_ptr<CDlgFontMaker> page_;
  FontPreviewArea* preview_ = nullptr;
  GlyphEditorArea* area_ = nullptr;
};

TEST_F(FontMakerPage, AGlyphIsPickedPaintedSetAndTakenBack) {
  open();
  choose_page(2);
  pick(3, 4);
  EXPECT_EQ(number(), "Glyph: 0x243 / 579");
  for (const QPointF at : {cell(15, 23), cell(16, 5), cell(5, 24)}) click(area_, at);
  EXPECT_EQ(buffer().rows()[23], 0x0001);
  EXPECT_EQ(buffer().rows()[5], 0) << "the grid ends at its borders";
  press("Set");
  EXPECT_EQ(glyph(579), buffer());
  press("Clear");
  choose_page(2);
  EXPECT_EQ(number(), "Glyph: 0x243 / 579") << "the page that is shown already";
  choose_page(1);
  EXPECT_EQ(number(), "Glyph: 0x100 / 256");
  press("Undo");
  press("Undo");
  EXPECT_EQ(number(), "Glyph: 0x243 / 579");
  EXPECT_EQ(glyph(579), Glyph());
  press("Redo");
  EXPECT_NE(glyph(579), Glyph());
}

TEST_F(FontMakerPage, ClicksActOnReleaseAndDragsPaintOneStroke) {
  open();
  mouse(area_, QEvent::MouseButtonPress, cell(2, 2));
  mouse(area_, QEvent::MouseMove, cell(2, 2) + QPointF(1, 1));
  EXPECT_EQ(buffer(), Glyph()) << "a hand that trembles within a pixel draws nothing";
  mouse(area_, QEvent::MouseMove, cell(6, 2));
  EXPECT_EQ(buffer().rows()[2], 0x3E00);
  mouse(area_, QEvent::MouseMove, cell(20, 2));
  mouse(area_, QEvent::MouseButtonRelease, cell(20, 2));
  EXPECT_EQ(buffer().rows()[2], 0x3FFF);
  press("Undo");
  EXPECT_EQ(buffer(), Glyph());
  click(area_, cell(0, 0));
  mouse(area_, QEvent::MouseButtonPress, cell(2, 2));
  mouse(area_, QEvent::MouseMove, cell(6, 2));
  press("Undo");
  mouse(area_, QEvent::MouseMove, cell(6, 9));
  mouse(area_, QEvent::MouseButtonRelease, cell(6, 9));
  EXPECT_EQ(buffer().rows()[2] | buffer().rows()[9], 0) << "a stroke undone in the middle of it is over";
  mouse(area_, QEvent::MouseButtonPress, cell(0, 0));
  mouse(area_, QEvent::MouseMove, cell(0, 9));
  mouse(area_, QEvent::MouseButtonRelease, cell(0, 9));
  EXPECT_EQ(buffer(), Glyph()) << "a stroke that starts on a set pixel clears";
}

TEST_F(FontMakerPage, WhatIsDrawnStandsWhereThePointerFindsIt) {
  open();
  click(area_, cell(7, 11));
  press("Set");
  // A shot has the screen's pixels, of which a point of the widget may have several.
  const auto color_at = [](const QImage& shot, QPointF point) {
    return shot.pixelColor((point * shot.devicePixelRatio()).toPoint());
  };
  const QImage editor_shot = area_->grab().toImage();
  EXPECT_EQ(color_at(editor_shot, cell(7, 11)), QColor(Qt::black));
  const auto pixel = preview_->to_widget(QRectF(11 + 7, 11 + 11, 1, 1));
  EXPECT_LT(color_at(preview_->grab().toImage(), pixel.center()).value(), 160) << "a lone pixel, smoothed";
  page_->resize(1500, 1100);
  QApplication::sendPostedEvents();
  click(area_, cell(7, 11));
  EXPECT_EQ(buffer(), Glyph()) << "the hit test scales with the window";
}

TEST_F(FontMakerPage, ATextIsShownInTheGlyphsAsTheyAreDrawn) {
  open();
  find<QLineEdit>(*page_, "Preview text")->setText("BA");
  auto* view = page_->findChild<FontTextView*>();
  const QImage before = view->grab().toImage();
  pick('A' % 16, 'A' / 16);
  click(area_, cell(7, 11));
  const QImage after = view->grab().toImage();
  const int shown = 2 * after.devicePixelRatio();  // pixels to one of a glyph
  int changed = 0;
  for (int x = 0; x < after.width(); ++x)
    for (int y = 0; y < after.height(); ++y)
      if (after.pixel(x, y) != before.pixel(x, y)) changed += x / shown - 1 == Glyph::kWidth + 7 ? 1 : 1000;
  EXPECT_EQ(changed, shown * shown);
}

TEST_F(FontMakerPage, KeysDoWhatTheMouseDoes) {
  open();
  for (const auto key : {Qt::Key_Right, Qt::Key_Up, Qt::Key_Left, Qt::Key_Left, Qt::Key_Down})
    QTest::keyClick(preview_, key);
  EXPECT_EQ(page_->editor().selected(), 16);
  QTest::keyClick(area_, Qt::Key_Down);
  QTest::keyClick(area_, Qt::Key_Space);
  EXPECT_EQ(buffer().rows()[1], 0x8000);
}

TEST_F(FontMakerPage, GlyphsAreShiftedInvertedAndCarriedOver) {
  open();
  click(area_, cell(4, 4));
  for (const char* button : {"Shift right", "Shift right", "Shift left", "Shift down", "Shift down",
                             "Shift up", "Invert", "Copy"}) {
    press(button);
  }
  pick(1, 0);
  press("Paste");
  EXPECT_EQ(buffer().rows()[5], 0xFBFF);
  QGuiApplication::clipboard()->setText("no glyph");
  press("Paste");
  EXPECT_EQ(buffer().rows()[5], 0xFBFF);
  EXPECT_EQ(host_.last_status(), "The clipboard holds no glyph");
}

TEST_F(FontMakerPage, SavingWritesTheExportThenAsksForTheBinaryWhichReopensBitForBit) {
  open();
  press("Invert");
  press("Set");
  press("Save font file...");
  EXPECT_EQ(folder_.read("fntmkr.txt"), export_font_text(page_->editor().library()));
  EXPECT_EQ(host_.user.saves.at(0).filter, "FONT Files (*.bin)|*.bin|All Files (*.*)|*.*||");
  EXPECT_EQ(host_.user.saves[0].initial_name, "fontT_16x24_.bin");
  EXPECT_EQ(host_.user.saves[0].default_extension, "bin");
  host_.user.paths = {folder_ / "saved.bin"};
  press("Save font file...");
  const FontLibrary saved = page_->editor().library();

  std::filesystem::remove(folder_ / "fntmkr.txt");
  open();
  EXPECT_EQ(glyph(0), Glyph());
  host_.user.paths = {folder_ / "saved.bin", folder_ / "none.bin"};
  choose_page(1);
  pick(3, 4);
  press("Open font file...");
  EXPECT_EQ(number(), "Glyph: 0x100 / 256") << "the first of the page";
  EXPECT_EQ(host_.user.opens.back().initial_name, "*.bin");
  press("Open font file...");
  EXPECT_EQ(page_->editor().library(), saved);
  EXPECT_TRUE(host_.user.messages.empty()) << "files that cannot be read or written are no message";
  EXPECT_NE(host_.last_status().find("none.bin: "), std::string::npos) << "but are told";
}

TEST_F(FontMakerPage, ClosingAsksAndTheExportIsReadAtTheNextOpening) {
  open();
  pick(1, 0);
  press("Invert");
  press("Set");
  host_.user.answers = {Answer::no, Answer::yes};
  page_->close_page();
  EXPECT_TRUE(page_->isHidden());
  EXPECT_FALSE(std::filesystem::exists(folder_ / "fntmkr.txt"));
  EXPECT_EQ(host_.user.questions.at(0).text, "Do you want to save before exit?");
  EXPECT_EQ(host_.user.questions[0].title, "Save data");
  EXPECT_EQ(host_.user.questions[0].buttons, Question::Buttons::yes_no);
  page_->close_page();
  open();
  EXPECT_EQ(glyph(1).rows()[0], 0) << "the import lags one line behind";
  EXPECT_EQ(glyph(1).rows()[1], 0xFFFF);
  std::filesystem::remove(folder_ / "fntmkr.txt");
  page_->save_to_user_data();
  EXPECT_FALSE(std::filesystem::exists(folder_ / "fntmkr.txt")) << "nothing was changed";
  press("Set");
  press("Invert");
  press("Set");
  page_->save_to_user_data();
  EXPECT_TRUE(std::filesystem::exists(folder_ / "fntmkr.txt"));
  EXPECT_EQ(host_.doc.user_data, UserDataImage{});
}

TEST_F(FontMakerPage, AnExportThatIsReadLateLeavesWhatWasEditedMeanwhile) {
  FontLibrary library;
  const Glyph full(Glyph::Rows{0, 0xFFFF});
  library.set_glyph(0, full);
  library.set_glyph(1, full);
  ASSERT_TRUE(write_file_atomically("fntmkr.txt", export_font_text(library)).ok());
  host_.work.busy = true;
  open();
  EXPECT_TRUE(page_->loading());
  click(area_, cell(15, 23));
  press("Set");
  page_->save_to_user_data();
  const Glyph drawn = buffer();
  pick(1, 0);
  host_.work.catch_up();
  EXPECT_FALSE(page_->loading());
  EXPECT_EQ(glyph(0), drawn);
  EXPECT_EQ(glyph(1), full);
  EXPECT_EQ(buffer(), full);
  EXPECT_EQ(folder_.read("fntmkr.txt"), export_font_text(page_->editor().library()));
}

TEST_F(FontMakerPage, ARangeIsFilledFromAnInstalledFontInOneStepForWhichUndoWaits) {
  open();
  press("Invert");
  find<QSpinBox>(*page_, "Fill: First character")->setValue('A');
  find<QSpinBox>(*page_, "Fill: First glyph")->setValue(1000);
  find<QSpinBox>(*page_, "Fill: Glyphs")->setValue(100);
  press("Fill glyphs");
  press("Undo");
  EXPECT_NE(buffer(), Glyph()) << "what was done before is not what was meant";
  wire_.advance(1);
  EXPECT_EQ(page_->editor().library(), FontLibrary());
  EXPECT_NE(buffer(), Glyph());
  press("Redo");
  const auto font = font_for_glyphs(find<QFontComboBox>(*page_, "Fill: Font")->currentFont());
  EXPECT_EQ(glyph(1000), rasterize(font, U'A'));
  EXPECT_EQ(glyph(1023), rasterize(font, U'A' + 23));
  EXPECT_NE(glyph(1000), Glyph());
  EXPECT_NE(glyph(1000), glyph(1001));
  EXPECT_EQ(glyph(999), Glyph());
}

TEST_F(FontMakerPage, ADrawingThatIsNotSetIsSaid) {
  open();
  const auto* state = page_->findChild<QLabel*>("glyph-state");
  test::PageDriver(*page_).expect_labels_read_out();
  EXPECT_EQ(state->text(), "");
  pick(3, 4);
  press("Invert");
  EXPECT_EQ(state->text(), "Drawn, not set");
  press("Save font file...");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "fntmkr.txt")) << "asked first";
  page_->close_page();
  EXPECT_FALSE(page_->isHidden());
  ASSERT_EQ(host_.user.questions.size(), 2u);
  for (const Question& question : host_.user.questions) {
    EXPECT_EQ(question.text.find("Glyph: 0x043 / 67 is drawn but not set."), 0u);
    EXPECT_EQ(question.preferred, Answer::no);
  }
  const Glyph drawn = buffer();
  pick(5, 5);
  EXPECT_EQ(host_.last_status(),
            "Glyph: 0x043 / 67 is drawn but not set. Undo and Redo show the drawing again.");
  press("Undo");
  press("Redo");
  EXPECT_EQ(buffer(), drawn);
  press("Set");
  EXPECT_EQ(state->text(), "");
  host_.user.paths = {folder_ / "a.bin", folder_ / "no folder" / "b.bin"};
  press("Save font file...");
  EXPECT_EQ(host_.last_status(), "Font file written: " + path_text(folder_ / "a.bin"));
  press("Save font file...");
  host_.user.paths = {folder_.write("short.bin", std::string(100, 'x'))};
  press("Open font file...");
  EXPECT_EQ(host_.last_status(), "Font file read: " + path_text(folder_ / "short.bin") + ", 2 of 1024 glyphs")
      << "a success takes the place of the failure before it";
  EXPECT_EQ(host_.user.questions.size(), 2u);
}

TEST_F(FontMakerPage, LeavingAsksForAFontThatIsInNoFile) {
  const auto leaves = [this] {
    bool leaves = false;
    const Flow flow(
        [](Page& page, bool& leaves) -> Task<> { leaves = co_await page.may_leave(); }(*page_, leaves));
    return leaves;
  };
  open();
  EXPECT_TRUE(leaves());
  EXPECT_EQ(page_->draft(), "");
  press("Invert");
  press("Set");
  click(area_, cell(2, 3));
  EXPECT_FALSE(leaves());
  EXPECT_EQ(host_.user.questions.back().text,
            "Glyph: 0x000 / 0 is drawn but not set.\nThe font is not in a binary font file as it is now.\n\n"
            "Leave without saving it?");
  host_.user.answers = {Answer::yes};
  EXPECT_TRUE(leaves());

  // What a run that died had comes back, unsaved as it was.
  const std::string draft = page_->draft();
  const FontLibrary library = page_->editor().library();
  const Glyph drawn = buffer();
  host_.doc.font_draft = draft;
  host_.work.busy = true;
  open();
  EXPECT_EQ(page_->draft(), draft) << "before the text export is read, too";
  host_.work.busy = false;
  host_.work.catch_up();
  EXPECT_EQ(page_->editor().library().to_binary(), library.to_binary());
  EXPECT_EQ(buffer(), drawn);
  EXPECT_EQ(page_->draft(), draft);
  EXPECT_FALSE(leaves());
  press("Set");
  host_.user.paths = {folder_ / "a.bin"};
  press("Save font file...");
  EXPECT_TRUE(leaves());
  EXPECT_EQ(page_->draft(), "");
}

TEST_F(FontMakerPage, AVisitLeavesTheExportAsItWas) {
  FontLibrary library;
  library.set_glyph(1, Glyph(Glyph::Rows{0xFFFF, 0x00FF}));
  const std::string text = export_font_text(library);
  folder_.write("fntmkr.txt", text);
  open();
  pick(1, 0);
  page_->save_to_user_data();
  host_.user.answers = {Answer::yes};
  page_->close_page();
  EXPECT_TRUE(folder_.read("fntmkr.txt") == text) << "row 0 of glyph 1 is still there";
}

TEST_F(FontMakerPage, GlyphsAreComparedTakenOverAndGoThroughASheet) {
  open();
  const auto comparison = [this] { return page_->findChild<QLabel*>("comparison")->text().toStdString(); };
  EXPECT_EQ(comparison(), "As in the font file");
  pick(1, 4);
  press("Invert");
  EXPECT_EQ(comparison(), "As in the font file") << "drawn, not set";
  press("Set");
  EXPECT_EQ(comparison(), "1 of 1024 glyphs differ from the font file");

  std::vector<std::uint8_t> other = page_->editor().library().to_binary();
  other[5 * FontLibrary::kGlyphBytes] ^= 0x80;
  folder_.write("other.bin", {other.begin(), other.end()});
  host_.user.paths = {folder_ / "other.bin"};
  press("Compare with...");
  EXPECT_EQ(comparison(), "1 of 1024 glyphs differ from other.bin");
  EXPECT_FALSE(find<QAbstractButton>(*page_, "Take over")->isEnabled()) << "this one is the same";
  pick(5, 0);
  press("Take over");
  EXPECT_EQ(glyph(5).rows()[0], 0x8000);
  EXPECT_EQ(comparison(), "As in other.bin");

  host_.user.paths = {folder_ / "font.png", folder_ / "font.png"};
  press("Export sheet...");
  const FontLibrary before = page_->editor().library();
  press("Undo");
  press("Import sheet...");
  EXPECT_EQ(page_->editor().library().to_binary(), before.to_binary());
  QImage small(16, 16, QImage::Format_ARGB32);
  small.save(QString::fromStdString((folder_ / "small.png").string()));
  host_.user.paths = {folder_ / "small.png"};
  press("Import sheet...");
  EXPECT_EQ(host_.last_status(), "small.png is no sheet of 512 x 768 pixels");
  press("Compare with...");
  EXPECT_EQ(comparison(), "2 of 1024 glyphs differ from the font file") << "cancelled: its own file";
}

}  // namespace
}  // namespace qv5123
