#include "console/ui/help_window.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTextBlock>
#include <set>

#include "console/ui/pages.h"

namespace qv5123 {
namespace {

std::set<QString> links_of(const QTextDocument& document) {
  std::set<QString> links;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (const QTextLayout::FormatRange& range : block.textFormats()) {
      if (range.format.isAnchor()) links.insert(range.format.anchorHref());
    }
  }
  return links;
}

TEST(HelpWindow, HasATopicForEveryPageAndNoDeadLinks) {
  HelpWindow help;
  const std::set<QString> contents = links_of(*help.browser().document());
  for (const PageEntry& entry : kPageEntries) {
    const QString file = QString(entry.name) + ".md";
    EXPECT_TRUE(contents.count(file)) << entry.name;
    help.show_topic(entry.name);
    EXPECT_EQ(help.browser().source(), QUrl("qrc:/help/" + file));
    EXPECT_GT(help.browser().toPlainText().size(), 500) << entry.name;
    for (const QString& link : links_of(*help.browser().document())) {
      EXPECT_TRUE(QFile::exists(":/help/" + link)) << entry.name << " to " << link.toStdString();
    }
  }
  for (const QString& link : contents) EXPECT_TRUE(QFile::exists(":/help/" + link)) << link.toStdString();
  help.show_topic("no-such-topic");
  EXPECT_EQ(help.browser().source(), QUrl("qrc:/help/make-flash.md")) << "nothing changes";
}

}  // namespace
}  // namespace qv5123
