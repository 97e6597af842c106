#include "base/atomic_file.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/numbers.h"
#include "console/setting_file.h"
#include "console/setting_format.h"
#include "content/flash_image.h"
#include "content/flash_inspection.h"

namespace qv5123 {
namespace {

struct MakeOptions {
  FlashFiles files;
  std::filesystem::path output;
  bool lenient = false;
};
struct InspectOptions {
  std::filesystem::path image;
};

/// The image has room for twice as many numbers as a setting file has; a file with all of them is whole too.
void check_user_file(const MakeOptions& options) {
  const std::string text = read_file(options.files.user, kSettingFileLimit);
  if (format_summary(text, flash::kUserSize).empty()) return;
  check_settings_text(options.files.user, text, UserDataImage::kSize, options.lenient);
}

ExitCode make(Context& context, const MakeOptions& options) {
  // The window leaves out what it cannot read; what is named here must be there.
  for (const auto& path : {options.files.firmware, options.files.font}) read_file(path);
  check_user_file(options);
  const FlashBuild build = build_flash_image(options.files);
  if (!build.ok()) refuse(build.refusal);
  write_file(options.output, build.image);
  context.out.result(Json{{"file", path_text(options.output)}, {"bytes", build.image.size()}});
  context.out.remark(path_text(options.output) + ": " + std::to_string(build.image.size()) + " bytes\n");
  return ExitCode::done;
}

Json json_of(const FlashInspection& inspection) {
  Json regions = Json::array();
  for (const FlashRegion& region : inspection.regions) {
    regions.push_back({{"name", region.name},
                       {"offset", region.offset},
                       {"size", region.size},
                       {"used", region.used},
                       {"crc32", region.crc32}});
  }
  return {{"regions", regions},
          {"erased", inspection.erased},
          {"firmware_copies_agree", inspection.firmware_copies_agree},
          {"user_copies_agree", inspection.user_copies_agree}};
}

std::string text_of(const FlashInspection& inspection) {
  std::string text;
  for (const FlashRegion& region : inspection.regions) {
    text += hex(static_cast<unsigned>(region.offset), 5) + "  " + region.name + ": ";
    text += region.used == 0 ? "erased\n"
                             : std::to_string(region.used) + " of " + std::to_string(region.size) +
                                   " bytes, CRC-32 " + hex(region.crc32, 8) + "\n";
  }
  for (const std::string& name : inspection.erased) text += "No " + name + ": erased\n";
  const auto agree = [](bool copies) { return copies ? "agree\n" : "differ\n"; };
  text += std::string("The two copies of the firmware ") + agree(inspection.firmware_copies_agree);
  return text + "The two copies of the user data " + agree(inspection.user_copies_agree);
}

ExitCode inspect(Context& context, const InspectOptions& options) {
  const std::string image = read_file(options.image);
  if (image.size() != flash::kImageSize) {
    refuse(path_text(options.image) + " has " + std::to_string(image.size()) + " bytes, a flash image has " +
           std::to_string(flash::kImageSize));
  }
  const FlashInspection inspection = inspect_flash_image(image);
  context.out.result(json_of(inspection), text_of(inspection));
  const bool whole = inspection.erased.empty();
  return whole && inspection.firmware_copies_agree && inspection.user_copies_agree ? ExitCode::done
                                                                                   : ExitCode::negative;
}

void declare_make(CLI::App& command, MakeOptions& options) {
  add_path(command, "--fw", options.files.firmware, "The firmware, at most 65536 bytes")->required();
  add_path(command, "--font", options.files.font, "The font, at most 65536 bytes")->required();
  add_path(command, "--user", options.files.user, "The user data: a setting file")->required();
  add_path(command, "-o,--output", options.output, "The image to write")->required();
  add_lenient(command, options.lenient);
}

}  // namespace

void add_flash_commands(CLI::App& app, Context& context) {
  CLI::App* flash = add_group(app, "flash", "The image of the camera's serial flash");
  add_command<MakeOptions>(*flash, context, "make", "Make an image of 262144 bytes", declare_make, make);
  add_command<InspectOptions>(
      *flash, context, "inspect",
      "Print an image's regions, and check that none is erased and its copies agree",
      [](CLI::App& command, InspectOptions& options) {
        add_path(command, "IMAGE", options.image, "A flash image")->required();
      },
      inspect);
}

}  // namespace qv5123
