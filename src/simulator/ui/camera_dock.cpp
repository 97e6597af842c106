#include "simulator/ui/camera_dock.h"

#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "simulator/simulated_chip.h"
#include "simulator/ui/picture_view.h"

namespace qv5123 {
namespace {

/// Large enough to tell patches and noise, small enough to be there at once.
constexpr QSize kLargestPicture{640, 360};

QString scene_text(const Scene& scene) {
  const QString kind = scene.kind == Scene::Kind::flat ? "Flat field" : "Colour chart";
  return QStringLiteral("%1, %2 x %3").arg(kind).arg(scene.width).arg(scene.height);
}

QImage image_of(const Preview& preview) {
  QImage image(preview.width, preview.height, QImage::Format_RGB32);
  for (int y = 0; y < preview.height; ++y) {
    const auto row = preview.pixels.begin() + static_cast<std::ptrdiff_t>(y) * preview.width;
    std::copy_n(row, preview.width, reinterpret_cast<QRgb*>(image.scanLine(y)));
  }
  return image;
}

}  // namespace

CameraDock::CameraDock(WithChip with_chip, Scheduler& scheduler, QWidget* parent)
    : QDockWidget("Camera", parent), with_chip_(std::move(with_chip)), background_(scheduler) {
  setObjectName("camera");
  auto* content = new QWidget(this);
  scene_ = new QComboBox(content);
  scene_->setObjectName("scene");
  scene_->setAccessibleName("Scene");
  scene_->setToolTip("What the simulated camera looks at");
  for (const char* name : kSceneNames) {
    scene_->addItem(scene_text(scene_named(name).value_or(Scene{})), QString::fromLatin1(name));
  }
  view_ = new PictureView(content);
  view_->setAccessibleName("Picture of the simulated camera");
  text_ = new QLabel(content);
  text_->setAccessibleName("Exposure and white balance");
  auto* layout = new QVBoxLayout(content);
  layout->addWidget(scene_);
  layout->addWidget(text_);
  layout->addWidget(view_, 1);
  setWidget(content);

  timer_.setInterval(kLook);
  connect(&timer_, &QTimer::timeout, this, &CameraDock::look);
  connect(scene_, &QComboBox::activated, this,
          [this](int index) { aim(scene_->itemData(index).toString()); });
}

const QImage& CameraDock::picture() const {
  return view_->picture();
}

void CameraDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  timer_.start();
  look();
}

void CameraDock::hideEvent(QHideEvent* event) {
  QDockWidget::hideEvent(event);
  timer_.stop();
}

std::optional<CameraDock::Order> CameraDock::order() {
  const QSize size = kLargestPicture.scaled(view_->size(), Qt::KeepAspectRatio).boundedTo(kLargestPicture);
  if (size.isEmpty()) return std::nullopt;
  std::optional<Order> order;
  with_chip_([&](SimulatedChip& chip) {
    if (!chip.camera()) return;
    chip.look();
    order.emplace(Order{*chip.camera(), picture_settings(chip.state()), size});
  });
  return order;
}

void CameraDock::look() {
  if (computing_.running()) return;
  const std::optional<Order> next = order();
  if (!next || next == shown_) return;
  computing_.start(compute(*next));
}

Task<> CameraDock::compute(Order order) {
  shown_ = order;
  show_scene(order.camera.scene());
  const PictureSettings& settings = order.settings;
  text_->setText(QStringLiteral("Gain %1   R %2   B %3")
                     .arg(settings.gain, 0, 'f', 2)
                     .arg(settings.white_balance[0], 0, 'f', 2)
                     .arg(settings.white_balance[2], 0, 'f', 2));
  std::function<QImage()> work = [order] {
    return image_of(render_preview(order.camera, order.settings, order.size.width(), order.size.height()));
  };
  const QImage picture = co_await background_.run<QImage>(std::move(work));
  view_->set_picture(picture);
  emit picture_shown();
}

void CameraDock::show_scene(const Scene& scene) {
  const QSignalBlocker blocker(scene_);
  scene_->setCurrentIndex(scene_->findData(QString::fromStdString(scene_name(scene))));
}

void CameraDock::aim(const QString& name) {
  const std::optional<Scene> scene = scene_named(name.toStdString());
  if (!scene) return;
  with_chip_([&](SimulatedChip& chip) {
    chip.set_camera(Camera(*scene, chip.camera() ? chip.camera()->truth() : CameraTruth{}));
  });
  look();
}

}  // namespace qv5123
