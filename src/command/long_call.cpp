#include "long_call.h"

#include <atomic>
#include <exception>
#include <utility>

#include "console.h"
#include "progress.h"

namespace command {

class progress_sink final : public IOvProgress {
 public:
  explicit progress_sink(std::string title) : bar_(std::move(title)) {}
  progress_sink(const progress_sink&) = delete;
  progress_sink& operator=(const progress_sink&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (iid != IID_IUnknown && iid != IID_IOvProgress) return E_NOINTERFACE;
    *out = static_cast<IOvProgress*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE Progress(LONGLONG done, LONGLONG total) override {
    if (is_stop_asked()) return E_ABORT;
    try {
      bar_.look(static_cast<std::uint64_t>(done), static_cast<std::uint64_t>(total));
    } catch (const std::exception&) {
      // Work goes on without a bar that there is no memory for.
    }
    return S_OK;
  }

 private:
  ~progress_sink() = default;

  std::atomic<ULONG> references_{1};
  progress bar_;
};

long_call::long_call(const table_view& view, std::string title)
    : source_(ovfile::pointer<IOvTable>(&view.table()).query<IOvProgressSource>()) {
  if (!source_) return;
  *sink_.out() = new progress_sink(std::move(title));
  if (FAILED(source_->SetProgress(sink_.get()))) source_ = {};
}

long_call::~long_call() {
  if (source_) (void)source_->SetProgress(nullptr);
}

void long_call::throw_if_stopped(HRESULT status) {
  if (status == E_ABORT) throw_if_interrupted();
}

}  // namespace command
