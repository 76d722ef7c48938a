# Renders the generated code out of the JSON model. Each of the three folders that own generated code calls it once:
#
#   include(${CMAKE_SOURCE_DIR}/tools/modelgen/modelgen.cmake)
#   cmc_generate(generated model)            # or binding, or rest: sets ${generated} to the absolute paths of its files
#   cmc_library(model SOURCES ${generated} LINK Boost::boost)
#   target_include_directories(model PUBLIC ${CMAKE_BINARY_DIR}/generated)
#
# The files, below ${CMAKE_BINARY_DIR}/generated, included by these paths:
#   model    model/enumerations_<service>.h, model/records_<service>.h, model/name_tables_<service>.{h,cpp}
#   binding  binding/generated/<service>_proxy.{h,cpp}
#            with <service> charging_management_core and route_based_energy_contents
#   rest     rest/generated/words.h, rest/generated/zuva_server.{h,cpp},
#            rest/generated/charging_management_core/charging_management_core.{h,cpp} and <resource>.{h,cpp} beside it,
#            rest/generated/factory_reset/{factory_reset,resets,reset_object_model}.{h,cpp}
#            The generated code includes "rest/model_element.h" and "rest/reset_object.h": their sources belong to the same library.
#
# A changed JSON file, template or generator renders again; a file whose text stays the same keeps its time and rebuilds nothing.
function(cmc_generate out product)
  set(folder ${CMAKE_CURRENT_FUNCTION_LIST_DIR})
  set(tool ${CMC_PYTHON} -B ${folder}/modelgen.py --root ${CMAKE_SOURCE_DIR})
  file(GLOB inputs CONFIGURE_DEPENDS ${folder}/*.py ${folder}/schema.json ${folder}/templates/*
    ${CMAKE_SOURCE_DIR}/model/*.json ${CMAKE_SOURCE_DIR}/rest/model/*.json)
  # The list of files follows from the model, so a new resource needs no line here.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs})
  execute_process(COMMAND ${tool} --list ${product}
    OUTPUT_VARIABLE files OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\n" ";" files "${files}")
  list(TRANSFORM files PREPEND ${CMAKE_BINARY_DIR}/generated/)
  add_custom_command(OUTPUT ${files}
    COMMAND ${tool} --output ${CMAKE_BINARY_DIR}/generated ${product}
    DEPENDS ${inputs} COMMENT "Rendering the ${product} code" VERBATIM)
  set(${out} ${files} PARENT_SCOPE)
endfunction()
