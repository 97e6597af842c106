#include "registers/reg_description.h"

#include <gtest/gtest.h>

#include <random>

#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

std::u16string with_crlf(std::u16string_view text) {
  std::u16string out;
  for (const char16_t c : text) {
    if (c == u'\n') out += u'\r';
    out += c;
  }
  return out;
}

RegDescription parse(std::u16string_view text) {
  return RegDescription::parse(with_crlf(text));
}

constexpr std::u16string_view kTwoCategories =
    uR"(<root chip="QV5123">

<category catname="Sensor">
<reg regname="GAIN" addr="0xF801" write="W" reset="0x10">
<bit bitname="HI" range="[7:4]" desc="a#$b" sample="50$">
<bit bitname="LO" range="[3:0]" desc="d" sample="s#">
</reg>
<reg regname="ID" addr="0x0A5" write="R" reset="0x00">
</reg>
</category>
<category catname="Lens">
<reg regname="K" addr="12" write="W">
<bit bitname="ALL" range="[7:0]" desc="" sample="">
</reg>
</category>
</root>
<category catname="never">
)";

TEST(RegDescription, ReadsCategoriesRegistersAndBitFields) {
  const RegDescription d = parse(kTwoCategories);
  EXPECT_EQ(d.problem, "");
  EXPECT_EQ(d.chip, u"QV5123");
  EXPECT_EQ(d.categories, (std::vector<std::u16string>{u"Sensor", u"Lens"})) << "what follows is ignored";
  ASSERT_EQ(d.registers.size(), 3u);
  EXPECT_EQ(d.registers[0].name, u"GAIN");
  EXPECT_EQ(d.registers[1].index_in_category, 1);
  EXPECT_EQ(d.registers[1].address_text, u"0x0A5");
  EXPECT_EQ(d.registers[1].address, 0xA5);
  EXPECT_EQ(d.registers[2].category, 1);
  EXPECT_EQ(d.registers[2].address, -1);
  ASSERT_EQ(d.bit_fields.size(), 3u);
  EXPECT_EQ(d.bit_fields[0].description, u"a\r\nb");
  EXPECT_EQ(d.bit_fields[0].sample, u"5\r\n") << "a lone $ takes the character before it";
  EXPECT_EQ(d.bit_fields[1].sample, u"s\r\n>") << "a lone # takes the quote behind it";
  EXPECT_EQ(d.fields_of(0).last, 2u);
}

TEST(RegDescription, AttributesAreFoundInOrderAndByNameAnywhere) {
  const RegDescription d = parse(
      uR"(x
<category catname="C">
<reg addr="0x1" regname="swapped" write="W" reset="1">
</reg>
<reg regaddr="0x7" addr="0x8" write="W">
</reg>
<reg regname="n" addr==0x3" write="W" writes="Z" reset="open>
</reg>
)");
  ASSERT_EQ(d.registers.size(), 3u);
  EXPECT_EQ(d.chip, u"");
  EXPECT_EQ(d.registers[0].name, u"swapped");
  EXPECT_EQ(d.registers[0].address_text, u"") << "the cursor had passed it";
  EXPECT_EQ(d.registers[0].reset_text, u"1");
  EXPECT_EQ(d.registers[1].address, 7) << "a name may end in the attribute that is looked for";
  EXPECT_EQ(d.registers[2].address, 3) << "what stands between name and value is not looked at";
  EXPECT_EQ(d.registers[2].reset_text, u"open>")
      << "without a closing quote the value runs to the line's end";
}

TEST(RegDescription, ANameAtTheLinesEndTakesItsValueFromTheNextLine) {
  const RegDescription d =
      RegDescription::parse(u"chip\n\n<category catname=\"C\">\n<reg write=\"W\">\n</reg>\n");
  EXPECT_EQ(d.chip, u"<category catname=");
  EXPECT_EQ(d.categories.size(), 0u) << "the category's line was stepped over with it";
  EXPECT_EQ(RegDescription::parse(u"chip").chip, u"");
  EXPECT_EQ(RegDescription::parse(u"chip=\"").chip, u"");
}

TEST(RegDescription, AnUnfinishedRegisterIsOverwrittenAndAnIndentedLineEndsAll) {
  const RegDescription d = parse(
      uR"(x
<category catname="C">
<reg regname="lost" addr="0x1" write="W">
<bit bitname="b" range="[0]">
<reg regname="kept" addr="0x2" write="W">
<bit bitname="c" range="[1]">
</reg>
<category catname="D">
  <reg regname="end" addr="0x3" write="W">
<category catname="E">
)");
  ASSERT_EQ(d.registers.size(), 1u);
  EXPECT_EQ(d.registers[0].name, u"kept");
  EXPECT_EQ(d.registers[0].index_in_category, 0);
  EXPECT_EQ(d.fields_of(0).last, 2u) << "the lost one leaves its bit fields";
  EXPECT_EQ(d.categories.size(), 2u) << "a category counts without its closing line";
  EXPECT_EQ(d.problem, "");
}

