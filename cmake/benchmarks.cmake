# One program for each file of bench/, hosts of the shared library. SQLite stands beside it where it is
# installed (OVFILE_HAVE_SQLITE).
find_package(benchmark REQUIRED)
find_package(SQLite3)

ovf_sources(files bench)
foreach(file ${files})
  get_filename_component(name "${file}" NAME_WE)
  add_executable(bench_${name} "${file}")
  target_include_directories(bench_${name} PRIVATE include bench)
  if(TARGET ovfile)
    target_link_libraries(bench_${name} PRIVATE ovfile)
  endif()
  target_link_libraries(bench_${name} PRIVATE ovf_settings ovf_header_libraries benchmark::benchmark)
  if(SQLite3_FOUND)
    target_link_libraries(bench_${name} PRIVATE SQLite::SQLite3)
    target_compile_definitions(bench_${name} PRIVATE OVFILE_HAVE_SQLITE=1)
  endif()
endforeach()
