#include "server/dispatch.h"

namespace ovf {

namespace {

constexpr auto ov_table_ado_members = member_list(std::to_array<dispatch_member>({
    getter<&IOvTableADO::get_Schema>(1, OLESTR("Schema")),
    putter_taking_over<&IOvTableADO::put_Schema>(1, OLESTR("Schema")),
    getter<&IOvTableADO::get_Name>(2, OLESTR("Name")),
    putter<&IOvTableADO::put_Name>(2, OLESTR("Name")),
    getter<&IOvTableADO::get_EOF>(3, OLESTR("EOF")),
    getter<&IOvTableADO::get_BOF>(4, OLESTR("BOF")),
    method<&IOvTableADO::GetRowCount>(5, OLESTR("GetRowCount"), OLESTR("pVal")),
    method<&IOvTableADO::GetCurrentRow>(6, OLESTR("GetCurrentRow"), OLESTR("pVal")),
    method<&IOvTableADO::AddRow>(7, OLESTR("AddRow")),
    method<&IOvTableADO::DeleteRow>(8, OLESTR("DeleteRow"), OLESTR("lRow")),
    method<&IOvTableADO::GetColumn>(9, OLESTR("GetColumn"), OLESTR("index val")),
    method<&IOvTableADO::SetColumn>(10, OLESTR("SetColumn"), OLESTR("index val")),
    method<&IOvTableADO::MoveTo>(11, OLESTR("MoveTo"), OLESTR("record")),
    method<&IOvTableADO::MoveFirst>(12, OLESTR("MoveFirst")),
    method<&IOvTableADO::MoveNext>(13, OLESTR("MoveNext")),
    method<&IOvTableADO::MoveLast>(14, OLESTR("MoveLast")),
    method<&IOvTableADO::MovePrevious>(15, OLESTR("MovePrevious")),
    method<&IOvTableADO::Open>(16, OLESTR("Open"), OLESTR("filename ReadOnly")),
    method<&IOvTableADO::Close>(17, OLESTR("Close")),
    method<&IOvTableADO::Create>(18, OLESTR("Create"), OLESTR("filename tableDefinition")),
    method<&IOvTableADO::Update>(19, OLESTR("Update")),
    method<&IOvTableADO::SetNamedColumn>(20, OLESTR("SetNamedColumn"), OLESTR("bsName val")),
    method<&IOvTableADO::GetNamedColumn>(21, OLESTR("GetNamedColumn"), OLESTR("bsName val")),
}));

constexpr method_table ov_table_ado_methods(ov_table_ado_members, CLSID_OvTableADO, IID_IOvTableADO);

}  // namespace

template <>
const dispatch_methods& methods_of<IOvTableADO>() noexcept {
  return ov_table_ado_methods;
}

}  // namespace ovf