TEST(RegDescription, RefusesWhatIsBeyondTheFormatAndKeepsWhatCameBefore) {
  const RegDescription d = parse(
      u"x\n\n<category catname=\"C\">\n<reg regname=\"a\" addr=\"0x1\" write=\"W\">\n</reg>\n"
      u"<reg regname=\"b\" addr=\"0x2\" reset=\"0\">\n</reg>\n");
  EXPECT_EQ(d.problem, "regu.xml, line 6: register without \"write\"");
  EXPECT_EQ(d.registers.size(), 1u);

  const auto problem_of = [](std::u16string text, int count, std::u16string_view repeated) {
    for (int i = 0; i < count; ++i) text += repeated;
    return parse(text).problem;
  };
  const std::u16string reg = u"<reg regname=\"r\" addr=\"0x1\" write=\"W\">\n";
  const std::u16string category = u"<category catname=\"C\">\n";
  EXPECT_EQ(problem_of(u"x\n" + category, 2049, reg + u"</reg>\n"),
            "regu.xml, line 4099: more than 2048 registers");
  EXPECT_EQ(problem_of(u"x\n" + category + reg, 4097, u"<bit bitname=\"b\">\n"),
            "regu.xml, line 4100: more than 4096 bit fields");
  EXPECT_EQ(problem_of(u"x\n", 33, category + u"</category>\n"),
            "regu.xml, line 66: more than 32 categories");

  for (const std::size_t length : {4096u, 4097u}) {
    const RegDescription long_text = parse(u"x\n" + category + reg + u"</reg>\n" + reg + u"<bit desc=\"" +
                                           std::u16string(length, u'd') + u"\">\n</reg>\n");
    EXPECT_EQ(long_text.registers.size(), 2u);
    EXPECT_EQ(long_text.bit_fields.at(0).description.size(), 4096u);
    EXPECT_EQ(long_text.problem, "");
    EXPECT_EQ(long_text.remark,
              length > 4096 ? "regu.xml, line 6: a text of 4097 characters is cut to 4096" : "");
  }
}

TEST(RegDescription, AnyTruncationAndAnyNoiseIsRead) {
  const std::u16string whole = with_crlf(kTwoCategories);
  for (std::size_t size = 0; size <= whole.size(); ++size) RegDescription::parse(whole.substr(0, size));
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::u16string noisy = whole;
    for (int i = 0; i < 20; ++i) noisy[random() % noisy.size()] = u"\"#$\0\n<x\uFFFF"[random() % 8];
    RegDescription::parse(noisy);
  }
}

TEST(RegDescription, LoadsUtf16AndSaysWhenThereIsNoFile) {
  const test::TemporaryFolder folder;
  const auto load = [&](const std::string& bytes) {
    return RegDescription::load(folder.write("regu.xml", bytes));
  };
  EXPECT_EQ(RegDescription::load(folder / "regu.xml").problem, "Can't find regu.xml!");
  EXPECT_EQ(load("x").problem, "Can't find regu.xml!");
  std::string bytes = "\xFF\xFE";
  for (const char16_t c : with_crlf(kTwoCategories)) bytes += {static_cast<char>(c), '\0'};
  EXPECT_EQ(load(bytes + '\0').length, bytes.size() / 2) << "an odd last byte is dropped";
  EXPECT_EQ(load(bytes).registers.size(), 3u);
  EXPECT_TRUE(load("<root chip=\"A\">\r\n<category catname=\"C\">\r\n").categories.empty()) << "8 bits";
}

TEST(ParseRegAddress, TakesFourDigitsBehindThePrefix) {
  const std::pair<std::u16string, int> cases[] = {
      {u"0xF8001", 0xF800},  {u"0X1f", 0x1F}, {u"0X9 0x1", 1},  // the lower-case prefix is looked for first
      {u"addr 0xA5", 0xA5},  {u"0x", 0},      {u"12", -1},     {u"0x1G2", 0x102},  // no hex digit counts as 0
      {u"0x1z23", 0x123},  // z is skipped but is one of the four
      {u"0x1\u01302", 0x12}, {u"", -1}};
  for (const auto& [text, address] : cases) EXPECT_EQ(ParseRegAddress(text), address);
}

}  // namespace
}  // namespace qv5123
