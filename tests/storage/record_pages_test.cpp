#include "storage/record_pages.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

using ovtest::call;
using ovtest::fate;
using ovtest::message_of;
using ovtest::with_failing_code;

constexpr std::size_t double_page = 4096;

/// Pages of a file whose bytes are the page's number.
ovtest::bytes numbered(std::size_t pages, std::size_t page_bytes) {
  ovtest::bytes content(pages * page_bytes);
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<unsigned char>(i / page_bytes);
  return content;
}

class RecordPages : public ::testing::Test {
 protected:
  std::unique_ptr<ovf::file> file_of(const ovtest::bytes& content) {
    ovtest::write_bytes(path_, content);
    return ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
  }
  ovtest::bytes content() const { return ovtest::read_bytes(path_); }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "pages";
  ovtest::failing_files files_;
};

TEST_F(RecordPages, DoublePrecisionHoldsAHundredPagesAtATime) {
  const auto file = file_of(numbered(205, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  const ovf::page_counts counts{1, 205, 127};
  EXPECT_EQ(pages.page(1, counts)[0], std::byte{1});
  const int reads = files_.count(call::read);
  EXPECT_EQ(pages.page(99, counts)[0], std::byte{99});
  EXPECT_EQ(files_.count(call::read), reads);
  EXPECT_EQ(pages.page(100, counts)[0], std::byte{100});
  EXPECT_EQ(pages.page(204, counts)[0], std::byte{204});
  EXPECT_EQ(files_.count(call::read), reads + 2);
}

class Jumps : public RecordPages {
 protected:
  static constexpr ovf::page_counts counts{1, 405, 127};

  /// What reads bring into memory, in pages.
  std::size_t pages_read(const std::function<void()>& work) {
    const std::size_t before = files_.bytes_read();
    work();
    return (files_.bytes_read() - before) / double_page;
  }
};

TEST_F(Jumps, ReadOnePageAndTheRestWhenMoreIsWanted) {
  const auto file = file_of(numbered(405, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  std::byte* found = nullptr;
  EXPECT_EQ(pages_read([&] { pages.page(1, counts); }), 100U);
  EXPECT_EQ(pages_read([&] { found = pages.page(350, counts); }), 1U);
  EXPECT_EQ(found[0], std::byte{350 % 256});
  EXPECT_EQ(pages_read([&] { pages.page(350, counts); }), 0U);
  EXPECT_EQ(pages_read([&] { found = pages.page(351, counts); }), 99U);
  EXPECT_EQ(found[double_page - 1], std::byte{351 % 256});
  EXPECT_EQ(pages.page(399, counts)[0], std::byte{399 % 256});
  EXPECT_EQ(pages.page(300, counts)[0], std::byte{300 % 256});
  EXPECT_EQ(pages_read([&] { found = pages.page(404, counts); }), 5U);
  EXPECT_EQ(found[0], std::byte{404 % 256});
}

TEST_F(Jumps, ChangesStayWhenTheRestIsRead) {
  for (const bool may_write : {true, false}) {
    const auto file = file_of(numbered(405, double_page));
    ovf::record_pages<ovf::double_precision> pages(*file, may_write, 4);
    pages.page(1, counts);
    std::byte* page = pages.page(350, counts);
    page[32] = std::byte{'!'};
    pages.mark_changed(page + 32, 32);
    pages.page(360, counts);
    EXPECT_EQ(pages.page(350, counts), page);
    EXPECT_EQ(page[32], std::byte{'!'});
    pages.flush();
    ovtest::bytes expected = numbered(405, double_page);
    if (may_write) expected[350 * double_page + 32] = '!';
    EXPECT_EQ(content(), expected);
  }
}

TEST_F(Jumps, AFileThatEndsEarlySaysWhatItAlwaysSays) {
  ovtest::bytes short_file = numbered(352, double_page);
  short_file.resize(351 * double_page + 100);
  const auto file = file_of(short_file);
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  pages.page(1, counts);
  EXPECT_EQ(pages.page(350, counts)[0], std::byte{350 % 256});
  const std::string words =
      "OvFile Error: cache failed to read an entire page. (208996 bytes read instead of 409600)";
  EXPECT_EQ(message_of([&] { pages.page(351, counts); }), words);
  pages.page(1, counts);
  EXPECT_EQ(message_of([&] { pages.page(351, counts); }), words);
  pages.page(1, counts);
  EXPECT_EQ(message_of([&] { pages.page(390, counts); }), words);
  EXPECT_EQ(message_of([&] {
              pages.page(404, {1, 405, 120});
            }),
            "OvFile Error: cache failed to read an entire page. (0 bytes read instead of 16864)");
}

TEST_F(Jumps, AFailedReadLeavesWhatIsInMemory) {
  const auto file = file_of(numbered(405, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  pages.page(1, counts);
  std::byte* page = pages.page(350, counts);
  page[32] = std::byte{'!'};
  pages.mark_changed(page + 32, 32);
  for (const int nth : {1, 2}) {
    files_.fail_nth(call::read, nth);
    EXPECT_EQ(message_of([&] { pages.page(360, counts); }),
              with_failing_code("OvFile Error: cache failed to read file."));
  }
  EXPECT_EQ(pages.page(350, counts)[32], std::byte{'!'});
  EXPECT_EQ(pages.page(360, counts)[0], std::byte{360 % 256});
  EXPECT_EQ(pages.page(349, counts)[0], std::byte{349 % 256});
}

TEST_F(Jumps, APageThatIsAddedIsEmpty) {
  const auto file = file_of(numbered(405, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  pages.page(1, counts);
  EXPECT_EQ(pages.page(401, counts)[0], std::byte{401 % 256});
  pages.append(counts);
  EXPECT_EQ(pages.page(405, {1, 406, 1})[0], std::byte{0});
  EXPECT_EQ(pages.page(404, {1, 406, 1})[0], std::byte{404 % 256});
}

TEST_F(RecordPages, FlushingTheFirstSegmentLeavesTheHeaderPagesAlone) {
  const auto file = file_of(numbered(4, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  const ovf::page_counts counts{2, 4, 127};
  std::byte* third = pages.page(2, counts);
  // The copies of the header pages in the segment are older than what another map wrote meanwhile.
  std::fill(third - 2 * double_page, third + double_page, std::byte{'!'});
  pages.mark_changed(third, double_page);
  pages.flush();
  ovtest::bytes expected = numbered(4, double_page);
  std::fill(expected.begin() + 2 * double_page, expected.begin() + 3 * double_page, '!');
  EXPECT_EQ(content(), expected);
}

TEST_F(RecordPages, AFlushWritesWhatWasChangedAndNothingBeside) {
  const auto file = file_of(numbered(60, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  std::byte* page = pages.page(28, {1, 60, 127});
  page[64] = std::byte{'n'};  // nobody says so
  page[double_page - 32] = page[double_page - 1] = std::byte{'e'};
  pages.mark_changed(page + double_page - 32, 32);
  pages.flush();
  ovtest::bytes expected = numbered(60, double_page);
  expected[29 * double_page - 32] = expected[29 * double_page - 1] = 'e';
  EXPECT_EQ(content(), expected);
}

TEST_F(RecordPages, AShortLastSegmentIsTakenWhenItHoldsTheLowerBound) {
  ovtest::bytes short_file = numbered(2, double_page);
  short_file.resize(double_page + 4 * 120);
  const auto file = file_of(short_file);
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  EXPECT_EQ(pages.page(1, {1, 2, 120})[0], std::byte{1});
}

TEST_F(RecordPages, AShorterOneNamesBothNumbers) {
  ovtest::bytes short_file = numbered(2, double_page);
  short_file.resize(double_page + 256);
  const auto file = file_of(short_file);
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  EXPECT_EQ(message_of([&] {
              pages.page(1, {1, 2, 120});
            }),
            "OvFile Error: cache failed to read an entire page. (4352 bytes read instead of 4576)");
}

TEST_F(RecordPages, PagesThatAreWhollyThereAreServedFromAShortSegment) {
  const auto file = file_of(numbered(3, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  const ovf::page_counts counts{1, 50, 127};
  EXPECT_EQ(pages.page(2, counts)[0], std::byte{2});
  EXPECT_EQ(message_of([&] { pages.page(3, counts); }),
            "OvFile Error: cache failed to read an entire page. (12288 bytes read instead of 201212)");
  EXPECT_EQ(pages.page(1, counts)[0], std::byte{1});
}

TEST_F(RecordPages, SinglePrecisionNeedsTheRecordsOfItsLastPageAlone) {
  ovtest::bytes short_file = numbered(3, 2048);
  short_file.resize(2 * 2048 + 20);
  const auto file = file_of(short_file);
  ovf::record_pages<ovf::single_precision> pages(*file, true, 4);
  EXPECT_EQ(pages.page(1, {1, 3, 5})[0], std::byte{1});
  EXPECT_EQ(pages.page(2, {1, 3, 5})[0], std::byte{2});
  EXPECT_EQ(message_of([&] { pages.page(2, {1, 3, 6}); }), "");  // held already
  EXPECT_EQ(pages.page(1, {1, 3, 6})[0], std::byte{1});
  EXPECT_EQ(message_of([&] {
              pages.page(2, {1, 3, 6});
            }),
            "OvFile Error: cache failed to read an entire page. (20 bytes read instead of 24)");
}

TEST_F(RecordPages, AppendingDropsWhatLiesBehindTheCountedPagesInDoublePrecision) {
  const auto file = file_of(numbered(5, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  pages.page(1, {1, 3, 127});
  pages.append({1, 3, 127});
  ovtest::bytes expected = numbered(3, double_page);
  expected.resize(4 * double_page);
  EXPECT_EQ(content(), expected);
  EXPECT_EQ(pages.page(3, {1, 4, 1})[0], std::byte{0});
}

TEST_F(RecordPages, AppendingWritesAtTheEndOfTheCountedPagesInSinglePrecision) {
  const auto file = file_of(numbered(5, 2048));
  ovf::record_pages<ovf::single_precision> pages(*file, true, 4);
  pages.append({1, 3, 127});
  ovtest::bytes expected = numbered(5, 2048);
  std::fill(expected.begin() + 3 * 2048, expected.begin() + 4 * 2048, 0);
  EXPECT_EQ(content(), expected);
  EXPECT_EQ(files_.count(call::set_end), 0);
}

TEST_F(RecordPages, AFailedOrShortAppendHasTheWordsOfItsPrecision) {
  const auto single_file = file_of(numbered(2, 2048));
  ovf::record_pages<ovf::single_precision> single(*single_file, true, 4);
  const auto double_file = file_of(numbered(2, double_page));
  ovf::record_pages<ovf::double_precision> wide(*double_file, true, 4);
  for (const fate how : {fate::fails, fate::falls_short}) {
    const ovtest::debug_listener debug;
    const std::string words = with_failing_code("OvFile Error: addPage failed to write an entire page.");
    files_.fail_nth(call::write, 1, how);
    EXPECT_EQ(message_of([&] { single.append({1, 2, 127}); }), words);
    EXPECT_TRUE(debug.heard(words));
    files_.fail_nth(call::write, 1, how);
    EXPECT_EQ(message_of([&] {
                wide.append({1, 2, 127});
              }),
              with_failing_code("OvFile Error: Add Page failed to write an entire page."));
  }
}

TEST_F(RecordPages, AnEndThatCannotBeSetIsReported) {
  const auto file = file_of(numbered(3, double_page));
  ovf::record_pages<ovf::double_precision> pages(*file, true, 4);
  const ovtest::debug_listener debug;
  files_.fail_nth(call::set_end, 1);
  const std::string words = with_failing_code("OvFile Error: addPage failed to set the end of the file.");
  EXPECT_EQ(message_of([&] { pages.append({1, 2, 127}); }), words);
  EXPECT_TRUE(debug.heard(words));
  EXPECT_EQ(content(), numbered(3, double_page));
}

}  // namespace
