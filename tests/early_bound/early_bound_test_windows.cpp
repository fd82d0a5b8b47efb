// A C++ host that has nothing of ours but the header that is made from the IDL, as the type library is: its
// interfaces come from there, its objects from the system.
#include <gtest/gtest.h>
#include <initguid.h>
#include <windows.h>
// windows.h goes first.
#include <oleauto.h>

#include "OvFileLib.h"

#include <filesystem>
#include <random>
#include <string>

namespace {

class text {
 public:
  text() = default;
  explicit text(const wchar_t* value) : value_(SysAllocString(value)) {}
  explicit text(const std::filesystem::path& path) : text(path.c_str()) {}
  text(const text&) = delete;
  text& operator=(const text&) = delete;
  ~text() { SysFreeString(value_); }
  operator BSTR() const { return value_; }
  BSTR* out() { return &value_; }
  std::wstring str() const { return {value_, SysStringLen(value_)}; }

 private:
  BSTR value_ = nullptr;
};

HRESULT call_module(const char* path, const char* name) {
  const HMODULE module = LoadLibraryA(path);
  const auto entry =
      reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  const HRESULT status = entry != nullptr ? entry() : E_FAIL;
  FreeLibrary(module);
  return status;
}

class registered : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(folder_);
    ASSERT_EQ(S_OK, call_module(OVFILE_LIBRARY_PATH, "DllRegisterServer"));
    ASSERT_EQ(S_OK, CoInitialize(nullptr));
  }
  void TearDown() override {
    CoUninitialize();
    EXPECT_EQ(S_OK, call_module(OVFILE_LIBRARY_PATH, "DllUnregisterServer"));
    std::filesystem::remove_all(folder_);
  }

  template <class Interface>
  static Interface* make(REFCLSID class_id, REFIID iid) {
    void* made = nullptr;
    EXPECT_EQ(S_OK, CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, iid, &made));
    return static_cast<Interface*>(made);
  }

  std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("ovfile-early-" + std::to_string(std::random_device()()));
};

TEST_F(registered, classes_work_through_generated_interfaces) {
  auto* schema = make<IOvSchema>(CLSID_OvSchema, IID_IOvSchema);
  auto* table = make<IOvTable>(CLSID_OvTable, IID_IOvTable);
  ASSERT_TRUE(schema != nullptr && table != nullptr);
  EXPECT_EQ(S_OK, schema->put_DoublePrecision(VARIANT_TRUE));
  EXPECT_EQ(S_OK, schema->AddNumericColumn(text(L"AU"), 0.5, 0));
  EXPECT_EQ(S_OK, schema->AddStringColumn(text(L"ROCK"), 8, text(L"ORE"), 0));
  OvColumnType type = ovColumnSingle;
  EXPECT_EQ(S_OK, schema->GetFieldType(2, &type));
  EXPECT_EQ(ovColumnString, type);
  OvFileType hint = ovNothing;
  EXPECT_EQ(S_OK, schema->get_TypeHint(&hint));
  EXPECT_EQ(ovGenericTable, hint);

  const text path(folder_ / "early.ovt");
  ASSERT_EQ(S_OK, table->Create(path, schema));
  schema->Release();
  for (const double value : {3.0, 1.0, 2.0}) {
    EXPECT_EQ(S_OK, table->AddRow());
    EXPECT_EQ(S_OK, table->SetColumnDouble(1, value));
  }
  EXPECT_EQ(S_OK, table->Sort(1, VARIANT_TRUE));
  EXPECT_EQ(S_OK, table->GetFirstRow());
  for (const double expected : {1.0, 2.0, 3.0}) {
    double value = 0;
    text rock;
    EXPECT_EQ(S_OK, table->GetColumnAsDouble(1, &value));
    EXPECT_EQ(S_OK, table->GetColumnAsString(2, rock.out()));
    EXPECT_EQ(expected, value);
    EXPECT_EQ(L"ORE     ", rock.str());
    EXPECT_EQ(expected < 3 ? S_OK : S_FALSE, table->GetNextRow());
  }
  EXPECT_EQ(S_OK, table->Close());
  table->Release();
}

