#include "duckdb/duckdb_package.h"

namespace command {

const package_facts duckdb_package = {
    "@duckdb/node-bindings-win32-x64",
    "1.5.5-r.5",
    "sha512-mBGFn8netT/AAhK4TOG6Fw47+Db68CxCVtQ9qfxZc1kZAjds+aYrh17Fd/u5CbTDdxILsrcyuF8q9cUcm54kQA==",
    13549050,
    "package/duckdb.dll",
    "sha512-mfn2x80sZPOH07oH7uFdKXUIA9JMfnhG0JQj8SOlGEJwTWQBQTIUgNLq7Lfhs+tUNotQzetEpYegC+OVG7HuKQ==",
    36724520};

}  // namespace command
