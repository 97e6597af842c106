#pragma once

#include <QDockWidget>
#include <QTimer>
#include <functional>
#include <optional>

#include "base/background.h"
#include "simulator/preview.h"

class QComboBox;
class QLabel;

namespace qv5123 {

class PictureView;
class SimulatedChip;

/// Shows what the simulated chip's camera sees, as a monitor on the chip's output would, with the cursor in
/// it, and lets the user choose what the camera looks at. The picture is computed on a thread of its own.
class CameraDock final : public QDockWidget {
  Q_OBJECT

 public:
  /// Calls what it is given with the chip, which stands still meanwhile.
  using WithChip = std::function<void(const std::function<void(SimulatedChip&)>&)>;

  /// How often the dock looks for something new.
  static constexpr std::chrono::milliseconds kLook{200};

  /// The scheduler must outlive the dock. Its end waits for a picture that is being computed.
  CameraDock(WithChip with_chip, Scheduler& scheduler, QWidget* parent = nullptr);

  /// The picture shown; null before the first.
  const QImage& picture() const;

 signals:
  void picture_shown();
  /// A click into the picture, at this place of what the chip puts out.
  void place_clicked(int x, int y);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  /// All that a picture depends on.
  struct Order {
    Camera camera;
    PictureSettings settings;
    QSize size;
    friend bool operator==(const Order&, const Order&) = default;
  };

  std::optional<Order> order();
  void look();
  Task<> compute(Order order);
  QComboBox* add_choice(QWidget* content, const char* name, const QString& what, const QString& tooltip);
  void fill_choices();
  void show_camera(const Camera& camera);
  void aim();
  void tell_place(QPointF place);

  const WithChip with_chip_;
  QComboBox* scene_ = nullptr;
  QComboBox* lamp_ = nullptr;
  QComboBox* noise_ = nullptr;
  PictureView* view_ = nullptr;
  QLabel* text_ = nullptr;
  QTimer timer_;
  std::optional<Order> shown_;  ///< or on its way
  BackgroundThread background_;
  Flow computing_;
};

}  // namespace qv5123