TEST_F(registered, classes_answer_their_second_interfaces) {
  auto* schema = make<IZuCommonDataSchema>(CLSID_OvSchema, IID_IZuCommonDataSchema);
  ASSERT_NE(nullptr, schema);
  EXPECT_EQ(S_OK, schema->AddColumn(text(L"NAME"), ovColumnString, 12));
  LONG size = 0;
  EXPECT_EQ(S_OK, schema->GetFieldSize(1, &size));
  EXPECT_EQ(12, size);
  EXPECT_EQ(E_NOTIMPL, schema->Reserved1());
  schema->Release();
  auto* table = make<IZuCommonDataTable>(CLSID_OvTable, IID_IZuCommonDataTable);
  ASSERT_NE(nullptr, table);
  EXPECT_EQ(E_NOTIMPL, table->Reserved29());
  table->Release();
}

/// What is put belongs to the table afterwards: a host that goes on using its schema adds a reference.
template <class Table>
void put_a_schema(Table& table, IOvSchema& schema) {
  EXPECT_EQ(2U, schema.AddRef());
  EXPECT_EQ(S_OK, table.put_Schema(&schema));
  IOvSchema* held = nullptr;
  EXPECT_EQ(S_OK, table.get_Schema(&held));
  EXPECT_EQ(&schema, held);
  EXPECT_EQ(2U, held->Release());
  EXPECT_EQ(0U, table.Release()) << "with the one that it had taken over";
  EXPECT_EQ(S_OK, schema.AddNumericColumn(text(L"V"), 0, 0)) << "alive, by its host's own reference";
  EXPECT_EQ(0U, schema.Release());
}

TEST_F(registered, tables_take_over_the_reference_to_a_schema) {
  auto* schema = make<IOvSchema>(CLSID_OvSchema, IID_IOvSchema);
  auto* table = make<IOvTable>(CLSID_OvTable, IID_IOvTable);
  ASSERT_TRUE(schema != nullptr && table != nullptr);
  put_a_schema(*table, *schema);
  schema = make<IOvSchema>(CLSID_OvSchema, IID_IOvSchema);
  auto* records = make<IOvTableADO>(CLSID_OvTableADO, IID_IOvTableADO);
  ASSERT_TRUE(schema != nullptr && records != nullptr);
  put_a_schema(*records, *schema);
}

TEST_F(registered, failures_carry_their_message) {
  auto* records = make<IOvTableADO>(CLSID_OvTableADO, IID_IOvTableADO);
  ASSERT_NE(nullptr, records);
  EXPECT_EQ(E_FAIL, records->Open(text(folder_ / "missing.ovt"), 1));
  IErrorInfo* info = nullptr;
  ASSERT_EQ(S_OK, GetErrorInfo(0, &info));
  text description;
  text source;
  GUID from{};
  EXPECT_EQ(S_OK, info->GetDescription(description.out()));
  EXPECT_EQ(S_OK, info->GetSource(source.out()));
  EXPECT_EQ(S_OK, info->GetGUID(&from));
  EXPECT_EQ(L"Error: File does not exist.", description.str());
  EXPECT_EQ(L"OvFile.OvTableADO.1", source.str());
  EXPECT_EQ(IID_IOvTableADO, from);
  info->Release();
  records->Release();
}

TEST_F(registered, library_is_found_by_its_identifier) {
  ITypeLib* library = nullptr;
  ASSERT_EQ(S_OK, LoadRegTypeLib(LIBID_OvFileLib, 1, 0, 0, &library));
  EXPECT_EQ(12U, library->GetTypeInfoCount()) << "3 enumerations, 5 interfaces, 4 classes";
  library->Release();
}

}  // namespace
