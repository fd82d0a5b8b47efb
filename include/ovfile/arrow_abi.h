// The structures of the Arrow C data interface and of the Arrow C stream interface, under the guards that
// every program shares that speaks them: whoever includes another declaration of them first keeps that
// one.
//
// A structure is alive while its `release` is not null. Whoever holds it calls `release` once, which sets
// it to null; a structure is moved by copying it and setting the source's `release` to null.
#pragma once

#include <stdint.h>  // NOLINT(modernize-deprecated-headers): C programs may include this one too

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

/// The type of an array.
struct ArrowSchema {
  const char* format;
  const char* name;
  /// Pairs of texts: an int32 count, then for each an int32 length and the bytes, key and value in turn.
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;

  void (*release)(struct ArrowSchema*);
  void* private_data;
};

/// The values of an array.
struct ArrowArray {
  int64_t length;
  int64_t null_count;  ///< -1: not counted
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;

  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

/// Arrays of one type, one after the other. The functions answer 0 or a code of errno.
struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  /// At the end `out` is a released array.
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  /// Why the last call failed, UTF-8; null when there is nothing to say. Lives until the next call.
  const char* (*get_last_error)(struct ArrowArrayStream*);

  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif

#ifdef __cplusplus
}
#endif
