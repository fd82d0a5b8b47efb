// A host's side of the progress of long calls: it remembers what it hears, and stops the call where a test
// wants it to.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "ovfile/progress.h"
#include "ovfile/smart.h"

namespace ovtest {

class progress_sink final : public IOvProgress {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = iid == IID_IUnknown || iid == IID_IOvProgress ? static_cast<IOvProgress*>(this) : nullptr;
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE Progress(LONGLONG done, LONGLONG total) override {
    heard.emplace_back(done, total);
    if (meanwhile) meanwhile();
    return heard.size() == stop_at ? answer : S_OK;
  }

  /// From nothing to all of `total`, without a step back.
  void expect_whole_work(LONGLONG total) const {
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.front().first, 0);
    LONGLONG before = 0;
    for (const auto& [done, of] : heard) {
      EXPECT_GE(done, before);
      EXPECT_EQ(of, total);
      before = done;
    }
    EXPECT_EQ(before, total);
  }

  ULONG references = 1;  ///< lives on the stack, whatever the count
  std::vector<std::pair<LONGLONG, LONGLONG>> heard;
  std::size_t stop_at = 0;  ///< counted from 1; 0: never
  HRESULT answer = S_FALSE;
  std::function<void()> meanwhile;
};

template <class Interface>
HRESULT give_progress(const ovfile::pointer<Interface>& object, IOvProgress* sink) {
  return object.template query<IOvProgressSource>()->SetProgress(sink);
}

}  // namespace ovtest
