// Tables with names beyond 8 characters, in sessions that allow them and in sessions that do not.
#include <sstream>

#include "engine/field_name.h"
#include "ovfile/exception.h"
#include "ovfile/smart.h"
#include "support/component.h"
#include "support/long_names_session.h"
#include "support/table_bytes.h"

namespace ovtest {
namespace {

const std::string longest = "TWENTYFOURCHARACTERSNAME";
const std::string nine = "NINECHARS";

class long_names_table : public long_names_session {
 protected:
  /// `double NAME` or `single NAME`: makes table.ovt with this field and one row of it, and reads it back;
  /// `read`: reads it as it is; `rule NAME`: the rule for a field of double precision.
  std::string answer(const std::string& question) override {
    std::istringstream words(question);
    std::string what;
    std::string name;
    words >> what >> name;
    clear_error();
    if (what == "rule") return rule(name);
    if (what == "read") return content();
    return made(name, what == "double") ? content() : "refused: " + take_error_text();
  }

  static std::string rule(const std::string& name) {
    try {
      ovf::check_new_field_name(ovfile::to_wide(name), true);
    } catch (const MyExceptionClass& error) {
      return to_utf8(error.message());
    }
    return "allowed";
  }

  static bstr path() { return path_text(std::filesystem::current_path() / "table.ovt"); }

  static bool made(const std::string& name, bool is_double) {
    const auto schema = make_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    schema->put_Description(bstr("long names").get());
    schema->AddNumericColumn(bstr(name).get(), 0.25, 0);
    const auto table = make_table();
    return table->Create(path().get(), schema.get()) == S_OK && table->AddRow() == S_OK &&
           table->SetColumnDouble(1, 2.5) == S_OK && table->Close() == S_OK;
  }

  static std::string content() {
    const auto table = make_table();
    if (table->Open(path().get(), 1) != S_OK) return "not opened: " + take_error_text();
    ovfile::pointer<IOvSchema> schema;
    bstr name;
    double value = 0;
    LONG rows = 0;
    LONG index = 0;
    if (table->get_Schema(schema.out()) != S_OK || schema->GetFieldName(1, name.out()) != S_OK ||
        schema->GetFieldIndex(name.get(), &index) != S_OK || table->GetRowCount(&rows) != S_OK ||
        table->GetColumnAsDouble(1, &value) != S_OK) {
      return "not read: " + take_error_text();
    }
    std::ostringstream all;
    all << name.utf8() << ' ' << index << ' ' << rows << ' ' << value;
    return all.str();
  }

  /// What the file of one field and one row is, word by word.
  static bytes expected_file(const std::string& name) {
    header_words words;
    words.description = "long names";
    words.pages = 2;
    words.records_in_last_page = 1;
    bytes file = make_header(words, {number_atom(name, 1, 0.25)}, double_words);
    add_page(file, double_words);
    put_number(file, record_word(1, 0, 1, 1), 2.5, double_words);
    return file;
  }
};

TEST_F(long_names_table, of_24_characters_are_written_with_their_mark_and_survive) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(longest + " 1 1 2.5", ask("double " + longest));
  const bytes file = read_bytes(session_ / "table.ovt");
  const auto word = [&](std::size_t w) {
    return std::string(file.begin() + static_cast<std::ptrdiff_t>(8 * w),
                       file.begin() + static_cast<std::ptrdiff_t>(8 * w + 8));
  };
  EXPECT_EQ("TWENURCH", word(28)) << "characters 1 to 4, then 9 to 12";
  EXPECT_EQ("TYFOARAC", word(29)) << "characters 5 to 8, then 13 to 16";
  EXPECT_EQ("N   LONG", word(30));
  EXPECT_EQ("TERSNAME", word(33)) << "characters 17 to 24";
  EXPECT_TRUE(expected_file(longest) == file);
}

TEST_F(long_names_table, of_9_characters_are_written_with_their_mark) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(nine + " 1 1 2.5", ask("double " + nine));
  EXPECT_TRUE(expected_file(nine) == read_bytes(session_ / "table.ovt"));
}

TEST_F(long_names_table, of_8_characters_have_no_mark) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("EIGHTCHR 1 1 2.5", ask("double EIGHTCHR"));
  const bytes file = read_bytes(session_ / "table.ovt");
  EXPECT_EQ(std::string("N   \0\0\0\0", 8), std::string(file.begin() + 240, file.begin() + 248));
  EXPECT_TRUE(expected_file("EIGHTCHR") == file);
}

TEST_F(long_names_table, of_25_characters_are_refused) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("refused: Failed to create file", ask("double " + longest + "S"));
  EXPECT_FALSE(std::filesystem::exists(session_ / "table.ovt"));
  EXPECT_EQ("allowed", ask("rule " + longest));
  EXPECT_EQ("field name too long", ask("rule " + longest + "S"));
}

TEST_F(long_names_table, are_refused_in_single_precision) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("refused: field name exceeds 8 characters", ask("single " + nine));
  EXPECT_EQ("EIGHTCHR 1 1 2.5", ask("single EIGHTCHR"));
}

TEST_F(long_names_table, are_refused_from_9_characters_on_without_the_choice) {
  EXPECT_EQ("refused: Failed to create file", ask("double " + nine));
  EXPECT_EQ("field name too long", ask("rule " + nine));
  EXPECT_EQ("allowed", ask("rule EIGHTCHR"));
  EXPECT_EQ("EIGHTCHR 1 1 2.5", ask("double EIGHTCHR"));
}

TEST_F(long_names_table, are_read_without_the_choice) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ(longest + " 1 1 2.5", ask("double " + longest));
  begin_session();
  EXPECT_EQ("field name too long", ask("rule " + nine));
  EXPECT_EQ(longest + " 1 1 2.5", ask("read"));
}

}  // namespace
}  // namespace ovtest
