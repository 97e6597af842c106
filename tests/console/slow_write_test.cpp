#include "console/slow_write.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_page_host.h"

namespace qv5123 {
namespace {

TEST(SlowWrite, IsSaidOnceTheDiskTakesLong) {
  test::FakeWire wire;
  test::FakePageHost host(wire);
  host.work.busy = true;
  std::string outcome = "none";
  const auto write = [&]() -> Task<> {
    std::filesystem::path path = "font.bin";
    std::function<FileResult()> work = [] { return FileResult{"font.bin: no room"}; };
    const FileResult written = co_await write_in_background(host, std::move(path), std::move(work));
    outcome = written.text;
  };
  Flow slow(write());
  wire.advance(1999);
  EXPECT_THAT(host.statuses, testing::IsEmpty());
  wire.advance(1);
  EXPECT_THAT(host.statuses, testing::ElementsAre("Still writing font.bin ..."));
  host.work.catch_up();
  EXPECT_EQ(outcome, "font.bin: no room");
  Flow quick(write());
  host.work.catch_up();
  wire.advance(10'000);
  EXPECT_EQ(host.statuses.size(), 1u);
}

}  // namespace
}  // namespace qv5123
