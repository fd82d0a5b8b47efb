// What fields may be called when they are added to an open table or given another name, and that a
// refusal writes nothing.
#include <gtest/gtest.h>

#include "field_files.h"

namespace {

using ovtest::message_of;
using ovtest::utf8;

ovf::wide wide_of(const std::string& text) { return ovf::wide_from_ansi(text); }

class FieldRules : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  bool is_double() const { return GetParam().size == 8; }

  /// What adding a number, adding a text and renaming field 0 to that name are refused with.
  std::vector<std::string> refusals(const ovf::wide& name) {
    return {message_of([&] { table_->addNumericField(name, 1.0); }),
            message_of([&] { table_->addNumericField(name, 1.0F); }),
            message_of([&] { table_->addAlphaField(name, 4, {}); }),
            message_of([&] { table_->renameField(0, name); })};
  }
  static std::vector<std::string> all(const std::string& words) { return {words, words, words, words}; }

  ovtest::engine_files files_;
  const ovtest::bytes before_ = ovtest::hole_table(5, GetParam());
  std::unique_ptr<ovf::table> table_ = files_.open(before_);
};

TEST_P(FieldRules, NamesThatDifferInCaseAloneAreDistinct) {
  EXPECT_EQ(table_->addNumericField(OLESTR("AU_PPM"), 1.0), 4U);
  EXPECT_EQ(table_->addNumericField(OLESTR("au_ppm"), 2.0), 5U);
  EXPECT_EQ(table_->getDefaultDouble(4), 1);
  EXPECT_EQ(table_->getDefaultDouble(5), 2);
  EXPECT_EQ(table_->getFieldIndex(OLESTR("au_ppm")), 5U);
}

TEST_P(FieldRules, AFullStopOrAnAtSignInsideIsValid) {
  EXPECT_EQ(table_->addNumericField(OLESTR("X.Y"), 1.0), 4U);
  EXPECT_EQ(table_->addNumericField(OLESTR("X@1"), 1.0F), 5U);
  table_->renameField(4, OLESTR("Y.@"));
  EXPECT_EQ(utf8(table_->getFieldName(4)), "Y.@");
}

TEST_P(FieldRules, ForbiddenCharactersAreRefused) {
  for (const char* bad : {".X", "@X", "A B", "A,B", "A!", "A:", "A*", "A&", "A=", "A(", "A)", "A?", " A"}) {
    EXPECT_EQ(refusals(wide_of(bad)), all("field name contains invalid characters")) << bad;
  }
  // A character that the code page lacks becomes a question mark.
  EXPECT_EQ(refusals(ovf::wide(1, OLECHAR{0x4E2D})), all("field name contains invalid characters"));
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, NamesThatAreTooLongAreRefusedBeforeTheirCharactersAreLookedAt) {
  for (const char* name : {"NINECHARS", "NINE CHAR", "A VERY LONG NAME, BEYOND 24"}) {
    if (is_double()) {
      const std::string adding = "field name too long";
      EXPECT_EQ(refusals(wide_of(name)),
                (std::vector<std::string>{adding, adding, adding, "field name is too long"}));
    } else {
      EXPECT_EQ(refusals(wide_of(name)), all("field name exceeds 8 characters"));
    }
  }
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, ANameThatIsTakenIsRefused) {
  EXPECT_EQ(refusals(OLESTR("DEPTH")), all("field name already exists"));
  EXPECT_EQ(refusals(OLESTR("LITH")), all("field name already exists"));
  EXPECT_EQ(table_->getFieldCount(), 4U);
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, RenamingLooksAtTheIndexFirst) {
  EXPECT_EQ(message_of([&] { table_->renameField(5, OLESTR("NOT VALID, TOO LONG")); }),
            "field index out of range");
  EXPECT_EQ(message_of([&] { table_->renameField(~std::uint64_t{0}, OLESTR("OK")); }),
            "field index out of range");
  // The bound is lenient by one: the rules come first there, and then no field is found.
  EXPECT_EQ(message_of([&] { table_->renameField(4, OLESTR("A B")); }),
            "field name contains invalid characters");
  EXPECT_EQ(message_of([&] { table_->renameField(4, OLESTR("OK")); }),
            "index out of range, field not found.");
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, RenamingAFieldToItsOwnNameWritesNothing) {
  const ovtest::failing_files watched;
  table_ = files_.reopen();
  const int writes = watched.count(ovtest::call::write);
  table_->renameField(0, OLESTR("BHID"));
  table_->renameField(1, OLESTR("DEPTH"));
  EXPECT_EQ(watched.count(ovtest::call::write), writes);
  table_.reset();
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, AnOwnNameThatTheRulesForbidIsRefusedAsWell) {
  table_ = files_.open(ovtest::make_header({}, {ovtest::number_atom("A B", 1)}, GetParam()));
  EXPECT_EQ(message_of([&] { table_->renameField(0, OLESTR("A B")); }),
            "field name contains invalid characters");
}

TEST_P(FieldRules, AWidthBelowZeroIsRefusedAfterTheNameAndBeforeTheRoom) {
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("A B"), -1, {}); }),
            "field name contains invalid characters");
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("TEXT"), -1, {}); }), "field width out of range");
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("TEXT"), INT64_MIN, {}); }),
            "field width out of range");
  EXPECT_EQ(files_.content(), before_);
}

TEST_P(FieldRules, MoreWordsThanThePrecisionAllowsAreRefused) {
  const std::string words = is_double() ? "The Field count exceeds the limit of double precision"
                                        : "The Field count exceeds the limit of single precision";
  const int limit = is_double() ? 256 : 64;
  const int room = limit - 5;  // hole_table has 5 words
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("TEXT"), 4 * room + 1, {}); }), words);
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("TEXT"), INT64_MAX, {}); }), words);
  EXPECT_EQ(files_.content(), before_);
  EXPECT_EQ(table_->addAlphaField(OLESTR("TEXT"), 4 * room, {}), 4U);
  EXPECT_EQ(table_->getFieldWidth(4), 4 * room);
  const ovtest::bytes full = files_.content();
  EXPECT_EQ(message_of([&] { table_->addNumericField(OLESTR("N"), 1.0); }), words);
  EXPECT_EQ(message_of([&] { table_->addAlphaField(OLESTR("T"), 0, {}); }), words);
  EXPECT_EQ(files_.content(), full);
  table_.reset();
  EXPECT_EQ(files_.reopen()->getFieldCount(), 5U);
}

INSTANTIATE_TEST_SUITE_P(BothPrecisions, FieldRules,
                         ::testing::Values(ovtest::single_words, ovtest::double_words),
                         [](const auto& each) { return ovtest::format_name(each.param); });

TEST(FieldRule, ADefaultThatSinglePrecisionCannotHoldIsRefused) {
  ovtest::engine_files files;
  const ovtest::bytes before = ovtest::hole_table(1, ovtest::single_words);
  const auto table = files.open(before);
  EXPECT_THROW(table->addNumericField(OLESTR("BIG"), 1e300), ovf::com_error);
  EXPECT_EQ(table->getFieldCount(), 4U);
  EXPECT_EQ(files.content(), before);
}

}  // namespace
