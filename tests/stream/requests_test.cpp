// What may be asked for, and what is answered to what may not.
#include "stream_host.h"

namespace ovtest {
namespace {

class StreamRequests : public StreamHost {
 protected:
  void SetUp() override { make_holes(5); }

  void expect_bad(const OvStreamRequest& request, const std::string& words) {
    ArrowArrayStream stream;
    std::memset(&stream, 0xFF, sizeof stream);
    clear_error();
    EXPECT_EQ(streams()->Read(&request, &stream), E_INVALIDARG);
    EXPECT_EQ(take_error_text(), words);
    EXPECT_EQ(stream.release, nullptr);
  }
};

TEST_F(StreamRequests, TheWholeTableByDefault) {
  const read_table found = read();
  ASSERT_EQ(found.columns.size(), 4U);
  EXPECT_EQ(found.batches, (std::vector<std::int64_t>{5}));
  EXPECT_EQ(found.cells[0][4], text_cell_of("H5"));
  EXPECT_EQ(found.cells[1][0], double_cell(1));
  EXPECT_EQ(found.cells[2][3], double_cell(2.75));
  EXPECT_EQ(found.cells[3][0], text_cell_of("Nord"));
}

TEST_F(StreamRequests, ColumnsInAnyOrderAndTwice) {
  const LONG columns[] = {2, 1, 2};
  OvStreamRequest request;
  request.nColumns = 3;
  request.pColumns = columns;
  const read_table found = read(request);
  ASSERT_EQ(found.columns.size(), 3U);
  EXPECT_EQ(found.columns[0].name, "DEPTH");
  EXPECT_EQ(found.columns[1].name, "BHID");
  EXPECT_EQ(found.cells[2][2], double_cell(3));
}

TEST_F(StreamRequests, NoColumnsGiveRowsAlone) {
  const LONG none = 0;
  OvStreamRequest request;
  request.pColumns = &none;
  request.rowsPerBatch = 3;
  EXPECT_EQ(read(request).batches, (std::vector<std::int64_t>{3, 2}));
}

TEST_F(StreamRequests, RowsFromOneOnToTheEnd) {
  OvStreamRequest request;
  request.firstRow = 4;
  const read_table found = read(request);
  EXPECT_EQ(found.batches, (std::vector<std::int64_t>{2}));
  EXPECT_EQ(found.cells[1][0], double_cell(4));
}

TEST_F(StreamRequests, SomeRowsInBatchesOfTwo) {
  OvStreamRequest request;
  request.firstRow = 2;
  request.nRows = 3;
  request.rowsPerBatch = 2;
  const read_table found = read(request);
  EXPECT_EQ(found.batches, (std::vector<std::int64_t>{2, 1}));
  EXPECT_EQ(found.cells[1], (std::vector<read_cell>{double_cell(2), double_cell(3), double_cell(4)}));
}

TEST_F(StreamRequests, RowsBehindTheLastAreNoneToTheEnd) {
  OvStreamRequest request;
  for (const LONG first : {6, 100, 2147483647}) {
    request.firstRow = first;
    EXPECT_TRUE(read(request).batches.empty()) << first;
  }
}

TEST_F(StreamRequests, NoRowsGiveNoBatch) {
  OvStreamRequest request;
  request.nRows = 0;
  EXPECT_TRUE(read(request).batches.empty());
}

TEST_F(StreamRequests, RowsThatAreNotThereAreRefused) {
  OvStreamRequest request;
  request.nRows = 6;
  expect_bad(request, "Read failed, the table has no row 6");
  request.firstRow = 5;
  request.nRows = 2147483647;
  expect_bad(request, "Read failed, the table has no row 2147483651");
  request.firstRow = 9;
  request.nRows = 0;
  expect_bad(request, "Read failed, the table has no row 9");
}

TEST_F(StreamRequests, NumbersThatCannotBeAreRefused) {
  OvStreamRequest request;
  request.firstRow = 0;
  expect_bad(request, "Read failed, the first row cannot be 0");
  request = {};
  request.nRows = -2;
  expect_bad(request, "Read failed, a number of rows cannot be -2");
  request = {};
  request.rowsPerBatch = -1;
  expect_bad(request, "Read failed, a batch cannot have -1 rows");
  request = {};
  request.flags = 16 | 1;
  expect_bad(request, "Read failed, unknown flags 0x10");
  request = {};
  request.cbSize = 12;
  expect_bad(request, "Read failed, no request has the size 12");
}

TEST_F(StreamRequests, ColumnsThatAreNotThereAreRefused) {
  OvStreamRequest request;
  for (const LONG column : {0, -1, 5}) {
    request.nColumns = 1;
    request.pColumns = &column;
    expect_bad(request, "Read failed, the table has no column " + std::to_string(column));
  }
  const LONG first = 1;
  request.pColumns = &first;
  request.nColumns = -3;
  expect_bad(request, "Read failed, a number of columns cannot be -3");
}

TEST_F(StreamRequests, NullPointersAreRefused) {
  const OvStreamRequest request;
  ArrowArrayStream stream;
  std::memset(&stream, 0xFF, sizeof stream);
  EXPECT_EQ(streams()->Read(&request, nullptr), E_POINTER);
  EXPECT_EQ(streams()->Read(nullptr, &stream), E_POINTER);
  EXPECT_EQ(stream.release, nullptr);
}

TEST_F(StreamRequests, AClosedTableHasNoStream) {
  ASSERT_EQ(table_->Close(), S_OK);
  const OvStreamRequest request;
  ArrowArrayStream stream{};
  EXPECT_EQ(streams()->Read(&request, &stream), E_FAIL);
  EXPECT_EQ(stream.release, nullptr);
}

TEST_F(StreamRequests, AnEmptyTableHasTypesAndNoBatch) {
  create(holes(false), "empty.ovt");
  const read_table found = read();
  EXPECT_EQ(found.columns.size(), 4U);
  EXPECT_EQ(found.columns[1].format, "f");
  EXPECT_TRUE(found.batches.empty());
}

TEST_F(StreamRequests, TheInterfaceIsKnown) {
  EXPECT_TRUE(streams());
  const auto told = table_.query<IOvTableStream>();
  ISupportErrorInfo* information = nullptr;
  ASSERT_EQ(table_->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&information)), S_OK);
  EXPECT_EQ(information->InterfaceSupportsErrorInfo(IID_IOvTableStream), S_OK);
  information->Release();
  void* found = nullptr;
  EXPECT_EQ(ovfile::create_record_set()->QueryInterface(IID_IOvTableStream, &found), E_NOINTERFACE);
}

}  // namespace
}  // namespace ovtest
