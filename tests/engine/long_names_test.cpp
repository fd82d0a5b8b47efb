// Names of up to 24 characters in an open table: how they are added, changed and refused. Whether they are
// allowed is decided once per process, so each test asks a process of its own, in which the work is done and
// looked at.
#include "engine/long_field_names.h"
#include "field_files.h"
#include "support/long_names_session.h"

namespace ovtest {
namespace {

constexpr const OLECHAR* longest = OLESTR("ALPHABETICALFIELDNAMEXYZ");  // 24 characters

bytes double_table(const std::vector<atom>& atoms) { return make_header({}, atoms, double_words); }

/// A stored number, an added one and an added text of two words.
bytes three_fields(const std::string& stored, const std::string& number, const std::string& text) {
  std::vector<atom> atoms = {number_atom(stored, 1), added_number(number, 0.5)};
  add_added_text(atoms, text, 2, "ore");
  bytes file = double_table(atoms);
  end_defaults_with_zeros(file, 2, 2, double_words);
  return file;
}

void add_long() {
  engine_files files;
  auto opened = files.open(double_table({number_atom("DEPTH", 1)}));
  EXPECT_EQ(opened->addNumericField(longest, 0.5), 1U);
  opened->addAlphaField(OLESTR("NINECHARS"), 5, OLESTR("ore"));
  const bytes file = files.content();
  EXPECT_EQ(file, three_fields("DEPTH", "ALPHABETICALFIELDNAMEXYZ", "NINECHARS"));
  // Entry 1 begins at word 35; characters 1 to 4 and 9 to 12, then 5 to 8 and 13 to 16, at last 17 to 24.
  EXPECT_EQ(raw_word(file, 35, double_words), "ALPHICAL");
  EXPECT_EQ(raw_word(file, 36, double_words), "ABETFIEL");
  EXPECT_EQ(raw_word(file, 37, double_words), "N   LONG");
  EXPECT_EQ(raw_word(file, 40, double_words), "DNAMEXYZ");
  // Both words of the text.
  for (const std::size_t first : {42U, 49U}) {
    EXPECT_EQ(raw_word(file, first, double_words), "NINES   ");
    EXPECT_EQ(raw_word(file, first + 1, double_words), "CHAR    ");
    EXPECT_EQ(raw_word(file, first + 2, double_words), "A   LONG");
    EXPECT_EQ(raw_word(file, first + 5, double_words), "        ");
  }
}

void rename_to_long_and_back() {
  engine_files files;
  const bytes before = three_fields("DEPTH", "GRADE", "ROCK");
  auto opened = files.open(before);
  opened->renameField(0, OLESTR("LENGTH_OF_SAMPLE"));
  opened->renameField(1, OLESTR("NINECHARS"));
  opened->renameField(2, longest);
  const bytes file = files.content();
  EXPECT_EQ(file, three_fields("LENGTH_OF_SAMPLE", "NINECHARS", "ALPHABETICALFIELDNAMEXYZ"));
  EXPECT_EQ(raw_word(file, 28, double_words), "LENGF_SA");
  EXPECT_EQ(raw_word(file, 29, double_words), "TH_OMPLE");
  EXPECT_EQ(raw_word(file, 30, double_words), "N   LONG");
  EXPECT_EQ(raw_word(file, 33, double_words), "        ");
  opened = files.reopen();
  EXPECT_EQ(utf8(opened->getFieldName(0)), "LENGTH_OF_SAMPLE");
  EXPECT_EQ(opened->getFieldIndex(longest), 2U);

  opened->renameField(0, OLESTR("DEPTH"));
  opened->renameField(1, OLESTR("GRADE"));
  opened->renameField(2, OLESTR("ROCK"));
  EXPECT_EQ(files.content(), before);
  EXPECT_EQ(raw_word(files.content(), 30, double_words), std::string("N   \0\0\0\0", 8));
  EXPECT_EQ(raw_word(files.content(), 33, double_words), std::string(8, '\0'));
}

void refuse_too_long() {
  engine_files files;
  const bytes before = double_table({number_atom("DEPTH", 1)});
  const auto opened = files.open(before);
  const ovf::wide too_long = ovf::wide(longest) + OLESTR("A");
  EXPECT_EQ(message_of([&] { opened->addNumericField(too_long, 1.0); }), "field name too long");
  EXPECT_EQ(message_of([&] { opened->addNumericField(too_long, 1.0F); }), "field name too long");
  EXPECT_EQ(message_of([&] { opened->addAlphaField(too_long, 4, {}); }), "field name too long");
  EXPECT_EQ(message_of([&] { opened->renameField(0, too_long); }), "field name is too long");
  EXPECT_EQ(files.content(), before);
}

void refuse_in_single_precision() {
  engine_files files;
  const bytes before = make_header({}, {number_atom("DEPTH", 1)}, single_words);
  const auto opened = files.open(before);
  const std::string words = "field name exceeds 8 characters";
  EXPECT_EQ(message_of([&] { opened->addNumericField(OLESTR("NINECHARS"), 1.0); }), words);
  EXPECT_EQ(message_of([&] { opened->addAlphaField(OLESTR("NINECHARS"), 4, {}); }), words);
  EXPECT_EQ(message_of([&] { opened->renameField(0, OLESTR("NINECHARS")); }), words);
  EXPECT_EQ(files.content(), before);
}

class long_names_engine : public long_names_session {
 protected:
  /// The name of the work; an expectation that fails there fails the asked process.
  std::string answer(const std::string& question) override {
    if (ovf::field_name_limit() != 24) return "long names are not allowed";
    if (question == "add") add_long();
    if (question == "rename") rename_to_long_and_back();
    if (question == "too long") refuse_too_long();
    if (question == "single") refuse_in_single_precision();
    return question + " done";
  }
};

TEST_F(long_names_engine, are_added_byte_for_byte) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(ask("add"), "add done");
}

TEST_F(long_names_engine, replace_short_ones_and_are_replaced_byte_for_byte) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(ask("rename"), "rename done");
}

TEST_F(long_names_engine, of_25_characters_are_refused) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(ask("too long"), "too long done");
}

TEST_F(long_names_engine, are_refused_in_single_precision) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(ask("single"), "single done");
}

}  // namespace
}  // namespace ovtest
