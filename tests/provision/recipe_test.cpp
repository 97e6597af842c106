#include "provision/recipe.h"

#include <gmock/gmock.h>

#include "base/sha256.h"
#include "console/setting_file.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

TEST(Sha256, OfTextsThatEverybodyKnows) {
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  // The padding takes a block of its own.
  EXPECT_EQ(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(sha256(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

class RecipeTest : public testing::Test {
 protected:
  RecipeTest() {
    folder_.write("fw.bin", "firmware");
    folder_.write("lot.dat", setting_text(UserDataImage()));
  }
  ReadRecipe read(const std::string& text) const { return read_recipe(folder_.write("lot.toml", text)); }
  /// What is wrong with a recipe of one step, behind the file's name.
  std::string problem(const std::string& step) const {
    const std::string problem = read("[[step]]\n" + step).problem;
    const std::string name = path_text(folder_ / "lot.toml") + ", ";
    return problem.starts_with(name) ? problem.substr(name.size()) : problem;
  }

  test::TemporaryFolder folder_;
};

TEST_F(RecipeTest, WhatIsWrongIsNamedWithLineAndKey) {
  EXPECT_EQ(read("").problem, path_text(folder_ / "lot.toml") + ", line 1, step: no [[step]] is there");
  EXPECT_THAT(problem("[{step]]"), HasSubstr("line 2: a table without a name"));
  EXPECT_EQ(problem("file = \"fw.bin\""), "line 1, step 1, do: is missing");
  EXPECT_THAT(problem("do = \"firmwear\""),
              testing::StartsWith("line 2, step 1, do: \"firmwear\" is no step; the steps are expect, "));
  EXPECT_THAT(problem("do = \"firmware\"\nfile = \"no.bin\""),
              testing::StartsWith("line 3, step 1, file: Cannot read "));
  EXPECT_EQ(problem("do = \"firmware\"\nfile = \"fw.bin\"\nsha256 = \"00\""),
            "line 4, step 1, sha256: fw.bin has " + sha256("firmware"));
  EXPECT_EQ(problem("do = \"firmware\"\nfile = \"fw.bin\"\ntries = 0"),
            "line 4, step 1, tries: 0 is not in 1..9");
  EXPECT_EQ(problem("do = \"expect\"\nsw = \"1.2\""),
            "line 3, step 1, sw: \"1.2\" is not three numbers 0..99 such as \"2.3.7\"");
  EXPECT_EQ(problem("do = \"settings\"\nfile = \"fw.bin\"").substr(0, 28), "line 3, step 1, file: fw.bin");
  EXPECT_EQ(problem("do = \"check\"\nsha256 = \"00\"\nregisters.\"0xF900\" = 1"),
            "line 3, step 1, sha256: no \"file\" is named that would have it");
  EXPECT_EQ(problem("do = \"settings\"\nfile = \"lot.dat\"\nset.\"awb.a_slope\" = 900"),
            "line 4, step 1, set, awb.a_slope: 900 is beyond its range, it would count as 800");
  EXPECT_EQ(problem("do = \"settings\"\nfile = \"lot.dat\"\nset.awb = 1"),
            "line 4, step 1, set, awb: stands for 82 settings");
  EXPECT_EQ(problem("do = \"check\"\nvalues.\"lsc.parameter1.g\" = { least = 9, most = 3 }"),
            "line 3, step 1, values, lsc.parameter1.g, most: 3 is below 9");
  EXPECT_EQ(problem("do = \"check\"\nregisters.\"0xF900&0x0F\" = 16"),
            "line 3, step 1, registers, 0xF900&0x0F: \"16\" is beyond its bits");
  EXPECT_EQ(problem("do = \"matrix\"\ncorners = [[360, 180], [1560, 180], [1560, 900]]"),
            "line 3, step 1, corners: is not four [x, y] within the picture");
  EXPECT_EQ(problem("do = \"matrix\"\ncorners = [[360, 180], [1560, 900], [1560, 180], [360, 900]]"),
            "line 3, step 1, corners: do not go round a chart");
  EXPECT_EQ(problem("do = \"matrix\"\nfirst = [1500, 180]\nstep = 240"),
            "line 4, step 1, step: the chart would go beyond the picture");
  EXPECT_EQ(problem("do = \"lsc\"\n[[step]]\ndo = \"pages\"\npages = [\"all\"]"),
            "line 4, step 2, do: saves pages, and no settings stand before it");
  // A key that nobody knows is not hidden by what else is wrong.
  EXPECT_EQ(problem("do = \"firmware\"\nflie = \"fw.bin\""),
            "line 3, step 1, flie: no such key is known here");
  EXPECT_THAT(read("description = \"no.xml\"\nnmae = \"x\"\n[[step]]\ndo = \"lsc\"").problem,
              EndsWith("line 2, nmae: no such key is known here"));
  EXPECT_EQ(problem("do = \"settings\"\nfile = \"lot.dat\"\nserial = { list = \"no.txt\", digits = 4 }"),
            "line 4, step 1, serial, digits: no such key is known here");
  // Neither do empty tables and huge numbers count.
  const std::string values = "do = \"check\"\nvalues.\"lsc.parameter1.g\" = ";
  const std::string place = "line 3, step 1, values, lsc.parameter1.g";
  EXPECT_EQ(problem(values + "{}"), place + ": says neither \"least\" nor \"most\"");
  EXPECT_EQ(problem(values + "99999999999"), place + ": 99999999999 is not in -1000000000..1000000000");
  EXPECT_EQ(problem(values + "{ most = 1e300 }"), place + ", most: 1e+300 is beyond 1e+09");
  EXPECT_EQ(problem("do = \"check\"\nregisters = {}\nvalues.\"lsc.parameter1.g\" = 5"),
            "line 3, step 1, registers: is empty");
}

TEST_F(RecipeTest, WhatWouldEndEveryUnitIsFoundBeforeTheFirst) {
  const auto serial = [this](const std::string& serial) {
    return problem("do = \"settings\"\nfile = \"lot.dat\"\nserial = " + serial);
  };
  EXPECT_THAT(serial("{ counter = \"no/serials\" }"),
              testing::StartsWith("line 4, step 1, serial, counter: there is no folder "));
  EXPECT_EQ(serial("{ counter = \"serials\", digits = 3, first = 1000 }"),
            "line 4, step 1, serial, first: 1000 has more than 3 digits");
  EXPECT_EQ(serial("{ counter = \"serials\", digits = 4, entry = 1021 }"),
            "line 4, step 1, serial, entry: its end lies beyond entry 1023");
  folder_.write("serials", "999\n");
  EXPECT_EQ(serial("{ counter = \"serials\", digits = 3 }"),
            "line 4, step 1, serial, counter: The serial numbers of 3 digits are used up");
  folder_.write("two.txt", "A1\nA2\n");
  folder_.write("two.txt.used", "2\n");
  EXPECT_THAT(serial("{ list = \"two.txt\" }"),
              testing::StartsWith("line 4, step 1, serial, list: All serial numbers of "));
  EXPECT_THAT(problem("do = \"report\"\nfile = \"no/{serial}.json\""),
              testing::StartsWith("line 3, step 1, file: there is no folder "));
}

TEST_F(RecipeTest, FilesAreReadAndSettingsChanged) {
  folder_.write("serials.txt", "A1\r\nA2\n");
  const ReadRecipe read = this->read(
      "name = \"Lot 7\"\nrecords = \"lot.jsonl\"\n"
      "[[step]]\ndo = \"settings\"\nfile = \"lot.dat\"\nset = { \"awb.a_slope\" = -300, 1000 = 7 }\n"
      "serial = { list = \"serials.txt\", entry = 1010 }\n"
      "[[step]]\ndo = \"check\"\nname = \"gain\"\nwait = 20\nregisters = { \"0xA08&0xF0\" = 0x30 }\n");
  ASSERT_EQ(read.problem, "");
  EXPECT_EQ(read.recipe.name, "Lot 7");
  EXPECT_EQ(read.recipe.records, folder_ / "lot.jsonl");
  const auto& settings = std::get<SettingsStep>(read.recipe.steps[0].work);
  EXPECT_EQ(settings.image.word(181), 0x10000 - 300);
  EXPECT_EQ(settings.image.entry(1000), 7);
  EXPECT_EQ(settings.serial->serials, (std::vector<std::string>{"A1", "A2"}));
  EXPECT_EQ(read.recipe.steps[1].name, "gain");
  const ExpectedRegister& reg = std::get<CheckStep>(read.recipe.steps[1].work).registers.at(0);
  EXPECT_EQ(reg.address, 0xFA08);
  EXPECT_EQ(reg.mask, 0xF0);
  EXPECT_EQ(read.recipe.files,
            (std::map<std::string, std::string>{{"lot.dat", sha256(setting_text(UserDataImage()))},
                                                {"serials.txt", sha256("A1\r\nA2\n")}}));
}

}  // namespace
}  // namespace qv5123
