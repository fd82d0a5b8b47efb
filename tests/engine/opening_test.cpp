#include <gtest/gtest.h>

#include <ctime>

#include "engine/field_name.h"
#include "engine_files.h"
#include "support/denied_memory.h"

namespace {

using ovtest::bytes;
using ovtest::call;
using ovtest::double_words;
using ovtest::hole_table;
using ovtest::message_of;
using ovtest::single_words;
using ovtest::utf8;

TEST(Opening, WithoutANameThereIsNothingToOpen) {
  EXPECT_EQ(message_of([] { ovf::open_table(ovf::wide(), true); }), "no filename given");
}

TEST(Opening, AFileThatTheSystemRefusesIsNamedWithCodeAndText) {
  ovtest::engine_files files;
  files.open(hole_table(1, single_words));
  ovtest::failing_files failing;
  failing.fail_nth(call::open, 2);  // the first one is the probe's
  const std::string expected =
      "Failed to open table " + utf8(files.name()) +
      ", windows reported the following error\r\nError: 5\r\nMessage: " + utf8(ovf::system_message(5));
  EXPECT_EQ(message_of([&] { files.reopen(); }), expected);
  failing.fail_nth(call::open, 1);
  EXPECT_EQ(message_of([&] { files.reopen(); }), "cannot open file " + utf8(files.name()));
}

TEST(Opening, TheDescriptionIsSixtyCharactersUntrimmed) {
  ovtest::engine_files files;
  ovtest::header_words words;
  EXPECT_EQ(utf8(files.open(ovtest::make_header(words, {}, single_words))->getDescription()),
            std::string(60, ' '));
  words.description = std::string(62, 'd');
  EXPECT_EQ(utf8(files.open(ovtest::make_header(words, {}, double_words))->getDescription()),
            std::string(60, 'd'));
}

TEST(Opening, EachDescriptionWordEndsAtItsFirstNul) {
  bytes file = hole_table(0, single_words);
  ovtest::put_raw(file, 4, std::string("a\0bc", 4), single_words);
  ovtest::engine_files files;
  EXPECT_EQ(utf8(files.open(file)->getDescription()).substr(0, 3), "as ");
}

TEST(Opening, ReadsTheHeaderAndNoMore) {
  ovtest::engine_files files;
  files.open(hole_table(1000, double_words));
  ovtest::failing_files watched;
  const auto table = files.reopen();
  // Two probes of the marks, and the header page.
  EXPECT_EQ(watched.count(call::read), 3);
}

TEST(Opening, ConsecutiveTextAtomsOfOneNameAreOneField) {
  std::vector<ovtest::atom> atoms;
  ovtest::add_text_atoms(atoms, "A", 2, 1);
  ovtest::add_text_atoms(atoms, "B", 1, 3);
  atoms.push_back(ovtest::number_atom("B", 4));
  atoms.push_back(ovtest::number_atom("B", 5));
  ovtest::engine_files files;
  const auto table = files.open(ovtest::make_header({}, atoms, double_words));
  ASSERT_EQ(table->getFieldCount(), 4U);
  EXPECT_EQ(table->getFieldWidth(0), 8);
  EXPECT_EQ(table->getFieldIndex(OLESTR("B")), 1U);
  EXPECT_EQ(table->getFieldType(3), ovf::field_kind::numeric);
}

TEST(Opening, CountsThatNoTableHasAreRefused) {
  ovtest::engine_files files;
  const auto refusal = [&](std::size_t word, double value) {
    bytes file = hole_table(3, single_words);
    ovtest::put_number(file, word, value, single_words);
    return message_of([&] { files.open(file); });
  };
  const std::string not_a_table = "Not a valid orvexa table";
  EXPECT_EQ(refusal(25, 65), "Unrecognised file type.");
  EXPECT_EQ(refusal(25, -1), not_a_table);
  EXPECT_EQ(refusal(25, std::numeric_limits<double>::quiet_NaN()), not_a_table);
  EXPECT_EQ(refusal(26, -3), not_a_table);
  EXPECT_EQ(refusal(26, 1e9), not_a_table);
  EXPECT_EQ(refusal(26, std::numeric_limits<double>::infinity()), not_a_table);
  EXPECT_EQ(refusal(27, 170), not_a_table);
  EXPECT_EQ(refusal(27, -1), not_a_table);
  EXPECT_EQ(refusal(26, 2.75), "");
  EXPECT_EQ(refusal(27, 3.5), "");
}

TEST(Opening, MoreAtomsThanDoublePrecisionHasAreUnrecognised) {
  bytes file = hole_table(0, double_words);
  ovtest::put_number(file, 25, 257, double_words);
  ovtest::engine_files files;
  EXPECT_EQ(message_of([&] { files.open(file); }), "Unrecognised file type.");
}

TEST(Opening, AProbeThatCannotReadIsNoVerdictOnTheFile) {
  ovtest::engine_files files;
  files.open(hole_table(1, single_words));
  ovtest::failing_files failing;
  failing.fail_nth(call::read, 1);
  EXPECT_EQ(message_of([&] { files.reopen(); }), "cannot open file " + utf8(files.name()));
}

TEST(Opening, EveryRecordWordBelongsToOneAtom) {
  ovtest::engine_files files;
  const auto refusal = [&](double position) {
    bytes file = hole_table(3, double_words);
    ovtest::put_number(file, (4 + 2) * 7 + 3, position, double_words);  // DEPTH
    return message_of([&] { files.open(file); });
  };
  for (const double wrong : {1.0, 2.0, 4.0, -1.0, 1e9, std::nan("")}) {
    EXPECT_EQ(refusal(wrong), "Not a valid orvexa table") << wrong;
  }
  EXPECT_EQ(refusal(3.75), "");
}

TEST(Opening, AHeaderPageThatIsNotThereIsAShortRead) {
  bytes file = hole_table(0, single_words);
  file.resize(1024);
  ovtest::engine_files files;
  EXPECT_EQ(message_of([&] { files.open(file); }),
            "OvFile Error: cache failed to read an entire page. (1024 bytes read instead of 2048)");
}

TEST(Opening, TellsItsHeaderToWhoeverListens) {
  ovtest::engine_files files;
  ovtest::write_bytes(files.path(), hole_table(3, double_words));
  const ovtest::debug_listener debug;
  files.reopen(true);
  const std::vector<std::string> expected = {"OvFile Header: file: " + ovtest::utf8(files.name()),
                                             "OvFile Header: precision: double",
                                             "OvFile Header: byte order: 0",
                                             "OvFile Header: name: ",
                                             "OvFile Header: second name: ",
                                             "OvFile Header: description: holes",
                                             "OvFile Header: owner: SYSTEM",
                                             "OvFile Header: atoms: 5",
                                             "OvFile Header: pages: 2",
                                             "OvFile Header: header pages: 1",
                                             "OvFile Header: records in the last page: 3",
                                             "OvFile Header: records a page: 169",
                                             "OvFile Header: words a record: 3",
                                             "OvFile Header: rows: 3",
                                             "OvFile Header: bytes of the file: 8192",
                                             "OvFile Header: field: BHID",
                                             "OvFile Header: field: DEPTH",
                                             "OvFile Header: field: DENSITY",
                                             "OvFile Header: field: LITH"};
  EXPECT_EQ(debug.lines(), expected);
}

TEST(Opening, WithoutMemoryForRecordsThereIsNoTable) {
  // The map is set up when the table is opened; the message is what a host then sees.
  ovtest::engine_files files;
  files.open(hole_table(1, double_words));
  const ovtest::debug_listener debug;
  ovtest::deny_allocations_of(409600);
  EXPECT_EQ(message_of([&] { files.reopen(); }), "error caching page");
  EXPECT_TRUE(debug.heard("error caching page"));
  ovtest::deny_allocations_of(0);
}

ovf::field_definition number(const char* name) {
  ovf::field_definition field;
  field.name = ovf::wide_from_ansi(name);
  return field;
}

ovf::table_definition definition(int fields, bool is_double) {
  ovf::table_definition made;
  made.is_double = is_double;
  made.description = OLESTR("test");
  for (int i = 0; i < fields; ++i) made.fields.push_back(number(("F" + std::to_string(i)).c_str()));
  return made;
}

TEST(Making, SixtyFourFieldsPassAndSixtyFiveAreRefusedInSinglePrecision) {
  const ovf::new_table made(definition(64, false));
  EXPECT_EQ(made.header.size(), 2048U);
  EXPECT_EQ(message_of([] { ovf::new_table(definition(65, false)); }),
            "Failed to create file.\nPlease note there is a size limit of 64 4-byte fields per record in a "
            "single precision Orvexa file.\nPlease consider removing some columns and/or choosing double "
            "precision format");
  EXPECT_EQ(ovf::new_table(definition(256, true)).header.size(), 4 * 4096U);
  EXPECT_EQ(message_of([] { ovf::new_table(definition(257, true)); }),
            "The Field count exceeds the limit of double precision");
}

TEST(Making, NamesAreCheckedBeforeTheTargetIsTouched) {
  ovf::table_definition bad = definition(1, false);
  bad.fields.push_back(number("F0"));
  EXPECT_EQ(message_of([&] { ovf::new_table{bad}; }), "field name already exists");
  bad.fields[1] = number("NINECHARS");
  EXPECT_EQ(message_of([&] { ovf::new_table{bad}; }), "field name exceeds 8 characters");
  bad.is_double = true;
  EXPECT_EQ(message_of([&] { ovf::new_table{bad}; }), "field name too long");
  bad.fields[1] = number("A=B");
  EXPECT_EQ(message_of([&] { ovf::new_table{bad}; }), "field name contains invalid characters");
}

TEST(Names, ANulWouldEndTheNameForReaders) {
  const ovf::wide name = {OLESTR('A'), OLESTR('\0'), OLESTR('B')};
  EXPECT_EQ(message_of([&] { ovf::check_new_field_name(name, true); }),
            "field name contains invalid characters");
}

/// In some code pages a character takes several bytes, and a file has places for bytes.
TEST(Names, WhatCountsIsTheBytesInTheCodePage) {
  const std::string four = "\x8D\x7A\x90\xCE\x95\x69\x88\xCA";  // characters of two bytes
  const auto refusal = [](const std::string& name, bool is_double, ovf::name_use use) {
    return message_of([&] { ovf::check_ansi_field_name(name, is_double, use); });
  };
  for (const ovf::name_use use : {ovf::name_use::adding, ovf::name_use::renaming}) {
    EXPECT_EQ(refusal(four, false, use), "");
    EXPECT_EQ(refusal(four + "A", false, use), "field name exceeds 8 characters");
    EXPECT_EQ(refusal(four, true, use), "");
  }
  EXPECT_EQ(refusal(four + "A", true, ovf::name_use::adding), "field name too long");
  EXPECT_EQ(refusal(four + "A", true, ovf::name_use::renaming), "field name is too long");
}

TEST(Names, ForbiddenCharactersAnywhereAndAtTheBeginning) {
  for (const char* good : {"X.Y", "X@1", "AU_PPM", "FREQ-%", "1ST", "a\xE9"}) {
    EXPECT_EQ(message_of([&] { ovf::check_new_field_name(ovf::wide_from_ansi(good), false); }), "") << good;
  }
  for (const char* bad : {".X", "@X", "A B", "A,B", "A!", "A:", "A*", "A&", "A=", "A(", "A)", "A?"}) {
    EXPECT_EQ(message_of([&] { ovf::check_new_field_name(ovf::wide_from_ansi(bad), false); }),
              "field name contains invalid characters")
        << bad;
  }
}

TEST(Making, WithoutADescriptionTheFileTellsWhoMadeItAndWhen) {
  ovtest::engine_files files;
  for (const bool is_double : {false, true}) {
    ovf::table_definition bare = definition(1, is_double);
    bare.description.clear();
    const std::time_t before = std::time(nullptr);
    const auto table = ovf::create_table(files.name(), ovf::new_table(bare));
    const std::time_t after = std::time(nullptr);
    const auto expected = [&](std::time_t at) {
      const std::tm* date = std::gmtime(&at);
      return "Created by OvFile Component (" + std::string(is_double ? "Double" : "Single") +
             " Precision) on " + std::to_string(date->tm_mday) + "/" + std::to_string(date->tm_mon + 1) +
             "/" + std::to_string(date->tm_year + 1900);
    };
    std::string found = utf8(table->facts().description);
    found.erase(found.find_last_not_of(' ') + 1);
    EXPECT_TRUE(found == expected(before) || found == expected(after)) << found;
  }
}

TEST(Making, AnExistingFileIsEmptiedFirst) {
  ovtest::engine_files files;
  ovtest::write_bytes(files.path(), bytes(100000, 'x'));
  ovf::create_table(files.name(), ovf::new_table(definition(2, false)));
  EXPECT_EQ(files.content().size(), 2048U);
}

TEST(Making, ATargetThatCannotBeMade) {
  ovtest::scratch_folder folder;
  const ovf::wide name = ovtest::wide_path(folder / "no folder" / "table.ovt");
  EXPECT_EQ(message_of([&] { ovf::create_table(name, ovf::new_table(definition(1, false))); }),
            "cannot create file");
  EXPECT_EQ(message_of([&] { ovf::create_table({}, ovf::new_table(definition(1, false))); }),
            "no filename given");
}

/// What making a table may say when a call of the file system fails.
bool is_making_failure(const std::string& message, const std::string& name) {
  return message == "Failed to create file" || message == "cannot create file" ||
         message == "cannot create temp file for segment" || message == "cannot retrieve file size" ||
         message == "cannot move to page in file" ||
         message == ovtest::with_failing_code("OvFile Error: cache failed to read file.") ||
         message.starts_with("Failed to open table " + name);
}

TEST(Making, EveryCallThatFailsIsToldAndLeavesAWholeFileOrNone) {
  ovtest::engine_files files;
  const ovf::new_table made(definition(3, false));
  bool untouched = false;
  for (int n = 1; !untouched; ++n) {
    ASSERT_LT(n, 1000);
    int calls = 0;
    ovtest::failing_files failing;
    // A temporary file that the system will not remove stays, whatever the library does.
    failing.decide = [&](call kind, const ovf::wide&) {
      return kind != call::remove && ++calls == n ? ovtest::fate::fails : ovtest::fate::works;
    };
    const std::string message = message_of([&] { ovf::create_table(files.name(), made); });
    untouched = calls < n;
    EXPECT_EQ(message.empty() || is_making_failure(message, utf8(files.name())), true) << n << message;
    if (std::filesystem::exists(files.path())) {
      EXPECT_EQ(files.content().size(), 2048U) << "call " << n << ": " << message;
    }
    std::filesystem::remove(files.path());
    for (const auto& left : std::filesystem::directory_iterator(files.path().parent_path())) {
      ADD_FAILURE() << "left behind: " << left.path();
    }
  }
}

TEST(Making, WithoutRoomForTemporaryFilesAnExistingTableStays) {
  ovtest::engine_files files;
  const bytes before = hole_table(100, single_words);
  ovtest::write_bytes(files.path(), before);
  ovtest::failing_files failing;
  failing.decide = [&](call kind, const ovf::wide& name) {
    return kind == call::open && name != files.name() ? ovtest::fate::fails : ovtest::fate::works;
  };
  EXPECT_EQ(message_of([&] { ovf::create_table(files.name(), ovf::new_table(definition(3, false))); }),
            "cannot create temp file for segment");
  EXPECT_EQ(files.content(), before);
}

TEST(Making, TheDateIsDayMonthYearWithoutLeadingZeros) {
  EXPECT_EQ(utf8(ovf::default_description(false, {5, 3, 2024})),
            "Created by OvFile Component (Single Precision) on 5/3/2024");
  EXPECT_EQ(utf8(ovf::default_description(true, {31, 12, 2026})),
            "Created by OvFile Component (Double Precision) on 31/12/2026");
}

TEST(Making, AWriteThatFailsIsReported) {
  ovtest::engine_files files;
  ovtest::failing_files failing;
  failing.fail_all(call::write);
  EXPECT_EQ(message_of([&] { ovf::create_table(files.name(), ovf::new_table(definition(3, false))); }),
            "Failed to create file");
  EXPECT_FALSE(std::filesystem::exists(files.path()));
}

}  // namespace
