// Blocks of rows (row_blocks.h) beside the cursor.
#include "engine/ovtable.h"

namespace ovf {

template <class Precision>
template <class Body>
void basic_ovtable<Precision>::keeping_record(Body body) {
  // Whatever happens in the body: the cursor's record is where it was, or is looked for again.
  struct keeper {
    basic_ovtable& of;
    std::uint64_t segment;

    ~keeper() {
      if (of.record_ != nullptr && of.rows_.held_segment() != segment) of.restore_record();
    }
  };
  const keeper kept{*this, rows_.held_segment()};
  body();
}

template <class Precision>
void basic_ovtable<Precision>::readRows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer,
                                        const record_reader& take) {
  keeping_record([&] { rows_.read_rows(first, rows, buffer, take); });
}

template <class Precision>
void basic_ovtable<Precision>::beginRows() {
  keeping_record([&] { rows_.begin_rows(); });
}

template <class Precision>
void basic_ovtable<Precision>::commitRows() {
  keeping_record([&] { rows_.commit_rows(); });
}

template void basic_ovtable<single_precision>::readRows(std::uint64_t, std::uint64_t, block_buffer&,
                                                        const record_reader&);
template void basic_ovtable<single_precision>::beginRows();
template void basic_ovtable<single_precision>::commitRows();
template void basic_ovtable<double_precision>::readRows(std::uint64_t, std::uint64_t, block_buffer&,
                                                        const record_reader&);
template void basic_ovtable<double_precision>::beginRows();
template void basic_ovtable<double_precision>::commitRows();

}  // namespace ovf
