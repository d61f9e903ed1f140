# quillet_protobuf(<target> <dir>)
#
# Compiles every .proto file in <dir> (a folder under src/) with protoc at
# build time and adds the generated sources to <target>. A file
# src/<layer>/<part>/Name.proto is included as "<layer>/<part>/Name.pb.h";
# imports between .proto files are written from src/ the same way. The
# target links libprotobuf and sees its headers as system headers, so the
# generated code's warnings do not fail our build.
function(quillet_protobuf target dir)
  file(GLOB protos CONFIGURE_DEPENDS ${dir}/*.proto)
  file(RELATIVE_PATH relative ${CMAKE_SOURCE_DIR}/src ${dir})
  foreach(proto ${protos})
    get_filename_component(name ${proto} NAME_WE)
    set(out ${CMAKE_BINARY_DIR}/src/${relative}/${name})
    add_custom_command(
      OUTPUT ${out}.pb.cc ${out}.pb.h
      COMMAND protobuf::protoc -I${CMAKE_SOURCE_DIR}/src --cpp_out=${CMAKE_BINARY_DIR}/src ${proto}
      DEPENDS ${proto} protobuf::protoc
      COMMENT "Compiling ${relative}/${name}.proto"
      VERBATIM)
    target_sources(${target} PRIVATE ${out}.pb.cc ${out}.pb.h)
  endforeach()
  target_include_directories(${target} PUBLIC ${CMAKE_BINARY_DIR}/src)
  # The library's headers are included as <protobuf/...> from the directory
  # that holds them, found next to its include root.
  file(GLOB headers LIST_DIRECTORIES true ${Protobuf_INCLUDE_DIRS}/*/protobuf)
  list(GET headers 0 headers)
  get_filename_component(root ${headers} DIRECTORY)
  target_include_directories(${target} SYSTEM PUBLIC ${root})
  target_link_libraries(${target} PUBLIC protobuf::libprotobuf)
endfunction()
