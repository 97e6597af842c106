#include "app/ui/report_tool.h"

#include <gmock/gmock.h>

#include <QtWidgets>

#include "app/ui/window_bench.h"
#include "state/ui/report_pdf.h"

namespace qv5123 {
namespace {

using testing::HasSubstr;

struct ReportBench : test::WindowBench {
  WriteHistory history;
  ReportTool tool{{*frame, *view, user, work, history, [] { return std::string("COM5"); },
                   [] {
                     return std::optional(Greeting{{{{1, 0, 2}}}, "QV5120042"});
                   }}};

  std::string written(const std::string& name, ReportAnswers answers = {}) {
    std::string trouble;
    FlowSet flows;
    flows.spawn(write(name, std::move(answers), trouble));
    wire.advance(10);
    EXPECT_EQ(trouble, "");
    return folder.read(name);
  }
  Task<> write(std::string name, ReportAnswers answers, std::string& trouble) {
    trouble = co_await tool.write(folder.path() / name, std::move(answers));
  }
};

TEST(ReportTool, WritesWhatTheChipToldAndPdfOfAFewPages) {
  ReportBench bench;
  ReportAnswers answers;
  answers.serial_number = "other";
  const std::string html = bench.written("r.html", answers);
  EXPECT_THAT(html, HasSubstr("<td>QV5120042</td>"));
  EXPECT_THAT(html, HasSubstr("<b>other</b>"));
  EXPECT_THAT(html, HasSubstr("<td>Version HW</td><td>1.0.2</td>"));

  const std::string pdf = bench.written("r.pdf");
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  std::size_t pages = 0;
  for (std::size_t at = 0; (at = pdf.find("/Type /Page\n", at)) != std::string::npos; ++at) ++pages;
  EXPECT_GT(pages, 4u);
  EXPECT_LT(pages, 40u);
}

TEST(ReportPdf, AHeadingBehindATableOverTwoPagesHasItsRoom) {
  QTextDocument document;
  QString html = "<p>line</p><h2>one</h2><table>";
  for (int row = 0; row < 40; ++row) html += "<tr><td>cell</td></tr>";
  document.setHtml(html + "</table><h2>two</h2><p>line</p>");
  document.setPageSize({400, 300});
  keep_headings(document);
  const QAbstractTextDocumentLayout& layout = *document.documentLayout();
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    if (block.text() == "two") {
      EXPECT_GT(layout.blockBoundingRect(block).top(), layout.blockBoundingRect(block.previous()).bottom());
    }
}

TEST(ReportPdf, NoHeadingStaysAloneAtTheFootOfAPage) {
  for (int lines = 0; lines < 60; ++lines) {
    QTextDocument document;
    document.setHtml(QString("<p>line</p>").repeated(lines) +
                     "<h2>picture</h2><p><img src=\"none\" width=\"200\" height=\"150\"></p>"
                     "<h2>table</h2><table><tr><td>1</td></tr><tr><td>2</td></tr></table>");
    document.setPageSize({400, 600});
    keep_headings(document);
    const auto page_of = [&](const QTextBlock& block) {
      return static_cast<int>(document.documentLayout()->blockBoundingRect(block).bottom() / 600);
    };
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
      if (block.blockFormat().headingLevel() == 0) continue;
      EXPECT_EQ(page_of(block), page_of(block.next())) << block.text().toStdString() << " behind " << lines;
    }
    EXPECT_TRUE(lines > 0 || document.pageCount() == 1);
  }
}

}  // namespace
}  // namespace qv5123
