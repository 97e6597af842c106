#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/command_link.h"
#include "link/register_write.h"

namespace qv5123 {

/// A tuning page without its window: its numbers by name, and how they go to and come from the chip and the
/// user data image. Numbers stand in the order of values().
class TuningPage {
 public:
  struct Value {
    std::string name;                  ///< with the page's name before it, "awb.a_slope"
    std::vector<std::size_t> entries;  ///< of the user data image, ascending; empty if it is not kept there
    bool in_reply = false;             ///< the chip reports it
    bool in_save = false;              ///< the full save sends it
  };
  using Numbers = std::vector<int>;

  struct Save {
    Traffic traffic;
    std::chrono::milliseconds settling{0};  ///< how long the chip stores afterwards
    Numbers numbers;                        ///< what was sent, which may have been corrected
    std::vector<std::string> warnings;      ///< what was corrected
  };

  virtual ~TuningPage() = default;

  const std::string& name() const { return name_; }
  const std::vector<Value>& values() const { return values_; }
  /// Makes the chip report the page's values.
  Batch request() const { return {{trigger_, 0}}; }
  std::uint8_t trigger() const { return trigger_; }

  /// The numbers as the page shows them after a load from the image.
  virtual Numbers from_image(const UserDataImage& image) const = 0;
  /// Nothing when the reply is too short. What the chip does not report is as the page starts.
  virtual std::optional<Numbers> from_reply(std::string_view reply) const = 0;
  /// Puts one number into its entries, limited as the page limits it.
  virtual void store(std::size_t value, int number, UserDataImage& image) const = 0;
  /// The full save of what the image holds.
  virtual Save save(const UserDataImage& image) const = 0;
  /// What the page does after its full save.
  virtual Task<> after_save(CommandLink&) const { co_return; }

 protected:
  TuningPage(std::string name, std::uint8_t trigger) : name_(std::move(name)), trigger_(trigger) {}
  std::vector<Value> values_;

 private:
  const std::string name_;
  const std::uint8_t trigger_;
};

/// The names of the pages.
inline constexpr const char* kTuningPages[] = {"front", "awb", "dynamic", "gamma", "matrix", "lsc"};
/// The page of that name, which is one of kTuningPages.
std::unique_ptr<TuningPage> make_tuning_page(std::string_view name);

}  // namespace qv5123
