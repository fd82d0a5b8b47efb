// The types of a stream, with what their metadata tells.
#include "stream_host.h"

namespace ovtest {
namespace {

using texts_by_key = std::map<std::string, std::string>;

class StreamTypes : public StreamHost {};

TEST_F(StreamTypes, OfDoublePrecision) {
  make_holes(0);
  const read_table found = read();
  EXPECT_EQ(found.type.format, "+s");
  EXPECT_EQ(found.type.metadata,
            (texts_by_key{{"ovfile:description", "holes"}, {"ovfile:precision", "double"}}));
  ASSERT_EQ(found.columns.size(), 4U);
  EXPECT_EQ(found.columns[0].name, "BHID");
  EXPECT_EQ(found.columns[0].format, "u");
  EXPECT_FALSE(found.columns[0].nullable);
  EXPECT_EQ(found.columns[0].metadata, (texts_by_key{{"ovfile:kind", "text"},
                                                     {"ovfile:width", "8"},
                                                     {"ovfile:default", "none"},
                                                     {"ovfile:implicit", "false"}}));
  EXPECT_EQ(found.columns[1].format, "g");
  EXPECT_EQ(found.columns[1].metadata, (texts_by_key{{"ovfile:kind", "numeric"},
                                                     {"ovfile:width", "8"},
                                                     {"ovfile:default", "-1"},
                                                     {"ovfile:implicit", "false"}}));
  EXPECT_EQ(found.columns[2].metadata.at("ovfile:default"), "2.75");
  EXPECT_EQ(found.columns[2].metadata.at("ovfile:implicit"), "true");
  EXPECT_EQ(found.columns[3].metadata.at("ovfile:default"), "Nord");
  EXPECT_EQ(found.columns[3].metadata.at("ovfile:implicit"), "true");
}

TEST_F(StreamTypes, OfSinglePrecision) {
  make_holes(0, false);
  const read_table found = read();
  EXPECT_EQ(found.type.metadata.at("ovfile:precision"), "single");
  EXPECT_EQ(found.columns[1].format, "f");
  EXPECT_EQ(found.columns[1].metadata.at("ovfile:width"), "4");
  EXPECT_EQ(read_with(ovStreamWidened).columns[1].format, "g");
}

TEST_F(StreamTypes, DefaultsReadBackAndTextsAreUtf8) {
  auto schema = make_schema();
  schema->put_Description(bstr("Größe  ").get());
  schema->AddNumericColumn(bstr("ABSENT").get(), -1e30, 0);
  schema->AddNumericColumn(bstr("TENTH").get(), 0.1, 1);
  schema->AddStringColumn(bstr("NOTE").get(), 12, bstr("5 µm  ").get(), 0);
  schema->AddStringColumn(bstr("EMPTY").get(), 4, nullptr, 0);
  create(schema);
  const read_table found = read();
  EXPECT_EQ(found.type.metadata.at("ovfile:description"), "Größe");
  EXPECT_EQ(found.columns[0].metadata.at("ovfile:default"), "-1e+30");
  EXPECT_EQ(found.columns[1].metadata.at("ovfile:default"), "0.1");
  EXPECT_EQ(found.columns[2].metadata.at("ovfile:default"), "5 µm");
  EXPECT_EQ(found.columns[3].metadata.at("ovfile:default"), "");
}

TEST_F(StreamTypes, FlagsChangeThem) {
  make_holes(1);
  const read_table nullable = read_with(ovStreamAbsentAsNull);
  for (const read_type& each : nullable.columns) EXPECT_TRUE(each.nullable) << each.name;
  const read_table indexed = read_with(ovStreamTextDictionaries);
  EXPECT_EQ(indexed.columns[0].format, "i");
  EXPECT_EQ(indexed.columns[0].dictionary, "u");
  EXPECT_EQ(indexed.columns[1].format, "g");
  EXPECT_EQ(indexed.columns[1].dictionary, "");
  EXPECT_EQ(indexed.columns[3].format, "i");
}

TEST_F(StreamTypes, AreGivenAsOftenAsTheyAreAskedFor) {
  make_holes(1);
  ovfile::arrow_stream stream = ovfile::read_stream(table_);
  ovfile::arrow_schema first = stream.schema();
  ovfile::arrow_schema second = stream.schema();
  EXPECT_STREQ(first->children[1]->name, "DEPTH");
  first.reset();
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_STREQ(stream.schema()->children[0]->format, "u");
  EXPECT_STREQ(second->children[1]->name, "DEPTH");
}

}  // namespace
}  // namespace ovtest
