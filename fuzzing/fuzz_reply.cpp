// What a chip, or anything else at the other end, may say: the decoder, everyone who reads a reply block, and
// the console that shows the rest.
#include <string>

#include "console/console_text.h"
#include "console/startup_reply.h"
#include "fuzz_input.h"
#include "link/reply_buffer.h"
#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/gamma.h"
#include "tuning/lens_shading.h"
#include "tuning/matrix.h"
#include "tuning/page_model.h"

using namespace qv5123;

namespace {

/// Values that a reply made come through the image, too.
template <class Page>
void take_page(const std::string& block) {
  const auto decoded = decode_page<Page>(block);
  if (!decoded) return;
  UserDataImage image;
  store_page<Page>(*decoded, image);
  typename Page::Values again;
  load_page<Page>(again, image);
}

void read_as_every_page(const std::string& block) {
  take_page<FrontPage>(block);
  take_page<GammaPage>(block);
  take_page<LensPage>(block);
  take_page<AwbPage>(block);
  take_page<MatrixPage>(block);
  take_page<DynamicPage>(block);
}

/// A control that shows the console: told of changes only. Counts as the console does, in UTF-16 units, of
/// which a character from the chip is one.
class Follower {
 public:
  void take(const ConsoleChange& change) {
    if (change.cleared) text_.clear();
    for (std::size_t i = 0; i < change.dropped; ++i) text_.erase(0, text_[0] & 0x80 ? 2 : 1);
    text_ += change.appended;
  }
  bool shows(const ConsoleText& console) const { return console.text() == text_; }

 private:
  std::string text_;
};

void check_console(const ConsoleText& console) {
  const auto text = console.text();
  std::size_t lines = 1;
  std::size_t units = 0;
  for (const char c : text) {
    lines += c == '\n';
    const auto byte = static_cast<unsigned char>(c);
    units += (byte & 0xC0) != 0x80;
  }
  fuzz::require(console.lines() == lines, "the console's lines are counted right");
  fuzz::require(console.characters() == units, "the console's characters are counted right");
  fuzz::require(text.find('\r') == text.npos, "a carriage return is not shown");
}

void read_startup(const ReplyBuffer& reply) {
  for (const auto stage : {StartupReply::Stage::version, StartupReply::Stage::serial_number}) {
    ReplyBuffer copy = reply;
    StartupReply startup(stage);
    startup.read(copy);
    fuzz::require(startup.stage() == StartupReply::Stage::done, "the start-up looks once");
    startup = StartupReply(StartupReply::Stage::done);
    copy = reply;
    startup.read(copy);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ReplyBuffer reply;
  ConsoleText console;
  Follower follower;
  for (fuzz::Pieces pieces(data, size); pieces.left();) {
    follower.take(console.append_received(reply.decode(pieces.next())));
    fuzz::require(reply.index() < ReplyBuffer::kSize, "the index stays inside the buffer");
    read_startup(reply);
    if (const auto pair = ReplyBuffer(reply).take_last_pair()) {
      fuzz::require(*pair >= 0 && *pair <= 255, "a pair is a byte");
    }
    if (const auto block = reply.take_block()) {
      fuzz::require(block->size() <= ReplyBuffer::kSize, "a block fits its buffer");
      read_as_every_page(*block);
    }
  }
  check_console(console);
  fuzz::require(follower.shows(console), "who is told of the changes shows the text");
  return 0;
}
