// Tables of any shape, against a plain model: written row by row, read by stream, appended by stream.
#include <random>

#include "getters.h"
#include "stream_host.h"

namespace ovtest {
namespace {

struct model_field {
  std::string name;
  bool is_text = false;
  bool is_implicit = false;
  LONG width = 0;
};

class StreamRandom : public StreamHost, public testing::WithParamInterface<int> {
 protected:
  std::mt19937 random_{static_cast<unsigned>(GetParam())};
  bool is_double_ = GetParam() % 2 == 0;
  std::vector<model_field> fields_;

  int pick(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

  owned<IOvSchema> any_schema() {
    owned<IOvSchema> schema = make_schema();
    schema->put_DoublePrecision(is_double_ ? VARIANT_TRUE : VARIANT_FALSE);
    schema->put_Description(bstr("random").get());
    schema->AddNumericColumn(bstr("FIRST").get(), 0, 0);
    fields_ = {{"FIRST", false, false, 0}};
    for (int i = pick(9); i > 0; --i) {
      model_field made{"F" + std::to_string(i), pick(1) == 0, pick(4) == 0, 4 + 4 * pick(4)};
      const LONG implicit = made.is_implicit ? 1 : 0;
      if (made.is_text) {
        schema->AddStringColumn(bstr(made.name).get(), made.width, bstr(any_text(made.width)).get(),
                                implicit);
      } else {
        schema->AddNumericColumn(bstr(made.name).get(), pick(100), implicit);
      }
      fields_.push_back(made);
    }
    return schema;
  }

  double any_number() {
    const double specials[] = {-1e30, 1e30, 1e-30, 0, -0.0, 0.1, 99999.99, 123456.789};
    return pick(3) == 0 ? specials[pick(7)] : std::uniform_real_distribution<double>(-1e6, 1e6)(random_);
  }

  /// Characters of the code page, in UTF-8.
  std::string any_text(LONG width) {
    const std::string characters[] = {"A", "b", "7", " ", "é", "€", "ß", ".", "\t"};
    std::string text;
    for (int left = pick(width); left > 0; --left) text += characters[pick(8)];
    return text;
  }
};

TEST_P(StreamRandom, ReadsAndAppendsLikeTheGettersAndSetters) {
  const owned<IOvSchema> schema = any_schema();
  const int rows = pick(1) == 0 ? pick(50) : pick(3000);
  made_batch batch;
  std::vector<std::vector<double>> numbers_of(fields_.size());
  std::vector<std::vector<std::string>> texts_of(fields_.size());
  create(schema, "set.ovt");
  for (int row = 0; row < rows; ++row) {
    ASSERT_EQ(table_->AddRow(), S_OK);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (fields_[i].is_implicit) continue;
      const LONG column = static_cast<LONG>(i + 1);
      if (fields_[i].is_text) {
        texts_of[i].push_back(any_text(fields_[i].width));
        ASSERT_EQ(table_->SetColumn(column, text_variant(texts_of[i].back()).get()), S_OK);
      } else {
        numbers_of[i].push_back(any_number());
        ASSERT_EQ(table_->SetColumn(column, variant(numbers_of[i].back()).get()), S_OK);
      }
    }
  }
  ASSERT_NO_FATAL_FAILURE(expect_streams_like_getters(table_, {1 + pick(100)}));
  ASSERT_EQ(table_->Close(), S_OK);
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (fields_[i].is_implicit) continue;
    batch.push_back(fields_[i].is_text ? texts(fields_[i].name, texts_of[i])
                                       : numbers(fields_[i].name, "g", numbers_of[i]));
  }
  std::shuffle(batch.begin(), batch.end(), random_);
  create(schema, "appended.ovt");
  std::vector<made_batch> batches;
  for (int first = 0; first < rows;) {
    const int here = std::min(rows - first, 1 + pick(700));
    batches.push_back(batch);
    for (made_column& column : batches.back()) {
      column.offset = first;
      column.length = here;
    }
    first += here;
  }
  if (batches.empty()) batches.push_back(batch);
  made_stream from(std::move(batches));
  ASSERT_EQ(append(from), S_OK) << take_error_text();
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_TRUE(content("appended.ovt") == content("set.ovt"));
}

INSTANTIATE_TEST_SUITE_P(seeds, StreamRandom, testing::Range(0, 60));

}  // namespace
}  // namespace ovtest
