#include "simulator/ui/camera_dock.h"

#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "base/ui/controls.h"
#include "simulator/simulated_chip.h"
#include "simulator/ui/picture_view.h"

namespace qv5123 {
namespace {

/// Large enough to tell patches and noise, small enough to be there at once.
constexpr QSize kLargestPicture{640, 360};

/// The words that lists say for the traits, in their order.
constexpr std::array<const char*, kTraits> kTraitTexts = {
    "turned by 4 degrees", "at an angle",  "metamerism of 4 %", "flare",     "warm lamp from the right",
    "overexposed",         "underexposed", "cos\u2074 lens",    "steep lens"};

QString scene_text(const Scene& scene) {
  QString text = scene.kind == Scene::Kind::flat ? "Flat field" : "Colour chart";
  for (unsigned trait = 0; trait < kTraits; ++trait) {
    if (scene.has(static_cast<Trait>(trait))) text += QString(", ") + kTraitTexts[trait];
  }
  return QString("%1, %2 x %3").arg(text).arg(scene.width).arg(scene.height);
}

/// Shows the item with this data, which the list gets where it has none.
void show_item(QComboBox* list, const QVariant& data, const QString& text) {
  const QSignalBlocker blocker(list);
  if (list->findData(data) < 0) list->addItem(text, data);
  list->setCurrentIndex(list->findData(data));
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
  // Floating it would stand over a page.
  setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
  auto* content = new QWidget(this);
  scene_ = add_choice(content, "scene", "Scene", "What the simulated camera looks at");
  lamp_ = add_choice(content, "lamp", "Lamp", "Colour temperature of the light on the scene");
  noise_ = add_choice(content, "noise", "Noise", "Noise of the sensor");
  fill_choices();
  view_ = new PictureView(content);
  view_->setAccessibleName("Picture of the simulated camera");
  view_->setToolTip("A click moves the cursor of the color picker there");
  connect(view_, &PictureView::clicked, this, &CameraDock::tell_place);
  text_ = new QLabel(content);
  text_->setAccessibleDescription("Exposure and white balance");
  auto* layout = new QVBoxLayout(content);
  auto* light = new QHBoxLayout;
  light->addWidget(lamp_);
  light->addWidget(noise_);
  layout->addWidget(scene_);
  layout->addLayout(light);
  layout->addWidget(text_);
  layout->addWidget(view_, 1);
  setWidget(content);

  timer_.setInterval(kLook);
  connect(&timer_, &QTimer::timeout, this, &CameraDock::look);
}

QComboBox* CameraDock::add_choice(QWidget* content, const char* name, const QString& what,
                                  const QString& tooltip) {
  auto* list = new QComboBox(content);
  list->setObjectName(name);
  list->setAccessibleName(what);
  list->setToolTip(tooltip);
  // A long name must not make the dock wide.
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  return list;
}

void CameraDock::fill_choices() {
  for (const char* name : kSceneNames)
    scene_->addItem(scene_text(scene_named(name).value_or(Scene{})), QString(name));
  for (const int lamp : kLamps) lamp_->addItem(QString("Lamp of %1 K").arg(lamp), lamp);
  for (const char* name : kNoiseNames) noise_->addItem(QString("Noise %1").arg(name), QString(name));
  for (QComboBox* list : {scene_, lamp_, noise_}) on_choice(list, [this](int) { aim(); });
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
  show_camera(order.camera);
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

void CameraDock::show_camera(const Camera& camera) {
  show_item(scene_, QString::fromStdString(scene_name(camera.scene())), scene_text(camera.scene()));
  const int lamp = camera.truth().lamp;
  show_item(lamp_, lamp, QString("Lamp of %1 K").arg(lamp));
  const std::string_view noise = noise_name(camera.truth());
  show_item(noise_, QString::fromLatin1(noise.data(), static_cast<qsizetype>(noise.size())), "Noise");
}

void CameraDock::tell_place(QPointF place) {
  if (!shown_) return;
  const Scene& scene = shown_->camera.scene();
  const auto pixel = [](double at, int size, bool turned) {
    const int pixel = std::min(static_cast<int>(at * size), size - 1);
    return turned ? size - 1 - pixel : pixel;
  };
  emit place_clicked(pixel(place.x(), scene.width, shown_->settings.mirror),
                     pixel(place.y(), scene.height, shown_->settings.flip));
}

void CameraDock::aim() {
  const std::optional<Scene> scene = scene_named(scene_->currentData().toString().toStdString());
  if (!scene) return;
  with_chip_([&](SimulatedChip& chip) {
    CameraTruth truth = chip.camera() ? chip.camera()->truth() : CameraTruth{};
    truth.lamp = lamp_->currentData().toInt();
    set_noise(truth, noise_->currentData().toString().toStdString());
    chip.set_camera(Camera(*scene, truth));
  });
  look();
}

}  // namespace qv5123
