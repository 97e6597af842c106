#include "app/ui/help_window.h"

#include <QAction>
#include <QFile>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>
#include <utility>

namespace qv5123 {
namespace {

/// Where the table of keys stands in its topic.
constexpr const char* kKeysMark = "%KEYS%";
/// Of links that do something: "do:lsc".
constexpr const char* kCommandScheme = "do";

}  // namespace

/// Shows the topics, and in one of them the keys that the window has.
class HelpBrowser final : public QTextBrowser {
 public:
  explicit HelpBrowser(HelpWindow& help) : QTextBrowser(&help), help_(help) {}
  std::function<QString()> keys = [] { return QString(); };

  QVariant loadResource(int type, const QUrl& name) override {
    const QVariant resource = QTextBrowser::loadResource(type, name);
    QByteArray text = resource.toByteArray();
    if (!text.contains(kKeysMark)) return resource;
    return text.replace(kKeysMark, keys().toUtf8());
  }

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override {
    if (name.scheme() == QLatin1String(kCommandScheme)) return emit help_.command_chosen(name.path());
    QTextBrowser::doSetSource(name, type);
  }

 private:
  HelpWindow& help_;
};

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setWindowTitle("QV5123 Help");
  browser_ = new HelpBrowser(*this);
  browser_->setAccessibleName("Help text");
  browser_->setOpenExternalLinks(false);
  show_topic({});
  auto* bar = new QToolBar(this);
  connect(bar->addAction("Contents"), &QAction::triggered, this, [this] { show_topic({}); });
  connect(bar->addAction("First steps"), &QAction::triggered, this, [this] { show_topic("first-steps"); });
  QAction* back = bar->addAction("Back");
  back->setShortcut(QKeySequence::Back);
  back->setEnabled(false);
  connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  auto* close = new QAction("Close", this);
  close->setShortcut(QKeySequence::Cancel);
  connect(close, &QAction::triggered, this, &QWidget::hide);
  addAction(close);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  rows->addWidget(bar);
  rows->addWidget(browser_, 1);
  resize(720, 640);
}

void HelpWindow::tell_keys(std::function<QString()> keys) {
  browser_->keys = std::move(keys);
}

const QTextBrowser& HelpWindow::browser() const {
  return *browser_;
}

void HelpWindow::show_topic(const QString& name) {
  const QString file = QStringLiteral("help/%1.md").arg(name.isEmpty() ? QStringLiteral("index") : name);
  if (!QFile::exists(QStringLiteral(":/") + file)) return;
  browser_->setSource(QUrl(QStringLiteral("qrc:/") + file), QTextDocument::MarkdownResource);
}

}  // namespace qv5123
