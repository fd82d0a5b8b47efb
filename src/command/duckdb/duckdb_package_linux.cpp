#include "duckdb/duckdb_package.h"

namespace command {

const package_facts duckdb_package = {
    "@duckdb/node-bindings-linux-x64",
    "1.5.6-r.1",
    "sha512-IXcrZJE6kEqM0Z4wwdVnGBHX/frOS33VPNAwDXQ/Q+Fs84b058Qe94chrCCIcNJlG8Y3UHIUU4eBeCQxW5mN1Q==",
    23927610,
    "package/libduckdb.so",
    "sha512-VLlWbwsgDlL0RBZBK8YW+7aTE4Up/vgVCsb70sbHl2ErQ8W1tETM+FRhsKeaYnBnRVrcxwTJIpXYE/qhC1/L3Q==",
    70546800};

}  // namespace command
