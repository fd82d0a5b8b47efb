// Whole columns by batches. `OvTable` answers `IOvTableStream`, which hands out and takes in streams of
// arrays as arrow_abi.h declares them; for C++ hosts there are owners of them below.
//
// A stream that is read gives one structure array for each batch, one child for each column, with the
// field's name: float32 in tables of 4-byte words, float64 in those of 8-byte words, utf8 for texts
// (or a dictionary of them with int32 indexes, new with every batch). Metadata, all texts:
//
//   of the schema    ovfile:description    without trailing blanks
//                    ovfile:precision      "single" or "double"
//   of each field    ovfile:kind           "numeric" or "text"
//                    ovfile:width          bytes of a number, characters of a text
//                    ovfile:default        the shortest digits that read back, or the text
//                    ovfile:implicit       "true" for a field without a place in the rows, else "false"
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "ovfile/arrow_abi.h"
#include "ovfile/smart.h"

inline constexpr IID IID_IOvTableStream{
    0xD84B1C6F, 0x20E7, 0x4A95, {0x8F, 0x3D, 0x6C, 0x5A, 0x91, 0xE0, 0xB7, 0x24}};

/// Bits of `OvStreamRequest::flags`.
enum OvStreamFlags : ULONG {
  ovStreamAbsentAsNull = 1,      ///< numbers that are -1e30 and texts of blanks alone are null
  ovStreamTrailingBlanks = 2,    ///< texts keep the blanks at their end
  ovStreamTextDictionaries = 4,  ///< texts as dictionaries
  ovStreamWidened = 8            ///< numbers of 4 bytes as float64, their decimal digits kept tidy
};

/// What to read. As it is made: the whole table.
struct OvStreamRequest {
  ULONG cbSize = sizeof(OvStreamRequest);
  LONG nColumns = 0;               ///< how many `pColumns` names; not looked at when that is null
  const LONG* pColumns = nullptr;  ///< columns from 1, in any order; null: all
  LONG firstRow = 1;
  LONG nRows = -1;        ///< -1: to the end, which may be none
  LONG rowsPerBatch = 0;  ///< at most so many; 0: the library's choice
  ULONG flags = 0;        ///< of OvStreamFlags
};

#define OVFILE_METHOD virtual HRESULT STDMETHODCALLTYPE

/// One thread at a time uses a table and its streams, their release included; batches and types that were
/// handed out are free of that.
struct IOvTableStream : IUnknown {
  /// Makes a stream of the open table's rows as they are now, in `pStream`, which the caller releases. It
  /// reads through the table's own handle and keeps the object alive, but not the file open: once the
  /// table was closed or changed in any way, the next batch is an error with a text (EINVAL; what cannot
  /// be read is EIO, and may be tried again; ENOMEM). Batches that were handed out live on by themselves. The
  /// cursor does not move. E_INVALIDARG with a report for a request that cannot be met.
  OVFILE_METHOD Read(const OvStreamRequest* pRequest, struct ArrowArrayStream* pStream) = 0;

  /// Appends the rows of a stream of structures; `pRows` is how many they were. The stream is the
  /// library's from then on and is released whatever the outcome.
  ///
  /// Columns go by name; a column that the stream lacks takes its default. Numbers may be of every integer
  /// and float type or bool (1 and 0), or dictionaries of them: floats are rounded to the table's precision,
  /// floats for a table of doubles are widened with their decimal digits kept tidy, and a number beyond
  /// the precision's range is refused, as is an integer that the precision cannot hold exactly. Texts may be
  /// utf8, large utf8 or dictionaries of them: blanks and tabs at the end are dropped, and a text that is
  /// longer than the column then, or has a character outside the ANSI code page, is refused. Null is absent
  /// (-1e30, or blanks). A value for an implicit column has to be the one that all rows have.
  ///
  /// What does not fit is reported with its column and row (counted from 1 in the stream), more rows than
  /// the table can have before any of their batch is taken; both leave the table with the rows that it
  /// had, and its file with the bytes, but for those behind the rows that no count includes. Streams that are
  /// being read may end with an error all the same. The cursor does not move.
  ///
  /// Refused, too, where another program or another object has changed the file since this object opened
  /// it, which it knows by its counts of rows and its size, and as long as this object has changed
  /// nothing, by the time of the last writing. What it finds then it leaves alone. One open table at a time
  /// appends, by streams or row by row, of all that use this library: from its first row until
  /// `FlushChanges` or `Close` has counted the last in the file, others are refused.
  ///
  /// The stream's own code may call into the table. It cannot append to it; a change and `Close` hold, and
  /// the rows of the stream are refused. No row counts before all are in: a process that ends before
  /// `FlushChanges` or `Close` leaves the rows that the table had.
  ///
  /// `IOvProgress` (progress.h) hears of the rows. Stopped by it, the call fails with E_ABORT.
  OVFILE_METHOD Append(struct ArrowArrayStream* pStream, LONG* pRows) = 0;
};

