// The published numbers of every method: its slot in the table of functions, and its number for
// late-bound callers; and that a late-bound call of that number reaches that method.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "server/dispatch.h"
#include "server/recording_schema.h"
#include "server/recording_table.h"
#include "server/recording_table_ado.h"
#include "server/recording_zu_schema.h"
#include "server/recording_zu_table.h"

namespace ovtest {
namespace {

struct contract_row {
  std::size_t slot;
  DISPID id;
  std::string method;
  std::size_t declared_slot;  ///< where the header puts it
};

/// A pointer to a virtual method holds the method's place in the table of functions, in bytes and odd.
template <auto Method>
std::size_t slot_of() {
  const auto method = Method;
  std::size_t word = 0;
  std::memcpy(&word, &method, sizeof word);
  return (word - 1) / sizeof(void*);
}

template <auto Method>
contract_row row(std::size_t slot, DISPID id, const char* method) {
  return {slot, id, method, slot_of<Method>()};
}

WORD kind_of(const std::string& method) {
  if (method.rfind("get_", 0) == 0) return DISPATCH_PROPERTYGET;
  return method.rfind("put_", 0) == 0 ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
}

std::string name_of(const std::string& method) {
  return kind_of(method) == DISPATCH_METHOD ? method : method.substr(4);
}

/// The entry of that number and kind in the interface's table.
const ovf::dispatch_member* entry_of(const ovf::method_table& table, const contract_row& expected) {
  for (const ovf::dispatch_member& member : table.members()) {
    if (member.id == expected.id && member.kind == kind_of(expected.method)) return &member;
  }
  return nullptr;
}

/// Calls the member with as many empty arguments as it takes, which all its parameters can be made from.
HRESULT call(IDispatch& object, const ovf::dispatch_member& member, VARIANT* result) {
  std::vector<VARIANT> arguments(member.types.size());
  for (VARIANT& argument : arguments) VariantInit(&argument);
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  return object.Invoke(member.id, IID_NULL, 0, member.kind, &parameters, result, nullptr, nullptr);
}

template <class Recording, class Interface>
void hold_against(const std::vector<contract_row>& contract) {
  const auto& table = static_cast<const ovf::method_table&>(ovf::methods_of<Interface>());
  EXPECT_EQ(contract.size(), table.members().size());
  const recorded<Recording, Interface> object;
  for (const contract_row& expected : contract) {
    SCOPED_TRACE(expected.method);
    EXPECT_EQ(expected.slot, expected.declared_slot);
    const ovf::dispatch_member* member = entry_of(table, expected);
    ASSERT_NE(nullptr, member);
    EXPECT_EQ(name_of(expected.method), to_utf8(member->name));
    variant result;
    const HRESULT status = call(object.dispatch(), *member, result.out());
    if (name_of(expected.method).find("OVRecord") != std::string::npos) {
      EXPECT_EQ(DISP_E_TYPEMISMATCH, status) << "a buffer cannot be lent late-bound";
      continue;
    }
    EXPECT_EQ(S_OK, status);
    EXPECT_EQ(expected.method + "(", object.record().last.substr(0, expected.method.size() + 1));
    // A VARIANT is handed out as whatever it holds.
    const VARTYPE any = VT_R8;
    EXPECT_EQ(member->result == VT_VARIANT ? any : member->result, result.get().vt);
  }
}

TEST(method_numbers, of_the_table) {
  hold_against<recording_table, IOvTable>({
      row<&IOvTable::GetColumnAsDouble>(7, 1, "GetColumnAsDouble"),
      row<&IOvTable::GetColumnAsFloat>(8, 2, "GetColumnAsFloat"),
      row<&IOvTable::GetColumnAsString>(9, 3, "GetColumnAsString"),
      row<&IOvTable::GetRowCount>(10, 4, "GetRowCount"),
      row<&IOvTable::GetNextRow>(11, 5, "GetNextRow"),
      row<&IOvTable::GetColumn>(12, 6, "GetColumn"),
      row<&IOvTable::get_Schema>(13, 7, "get_Schema"),
      row<&IOvTable::put_Schema>(14, 7, "put_Schema"),
      row<&IOvTable::get_Name>(15, 8, "get_Name"),
      row<&IOvTable::put_Name>(16, 8, "put_Name"),
      row<&IOvTable::AddRow>(17, 9, "AddRow"),
      row<&IOvTable::SetColumn>(18, 10, "SetColumn"),
      row<&IOvTable::SetColumnDouble>(19, 11, "SetColumnDouble"),
      row<&IOvTable::SetColumnFloat>(20, 12, "SetColumnFloat"),
      row<&IOvTable::SetColumnString>(21, 13, "SetColumnString"),
      row<&IOvTable::GetFirstRow>(22, 14, "GetFirstRow"),
      row<&IOvTable::GetCurrentRow>(23, 15, "GetCurrentRow"),
      row<&IOvTable::GetPreviousRow>(24, 16, "GetPreviousRow"),
      row<&IOvTable::GetLastRow>(25, 17, "GetLastRow"),
      row<&IOvTable::GetRowAt>(26, 18, "GetRowAt"),
      row<&IOvTable::Open>(27, 19, "Open"),
      row<&IOvTable::Close>(28, 20, "Close"),
      row<&IOvTable::Create>(29, 21, "Create"),
      row<&IOvTable::get_EOF>(30, 22, "get_EOF"),
      row<&IOvTable::get_BOF>(31, 23, "get_BOF"),
      row<&IOvTable::ReadOVRecord>(32, 24, "ReadOVRecord"),
      row<&IOvTable::DeleteRow>(33, 25, "DeleteRow"),
      row<&IOvTable::SetFilteredIn>(34, 26, "SetFilteredIn"),
      row<&IOvTable::SetFilteredOut>(35, 27, "SetFilteredOut"),
      row<&IOvTable::IsFilteredIn>(36, 28, "IsFilteredIn"),
      row<&IOvTable::IsFilteredOut>(37, 29, "IsFilteredOut"),
      row<&IOvTable::get_FilterString>(38, 30, "get_FilterString"),
      row<&IOvTable::put_FilterString>(39, 30, "put_FilterString"),
      row<&IOvTable::GetColumnMin>(40, 31, "GetColumnMin"),
      row<&IOvTable::GetColumnMax>(41, 32, "GetColumnMax"),
      row<&IOvTable::FlushChanges>(42, 33, "FlushChanges"),
      row<&IOvTable::get_IsLinked>(43, 34, "get_IsLinked"),
      row<&IOvTable::Sort>(44, 35, "Sort"),
      row<&IOvTable::WriteOVRecord>(45, 36, "WriteOVRecord"),
      row<&IOvTable::Repair>(46, 37, "Repair"),
      row<&IOvTable::GetLooseSignature>(47, 38, "GetLooseSignature"),
      row<&IOvTable::GetTightSignature>(48, 39, "GetTightSignature"),
      row<&IOvTable::GetSignature>(49, 40, "GetSignature"),
      row<&IOvTable::SetColumnDefaultFloat>(50, 41, "SetColumnDefaultFloat"),
      row<&IOvTable::SetColumnDefaultDouble>(51, 42, "SetColumnDefaultDouble"),
      row<&IOvTable::SetColumnName>(52, 43, "SetColumnName"),
      row<&IOvTable::SetColumnDefaultString>(53, 44, "SetColumnDefaultString"),
      row<&IOvTable::AddImplicitNumericColumnFloat>(54, 45, "AddImplicitNumericColumnFloat"),
      row<&IOvTable::AddImplicitNumericColumnDouble>(55, 46, "AddImplicitNumericColumnDouble"),
      row<&IOvTable::AddImplicitStringColumn>(56, 47, "AddImplicitStringColumn"),
      row<&IOvTable::ReduceRowCountTo>(57, 48, "ReduceRowCountTo"),
  });
}

TEST(method_numbers, of_the_record_set) {
  hold_against<recording_table_ado, IOvTableADO>({
      row<&IOvTableADO::get_Schema>(7, 1, "get_Schema"),
      row<&IOvTableADO::put_Schema>(8, 1, "put_Schema"),
      row<&IOvTableADO::get_Name>(9, 2, "get_Name"),
      row<&IOvTableADO::put_Name>(10, 2, "put_Name"),
      row<&IOvTableADO::get_EOF>(11, 3, "get_EOF"),
      row<&IOvTableADO::get_BOF>(12, 4, "get_BOF"),
      row<&IOvTableADO::GetRowCount>(13, 5, "GetRowCount"),
      row<&IOvTableADO::GetCurrentRow>(14, 6, "GetCurrentRow"),
      row<&IOvTableADO::AddRow>(15, 7, "AddRow"),
      row<&IOvTableADO::DeleteRow>(16, 8, "DeleteRow"),
      row<&IOvTableADO::GetColumn>(17, 9, "GetColumn"),
      row<&IOvTableADO::SetColumn>(18, 10, "SetColumn"),
      row<&IOvTableADO::MoveTo>(19, 11, "MoveTo"),
      row<&IOvTableADO::MoveFirst>(20, 12, "MoveFirst"),
      row<&IOvTableADO::MoveNext>(21, 13, "MoveNext"),
      row<&IOvTableADO::MoveLast>(22, 14, "MoveLast"),
      row<&IOvTableADO::MovePrevious>(23, 15, "MovePrevious"),
      row<&IOvTableADO::Open>(24, 16, "Open"),
      row<&IOvTableADO::Close>(25, 17, "Close"),
      row<&IOvTableADO::Create>(26, 18, "Create"),
      row<&IOvTableADO::Update>(27, 19, "Update"),
      row<&IOvTableADO::SetNamedColumn>(28, 20, "SetNamedColumn"),
      row<&IOvTableADO::GetNamedColumn>(29, 21, "GetNamedColumn"),
  });
}

TEST(method_numbers, of_the_schema) {
  hold_against<recording_schema, IOvSchema>({
      row<&IOvSchema::get_TypeHint>(7, 1, "get_TypeHint"),
      row<&IOvSchema::GetFieldDefault>(8, 2, "GetFieldDefault"),
      row<&IOvSchema::SetFieldDefault>(9, 3, "SetFieldDefault"),
      row<&IOvSchema::GetFieldOffset>(10, 4, "GetFieldOffset"),
      row<&IOvSchema::SetFieldOffset>(11, 5, "SetFieldOffset"),
      row<&IOvSchema::get_ReadOnly>(12, 6, "get_ReadOnly"),
      row<&IOvSchema::put_ReadOnly>(13, 6, "put_ReadOnly"),
      row<&IOvSchema::get_FieldCount>(14, 7, "get_FieldCount"),
      row<&IOvSchema::put_FieldCount>(15, 7, "put_FieldCount"),
      row<&IOvSchema::GetFieldName>(16, 8, "GetFieldName"),
      row<&IOvSchema::SetFieldName>(17, 9, "SetFieldName"),
      row<&IOvSchema::GetFieldType>(18, 10, "GetFieldType"),
      row<&IOvSchema::SetFieldType>(19, 11, "SetFieldType"),
      row<&IOvSchema::GetFieldIndex>(20, 12, "GetFieldIndex"),
      row<&IOvSchema::get_Description>(21, 13, "get_Description"),
      row<&IOvSchema::put_Description>(22, 13, "put_Description"),
      row<&IOvSchema::AddColumn>(23, 15, "AddColumn"),
      row<&IOvSchema::GetFieldSize>(24, 16, "GetFieldSize"),
      row<&IOvSchema::SetFieldSize>(25, 17, "SetFieldSize"),
      row<&IOvSchema::AddStringColumn>(26, 18, "AddStringColumn"),
      row<&IOvSchema::AddNumericColumn>(27, 19, "AddNumericColumn"),
      row<&IOvSchema::get_DoublePrecisionFlag>(28, 20, "get_DoublePrecisionFlag"),
      row<&IOvSchema::put_DoublePrecisionFlag>(29, 20, "put_DoublePrecisionFlag"),
      row<&IOvSchema::CreateModelFile>(30, 22, "CreateModelFile"),
      row<&IOvSchema::CreatePointsFile>(31, 23, "CreatePointsFile"),
      row<&IOvSchema::CreateStringsFile>(32, 24, "CreateStringsFile"),
      row<&IOvSchema::CreateWfTriangleFile>(33, 25, "CreateWfTriangleFile"),
      row<&IOvSchema::CreateWfPointFile>(34, 26, "CreateWfPointFile"),
      row<&IOvSchema::IsFieldImplicit>(35, 27, "IsFieldImplicit"),
      row<&IOvSchema::GetFieldSizeChars>(36, 28, "GetFieldSizeChars"),
      row<&IOvSchema::get_SpecialValueAbsent>(37, 29, "get_SpecialValueAbsent"),
      row<&IOvSchema::get_SpecialValueTrace>(38, 30, "get_SpecialValueTrace"),
      row<&IOvSchema::get_SpecialValueBottom>(39, 31, "get_SpecialValueBottom"),
      row<&IOvSchema::get_SpecialValueTop>(40, 32, "get_SpecialValueTop"),
      row<&IOvSchema::CreateRegularGrid>(41, 33, "CreateRegularGrid"),
      row<&IOvSchema::get_DoublePrecision>(42, 34, "get_DoublePrecision"),
      row<&IOvSchema::put_DoublePrecision>(43, 34, "put_DoublePrecision"),
      row<&IOvSchema::GetSchemaAsXML>(44, 35, "GetSchemaAsXML"),
      row<&IOvSchema::SetSchemaUsingXML>(45, 36, "SetSchemaUsingXML"),
      row<&IOvSchema::Merge>(46, 37, "Merge"),
      row<&IOvSchema::get_FieldNameMaxLength>(47, 38, "get_FieldNameMaxLength"),
      row<&IOvSchema::get_UseLongFieldNames>(48, 39, "get_UseLongFieldNames"),
      row<&IOvSchema::get_UseLongFieldNamesMaster>(49, 40, "get_UseLongFieldNamesMaster"),
      row<&IOvSchema::put_UseLongFieldNamesMaster>(50, 40, "put_UseLongFieldNamesMaster"),
  });
}

TEST(method_numbers, of_the_common_table) {
  hold_against<recording_zu_table, IZuCommonDataTable>({
      row<&IZuCommonDataTable::Reserved1>(7, 1, "Reserved1"),
      row<&IZuCommonDataTable::Reserved2>(8, 2, "Reserved2"),
      row<&IZuCommonDataTable::GetColumnAsDouble>(9, 3, "GetColumnAsDouble"),
      row<&IZuCommonDataTable::GetColumnAsFloat>(10, 4, "GetColumnAsFloat"),
      row<&IZuCommonDataTable::Reserved3>(11, 5, "Reserved3"),
      row<&IZuCommonDataTable::Reserved4>(12, 6, "Reserved4"),
      row<&IZuCommonDataTable::GetColumnAsString>(13, 7, "GetColumnAsString"),
      row<&IZuCommonDataTable::GetRowCount>(14, 8, "GetRowCount"),
      row<&IZuCommonDataTable::GetNextRow>(15, 9, "GetNextRow"),
      row<&IZuCommonDataTable::GetColumn>(16, 10, "GetColumn"),
      row<&IZuCommonDataTable::Reserved5>(17, 11, "Reserved5"),
      row<&IZuCommonDataTable::Reserved6>(18, 12, "Reserved6"),
      row<&IZuCommonDataTable::Reserved7>(19, 13, "Reserved7"),
      row<&IZuCommonDataTable::get_Name>(20, 14, "get_Name"),
      row<&IZuCommonDataTable::put_Name>(21, 14, "put_Name"),
      row<&IZuCommonDataTable::AddRow>(22, 16, "AddRow"),
      row<&IZuCommonDataTable::SetColumn>(23, 17, "SetColumn"),
      row<&IZuCommonDataTable::Reserved8>(24, 18, "Reserved8"),
      row<&IZuCommonDataTable::Reserved9>(25, 19, "Reserved9"),
      row<&IZuCommonDataTable::SetColumnDouble>(26, 20, "SetColumnDouble"),
      row<&IZuCommonDataTable::SetColumnFloat>(27, 21, "SetColumnFloat"),
      row<&IZuCommonDataTable::Reserved10>(28, 22, "Reserved10"),
      row<&IZuCommonDataTable::Reserved11>(29, 23, "Reserved11"),
      row<&IZuCommonDataTable::SetColumnString>(30, 24, "SetColumnString"),
      row<&IZuCommonDataTable::GetFirstRow>(31, 25, "GetFirstRow"),
      row<&IZuCommonDataTable::Reserved12>(32, 26, "Reserved12"),
      row<&IZuCommonDataTable::Reserved13>(33, 27, "Reserved13"),
      row<&IZuCommonDataTable::Reserved14>(34, 28, "Reserved14"),
      row<&IZuCommonDataTable::Reserved15>(35, 29, "Reserved15"),
      row<&IZuCommonDataTable::Reserved16>(36, 30, "Reserved16"),
      row<&IZuCommonDataTable::Reserved17>(37, 31, "Reserved17"),
      row<&IZuCommonDataTable::Reserved18>(38, 32, "Reserved18"),
      row<&IZuCommonDataTable::Reserved19>(39, 33, "Reserved19"),
      row<&IZuCommonDataTable::Reserved20>(40, 34, "Reserved20"),
      row<&IZuCommonDataTable::Reserved21>(41, 35, "Reserved21"),
      row<&IZuCommonDataTable::ReadOVRecord>(42, 36, "ReadOVRecord"),
      row<&IZuCommonDataTable::Reserved22>(43, 37, "Reserved22"),
      row<&IZuCommonDataTable::DeleteRow>(44, 38, "DeleteRow"),
      row<&IZuCommonDataTable::GetCurrentRow>(45, 39, "GetCurrentRow"),
      row<&IZuCommonDataTable::SetFilteredIn>(46, 40, "SetFilteredIn"),
      row<&IZuCommonDataTable::SetFilteredOut>(47, 41, "SetFilteredOut"),
      row<&IZuCommonDataTable::IsFilteredIn>(48, 42, "IsFilteredIn"),
      row<&IZuCommonDataTable::IsFilteredOut>(49, 43, "IsFilteredOut"),
      row<&IZuCommonDataTable::get_FilterString>(50, 44, "get_FilterString"),
      row<&IZuCommonDataTable::put_FilterString>(51, 44, "put_FilterString"),
      row<&IZuCommonDataTable::Reserved23>(52, 46, "Reserved23"),
      row<&IZuCommonDataTable::Reserved24>(53, 47, "Reserved24"),
      row<&IZuCommonDataTable::Reserved25>(54, 48, "Reserved25"),
      row<&IZuCommonDataTable::Reserved26>(55, 49, "Reserved26"),
      row<&IZuCommonDataTable::Reserved27>(56, 50, "Reserved27"),
      row<&IZuCommonDataTable::Reserved28>(57, 51, "Reserved28"),
      row<&IZuCommonDataTable::Reserved29>(58, 52, "Reserved29"),
  });
}

TEST(method_numbers, of_the_common_schema) {
  hold_against<recording_zu_schema, IZuCommonDataSchema>({
      row<&IZuCommonDataSchema::get_TypeHint>(7, 1, "get_TypeHint"),
      row<&IZuCommonDataSchema::Reserved1>(8, 2, "Reserved1"),
      row<&IZuCommonDataSchema::Reserved2>(9, 3, "Reserved2"),
      row<&IZuCommonDataSchema::Reserved3>(10, 4, "Reserved3"),
      row<&IZuCommonDataSchema::Reserved4>(11, 5, "Reserved4"),
      row<&IZuCommonDataSchema::Reserved5>(12, 6, "Reserved5"),
      row<&IZuCommonDataSchema::GetSchemaAsXML>(13, 7, "GetSchemaAsXML"),
      row<&IZuCommonDataSchema::SetSchemaUsingXML>(14, 8, "SetSchemaUsingXML"),
      row<&IZuCommonDataSchema::GetFieldDefault>(15, 9, "GetFieldDefault"),
      row<&IZuCommonDataSchema::SetFieldDefault>(16, 10, "SetFieldDefault"),
      row<&IZuCommonDataSchema::GetFieldOffset>(17, 11, "GetFieldOffset"),
      row<&IZuCommonDataSchema::SetFieldOffset>(18, 12, "SetFieldOffset"),
      row<&IZuCommonDataSchema::get_ReadOnly>(19, 13, "get_ReadOnly"),
      row<&IZuCommonDataSchema::put_ReadOnly>(20, 13, "put_ReadOnly"),
      row<&IZuCommonDataSchema::get_FieldCount>(21, 15, "get_FieldCount"),
      row<&IZuCommonDataSchema::put_FieldCount>(22, 15, "put_FieldCount"),
      row<&IZuCommonDataSchema::GetFieldName>(23, 17, "GetFieldName"),
      row<&IZuCommonDataSchema::SetFieldName>(24, 18, "SetFieldName"),
      row<&IZuCommonDataSchema::GetFieldType>(25, 19, "GetFieldType"),
      row<&IZuCommonDataSchema::SetFieldType>(26, 20, "SetFieldType"),
      row<&IZuCommonDataSchema::GetFieldIndex>(27, 21, "GetFieldIndex"),
      row<&IZuCommonDataSchema::get_Description>(28, 22, "get_Description"),
      row<&IZuCommonDataSchema::put_Description>(29, 22, "put_Description"),
      row<&IZuCommonDataSchema::AddColumn>(30, 24, "AddColumn"),
      row<&IZuCommonDataSchema::Reserved6>(31, 25, "Reserved6"),
      row<&IZuCommonDataSchema::GetFieldSize>(32, 26, "GetFieldSize"),
      row<&IZuCommonDataSchema::SetFieldSize>(33, 27, "SetFieldSize"),
      row<&IZuCommonDataSchema::Reserved7>(34, 28, "Reserved7"),
      row<&IZuCommonDataSchema::Reserved8>(35, 29, "Reserved8"),
  });
}

}  // namespace
}  // namespace ovtest
