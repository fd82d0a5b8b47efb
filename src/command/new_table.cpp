#include "new_table.h"

#include "failure.h"
#include "field_view.h"
#include "refused_file.h"

namespace command {

ovfile::pointer<IOvTable> create_new_table(const std::string& file, IOvSchema& schema,
                                           const std::string& shown) {
  auto table = ovfile::create_table();
  const HRESULT status = table->Create(ovfile::text(std::string_view(file)).get(), &schema);
  if (SUCCEEDED(status)) return table;
  const std::string words = taken_words(status);
  // In double precision the library has these for every reason.
  if (words == "Failed to create file") refuse_unwritable_file(file, shown);
  throw failure("cannot write " + shown + ": " + words);
}

}  // namespace command
