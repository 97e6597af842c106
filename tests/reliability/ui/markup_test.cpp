// Nothing that a file or the chip brings is interpreted: what looks like markup is shown as it is.
#include <QLabel>
#include <QTextDocumentFragment>

#include "reliability/ui/matrix_bench.h"

namespace qv5123 {
namespace {

constexpr const char* kMarkup = R"(<b>%s%n & <img src="picture.png">.txt)";

/// What a tool tip comes to in the end.
QString seen(const QString& tip) {
  return Qt::mightBeRichText(tip) ? QTextDocumentFragment::fromHtml(tip).toPlainText() : tip;
}

TEST(Markup, IsShownAsItIs) {
  test::MatrixBench bench;
  bench.open(PageId::registers);
  std::ofstream(kMarkup) << "no register\n";
  bench.user.paths = {kMarkup};
  bench.click("Load REG from File to ISP...");
  bench.wire.advance(500);
  const auto* status = bench.control<QLabel>(*bench.frame, "Status message");
  EXPECT_EQ(status->textFormat(), Qt::PlainText);
  EXPECT_TRUE(status->text().startsWith(kMarkup)) << status->text().toStdString();
  EXPECT_EQ(seen(status->toolTip()), status->text());

  bench.wire.receive(kMarkup);
  bench.view->take_received(bench.wire.console);
  EXPECT_TRUE(bench.console_has(kMarkup));
}

}  // namespace
}  // namespace qv5123
