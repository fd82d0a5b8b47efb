#include "server/dispatch.h"

namespace ovf {

namespace {

constexpr auto ov_table_members = member_list(std::to_array<dispatch_member>({
    method<&IOvTable::GetColumnAsDouble>(1, OLESTR("GetColumnAsDouble"), OLESTR("lIndex pVal")),
    method<&IOvTable::GetColumnAsFloat>(2, OLESTR("GetColumnAsFloat"), OLESTR("lIndex pVal")),
    method<&IOvTable::GetColumnAsString>(3, OLESTR("GetColumnAsString"), OLESTR("lIndex pVal")),
    method<&IOvTable::GetRowCount>(4, OLESTR("GetRowCount"), OLESTR("pVal")),
    method<&IOvTable::GetNextRow>(5, OLESTR("GetNextRow")),
    method<&IOvTable::GetColumn>(6, OLESTR("GetColumn"), OLESTR("lIndex pVal")),
    getter<&IOvTable::get_Schema>(7, OLESTR("Schema")),
    putter_taking_over<&IOvTable::put_Schema>(7, OLESTR("Schema")),
    getter<&IOvTable::get_Name>(8, OLESTR("Name")),
    putter<&IOvTable::put_Name>(8, OLESTR("Name")),
    method<&IOvTable::AddRow>(9, OLESTR("AddRow")),
    method<&IOvTable::SetColumn>(10, OLESTR("SetColumn"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnDouble>(11, OLESTR("SetColumnDouble"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnFloat>(12, OLESTR("SetColumnFloat"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnString>(13, OLESTR("SetColumnString"), OLESTR("lIndex newVal")),
    method<&IOvTable::GetFirstRow>(14, OLESTR("GetFirstRow")),
    method<&IOvTable::GetCurrentRow>(15, OLESTR("GetCurrentRow"), OLESTR("pVal")),
    method<&IOvTable::GetPreviousRow>(16, OLESTR("GetPreviousRow")),
    method<&IOvTable::GetLastRow>(17, OLESTR("GetLastRow")),
    method<&IOvTable::GetRowAt>(18, OLESTR("GetRowAt"), OLESTR("lIndex")),
    method<&IOvTable::Open>(19, OLESTR("Open"), OLESTR("filename ReadOnly")),
    method<&IOvTable::Close>(20, OLESTR("Close")),
    method<&IOvTable::Create>(21, OLESTR("Create"), OLESTR("bsFilename tableDefinition")),
    getter<&IOvTable::get_EOF>(22, OLESTR("EOF")),
    getter<&IOvTable::get_BOF>(23, OLESTR("BOF")),
    buffer_method(24, OLESTR("ReadOVRecord"), OLESTR("pBuffer")),
    method<&IOvTable::DeleteRow>(25, OLESTR("DeleteRow"), OLESTR("lIndex")),
    method<&IOvTable::SetFilteredIn>(26, OLESTR("SetFilteredIn"), OLESTR("row")),
    method<&IOvTable::SetFilteredOut>(27, OLESTR("SetFilteredOut"), OLESTR("row")),
    method<&IOvTable::IsFilteredIn>(28, OLESTR("IsFilteredIn"), OLESTR("nMode row pbVal")),
    method<&IOvTable::IsFilteredOut>(29, OLESTR("IsFilteredOut"), OLESTR("nMode row pbVal")),
    getter<&IOvTable::get_FilterString>(30, OLESTR("FilterString"), OLESTR("nMode pVal")),
    putter<&IOvTable::put_FilterString>(30, OLESTR("FilterString"), OLESTR("nMode newVal")),
    method<&IOvTable::GetColumnMin>(31, OLESTR("GetColumnMin"), OLESTR("index pVal")),
    method<&IOvTable::GetColumnMax>(32, OLESTR("GetColumnMax"), OLESTR("index pVal")),
    method<&IOvTable::FlushChanges>(33, OLESTR("FlushChanges")),
    getter<&IOvTable::get_IsLinked>(34, OLESTR("IsLinked")),
    method<&IOvTable::Sort>(35, OLESTR("Sort"), OLESTR("lIndex bAscending")),
    buffer_method(36, OLESTR("WriteOVRecord"), OLESTR("pBuffer")),
    method<&IOvTable::Repair>(37, OLESTR("Repair"), OLESTR("pSchema")),
    method<&IOvTable::GetLooseSignature>(38, OLESTR("GetLooseSignature"), OLESTR("pVal")),
    method<&IOvTable::GetTightSignature>(39, OLESTR("GetTightSignature"), OLESTR("pVal")),
    method<&IOvTable::GetSignature>(
        40, OLESTR("GetSignature"),
        OLESTR("ignoreDescription ignoreFieldOrder ignorePrecision nPtsAfterDecimal pVal")),
    method<&IOvTable::SetColumnDefaultFloat>(41, OLESTR("SetColumnDefaultFloat"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnDefaultDouble>(42, OLESTR("SetColumnDefaultDouble"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnName>(43, OLESTR("SetColumnName"), OLESTR("lIndex newVal")),
    method<&IOvTable::SetColumnDefaultString>(44, OLESTR("SetColumnDefaultString"), OLESTR("lIndex newVal")),
    method<&IOvTable::AddImplicitNumericColumnFloat>(45, OLESTR("AddImplicitNumericColumnFloat"),
                                                     OLESTR("bstrName defaultValue")),
    method<&IOvTable::AddImplicitNumericColumnDouble>(46, OLESTR("AddImplicitNumericColumnDouble"),
                                                      OLESTR("bstrName defaultValue")),
    method<&IOvTable::AddImplicitStringColumn>(47, OLESTR("AddImplicitStringColumn"),
                                               OLESTR("bstrName length bstrDefaultValue")),
    method<&IOvTable::ReduceRowCountTo>(48, OLESTR("ReduceRowCountTo"), OLESTR("lRows")),
}));

constexpr method_table ov_table_methods(ov_table_members, CLSID_OvTable, IID_IOvTable);

}  // namespace

template <>
const dispatch_methods& methods_of<IOvTable>() noexcept {
  return ov_table_methods;
}

}  // namespace ovf
