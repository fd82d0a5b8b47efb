#include "host/host_table.h"

#include "support/table_bytes.h"

namespace ovtest {

bytes host_table_bytes() {
  std::vector<atom> atoms{number_atom("V", 1)};
  add_text_atoms(atoms, "T", 2, 2);
  header_words words;
  words.pages = 2;
  words.records_in_last_page = 3;
  bytes file = make_header(words, atoms, double_words);
  add_page(file, double_words);
  const char* const texts[] = {"one", "two", "three"};
  for (std::size_t r = 0; r < 3; ++r) {
    put_number(file, record_word(1, r, 3, 1), static_cast<double>(r) + 1.5, double_words);
    put_text(file, record_word(1, r, 3, 2), 2, texts[r], double_words);
  }
  return file;
}

host_functions::host_functions(const loaded_library& library)
    : get_class_object(library.exported<decltype(::DllGetClassObject)>("DllGetClassObject")),
      can_unload_now(library.exported<decltype(::DllCanUnloadNow)>("DllCanUnloadNow")),
      alloc_text(library.runtime<decltype(::SysAllocStringLen)>("SysAllocStringLen")),
      free_text(library.runtime<decltype(::SysFreeString)>("SysFreeString")),
      text_length(library.runtime<decltype(::SysStringLen)>("SysStringLen")),
      get_error_info(library.runtime<decltype(::GetErrorInfo)>("GetErrorInfo")),
      set_error_info(library.runtime<decltype(::SetErrorInfo)>("SetErrorInfo")),
      clear_variant(library.runtime<decltype(::VariantClear)>("VariantClear")) {}

void host_test::SetUp() {
  write_bytes(path_, host_table_bytes());
  ASSERT_NE(nullptr, call_.get_class_object);
  ASSERT_NE(nullptr, call_.can_unload_now);
  EXPECT_EQ(S_OK, call_.can_unload_now()) << "before anything was made";
}

void host_test::TearDown() {
  call_.set_error_info(0, nullptr);
  EXPECT_EQ(S_OK, call_.can_unload_now()) << "after everything was released";
}

IDispatch* host_test::make(REFCLSID id) const {
  void* factory = nullptr;
  void* made = nullptr;
  EXPECT_EQ(S_OK, call_.get_class_object(id, IID_IClassFactory, &factory));
  if (factory == nullptr) return nullptr;
  auto* classes = static_cast<IClassFactory*>(factory);
  EXPECT_EQ(S_OK, classes->CreateInstance(nullptr, IID_IDispatch, &made));
  classes->Release();
  return static_cast<IDispatch*>(made);
}

HRESULT host_test::id_of(IDispatch& object, const std::string& name, DISPID* id) {
  std::basic_string<OLECHAR> units(name.begin(), name.end());
  LPOLESTR pointer = units.data();
  return object.GetIDsOfNames(IID_NULL, &pointer, 1, 0, id);
}

HRESULT host_test::call(IDispatch& object, const std::string& name, WORD flags,
                        const std::vector<VARIANT>& arguments, VARIANT* result, EXCEPINFO* exception) const {
  DISPID id = 0;
  const HRESULT found = id_of(object, name, &id);
  if (FAILED(found)) return found;
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPID put = DISPID_PROPERTYPUT;
  const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS given{reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()),
                   puts ? 1U : 0U};
  EXCEPINFO own{};
  UINT bad_argument = 0;
  const HRESULT status = object.Invoke(id, IID_NULL, 0, flags, &given, result,
                                       exception != nullptr ? exception : &own, &bad_argument);
  for (const BSTR text : {own.bstrSource, own.bstrDescription, own.bstrHelpFile}) call_.free_text(text);
  return status;
}

BSTR host_test::text(const std::string& ascii) const {
  const std::basic_string<OLECHAR> units(ascii.begin(), ascii.end());
  return call_.alloc_text(units.data(), static_cast<UINT>(units.size()));
}

std::string host_test::take(BSTR text) const {
  std::string ascii;
  for (UINT i = 0; i < call_.text_length(text); ++i) ascii += static_cast<char>(text[i]);
  call_.free_text(text);
  return ascii;
}

std::string host_test::take_error() const {
  IErrorInfo* info = nullptr;
  if (call_.get_error_info(0, &info) != S_OK) return {};
  BSTR description = nullptr;
  BSTR source = nullptr;
  info->GetDescription(&description);
  info->GetSource(&source);
  info->Release();
  const std::string described = take(description);
  return described + '|' + take(source);
}

}  // namespace ovtest
