#include "app/ui/page_commands.h"

#include <gtest/gtest.h>

#include <QtWidgets>
#include <set>

#include "app/ui/help_window.h"
#include "app/ui/window_actions.h"
#include "app/ui/window_bench.h"
#include "base/ui/page_marks.h"

namespace qv5123 {
namespace {

using Keys = std::set<std::pair<std::string, std::string>>;

void add_keys(const QWidget& part, Keys& keys) {
  for (const QAction* action : part.findChildren<QAction*>())
    if (!action->shortcut().isEmpty())
      keys.emplace(action->shortcut().toString().toStdString(), action->text().toStdString());
}

TEST(PartKeys, AreInTheHelpOnceWhetherTheirPartIsOpenOrNot) {
  test::WindowBench bench;
  const HelpWindow help;
  Keys listed, real;
  for (const PartKey& key : kPartKeys) listed.emplace(key.keys, key.text);
  add_keys(help, real);
  for (const PageEntry& entry : kPageEntries) add_keys(bench.choose(entry.id), real);
  EXPECT_EQ(real, listed);

  bench.view->pages().mark(PageId::lsc, true);
  const QStringList rows = shortcuts_markdown(*bench.frame).split('\n', Qt::SkipEmptyParts).mid(2);
  for (const QString& row : rows) EXPECT_FALSE(row.startsWith("|  |")) << row.toStdString();
  EXPECT_EQ(rows.filter("| Ctrl+C |").size(), 2) << "the charts' and that of all others";
  EXPECT_TRUE(rows.contains("| Ctrl+4 | LSC |")) << "without its dot";
  EXPECT_TRUE(rows.contains("| Alt+Left | Back (help) |"));
}

TEST(PageCommands, AreTheButtonsThatAnOpenPageShows) {
  test::WindowBench bench;
  for (const auto& [id, names] : kPageCommands) {
    QWidget& page = bench.choose(id);
    for (auto* box : page.findChildren<QCheckBox*>())
      if (box->property(kUnfolds).toBool()) box->setChecked(true);
    QSet<QString> real;
    for (const auto* button : page.findChildren<QAbstractButton*>()) {
      const bool presses = button->isVisibleTo(&page) && !button->isCheckable() &&
                           !button->property(kSetsTheEditsBeside).toBool();
      if (presses && button->focusPolicy() & Qt::TabFocus) real.insert(button->accessibleName());
    }
    const QStringList listed = QString(names).split('|');
    EXPECT_TRUE(real == QSet<QString>(listed.begin(), listed.end()))
        << "not " << names << " but " << QStringList(real.values()).join('|').toStdString();
  }
}

}  // namespace
}  // namespace qv5123
