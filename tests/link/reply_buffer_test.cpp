#include "link/reply_buffer.h"

#include <gtest/gtest.h>

#include "link/reply_text.h"

namespace qv5123 {
namespace {

std::string decode(ReplyBuffer& reply, const std::string& bytes) {
  return reply.decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

TEST(ReplyBuffer, TellsBlocksFromConsoleText) {
  ReplyBuffer reply;
  EXPECT_EQ(decode(reply, std::string("A\0B~C\0D", 7)), "AB");
  EXPECT_EQ(reply.state(), ReplyBuffer::State::in_block);
  EXPECT_EQ(reply.take_block(), std::nullopt);
  EXPECT_EQ(decode(reply, "^^tail"), "tail");
  EXPECT_EQ(reply.take_block(), "CD");
  EXPECT_EQ(reply.state(), ReplyBuffer::State::idle);
  EXPECT_EQ(decode(reply, "^x"), "x");
  EXPECT_EQ(reply.state(), ReplyBuffer::State::idle);
  // A new block replaces an unread one, and a dollar sign abandons it.
  decode(reply, "~11^~2~33^");
  EXPECT_EQ(reply.take_block(), "33");
  decode(reply, "~^");
  EXPECT_EQ(reply.take_block(), "") << "an empty block is complete";
  decode(reply, "~44^$");
  EXPECT_EQ(reply.state(), ReplyBuffer::State::abandoned);
  EXPECT_EQ(decode(reply, "55^"), "55");
  EXPECT_EQ(reply.take_block(), std::nullopt);
}

TEST(ReplyBuffer, ALongBlockWrapsOntoItsStart) {
  ReplyBuffer reply;
  decode(reply, "~" + std::string(500, 'a') + "^");
  EXPECT_EQ(reply.take_block(), std::string(500, 'a')) << "all of it is there";
  decode(reply, "~" + std::string(500, 'a') + "bc^");
  EXPECT_EQ(reply.index(), 2u);
  EXPECT_EQ(reply.take_block(), std::nullopt) << "its start is lost";
  EXPECT_EQ(reply.state(), ReplyBuffer::State::idle);
  EXPECT_EQ(reply.take_last_pair(), 0xBC);
  EXPECT_EQ(reply.take_last_pair(), std::nullopt) << "it is taken once";
}

TEST(ReplyText, WhatIsNoHexDigitCountsAsZero) {
  EXPECT_EQ(reply_byte("12", 0), 0x12);
  EXPECT_EQ(reply_byte("1G", 0), 0x10);
  EXPECT_EQ(reply_byte("1", 0), 0x10);
  EXPECT_EQ(reply_byte("", 7), 0);
  EXPECT_EQ(reply_word_at("xFfFf", 1), 0xFFFF);
  EXPECT_EQ(reply_12_bits_at("Fabc", 0), 0xABC);
}

}  // namespace
}  // namespace qv5123
