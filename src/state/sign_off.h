#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/user_data_image.h"
#include "link/greeting.h"
#include "state/drawing.h"
#include "state/limits.h"
#include "state/write_journal.h"
#include "tuning/awb.h"
#include "tuning/gamma.h"
#include "tuning/lens_checks.h"
#include "tuning/patch_report.h"

/// What is signed when a board is done: all that is known of it, in one file.
namespace qv5123 {

/// How the chip's number is known where it reports none of that value.
inline constexpr const char* kNeverReported = "never reported";

struct SignOffValue {
  std::string name;     ///< within its page
  std::string caption;  ///< as people know it
  std::optional<int> page;
  std::optional<int> chip;
  std::optional<int> file;
  /// How the chip's number is: "verified", "read", "sent", kNeverReported; empty where it is not.
  std::string known;
  /// What limits go by: the chip's number, or the page's of what no chip gets. What was typed and not sent is
  /// none.
  std::optional<int> judged = {};
  bool unlike_file = false;  ///< `judged` is not what the chip would hold of the file's number
};
struct SignOffPage {
  std::string name;
  std::string title;
  std::vector<SignOffValue> values;
};

/// "HW" "1.2.3"; empty where it is not known.
struct SignOffVersion {
  std::string name;
  std::string chip;
  std::string file;
};

struct SignOffFile {
  std::string role;  ///< "Setting file", "Firmware", "Font"
  std::string name;
  std::size_t bytes = 0;
  std::string sha256;
};
/// A file by what it holds.
SignOffFile sign_off_file(std::string role, std::string name, std::string_view bytes);

/// What the journal of writes comes to.
struct JournalSummary {
  std::size_t writes = 0;
  std::size_t registers = 0;
  std::size_t failed = 0;   ///< that did not leave as a whole
  std::size_t dropped = 0;  ///< older ones that the journal no longer has
  std::string first;        ///< when; empty without any
  std::string last;
  std::vector<std::pair<std::string, std::size_t>> controls;  ///< how often each was used, by name
};
JournalSummary journal_summary(const WriteJournal& journal);

struct SignOff {
  std::string program;
  std::string time;
  std::string port;
  std::string serial_number;  ///< empty where the chip has told none
  std::string serial_typed;   ///< by who signs; empty where nothing was
  std::vector<SignOffVersion> versions;
  std::vector<SignOffPage> pages;

  std::optional<PatchReport> chart;  ///< with the matrix in force
  MeasuredColours measured{};        ///< the counts that the chart is judged by
  std::string chart_of;              ///< "TVI, Outdoor"
  bool chart_on_chip = true;         ///< the chip is known to hold that matrix
  LensCalibration lens;              ///< without samples where nothing was swept
  PerColour parameter1{};
  PerColour parameter2{};
  bool lens_on_chip = true;  ///< the chip is known to hold these
  LensField field;
  std::optional<GammaValues> gamma;
  std::optional<AwbValues> awb;
  std::optional<JournalSummary> journal;
  std::vector<SignOffFile> files;
  std::vector<JudgedLimit> limits;
  std::string notes;
};

/// What the chip told when it started and what the file has of it; null without a file.
void take_board(SignOff& report, const std::optional<Greeting>& told, const UserDataImage* file);

/// What limits may name: "mean color difference", "worst color difference" and "mean color difference
/// before", "lens ripple" and "lens ripple before" along the line, and "field ripple", percent, "unverified
/// values", "values unlike file", "failed writes", and every value that can be judged by page and name:
/// "awb.a_slope". What depends on values that the chip is not known to hold is no figure, nor is a field that
/// is not whole or in doubt.
Figures figures_of(const SignOff& report);

/// Behind what may be on the chip: ", which is not on the chip" where it is not.
inline std::string chip_words(bool on_chip) {
  return on_chip ? "" : ", which is not on the chip";
}

/// The pictures that a report has something for, in their order: the patches, the lens, the field, the gamma
/// curves and the white lines.
std::vector<Drawing> pictures_of(const SignOff& report);

/// The whole report as one HTML file without outside parts, which prints on A4. `picture` says how a picture
/// stands in it.
std::string sign_off_html(const SignOff& report,
                          const std::function<std::string(const Drawing&)>& picture = svg);
/// The same data as JSON, with the values by page and name:
///
///     {"program": "qv5123ctl 2.3.2", "time": ..., "pages": [
///     {"name": "awb", "values": {"a_slope": {"page": 12, "chip": 12, "file": null, "known": "read"}, ...}}]}
std::string sign_off_json(const SignOff& report);

}  // namespace qv5123
