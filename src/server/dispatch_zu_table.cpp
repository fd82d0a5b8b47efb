#include "server/dispatch.h"

namespace ovf {

namespace {

constexpr auto zu_table_members = member_list(std::to_array<dispatch_member>({
    method<&IZuCommonDataTable::Reserved1>(1, OLESTR("Reserved1")),
    method<&IZuCommonDataTable::Reserved2>(2, OLESTR("Reserved2")),
    method<&IZuCommonDataTable::GetColumnAsDouble>(3, OLESTR("GetColumnAsDouble"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataTable::GetColumnAsFloat>(4, OLESTR("GetColumnAsFloat"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataTable::Reserved3>(5, OLESTR("Reserved3")),
    method<&IZuCommonDataTable::Reserved4>(6, OLESTR("Reserved4")),
    method<&IZuCommonDataTable::GetColumnAsString>(7, OLESTR("GetColumnAsString"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataTable::GetRowCount>(8, OLESTR("GetRowCount"), OLESTR("pVal")),
    method<&IZuCommonDataTable::GetNextRow>(9, OLESTR("GetNextRow")),
    method<&IZuCommonDataTable::GetColumn>(10, OLESTR("GetColumn"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataTable::Reserved5>(11, OLESTR("Reserved5")),
    method<&IZuCommonDataTable::Reserved6>(12, OLESTR("Reserved6"), OLESTR("pVal")),
    method<&IZuCommonDataTable::Reserved7>(13, OLESTR("Reserved7")),
    getter<&IZuCommonDataTable::get_Name>(14, OLESTR("Name")),
    putter<&IZuCommonDataTable::put_Name>(14, OLESTR("Name")),
    method<&IZuCommonDataTable::AddRow>(16, OLESTR("AddRow")),
    method<&IZuCommonDataTable::SetColumn>(17, OLESTR("SetColumn"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataTable::Reserved8>(18, OLESTR("Reserved8")),
    method<&IZuCommonDataTable::Reserved9>(19, OLESTR("Reserved9")),
    method<&IZuCommonDataTable::SetColumnDouble>(20, OLESTR("SetColumnDouble"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataTable::SetColumnFloat>(21, OLESTR("SetColumnFloat"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataTable::Reserved10>(22, OLESTR("Reserved10")),
    method<&IZuCommonDataTable::Reserved11>(23, OLESTR("Reserved11")),
    method<&IZuCommonDataTable::SetColumnString>(24, OLESTR("SetColumnString"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataTable::GetFirstRow>(25, OLESTR("GetFirstRow")),
    method<&IZuCommonDataTable::Reserved12>(26, OLESTR("Reserved12")),
    method<&IZuCommonDataTable::Reserved13>(27, OLESTR("Reserved13")),
    method<&IZuCommonDataTable::Reserved14>(28, OLESTR("Reserved14")),
    method<&IZuCommonDataTable::Reserved15>(29, OLESTR("Reserved15")),
    method<&IZuCommonDataTable::Reserved16>(30, OLESTR("Reserved16")),
    method<&IZuCommonDataTable::Reserved17>(31, OLESTR("Reserved17")),
    method<&IZuCommonDataTable::Reserved18>(32, OLESTR("Reserved18")),
    method<&IZuCommonDataTable::Reserved19>(33, OLESTR("Reserved19")),
    method<&IZuCommonDataTable::Reserved20>(34, OLESTR("Reserved20")),
    method<&IZuCommonDataTable::Reserved21>(35, OLESTR("Reserved21")),
    buffer_method(36, OLESTR("ReadOVRecord"), OLESTR("pBuffer")),
    method<&IZuCommonDataTable::Reserved22>(37, OLESTR("Reserved22")),
    method<&IZuCommonDataTable::DeleteRow>(38, OLESTR("DeleteRow"), OLESTR("lIndex")),
    method<&IZuCommonDataTable::GetCurrentRow>(39, OLESTR("GetCurrentRow"), OLESTR("pVal")),
    method<&IZuCommonDataTable::SetFilteredIn>(40, OLESTR("SetFilteredIn"), OLESTR("row")),
    method<&IZuCommonDataTable::SetFilteredOut>(41, OLESTR("SetFilteredOut"), OLESTR("row")),
    method<&IZuCommonDataTable::IsFilteredIn>(42, OLESTR("IsFilteredIn"), OLESTR("nMode row pbVal")),
    method<&IZuCommonDataTable::IsFilteredOut>(43, OLESTR("IsFilteredOut"), OLESTR("nMode row pbVal")),
    getter<&IZuCommonDataTable::get_FilterString>(44, OLESTR("FilterString"), OLESTR("nMode pVal")),
    putter<&IZuCommonDataTable::put_FilterString>(44, OLESTR("FilterString"), OLESTR("nMode newVal")),
    method<&IZuCommonDataTable::Reserved23>(46, OLESTR("Reserved23")),
    method<&IZuCommonDataTable::Reserved24>(47, OLESTR("Reserved24")),
    method<&IZuCommonDataTable::Reserved25>(48, OLESTR("Reserved25")),
    method<&IZuCommonDataTable::Reserved26>(49, OLESTR("Reserved26")),
    method<&IZuCommonDataTable::Reserved27>(50, OLESTR("Reserved27")),
    method<&IZuCommonDataTable::Reserved28>(51, OLESTR("Reserved28")),
    method<&IZuCommonDataTable::Reserved29>(52, OLESTR("Reserved29")),
}));

constexpr method_table zu_table_methods(zu_table_members, CLSID_OvTable, IID_IZuCommonDataTable);

}  // namespace

template <>
const dispatch_methods& methods_of<IZuCommonDataTable>() noexcept {
  return zu_table_methods;
}

}  // namespace ovf
