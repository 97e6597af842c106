#include "app/ui/help_window.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTextBlock>
#include <set>

#include "app/ui/pages.h"

namespace qv5123 {
namespace {

std::set<QString> links_of(const QTextDocument& document) {
  std::set<QString> links;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (const QTextLayout::FormatRange& range : block.textFormats())
      if (range.format.isAnchor()) links.insert(range.format.anchorHref());
  }
  return links;
}

TEST(HelpWindow, HasATopicForEveryPageAndNoDeadLinks) {
  HelpWindow help;
  std::set<QString> links = links_of(*help.browser().document());
  for (const PageEntry& entry : kPageEntries) {
    const QString file = QString(entry.name) + ".md";
    EXPECT_TRUE(links.count(file)) << entry.name;
    help.show_topic(entry.name);
    EXPECT_EQ(help.browser().source(), QUrl("qrc:/help/" + file));
    links.merge(links_of(*help.browser().document()));
  }
  help.show_topic("first-steps");
  links.merge(links_of(*help.browser().document()));
  std::erase_if(links, [](const QString& link) { return link.startsWith("do:"); });
  for (const QString& link : links) EXPECT_TRUE(QFile::exists(":/help/" + link)) << link.toStdString();
}

}  // namespace
}  // namespace qv5123
