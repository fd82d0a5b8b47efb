// Blocks of rows (row_blocks.h) beside the cursor.
#include "engine/ovtable.h"

namespace ovf {

template <class Precision>
template <class Body>
auto basic_ovtable<Precision>::keeping_record(Body body) {
  // Whatever happens in the body: the cursor's record is where it was, or is looked for again.
  struct keeper {
    basic_ovtable& of;
    std::uint64_t segment;

    ~keeper() {
      if (of.record_ != nullptr && of.rows_.held_segment() != segment) of.restore_record();
    }
  };
  const keeper kept{*this, rows_.held_segment()};
  return body();
}

template <class Precision>
void basic_ovtable<Precision>::readRows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer,
                                        const record_reader& take) {
  keeping_record([&] { rows_.read_rows(first, rows, buffer, take); });
}

template <class Precision>
added_rows basic_ovtable<Precision>::beginRows() {
  return keeping_record([&] { return rows_.begin_rows(); });
}

template <class Precision>
void basic_ovtable<Precision>::putRows(added_rows& added, std::uint64_t rows, const record_writer& fill) {
  rows_.put_rows(added, rows, fill);
}

template <class Precision>
void basic_ovtable<Precision>::commitRows(added_rows& added) {
  keeping_record([&] { rows_.commit_rows(added); });
}

template <class Precision>
void basic_ovtable<Precision>::giveUpRows(added_rows& added) noexcept {
  keeping_record([&] { rows_.give_up_rows(added); });
}

template void basic_ovtable<single_precision>::readRows(std::uint64_t, std::uint64_t, block_buffer&,
                                                        const record_reader&);
template added_rows basic_ovtable<single_precision>::beginRows();
template void basic_ovtable<single_precision>::putRows(added_rows&, std::uint64_t, const record_writer&);
template void basic_ovtable<single_precision>::commitRows(added_rows&);
template void basic_ovtable<single_precision>::giveUpRows(added_rows&) noexcept;
template void basic_ovtable<double_precision>::readRows(std::uint64_t, std::uint64_t, block_buffer&,
                                                        const record_reader&);
template added_rows basic_ovtable<double_precision>::beginRows();
template void basic_ovtable<double_precision>::putRows(added_rows&, std::uint64_t, const record_writer&);
template void basic_ovtable<double_precision>::commitRows(added_rows&);
template void basic_ovtable<double_precision>::giveUpRows(added_rows&) noexcept;

}  // namespace ovf
