// A sign-off report as HTML. The little that it uses of it a printer of text documents understands as well.
#include <array>

#include "base/text.h"
#include "state/sign_off.h"

namespace qv5123 {
namespace {

constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Sign-off report</title>
<style>
@page { size: A4; margin: 14mm 12mm; }
body { font-family: sans-serif; font-size: 10pt; color: #000; max-width: 186mm; margin: 0 auto; }
h1 { font-size: 16pt; } h2 { font-size: 12pt; margin: 5mm 0 2mm; page-break-after: avoid; }
table { border-collapse: collapse; font-size: 8.5pt; width: 100%; }
thead { display: table-header-group; } tr, svg { page-break-inside: avoid; }
td, th { border: 1px solid #bbb; padding: 1px 4px; text-align: left; }
td.n { text-align: right; } .bad { font-weight: bold; color: #a00000; }
svg { max-width: 100%; height: auto; display: block; }
</style></head><body>
)";

struct Cell {
  std::string text;
  enum class Kind { plain, number, bad } kind = Kind::plain;
};
using Cells = std::vector<Cell>;

std::string row(const Cells& cells) {
  constexpr std::array<const char*, 3> kKinds{"<td>", "<td class=\"n\" align=\"right\">",
                                              "<td class=\"bad\">"};
  std::string html = "<tr>";
  for (const Cell& cell : cells) {
    const std::string text = escaped(cell.text);
    html += kKinds[static_cast<std::size_t>(cell.kind)] +
            (cell.kind == Cell::Kind::bad ? "<b>" + text + "</b>" : text) + "</td>";
  }
  return html + "</tr>\n";
}

std::string table(const std::vector<const char*>& heads, const std::string& rows) {
  std::string html = "<table border=\"1\" cellspacing=\"0\" cellpadding=\"2\" width=\"100%\">";
  if (!heads.empty()) {
    html += "<thead><tr>";
    for (const char* head : heads) html += std::string("<th>") + head + "</th>";
    html += "</tr></thead>";
  }
  return html + "<tbody>\n" + rows + "</tbody></table>\n";
}

std::string heading(const std::string& text) {
  return "<h2>" + escaped(text) + "</h2>\n";
}

Cell number(const std::optional<int>& value) {
  return {value ? std::to_string(*value) : "", Cell::Kind::number};
}
Cell number(double value, int digits) {
  return {fixed(value, digits), Cell::Kind::number};
}

/// Told by its looks where the chip tells another.
Cell typed_serial(const SignOff& report) {
  const bool other = !report.serial_number.empty() && report.serial_number != report.serial_typed;
  return {report.serial_typed, other ? Cell::Kind::bad : Cell::Kind::plain};
}

/// "1.2.3, File 1.2.4": told by its looks where the two differ.
Cell version_cell(const SignOffVersion& version) {
  if (version.chip.empty()) return {"File " + version.file};
  if (version.file.empty()) return {version.chip};
  return {version.chip + ", File " + version.file,
          version.chip == version.file ? Cell::Kind::plain : Cell::Kind::bad};
}

std::string board(const SignOff& report) {
  std::string rows = row({{"Time"}, {report.time}}) + row({{"Port"}, {report.port}}) +
                     row({{"Serial number"},
                          {report.serial_number.empty() ? "not told by the chip" : report.serial_number}});
  if (!report.serial_typed.empty()) rows += row({{"Serial number as typed"}, typed_serial(report)});
  for (const SignOffVersion& version : report.versions)
    rows += row({{"Version " + version.name}, version_cell(version)});
  rows += row({{"Written by"}, {report.program}});
  for (const SignOffFile& file : report.files)
    rows += row(
        {{file.role}, {file.name + ", " + std::to_string(file.bytes) + " bytes, SHA-256 " + file.sha256}});
  return heading("Board") + table({}, rows);
}

std::string bound(const std::optional<double>& value) {
  return value ? figure_text(*value, 3) : "";
}

std::string limits(const SignOff& report) {
  if (report.limits.empty()) return {};
  std::string rows;
  std::size_t missed = 0;
  for (const JudgedLimit& limit : report.limits) {
    missed += limit.met ? 0 : 1;
    const Cell verdict = limit.met     ? Cell{"met"}
                         : limit.value ? Cell{"MISSED", Cell::Kind::bad}
                                       : Cell{"NOT MEASURED", Cell::Kind::bad};
    rows += row({{limit.limit.name},
                 {bound(limit.limit.low), Cell::Kind::number},
                 {bound(limit.limit.high), Cell::Kind::number},
                 {bound(limit.value), Cell::Kind::number},
                 verdict});
  }
  const std::string all = missed == 0 ? "Limits: all met"
                                      : "Limits: " + std::to_string(missed) + " of " +
                                            std::to_string(report.limits.size()) + " missed";
  return heading(all) + table({"Limit", "Low", "High", "Value", "Verdict"}, rows);
}

std::string pictures(const SignOff& report, const std::function<std::string(const Drawing&)>& picture) {
  std::string html;
  for (const Drawing& drawing : pictures_of(report)) html += heading(drawing.title) + picture(drawing);
  return html;
}

std::string chart(const SignOff& report) {
  if (!report.chart) return {};
  std::string rows;
  for (std::size_t i = 0; i < kPatches; ++i) {
    const auto& match = report.chart->patches[i];
    if (!match) continue;
    const auto count = [&](std::size_t c) { return number(static_cast<int>(report.measured[i][c])); };
    rows += row({{kPatchCaptions[i]},
                 count(0),
                 count(1),
                 count(2),
                 number(match->before, 2),
                 number(match->after, 2)});
  }
  const auto summary = [&](const char* name, double DifferenceSummary::*of) {
    return row({{name}, {}, {}, {}, number(report.chart->before.*of, 2), number(report.chart->after.*of, 2)});
  };
  rows += summary("Mean", &DifferenceSummary::mean) + summary("Median", &DifferenceSummary::median) +
          summary("Worst", &DifferenceSummary::worst);
  return heading("Color difference CIEDE2000, matrix of " + report.chart_of +
                 chip_words(report.chart_on_chip)) +
         table({"Patch", "R", "G", "B", "Before", "After"}, rows);
}

std::string figures(const SignOff& report) {
  std::string rows;
  for (const auto& [name, value] : figures_of(report))
    if (name.find('.') == std::string::npos)
      rows += row({{name}, {figure_text(value, 2), Cell::Kind::number}});
  return heading("Figures") + table({"Figure", "Value"}, rows);
}

std::string values(const SignOffPage& page) {
  std::string rows;
  for (const SignOffValue& value : page.values) {
    Cell file = number(value.file);
    if (value.unlike_file) file.kind = Cell::Kind::bad;
    rows += row({{value.name}, {value.caption}, number(value.page), number(value.chip), file, {value.known}});
  }
  return heading(page.title) + table({"Value", "Caption", "Page", "Chip", "File", "On the chip"}, rows);
}

std::string journal(const SignOff& report) {
  if (!report.journal) return {};
  const JournalSummary& summary = *report.journal;
  std::string rows = row({{"Writes"}, {std::to_string(summary.writes)}}) +
                     row({{"Registers written"}, {std::to_string(summary.registers)}}) +
                     row({{"Did not leave whole"}, {std::to_string(summary.failed)}});
  if (summary.dropped > 0) rows += row({{"Older ones dropped"}, {std::to_string(summary.dropped)}});
  if (summary.writes > 0) rows += row({{"First and last"}, {summary.first + ", " + summary.last}});
  for (const auto& [name, times] : summary.controls) rows += row({{name}, {std::to_string(times)}});
  return heading("Journal of writes") + table({}, rows);
}

/// Escaped, with its lines as they are.
std::string lines(const std::string& text) {
  std::string html;
  for (const char c : escaped(text)) html += c == '\n' ? std::string("<br>\n") : std::string(1, c);
  return html;
}

std::string signature(const SignOff& report) {
  return heading("Notes") + "<p>" + (report.notes.empty() ? "&nbsp;" : lines(report.notes)) +
         "</p>\n<p><br><br>Date: ____________________ &nbsp; Signature: ______________________________</p>\n";
}

}  // namespace

std::string sign_off_html(const SignOff& report, const std::function<std::string(const Drawing&)>& picture) {
  std::string html = std::string(kHead) + "<h1>Sign-off report</h1>\n" + board(report) + limits(report) +
                     figures(report) + signature(report) + pictures(report, picture) + chart(report);
  for (const SignOffPage& page : report.pages) html += values(page);
  return html + journal(report) + "</body></html>\n";
}

}  // namespace qv5123