#undef OVFILE_METHOD

namespace ovfile {

template <>
inline constexpr IID iid_of<IOvTableStream> = IID_IOvTableStream;

/// Owns one of the structures that have a `release`, or nothing.
template <class Structure>
class arrow_owner {
 public:
  arrow_owner() noexcept = default;
  /// Takes the structure over; the source is empty afterwards.
  explicit arrow_owner(Structure& source) noexcept : held_(source) { source.release = nullptr; }
  explicit arrow_owner(Structure&& source) noexcept : arrow_owner(source) {}
  arrow_owner(arrow_owner&& other) noexcept : arrow_owner(other.held_) {}
  arrow_owner& operator=(arrow_owner&& other) noexcept {
    if (this != &other) {
      reset();
      held_ = std::exchange(other.held_, Structure{});
    }
    return *this;
  }
  arrow_owner(const arrow_owner&) = delete;
  arrow_owner& operator=(const arrow_owner&) = delete;
  ~arrow_owner() { reset(); }

  void reset() noexcept {
    if (held_.release != nullptr) held_.release(&held_);
    held_ = Structure{};
  }
  /// For a call that fills it: what was held is released.
  Structure* out() noexcept {
    reset();
    return &held_;
  }
  /// For a call that takes it over, or reads it.
  Structure* get() noexcept { return &held_; }
  const Structure* get() const noexcept { return &held_; }
  const Structure* operator->() const noexcept { return &held_; }
  const Structure& operator*() const noexcept { return held_; }
  explicit operator bool() const noexcept { return held_.release != nullptr; }

 private:
  Structure held_{};
};

using arrow_array = arrow_owner<ArrowArray>;
using arrow_schema = arrow_owner<ArrowSchema>;

/// Owns a stream. A range over its batches, each of which lives until the next one is asked for, unless
/// it is moved out: `for (arrow_array& batch : stream)`. Failures throw `error`.
class arrow_stream : public arrow_owner<ArrowArrayStream> {
 public:
  using arrow_owner::arrow_owner;

  arrow_schema schema() {
    arrow_schema found;
    require(get()->get_schema(get(), found.out()));
    return found;
  }
  /// The next batch; empty at the end.
  arrow_array next() {
    arrow_array batch;
    require(get()->get_next(get(), batch.out()));
    return batch;
  }

  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = arrow_array;
    using difference_type = std::ptrdiff_t;
    using pointer = arrow_array*;
    using reference = arrow_array&;

    iterator() noexcept = default;
    explicit iterator(arrow_stream& source) : source_(&source) { ++*this; }
    arrow_array& operator*() const noexcept { return source_->batch_; }
    arrow_array* operator->() const noexcept { return &source_->batch_; }
    iterator& operator++() {
      source_->batch_.reset();
      source_->batch_ = source_->next();
      if (!source_->batch_) source_ = nullptr;
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(const iterator& other) const noexcept { return source_ == other.source_; }

   private:
    arrow_stream* source_ = nullptr;
  };
  iterator begin() { return iterator(*this); }
  iterator end() noexcept { return {}; }

 private:
  void require(int code) {
    if (code == 0) return;
    const char* words = get()->get_last_error(get());
    throw error(E_FAIL, words != nullptr ? words : "the stream failed with code " + std::to_string(code), "");
  }

  arrow_array batch_;
};

/// The values of a column whose type is known to be `Value`, as they lie in memory.
template <class Value>
const Value* values_of(const ArrowArray& column) noexcept {
  return static_cast<const Value*>(column.buffers[1]) + column.offset;
}

inline pointer<IOvTableStream> streams_of(const pointer<IOvTable>& table) {
  auto streams = table.query<IOvTableStream>();
  if (!streams) throw error(E_NOINTERFACE, "this table has no streams", "");
  return streams;
}

/// Throws `error`.
inline arrow_stream read_stream(const pointer<IOvTable>& table, const OvStreamRequest& request = {}) {
  arrow_stream made;
  check(streams_of(table)->Read(&request, made.out()));
  return made;
}

/// Appends the stream's rows and answers how many they were. Throws `error`.
inline LONG append_stream(const pointer<IOvTable>& table, arrow_stream rows) {
  LONG appended = 0;
  check(streams_of(table)->Append(rows.get(), &appended));
  return appended;
}

}  // namespace ovfile
