// A sign-off report as JSON.
#include <array>
#include <cmath>

#include "base/text.h"
#include "state/json_text.h"
#include "state/sign_off.h"

namespace qv5123 {
namespace {

std::string text_of(double value) {
  return std::isfinite(value) ? fixed(value, 4) : "null";
}
std::string text_of(const std::optional<double>& value) {
  return value ? text_of(*value) : "null";
}
std::string text_of(const std::optional<int>& value) {
  return value ? std::to_string(*value) : "null";
}
std::string text_of(bool yes) {
  return yes ? "true" : "false";
}

/// "{...}" or "[...]" of what is added.
class Group {
 public:
  explicit Group(char open) : text_(1, open), close_(open == '{' ? '}' : ']') {}
  Group& add(std::string_view name, const std::string& json) { return item(json_text(name) + ": " + json); }
  Group& add(std::string_view name, const char* json) { return add(name, std::string(json)); }
  Group& item(const std::string& json) {
    text_ += (text_.size() > 1 ? ", " : "") + json;
    return *this;
  }
  std::string done() const { return text_ + close_; }

 private:
  std::string text_;
  char close_;
};

template <class Numbers>
std::string list(const Numbers& numbers) {
  Group group('[');
  for (const auto& number : numbers) group.item(std::to_string(number));
  return group.done();
}

std::string json_of(const SignOffPage& page) {
  Group values('{');
  for (const SignOffValue& value : page.values)
    values.add(value.name, Group('{')
                               .add("caption", json_text(value.caption))
                               .add("page", text_of(value.page))
                               .add("chip", text_of(value.chip))
                               .add("file", text_of(value.file))
                               .add("known", json_text(value.known))
                               .add("unlike_file", text_of(value.unlike_file))
                               .done());
  return "\n" + Group('{')
                    .add("name", json_text(page.name))
                    .add("title", json_text(page.title))
                    .add("values", values.done())
                    .done();
}

std::string json_of(const DifferenceSummary& summary) {
  return Group('{')
      .add("mean", text_of(summary.mean))
      .add("median", text_of(summary.median))
      .add("worst", text_of(summary.worst))
      .done();
}

std::string color(const LinearRgb& rgb) {
  Group group('[');
  for (const double share : rgb) group.item(text_of(share));
  return group.done();
}

std::string chart(const SignOff& report) {
  Group patches('[');
  for (std::size_t i = 0; i < kPatches; ++i) {
    Group patch('{');
    patch.add("name", json_text(kPatchCaptions[i])).add("counts", list(report.measured[i]));
    if (const auto& match = report.chart->patches[i])
      patch.add("reference", color(match->reference))
          .add("measured", color(match->measured))
          .add("corrected", color(match->corrected))
          .add("before", text_of(match->before))
          .add("after", text_of(match->after));
    patches.item(patch.done());
  }
  return Group('{')
      .add("of", json_text(report.chart_of))
      .add("on_chip", text_of(report.chart_on_chip))
      .add("patches", patches.done())
      .add("before", json_of(report.chart->before))
      .add("after", json_of(report.chart->after))
      .done();
}

std::string awb_patches(const AwbValues& awb) {
  Group patches('[');
  for (std::size_t i = 0; i < kAwbPatchCount; ++i) {
    const auto& [r, g, b] = awb.patches[i];
    patches.item(Group('{')
                     .add("name", json_text(kAwbPatches[i].caption))
                     .add("counts", list(std::array{r, g, b}))
                     .done());
  }
  return patches.done();
}

std::string json_of(const JournalSummary& journal) {
  Group controls('{');
  for (const auto& [name, times] : journal.controls) controls.add(name, std::to_string(times));
  return Group('{')
      .add("writes", std::to_string(journal.writes))
      .add("registers", std::to_string(journal.registers))
      .add("failed", std::to_string(journal.failed))
      .add("dropped", std::to_string(journal.dropped))
      .add("first", json_text(journal.first))
      .add("last", json_text(journal.last))
      .add("controls", controls.done())
      .done();
}

std::string lens(const SignOff& report) {
  Group samples('[');
  for (const LensSample& sample : report.lens.samples)
    samples.item(Group('{').add("x", std::to_string(sample.x)).add("rgb", list(sample.rgb)).done());
  Group field('[');
  for (const PerColour& place : report.field) field.item(list(place));
  return Group('{')
      .add("on_chip", text_of(report.lens_on_chip))
      .add("width", std::to_string(report.lens.width))
      .add("centre", std::to_string(report.lens.centre.x))
      .add("parameter1", list(report.parameter1))
      .add("parameter2", list(report.parameter2))
      .add("samples", samples.done())
      .add("field", field.done())
      .done();
}

std::string gamma(const GammaValues& gamma) {
  Group curves('{');
  for (std::size_t id = 0; id < kGammaCurves; ++id) curves.add(kGammaCurveNames[id], list(gamma.curves[id]));
  return curves.done();
}

std::string board(const SignOff& report) {
  Group board('{');
  board.add("serial_number", json_text(report.serial_number));
  board.add("serial_typed", json_text(report.serial_typed));
  Group versions('{');
  for (const SignOffVersion& version : report.versions)
    versions.add(version.name,
                 Group('{').add("chip", json_text(version.chip)).add("file", json_text(version.file)).done());
  return board.add("versions", versions.done()).done();
}

std::string files(const SignOff& report) {
  Group files('[');
  for (const SignOffFile& file : report.files)
    files.item(Group('{')
                   .add("role", json_text(file.role))
                   .add("name", json_text(file.name))
                   .add("bytes", std::to_string(file.bytes))
                   .add("sha256", json_text(file.sha256))
                   .done());
  return files.done();
}

std::string limits(const SignOff& report) {
  Group limits('[');
  for (const JudgedLimit& limit : report.limits)
    limits.item(Group('{')
                    .add("name", json_text(limit.limit.name))
                    .add("low", text_of(limit.limit.low))
                    .add("high", text_of(limit.limit.high))
                    .add("value", text_of(limit.value))
                    .add("met", text_of(limit.met))
                    .done());
  return limits.done();
}

}  // namespace

std::string sign_off_json(const SignOff& report) {
  Group pages('[');
  for (const SignOffPage& page : report.pages) pages.item(json_of(page));
  Group figures('{');
  for (const auto& [name, value] : figures_of(report))
    if (name.find('.') == std::string::npos) figures.add(name, text_of(value));
  Group whole('{');
  whole.add("program", json_text(report.program))
      .add("time", json_text(report.time))
      .add("port", json_text(report.port))
      .add("board", board(report))
      .add("files", files(report))
      .add("limits", limits(report))
      .add("figures", figures.done())
      .add("notes", json_text(report.notes));
  if (report.chart) whole.add("chart", chart(report));
  whole.add("lens", lens(report));
  if (report.gamma) whole.add("gamma", gamma(*report.gamma));
  if (report.awb)
    whole.add("white_lines", list(report.awb->words)).add("awb_patches", awb_patches(*report.awb));
  if (report.journal) whole.add("journal", json_of(*report.journal));
  return whole.add("pages", pages.done()).done() + "\n";
}

}  // namespace qv5123
